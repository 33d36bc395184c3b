#include "show.h"

#include "failure.h"
#include "random.h"

#include <algorithm>

namespace show {

namespace {

constexpr double transitionSeconds = 1.5;
constexpr double endingSeconds = 2.0;

int framesIn(double seconds, int framesPerSecond) {
    return std::max(static_cast<int>(seconds * framesPerSecond + 0.5), 1);
}

template <class Container>
auto inTurn(const Container &container, int index) {
    return container[static_cast<std::size_t>(index) % container.size()];
}

} // namespace

std::vector<std::string> defaultEffects() {
    // A scene for each of the shots, and what leads from one to the next.
    return {"title",  "wave",    "night", "pan",  "landscape",  "bubbles", "pan",   "pan",  "balls",     "winter",
            "sparks", "bubbles", "snow",  "pan",  "wave",       "pan",     "pan",   "pan",  "turn-page", "cylinder",
            "flood",  "shatter", "cube",  "pen",  "fly-in",     "roll",    "brush", "iris", "dissolve",  "triangles",
            "flip",   "spin",    "flash", "wipe", "cross-fade", "fade-out"};
}

Show::Show(const ShowSettings &chosen)
    : settings(chosen), framesPerShot(framesIn(chosen.secondsPerPhoto, chosen.framesPerSecond)) {
    for (const std::string &name : settings.effects) {
        const EffectInfo *const info = findEffect(name);
        if (!info)
            throw Failure("there is no effect '" + name + "'; --list names them all");
        switch (info->kind) {
        case Effect::Kind::scene:
            scenes.push_back(effectNamed(name));
            break;
        case Effect::Kind::transition:
            transitions.push_back(effectNamed(name));
            break;
        case Effect::Kind::ending:
            if (ending)
                throw Failure("'" + name + "' is a second ending; a show has one");
            ending = effectNamed(name);
            break;
        }
    }
    if (scenes.empty())
        scenes.push_back(effectNamed("pan"));
    for (const auto &path : settings.photos)
        photos.push_back(loadPhoto(path, settings.width, settings.height));
    for (const auto &[name, effect] : effects)
        effect->prepare(settings.width, settings.height);

    shotCount = static_cast<int>(std::max({photos.size(), scenes.size(), transitions.size() + 1}));
    if (!transitions.empty())
        overlap = std::min(framesIn(transitionSeconds, settings.framesPerSecond) / 2, framesPerShot / 5);
    if (ending)
        endingFrames = std::min(framesIn(endingSeconds, settings.framesPerSecond), (framesPerShot + 1) / 2);
}

const Effect *Show::effectNamed(const std::string &name) {
    std::unique_ptr<Effect> &effect = effects[name];
    if (!effect)
        effect = findEffect(name)->make();
    return effect.get();
}

Shot Show::shotAt(int index, int frame) const {
    const int first = index * framesPerShot - (index > 0 ? overlap : 0);
    const int end = (index + 1) * framesPerShot + (index + 1 < shotCount ? overlap : 0);
    const auto photo = static_cast<std::size_t>(index) % photos.size();
    const Surface surface = photos[photo].surface();
    // In and out in turn, and the other way when a photograph comes round again.
    const bool closesIn = (static_cast<std::size_t>(index) + static_cast<std::size_t>(index) / photos.size()) % 2 == 0;
    const std::uint64_t seed = seedOf(settings.seed, index);
    return {.photo = surface,
            .camera = cameraOver(surface, settings.width, settings.height, seed, closesIn),
            .scene = inTurn(scenes, index),
            .seed = seed,
            .progress = static_cast<double>(frame - first) / (end - first),
            .seconds = static_cast<double>(end - first) / settings.framesPerSecond};
}

void Show::render(Stage &stage, int frame) const {
    const int index = frame / framesPerShot;
    const int passed = frame - index * framesPerShot;
    const int left = framesPerShot - passed;
    const bool last = index + 1 == shotCount;

    stage.beginFrame();
    if (!last && left <= overlap)
        inTurn(transitions, index)
            ->render(stage, stage.frame(),
                     {shotAt(index, frame), shotAt(index + 1, frame), (overlap - left + 0.5) / (2 * overlap)});
    else if (index > 0 && passed < overlap)
        inTurn(transitions, index - 1)
            ->render(stage, stage.frame(),
                     {shotAt(index - 1, frame), shotAt(index, frame), (overlap + passed + 0.5) / (2 * overlap)});
    else if (last && left <= endingFrames)
        ending->render(stage, stage.frame(),
                       {shotAt(index, frame), shotAt(index, frame), 1 - (left - 1.0) / endingFrames});
    else
        drawShot(stage, stage.frame(), shotAt(index, frame));
    stage.endFrame();
}

} // namespace show
