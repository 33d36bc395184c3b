/// \file
/// qmur-show: photographs made into a moving picture, every frame drawn by the library.

#include "bundled_photos.h"
#include "command_line.h"
#include "failure.h"
#include "interruption.h"
#include "messages.h"
#include "options.h"
#include "profile.h"
#include "rendering.h"
#include "standard_files.h"
#include "text.h"
#include "timings.h"
#include "video.h"
#include "window/player.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <optional>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace show;

constexpr int failed = 2;

std::string effectList() {
    std::string list;
    for (const EffectInfo *effect : allEffects()) {
        std::array<char, 256> line;
        std::snprintf(line.data(), line.size(), "%-12s %-11s %s\n", effect->name, nameOf(effect->kind),
                      effect->description);
        list += line.data();
    }
    return list;
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

std::vector<ShownPhoto> namedPhotos(const Options &options, const char *programName) {
    std::vector<ShownPhoto> photos = options.photos;
    for (const auto &playlist : options.playlists)
        for (ShownPhoto &photo : readPlaylist(playlist))
            photos.push_back(std::move(photo));
    if (photos.empty())
        for (auto &path : bundledPhotos(programName))
            photos.push_back({std::move(path)});
    return photos;
}

void captionByComments(ShowSettings &settings) {
    settings.captions.resize(std::max(settings.captions.size(), settings.photos.size()));
    for (std::size_t i = 0; i < settings.photos.size(); ++i)
        if (settings.captions[i].empty())
            settings.captions[i] = settings.photos[i].comment;
}

void warnIfLettersAreMissing(const ShowSettings &settings) {
    if (settings.title.empty() && std::all_of(settings.captions.begin(), settings.captions.end(),
                                              [](const std::string &caption) { return caption.empty(); }))
        return;
    Canvas paper(16, 16);
    tagRECT whole = paper.rect();
    std::array<char, 2> letter = {'q', 0};
    std::array<char, 1> anyFace = {0};
    if (!iTextOut(paper.surface().pixels, &whole, paper.surface().pitch, letter.data(), 0xFFFFFF, 0, 0, 12,
                  anyFace.data()))
        say("there are no fonts: title and captions stay without letters");
}

/// Divides the music's length among the photographs, less what some of them ask for.
void lastAsMusic(ShowSettings &settings, double musicSeconds) {
    const Show show(settings);
    double fixed = 0;
    int free = 0;
    for (int shot = 0; shot < show.shotCount(); ++shot) {
        const auto &seconds = settings.photos[static_cast<std::size_t>(shot) % settings.photos.size()].seconds;
        fixed += seconds.value_or(0);
        free += seconds ? 0 : 1;
    }
    if (free == 0 || musicSeconds - fixed < 0.5 * free)
        throw Failure("the music is too short for the photographs");
    settings.secondsPerPhoto = (musicSeconds - fixed) / free;
}

void run(Options options, const char *programName) {
    ShowSettings &settings = options.show;
    for (const std::string &name : settings.effects)
        if (!findEffect(name))
            throw Failure("there is no effect '" + printable(name) + "'; --list names them all");
    std::optional<Player> player;
    if (options.plays)
        player.emplace(settings.width, settings.height);
    const std::vector<ShownPhoto> named = namedPhotos(options, programName);
    const VideoFormat format = {settings.width, settings.height, settings.rate, options.music};
    {
        const SignalsBlocked blocked; // so that nothing is left of the attempts to write
        for (const auto &target : options.outputs)
            checkTarget(target, format);
    }
    const double musicSeconds = options.music.empty() ? 0 : secondsOfMusic(options.music);
    ReadPhotos read = readablePhotos(named, {options.threads, settings.mostMegapixels, options.skipsBad});
    settings.photos = std::move(read.photos);
    if (options.showsComments)
        captionByComments(settings);
    if (settings.effects.empty())
        settings.effects = effectsFor(settings.photos.size(), settings.seed);

    catchSignals();
    Init_qMur_GlobalData(nullptr, nullptr);
    if (options.lastsAsMusic)
        lastAsMusic(settings, musicSeconds);
    const Show show(settings);
    const FrameRange range = framesToRender(options, show.frameCount());
    Paths inputs = options.playlists;
    if (!options.music.empty())
        inputs.push_back(options.music);
    for (const ShownPhoto &photo : settings.photos)
        inputs.push_back(photo.path);
    checkDistinct(options.outputs, inputs, range);
    warnIfLettersAreMissing(settings);

    Timings timings;
    Profile profile;
    Notice notice;
    if (options.printsTimings || options.profiles)
        notice = [&](int frame, const Drawing &drawn) {
            timings.add(show.nameOf(drawn.effect), drawn.seconds);
            profile.add(frame, show.nameOf(drawn.effect), drawn);
        };
    if (options.profiles)
        timeCalls();
    if (player) {
        player->play(show, range, settings.rate, options.threads, notice);
    } else {
        std::vector<std::unique_ptr<Output>> outputs;
        for (const auto &target : options.outputs)
            outputs.push_back(openOutput(target, format, range));
        renderShow(show, settings.width, settings.height, range, outputs, options.threads, notice);
    }
    if (read.leftOut > 0)
        say("left out, since " + std::string(read.leftOut == 1 ? "it" : "they") +
            " cannot be read: " + std::to_string(read.leftOut) + (read.leftOut == 1 ? " photograph" : " photographs"));
    if (options.printsTimings)
        print(timings.table());
    if (options.profiles)
        print(profile.tables(options.threads));
}

} // namespace

int main(int argumentCount, char **arguments) {
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1); // a thread with an arena of its own takes 64 MB of addresses with it
#endif
    try {
        openStandardFiles();
        const Options options = parseOptions(programArguments(argumentCount, arguments));
        if (!options.answer.empty())
            print(options.answer);
        else if (options.listEffects)
            print(effectList());
        else
            run(options, argumentCount > 0 ? arguments[0] : "");
        return 0;
    } catch (const Interrupted &interruption) {
        say("interrupted");
        return 128 + interruption.signal;
    } catch (const std::bad_alloc &) {
        std::fputs("qmur-show: there is not enough memory for this\n", stderr);
    } catch (const std::exception &error) {
        say(error.what());
    }
    return failed;
}
