#include "show.h"

#include "failure.h"
#include "random.h"

#include <algorithm>

namespace show {

namespace {

constexpr double transitionSeconds = 1.5;
constexpr double endingSeconds = 2.0;

constexpr long long mostFrames = 9999999;

int framesIn(double seconds, const FrameRate &rate) {
    return std::max(static_cast<int>(seconds * rate.perSecond() + 0.5), 1);
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
    : settings(chosen), shelf(std::make_unique<PhotoShelf>(chosen.width, chosen.height, chosen.mostMegapixels)) {
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
    layOutShots();
    for (const auto &[name, effect] : effects)
        effect->prepare(settings.width, settings.height);
}

void Show::layOutShots() {
    const std::size_t count = std::max({settings.photos.size(), scenes.size(), transitions.size() + 1});
    long long frames = 0;
    firstFrames = {0};
    for (std::size_t shot = 0; shot < count; ++shot) {
        const double seconds =
            settings.photos[shot % settings.photos.size()].seconds.value_or(settings.secondsPerPhoto);
        frames += framesIn(seconds, settings.rate);
        if (frames > mostFrames)
            throw Failure("the show would have more than " + std::to_string(mostFrames) + " frames");
        firstFrames.push_back(static_cast<int>(frames));
    }
    if (ending)
        endingFrames = std::min(framesIn(endingSeconds, settings.rate), (framesOf(shotCount() - 1) + 1) / 2);
}

const Effect *Show::effectNamed(const std::string &name) {
    std::unique_ptr<Effect> &effect = effects[name];
    if (!effect)
        effect = findEffect(name)->make();
    return effect.get();
}

const ShownPhoto &Show::photoOf(int shot) const {
    return settings.photos[at(shot) % settings.photos.size()];
}

int Show::overlapBefore(int shot) const {
    if (transitions.empty() || shot == 0 || shot == shotCount())
        return 0;
    return std::min({framesIn(transitionSeconds, settings.rate) / 2, framesOf(shot - 1) / 5, framesOf(shot) / 5});
}

Shot Show::shotAt(int index, int frame, std::shared_ptr<const Canvas> &canvas) const {
    const int first = firstFrames[at(index)] - overlapBefore(index);
    const int end = firstFrames[at(index + 1)] + overlapBefore(index + 1);
    canvas = shelf->photo(photoOf(index).path);
    const Surface surface = canvas->surface();
    // In and out in turn, and the other way when a photograph comes round again.
    const bool closesIn = (at(index) + at(index) / settings.photos.size()) % 2 == 0;
    const std::uint64_t seed = seedOf(settings.seed, index);
    return {.photo = surface,
            .camera = cameraOver(surface, settings.width, settings.height, seed, closesIn),
            .scene = inTurn(scenes, index),
            .seed = seed,
            .progress = static_cast<double>(frame - first) / (end - first),
            .seconds = settings.rate.secondsOf(end - first)};
}

void Show::render(Stage &stage, int frame) const {
    const auto next = std::upper_bound(firstFrames.begin(), firstFrames.end(), frame);
    const int index = static_cast<int>(next - firstFrames.begin()) - 1;
    const int passed = frame - firstFrames[at(index)];
    const int left = *next - frame;
    const int overlap = overlapBefore(index);
    const int overlapBehind = overlapBefore(index + 1);

    std::shared_ptr<const Canvas> first;
    std::shared_ptr<const Canvas> second;
    stage.beginFrame();
    if (left <= overlapBehind)
        inTurn(transitions, index)
            ->render(stage, stage.frame(),
                     {shotAt(index, frame, first), shotAt(index + 1, frame, second),
                      (overlapBehind - left + 0.5) / (2 * overlapBehind)});
    else if (passed < overlap)
        inTurn(transitions, index - 1)
            ->render(stage, stage.frame(),
                     {shotAt(index - 1, frame, first), shotAt(index, frame, second),
                      (overlap + passed + 0.5) / (2 * overlap)});
    else if (index + 1 == shotCount() && left <= endingFrames)
        ending->render(stage, stage.frame(),
                       {shotAt(index, frame, first), shotAt(index, frame, second), 1 - (left - 1.0) / endingFrames});
    else
        drawShot(stage, stage.frame(), shotAt(index, frame, first));
    stage.endFrame();
}

} // namespace show
