/// \file
/// The show: which photograph stands in which frame, and which effect draws it.
#ifndef QMUR_SHOW_SHOW_H
#define QMUR_SHOW_SHOW_H

#include "effects/list.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace show {

struct ShowSettings {
    int width = 1280;
    int height = 720;
    int framesPerSecond = 30;
    double secondsPerPhoto = 4.5;
    std::uint64_t seed = 1;
    std::vector<std::filesystem::path> photos;
    std::vector<std::string> effects;
};

/// The effects of a show that nobody chose effects for.
std::vector<std::string> defaultEffects();

/// Photographs take turns, each for the same number of frames. Scenes and transitions take turns likewise, in the order
/// in which the settings name them, and the photographs come round again until every effect has had its turn.
class Show {
public:
    /// Reads the photographs and prepares the effects. Throws Failure.
    explicit Show(const ShowSettings &settings);

    int frameCount() const { return shotCount * framesPerShot; }

    /// Draws a frame on the stage.
    void render(Stage &stage, int frame) const;

private:
    const Effect *effectNamed(const std::string &name);
    Shot shotAt(int index, int frame) const;

    ShowSettings settings;
    std::map<std::string, std::unique_ptr<Effect>> effects;
    std::vector<const Effect *> scenes;
    std::vector<const Effect *> transitions;
    const Effect *ending = nullptr;
    std::vector<Canvas> photos;
    int shotCount;
    int framesPerShot;
    int overlap = 0; ///< frames of a transition on either side of the change from shot to shot
    int endingFrames = 0;
};

} // namespace show

#endif
