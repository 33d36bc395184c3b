#include "options.h"

#include "command_line.h"
#include "failure.h"
#include "input_file.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>
#include <thread>

namespace show {

namespace {

constexpr int smallestSide = 16;
constexpr int largestSide = 7680;
constexpr int highestRate = 240;
constexpr double longestSeconds = 600;
constexpr int mostThreads = 64;
constexpr int mostFrames = 999999999;
constexpr int mostMegapixels = 1000;

void readSize(const std::string &text, ShowSettings &settings) {
    const std::size_t cross = text.find_first_of("xX");
    const auto width = wholeNumber(std::string_view(text).substr(0, cross));
    const auto height =
        cross == std::string::npos ? std::nullopt : wholeNumber(std::string_view(text).substr(cross + 1));
    if (!width || !height)
        throw Failure("--size " + printable(text) + " is no size; write it as WIDTHxHEIGHT, such as 1280x720");
    for (const long long side : {*width, *height})
        if (side < smallestSide || side > largestSide)
            throw Failure("--size " + text + " is out of range; each side is from " + std::to_string(smallestSide) +
                          " to " + std::to_string(largestSide) + " pixels");
    settings.width = static_cast<int>(*width);
    settings.height = static_cast<int>(*height);
}

int readWhole(const std::string &option, const std::string &text, int least, int greatest) {
    const auto value = wholeNumber(text);
    if (!value)
        throw Failure(option + " " + printable(text) + " is no whole number");
    if (*value < least || *value > greatest)
        throw Failure(option + " " + text + " is out of range; it is from " + std::to_string(least) + " to " +
                      std::to_string(greatest));
    return static_cast<int>(*value);
}

/// Whole, a fraction such as 30000/1001, or decimal; the decimals that stand for such fractions are taken for them.
FrameRate readRate(const std::string &text) {
    constexpr long long largestPart = 1000000;
    const std::size_t stroke = text.find('/');
    auto numerator = wholeNumber(std::string_view(text).substr(0, stroke));
    auto denominator = stroke == std::string::npos ? 1 : wholeNumber(std::string_view(text).substr(stroke + 1));
    if (const auto decimal = decimalNumber(text); !numerator && decimal && std::abs(*decimal) <= 2 * highestRate) {
        constexpr double thousandth = 0.001;
        numerator = std::llround(*decimal / thousandth);
        denominator = 1000;
        for (const long long tens : {24, 30, 48, 60, 120})
            if (std::abs(*decimal - static_cast<double>(tens) * 1000 / 1001) < 5 * thousandth) {
                numerator = tens * 1000;
                denominator = 1001;
            }
    }
    if (!numerator || !denominator || std::abs(*numerator) > largestPart || std::abs(*denominator) > largestPart)
        throw Failure("--fps " + printable(text) + " is no rate; it is a number, or a fraction such as 30000/1001");
    if (*denominator < 1 || *numerator < *denominator || *numerator > highestRate * *denominator)
        throw Failure("--fps " + text + " is out of range; it is from 1 to " + std::to_string(highestRate));
    const long long divisor = std::gcd(*numerator, *denominator);
    return {static_cast<int>(*numerator / divisor), static_cast<int>(*denominator / divisor)};
}

double readSeconds(const std::string &text) {
    const auto value = decimalNumber(text);
    if (!value)
        throw Failure("--seconds " + printable(text) + " is no number of seconds");
    if (*value <= 0 || *value > longestSeconds)
        throw Failure("--seconds " + text + " is out of range; a photograph stands for more than 0 and up to 600");
    return *value;
}

std::uint64_t readSeed(const std::string &text) {
    constexpr std::size_t mostDigits = 18;
    const auto value = wholeNumber(text);
    if (!value || *value < 0 || text.size() > mostDigits)
        throw Failure("--seed " + printable(text) + " is no seed; it is a whole number of up to 18 digits");
    return static_cast<std::uint64_t>(*value);
}

Fit readFit(const std::string &text) {
    if (text == "auto")
        return Fit::automatic;
    if (text == "cover")
        return Fit::cover;
    if (text == "contain")
        return Fit::contain;
    throw Failure("--fit " + printable(text) + " is none of cover, contain and auto");
}

std::vector<std::string> readCaptions(const std::filesystem::path &path) {
    constexpr std::size_t longest = 1 << 24;
    std::vector<unsigned char> bytes;
    try {
        InputFile file(path);
        if (file.size() > longest)
            throw Failure("it is too long for captions");
        file.read(bytes, static_cast<std::size_t>(file.size()));
    } catch (const Failure &failure) {
        throw Failure("cannot read " + quoted(path) + ": " + failure.what());
    }
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    std::vector<std::string> captions;
    for (std::string line; std::getline(text, line);) {
        if (captions.empty() && line.starts_with("\xEF\xBB\xBF")) // as some editors begin files
            line.erase(0, 3);
        if (line.ends_with('\r'))
            line.pop_back();
        captions.push_back(line);
    }
    return captions;
}

void readEffects(std::string_view text, std::vector<std::string> &effects) {
    for (;;) {
        const std::string_view name = text.substr(0, text.find(','));
        effects.emplace_back(name);
        if (name.size() == text.size())
            return;
        text.remove_prefix(name.size() + 1);
    }
}

constexpr const char *introduction = "Makes a moving picture of photographs, every frame drawn by the q_Mur library.\n"
                                     "\n"
                                     "usage: qmur-show [PHOTO or FOLDER]... -o FILE [OPTION]...\n"
                                     "       qmur-show [PHOTO or FOLDER]... --play [OPTION]...\n"
                                     "\n";
constexpr const char *conclusion = "\n"
                                   "Without photographs, the bundled ones are shown. Those of a folder stand in\n"
                                   "the order in which they were taken; those that cannot be read are left out and\n"
                                   "named. Photographs come round again until every effect that was chosen has had\n"
                                   "its turn. The same seed gives the same pictures.\n"
                                   "\n"
                                   "A playlist is a text with a line for each photograph: its seconds, or - for\n"
                                   "those of --seconds, and its name, which counts from the playlist's folder.\n"
                                   "Lines that begin with # are for people.\n";

} // namespace

Options parseOptions(const std::vector<std::string> &arguments) {
    Options options;
    options.threads = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, mostThreads);
    bool wantsHelp = false;
    bool wantsVersion = false;
    ShowSettings &settings = options.show;

