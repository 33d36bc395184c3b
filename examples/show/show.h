/// \file
/// The show: which photograph stands in which frame, and which effect draws it.
#ifndef QMUR_SHOW_SHOW_H
#define QMUR_SHOW_SHOW_H

#include "calls.h"
#include "caption.h"
#include "effects/list.h"
#include "frame_rate.h"
#include "image_file.h"
#include "photo_list.h"
#include "photo_shelf.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace show {

struct ShowSettings {
    int width = 1280;
    int height = 720;
    FrameRate rate;
    double secondsPerPhoto = 4.5;
    std::uint64_t seed = 1;
    std::vector<ShownPhoto> photos;
    int mostMegapixels = usualMegapixels;
    std::vector<std::string> effects;
    Fit fit = Fit::automatic;
    std::string title; ///< on the first photograph; none if it is empty
    std::string subtitle;
    std::vector<std::string> captions; ///< of the photographs, in their order
};

/// The effects of a show that nobody chose effects for, so many that each photograph is shown once.
std::vector<std::string> effectsFor(std::size_t photoCount, std::uint64_t seed);

/// Which effect drew a frame, and how long its thread was busy with that, once the photographs were there.
struct Drawing {
    const Effect *effect;
    double seconds;
    int shot;
    bool leadsOn;               ///< the effect is a transition from this shot to the next
    std::vector<CallSum> calls; ///< if they are timed; their share of the time that the thread was busy
};

/// Photographs take turns, each for its seconds or those of the show. Scenes and transitions take turns likewise, in
/// the order in which the settings name them, and the photographs come round again until every effect has had its turn.
class Show {
public:
    /// Prepares the effects. Throws Failure.
    explicit Show(const ShowSettings &settings);

    int frameCount() const { return firstFrames.back(); }
    int shotCount() const { return static_cast<int>(firstFrames.size()) - 1; }

    /// What drawing takes at most in one thread, roughly.
    std::size_t memoryToDraw() const;

    int shotOf(int frame) const;
    int firstFrameOf(int shot) const { return firstFrames[at(shot)]; }

    /// Reads the shot's photograph, so that nobody has to wait for it when its frames are drawn. Throws Failure.
    void fetchPhoto(int shot) const { shelf->photo(photoOf(shot).path); }

    /// Draws a frame on the stage.
    Drawing render(Stage &stage, int frame) const;

    const std::string &nameOf(const Effect *effect) const;

private:
    const Effect *effectNamed(const std::string &name);
    void layOutShots();
    const ShownPhoto &photoOf(int shot) const;
    int framesOf(int shot) const { return firstFrames[at(shot + 1)] - firstFrames[at(shot)]; }
    /// Frames of the transition on either side of the change to a shot; 0 for the first shot and behind the last.
    int overlapBefore(int shot) const;
    /// The shot as it stands in the frame; `photo` is to be held until that is drawn.
    Shot shotAt(int index, int frame, std::shared_ptr<const Photo> &photo) const;

    PhotoFrame photoFrame() const { return {settings.width, settings.height, settings.fit}; }
    int endingOf(int shot) const { return shot + 1 == shotCount() ? endingFrames : 0; }
    /// Draws the caption of the shot's photograph where it stands alone: so many frames have passed since, and are
    /// left.
    void drawCaption(const Surface &out, int shot, int passed, int left) const;

    static std::size_t at(int index) { return static_cast<std::size_t>(index); }

    ShowSettings settings;
    std::map<std::string, std::unique_ptr<Effect>> effects;
    std::vector<const Effect *> scenes;
    std::vector<const Effect *> transitions;
    const Effect *ending = nullptr;
    const Effect *titleScene = nullptr;
    std::vector<Canvas> captions;
    std::unique_ptr<PhotoShelf> shelf;
    std::vector<int> firstFrames; ///< of each shot, and behind them the number of all frames
    int endingFrames = 0;
};

} // namespace show

#endif
