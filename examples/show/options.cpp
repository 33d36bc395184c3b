#include "options.h"

#include "failure.h"

#include <CLI.hpp>

#include <algorithm>
#include <regex>
#include <thread>

namespace show {

namespace {

constexpr int smallestSide = 16;
constexpr int largestSide = 7680;
constexpr int highestRate = 240;
constexpr double longestSeconds = 600;
constexpr int mostThreads = 64;

void readSize(const std::string &text, ShowSettings &settings) {
    static const std::regex twoNumbers("(-?[0-9]{1,9})[xX](-?[0-9]{1,9})");
    std::smatch sides;
    if (!std::regex_match(text, sides, twoNumbers))
        throw Failure("--size " + text + " is no size; write it as WIDTHxHEIGHT, such as 1280x720");
    settings.width = std::stoi(sides[1]);
    settings.height = std::stoi(sides[2]);
    for (const int side : {settings.width, settings.height})
        if (side < smallestSide || side > largestSide)
            throw Failure("--size " + text + " is out of range; each side is from " + std::to_string(smallestSide) +
                          " to " + std::to_string(largestSide) + " pixels");
}

/// Whole numbers are read here, since an option's own conversion says too little about what is wrong.
int readWhole(const char *option, const std::string &text, int least, int greatest) {
    static const std::regex wholeNumber("-?[0-9]{1,9}");
    if (!std::regex_match(text, wholeNumber))
        throw Failure(std::string(option) + " " + text + " is no whole number");
    const int value = std::stoi(text);
    if (value < least || value > greatest)
        throw Failure(std::string(option) + " " + text + " is out of range; it is from " + std::to_string(least) +
                      " to " + std::to_string(greatest));
    return value;
}

double readSeconds(const std::string &text) {
    static const std::regex decimalNumber("-?[0-9]{1,9}(\\.[0-9]{1,9})?");
    if (!std::regex_match(text, decimalNumber))
        throw Failure("--seconds " + text + " is no number of seconds");
    const double value = std::stod(text);
    if (value <= 0 || value > longestSeconds)
        throw Failure("--seconds " + text + " is out of range; a photograph stands for more than 0 and up to 600");
    return value;
}

std::uint64_t readSeed(const std::string &text) {
    static const std::regex wholeNumber("[0-9]{1,18}");
    if (!std::regex_match(text, wholeNumber))
        throw Failure("--seed " + text + " is no seed; it is a whole number of up to 18 digits");
    return std::stoull(text);
}

std::string firstLine(const std::string &text) {
    return text.substr(0, text.find('\n'));
}

} // namespace

Options parseOptions(int argumentCount, char **arguments) {
    Options options;
    std::string size = "1280x720";
    std::string rate = "30";
    std::string seconds = "4.5";
    std::string seed = "1";
    std::string first;
    std::string last;
    std::string threads =
        std::to_string(std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, mostThreads));

    CLI::App app("Makes a moving picture of photographs, every frame drawn by the q_Mur library.", "qmur-show");
    app.allow_windows_style_options(false); // they would take an absolute path for an option
    app.footer(
        "Photographs are JPEG, PNG or BMP files; without any, the bundled ones are shown. Each stands for the same\n"
        "time, and they come round again until every effect that was chosen has had its turn. The same seed\n"
        "gives the same pictures.");
    app.set_version_flag("--version", "qmur-show " QMUR_SHOW_VERSION, "Print the version and end");
    app.get_help_ptr()->description("Print this and end");
    app.add_option("photo", options.show.photos, "Photographs, in their order")->type_name("");
    app.add_option("-o,--output", options.outputs,
                   "File to write; may be given several times. By its name: .mp4, .webm or .gif a video, .png with a\n"
                   "number such as %04d in it one picture for each frame, any other .png a contact sheet")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    const auto addText = [&app](const char *name, std::string &text, const char *type, const char *description) {
        app.add_option(name, text, description)->type_name(type)->capture_default_str();
    };
    addText("--size", size, "WxH", "Size of the frames in pixels");
    addText("--fps", rate, "N", "Frames per second");
    addText("--seconds", seconds, "N", "Seconds for each photograph");
    app.add_option("--effects", options.show.effects, "Effects in their order, of those that --list names")
        ->type_name("A,B,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    addText("--seed", seed, "N", "What is left to chance depends on this number");
    addText("--first", first, "FRAME", "First frame to render; they count from 0");
    addText("--last", last, "FRAME", "Last frame to render");
    addText("--threads", threads, "N", "Threads that draw");
    app.add_flag("--list", options.listEffects, "Print the effects and end");

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForHelp &) {
        options.answer = app.help();
        return options;
    } catch (const CLI::CallForVersion &) {
        options.answer = app.version() + "\n";
        return options;
    } catch (const CLI::ParseError &error) {
        throw Failure(firstLine(error.what()));
    }
    if (options.listEffects)
        return options;

    constexpr int mostFrames = 999999999;
    readSize(size, options.show);
    options.show.framesPerSecond = readWhole("--fps", rate, 1, highestRate);
    options.show.secondsPerPhoto = readSeconds(seconds);
    options.show.seed = readSeed(seed);
    options.threads = readWhole("--threads", threads, 1, mostThreads);
    if (!first.empty())
        options.first = readWhole("--first", first, 0, mostFrames);
    if (!last.empty())
        options.last = readWhole("--last", last, 0, mostFrames);
    if (options.first && options.last && *options.first > *options.last)
        throw Failure("--first " + first + " is behind --last " + last);
    if (options.outputs.empty())
        throw Failure("nothing to write; name a file, such as -o show.mp4");
    return options;
}

} // namespace show
