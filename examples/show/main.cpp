/// \file
/// qmur-show: photographs made into a moving picture, every frame drawn by the library.

#include "bundled_photos.h"
#include "failure.h"
#include "interruption.h"
#include "options.h"
#include "rendering.h"

#include <cstdio>
#include <exception>

namespace {

using namespace show;

constexpr int failed = 2;

void listEffects() {
    for (const EffectInfo &effect : allEffects())
        std::printf("%-12s %-11s %s\n", effect.name, nameOf(effect.kind), effect.description);
}

FrameRange framesToRender(const Options &options, int frameCount) {
    const int last = frameCount - 1;
    const FrameRange range = {options.first.value_or(0), options.last.value_or(last)};
    for (const auto &[name, frame] : {std::pair("--first", range.first), std::pair("--last", range.last)})
        if (frame > last)
            throw Failure(std::string(name) + " " + std::to_string(frame) +
                          " is out of range; the show has frames 0 to " + std::to_string(last));
    return range;
}

void run(Options options, const char *programName) {
    if (options.show.photos.empty())
        options.show.photos = bundledPhotos(programName);
    if (options.show.effects.empty())
        options.show.effects = defaultEffects();

    const ShowSettings &settings = options.show;
    const VideoFormat format = {settings.width, settings.height, settings.framesPerSecond};
    for (const auto &target : options.outputs)
        checkTarget(target, format);
    Init_qMur_GlobalData(nullptr, nullptr);
    const Show show(settings);
    const FrameRange range = framesToRender(options, show.frameCount());

    catchSignals();
    std::vector<std::unique_ptr<Output>> outputs;
    for (const auto &target : options.outputs)
        outputs.push_back(openOutput(target, format, range));
    renderShow(show, settings.width, settings.height, range, outputs, options.threads);
}

} // namespace

int main(int argumentCount, char **arguments) {
    try {
        const Options options = parseOptions(argumentCount, arguments);
        if (!options.answer.empty())
            std::fputs(options.answer.c_str(), stdout);
        else if (options.listEffects)
            listEffects();
        else
            run(options, arguments[0]);
        return 0;
    } catch (const Interrupted &interruption) {
        std::fprintf(stderr, "qmur-show: interrupted\n");
        return 128 + interruption.signal;
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "qmur-show: there is not enough memory for this\n");
    } catch (const std::exception &error) {
        std::fprintf(stderr, "qmur-show: %s\n", error.what());
    }
    return failed;
}
