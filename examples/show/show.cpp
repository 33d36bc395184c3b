#include "show.h"

#include "failure.h"
#include "random.h"
#include "timings.h"

#include <algorithm>
#include <chrono>

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

std::vector<std::string> effectsFor(std::size_t photoCount, std::uint64_t seed) {
    const auto namesOf = [](Effect::Kind kind, Use use) {
        std::vector<std::string> names;
        for (const EffectInfo *effect : allEffects())
            if (effect->kind == kind && effect->use == use)
                names.emplace_back(effect->name);
        return names;
    };
    // Each of a kind comes once before any comes again.
    constexpr std::uint64_t forEffects = 0x656666656374;
    Random random(seed ^ forEffects);
    const auto take = [&random](std::vector<std::string> &left, const std::vector<std::string> &all) {
        if (left.empty())
            left = all;
        const auto chosen = left.begin() + random.below(static_cast<int>(left.size()));
        const std::string name = *chosen;
        left.erase(chosen);
        return name;
    };
    // Most photographs are shown as they are.
    constexpr std::size_t rarity = 3;
    const std::vector<std::string> plainScenes = namesOf(Effect::Kind::scene, Use::often);
    const std::vector<std::string> otherScenes = namesOf(Effect::Kind::scene, Use::inTurn);
    const std::vector<std::string> transitions = namesOf(Effect::Kind::transition, Use::inTurn);
    std::vector<std::string> plainLeft;
    std::vector<std::string> othersLeft;
    std::vector<std::string> transitionsLeft;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < photoCount; ++i)
        names.push_back(i % rarity == rarity - 1 ? take(othersLeft, otherScenes) : take(plainLeft, plainScenes));
    for (std::size_t i = 1; i < photoCount; ++i)
        names.push_back(take(transitionsLeft, transitions));
    names.push_back(namesOf(Effect::Kind::ending, Use::inTurn).front());
    return names;
}

Show::Show(const ShowSettings &chosen)
    : settings(chosen), shelf(std::make_unique<PhotoShelf>(photoFrame(), chosen.mostMegapixels)) {
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
    if (!settings.title.empty())
        titleScene = effectNamed("title");
    layOutShots();
    for (const auto &[name, effect] : effects) {
        effect->write(settings.title, settings.subtitle);
        effect->prepare(settings.width, settings.height);
    }
    for (const std::string &caption : settings.captions)
        captions.push_back(captionFor(caption, settings.width, settings.height));
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

void Show::drawCaption(const Surface &out, int shot, int passed, int left) const {
    const std::size_t photo = at(shot) % settings.photos.size();
    if (photo >= captions.size() || captions[photo].width() == 0)
        return;
    const double fading = std::max(0.4 * settings.rate.perSecond(), 1.0);
    layCaption(out, captions[photo], easeInOut(clampUnit(std::min(passed, left) / fading)));
}

const ShownPhoto &Show::photoOf(int shot) const {
    return settings.photos[at(shot) % settings.photos.size()];
}

int Show::overlapBefore(int shot) const {
    if (transitions.empty() || shot == 0 || shot == shotCount())
        return 0;
    return std::min({framesIn(transitionSeconds, settings.rate) / 2, framesOf(shot - 1) / 5, framesOf(shot) / 5});
}

Shot Show::shotAt(int index, int frame, std::shared_ptr<const Photo> &photo) const {
    const int first = firstFrames[at(index)] - overlapBefore(index);
    const int end = firstFrames[at(index + 1)] + overlapBefore(index + 1);
    photo = shelf->photo(photoOf(index).path);
    // In and out in turn, and the other way when a photograph comes round again.
    const bool closesIn = (at(index) + at(index) / settings.photos.size()) % 2 == 0;
    const std::uint64_t seed = seedOf(settings.seed, index);
    return {.photo = photo->picture,
            .camera = cameraOver(*photo, photoFrame(), seed, closesIn),
            .scene = index == 0 && titleScene ? titleScene : inTurn(scenes, index),
            .seed = seed,
            .progress = static_cast<double>(frame - first) / (end - first),
            .seconds = settings.rate.secondsOf(end - first)};
}

std::size_t Show::memoryToDraw() const {
    constexpr std::size_t fixed = 16 << 20;
    constexpr std::size_t planes = 20;           // of the frame's size, photographs that are ready included
    constexpr std::size_t copiesToReadAFile = 5; // such as its bytes, its rows, what is turned
    std::size_t largest = 0;
    for (const ShownPhoto &photo : settings.photos)
        largest = std::max(largest, photo.bytes);
    return fixed + planes * Canvas(settings.width, settings.height).bytes() + copiesToReadAFile * largest;
}

int Show::shotOf(int frame) const {
    return static_cast<int>(std::upper_bound(firstFrames.begin(), firstFrames.end(), frame) - firstFrames.begin()) - 1;
}

Drawing Show::render(Stage &stage, int frame) const {
    const int index = shotOf(frame);
    const int passed = frame - firstFrames[at(index)];
    const int left = firstFrames[at(index + 1)] - frame;
    const int overlap = overlapBefore(index);
    const int overlapBehind = overlapBefore(index + 1);

    std::shared_ptr<const Photo> first;
    std::shared_ptr<const Photo> second;
    const Effect *effect = nullptr;
    Moment moment = {};
    if (left <= overlapBehind) {
        effect = inTurn(transitions, index);
        moment = {shotAt(index, frame, first), shotAt(index + 1, frame, second),
                  (overlapBehind - left + 0.5) / (2 * overlapBehind)};
    } else if (passed < overlap) {
        effect = inTurn(transitions, index - 1);
        moment = {shotAt(index - 1, frame, first), shotAt(index, frame, second),
                  (overlap + passed + 0.5) / (2 * overlap)};
    } else if (index + 1 == shotCount() && left <= endingFrames) {
        effect = ending;
        moment = {shotAt(index, frame, first), shotAt(index, frame, second), 1 - (left - 1.0) / endingFrames};
    } else {
        moment.a = shotAt(index, frame, first);
        moment.b = moment.a;
        moment.t = moment.a.progress;
        effect = moment.a.scene;
    }
    takeCalls(); // those that made the photographs ready
    const auto startOnTheWall = std::chrono::steady_clock::now();
    const bool leadsOn = left <= overlapBehind || passed < overlap;
    const double start = threadSeconds();
    stage.beginFrame();
    effect->render(stage, stage.frame(), moment);
    drawCaption(stage.frame(), index, passed - overlap, left - std::max(overlapBehind, endingOf(index)));
    stage.endFrame();
    Drawing drawn = {effect, threadSeconds() - start, leadsOn && passed < overlap ? index - 1 : index, leadsOn,
                     takeCalls()};
    const std::chrono::duration<double> onTheWall = std::chrono::steady_clock::now() - startOnTheWall;
    for (CallSum &call : drawn.calls)
        call.seconds *= std::min(drawn.seconds / onTheWall.count(), 1.0);
    return drawn;
}

const std::string &Show::nameOf(const Effect *effect) const {
    return std::find_if(effects.begin(), effects.end(),
                        [effect](const auto &one) { return one.second.get() == effect; })
        ->first;
}

} // namespace show
