/// \file
/// An effect: one way to show photographs, drawn through the library.
///
/// To add one, write a file in effects/ after the pattern of those that are there; it ends with a Registered object.
#ifndef QMUR_SHOW_EFFECT_H
#define QMUR_SHOW_EFFECT_H

#include "easing.h"
#include "photo.h"
#include "stage.h"

#include <cstdint>
#include <memory>
#include <string>

namespace show {

class Effect;

/// A photograph at one moment of the time that it is on.
struct Shot {
    Surface photo;       ///< with a margin that repeats its edges; of any size
    Camera camera;       ///< its way over the photograph
    const Effect *scene; ///< the effect that shows it
    std::uint64_t seed;  ///< what is left to chance in this shot depends on this alone
    double progress;     ///< how much of its time has passed, from 0 to 1
    double seconds;      ///< the time that it is on
};

/// What an effect is to draw.
struct Moment {
    Shot a;   ///< the photograph
    Shot b;   ///< the one that follows, if the effect is a transition
    double t; ///< how much of the effect's own time has passed, from 0 to 1
};

class Effect {
public:
    enum class Kind {
        scene,      ///< shows one photograph
        transition, ///< leads from one photograph to the next
        ending,     ///< ends the show
    };

    virtual ~Effect() = default;

    /// Called once, before prepare(): what the user wants to have written, or nothing.
    virtual void write(const std::string &title, const std::string &subtitle);

    /// Called once, before any frame is drawn: the place to draw sprites.
    virtual void prepare(int width, int height);

    /// Fills `out`, which has the frame's size, margin and pitch, with pixels whose top byte is 0. It must depend on
    /// `moment` alone: frames are drawn in any order and by several threads at once, each with a stage of its own.
    virtual void render(Stage &stage, const Surface &out, const Moment &moment) const = 0;
};

/// Draws the shot by its scene.
void drawShot(Stage &stage, const Surface &out, const Shot &shot);

/// When an effect appears in a show that nobody chose effects for.
enum class Use {
    often,     ///< between the others
    inTurn,    ///< as often as the others of its kind
    onRequest, ///< never
};

/// What is known of an effect.
struct EffectInfo {
    const char *name;
    Effect::Kind kind;
    Use use;
    const char *description;
    std::unique_ptr<Effect> (*make)();
    const EffectInfo *next; ///< in no particular order; see allEffects()
};

/// For Registered alone.
void enlist(EffectInfo &info) noexcept;

/// Makes an effect known to the program. The file of each effect ends with one such object, and nothing else names it.
template <class Type>
class Registered {
public:
    Registered(const char *name, Effect::Kind kind, Use use, const char *description) noexcept
        : info{name, kind, use, description, make, nullptr} {
        enlist(info);
    }

private:
    static std::unique_ptr<Effect> make() { return std::make_unique<Type>(); }

    EffectInfo info;
};

} // namespace show

#endif