    CommandLine line;
    line.option(
            "output", "FILE",
            "File to write; may be given several times. By its name: .mp4, .webm, .gif or, without any loss, .mkv "
            "a video, .png with a number such as %04d in it one picture for each frame, any other .png a contact sheet",
            [&](const std::string &value) { options.outputs.push_back(pathOf(value)); })
        .letter('o')
        .repeatable();
    line.option("size", "WxH", "Size of the frames in pixels [1280x720]",
                [&](const std::string &value) { readSize(value, settings); });
    line.option("fps", "N", "Frames per second, also as a fraction such as 30000/1001 [30]",
                [&](const std::string &value) { settings.rate = readRate(value); });
    line.option("seconds", "N",
                "Seconds for each photograph, or \"music\" to divide the length of the music among them [4.5]",
                [&](const std::string &value) {
                    options.lastsAsMusic = value == "music";
                    if (!options.lastsAsMusic)
                        settings.secondsPerPhoto = readSeconds(value);
                });
    line.option("playlist", "FILE", "Photographs, each with its own seconds, from a text; see below",
                [&](const std::string &value) { options.playlists.push_back(pathOf(value)); })
        .repeatable();
    line.option("music", "FILE", "Music for the film. It begins anew as often as the film lasts, and fades out with it",
                [&](const std::string &value) { options.music = pathOf(value); });
    line.option("effects", "A,B,...", "Effects in their order, of those that --list names",
                [&](const std::string &value) { readEffects(value, settings.effects); })
        .repeatable();
    line.option(
        "fit", "HOW",
        "cover fills the frame with each photograph, contain shows all of it, auto covers unless too much would "
        "be cut off [auto]",
        [&](const std::string &value) { settings.fit = readFit(value); });
    line.option("title", "TEXT", "A title on the first photograph",
                [&](const std::string &value) { settings.title = value; });
    line.option("subtitle", "TEXT", "A line below the title",
                [&](const std::string &value) { settings.subtitle = value; });
    line.option("caption", "FILE", "A text with a line for each photograph, shown on it; an empty one for none",
                [&](const std::string &value) { settings.captions = readCaptions(pathOf(value)); });
    line.flag("comments",
              "Show as caption, where --caption has none, what somebody wrote into a photograph's Exif or IPTC",
              [&] { options.showsComments = true; });
    line.option("seed", "N", "What is left to chance depends on this number [1]",
                [&](const std::string &value) { settings.seed = readSeed(value); });
    line.option("first", "FRAME", "First frame to render; they count from 0",
                [&](const std::string &value) { options.first = readWhole("--first", value, 0, mostFrames); });
    line.option("last", "FRAME", "Last frame to render",
                [&](const std::string &value) { options.last = readWhole("--last", value, 0, mostFrames); });
    line.option("threads", "N", "Threads that draw [" + std::to_string(options.threads) + "]",
                [&](const std::string &value) { options.threads = readWhole("--threads", value, 1, mostThreads); });
    line.flag("skip-bad", "Leave out photographs that cannot be read, and say which", [&] { options.skipsBad = true; });
    line.option("max-megapixels", "N",
                "Refuse photographs of more million pixels [" + std::to_string(usualMegapixels) + "]",
                [&](const std::string &value) {
                    settings.mostMegapixels = readWhole("--max-megapixels", value, 1, mostMegapixels);
                });
    line.flag("timings", "Print the milliseconds that a frame of each effect takes a thread to draw; needs no -o",
              [&] { options.printsTimings = true; });
    line.flag("profile",
              "Print the milliseconds that frames, shots and the library's functions take a thread; needs no -o",
              [&] { options.profiles = true; });
    line.flag("play",
              "Show it in a window; needs no -o. Space pauses, left and right go by 5 seconds, up and down by "
              "photographs, F fills the screen, S saves the frame as a picture, Q ends",
              [&] { options.plays = true; });
    line.flag("list", "Print the effects and end", [&] { options.listEffects = true; });
    line.flag("version", "Print the version and end", [&] { wantsVersion = true; });
    line.flag("help", "Print this and end", [&] { wantsHelp = true; }).letter('h');

    line.parse(arguments, [&](const std::string &argument) {
        for (const std::string &name : matchingFiles(argument))
            options.photos.push_back({pathOf(name)});
    });
    if (wantsHelp)
        options.answer = introduction + line.explanation() + conclusion;
    else if (wantsVersion)
        options.answer = "qmur-show " QMUR_SHOW_VERSION "\n";
    if (!options.answer.empty() || options.listEffects)
        return options;

    if (options.first && options.last && *options.first > *options.last)
        throw Failure("--first " + std::to_string(*options.first) + " is behind --last " +
                      std::to_string(*options.last));
    if (settings.title.empty() && !settings.subtitle.empty())
        throw Failure("--subtitle needs --title");
    if (options.lastsAsMusic && options.music.empty())
        throw Failure("--seconds music needs --music");
    if (options.plays && !options.outputs.empty())
        throw Failure("--play shows the film and writes none; leave out -o, or --play");
    if (options.plays && !options.music.empty() && !options.lastsAsMusic)
        throw Failure("--play plays no music; --music makes sense with it for --seconds music alone");
    if (options.outputs.empty() && !options.printsTimings && !options.profiles && !options.plays)
        throw Failure("nothing to write; name a file, such as -o show.mp4");
    return options;
}

} // namespace show
