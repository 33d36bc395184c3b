#include "progress.h"

#include "messages.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace show {

namespace {

std::string minutesAndSeconds(double seconds) {
    constexpr double longest = 359999; // what is farther away is not known anyhow
    const int whole = static_cast<int>(std::min(seconds, longest) + 0.5);
    const std::string rest = std::to_string(whole % 60);
    return std::to_string(whole / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

std::string rateOf(double perSecond) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.1f", perSecond);
    return text.data();
}

} // namespace

Progress::Progress(std::string what, int count)
    : name(std::move(what)), total(count), columns(terminalColumns()), start(Clock::now()), lastDrawn(start) {}

Progress::~Progress() {
    if (drawnLength > 0)
        std::fputc('\n', stderr);
}

void Progress::advance() {
    ++done;
    const Clock::time_point now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - start).count();
    if (seconds < silence)
        return;
    if (columns > 0) {
        if (done < total && now - lastDrawn < std::chrono::milliseconds(100))
            return;
        lastDrawn = now;
        drawBar(seconds);
    } else if (4LL * done / total > quarters) {
        quarters = static_cast<int>(4LL * done / total);
        printLine(seconds);
    }
}

void Progress::drawBar(double seconds) {
    constexpr int longest = 30;
    constexpr int shortest = 8;
    const double rate = seconds > 0 ? done / seconds : 0;
    const double left = seconds * (total - done) / done;
    const std::string percent = std::to_string(100LL * done / total) + '%';
    const std::string counted = std::to_string(done) + '/' + std::to_string(total);
    const std::string beginning = std::string(4 - std::min<std::size_t>(percent.size(), 4), ' ') + percent;
    const std::string time = "  " + minutesAndSeconds(left) + " left";
    const auto room = [this](const std::string &text) { // two brackets, a space, and the last column stays free
        return columns - static_cast<int>(text.size()) - 4;
    };
    std::string text = beginning + "  " + counted + "  " + rateOf(rate) + (name == "frame" ? " fps" : "/s") + time;
    if (room(text) < shortest)
        text = beginning + "  " + counted + time;
    if (room(text) < shortest)
        text = beginning;
    std::string bar;
    if (const int length = std::min(longest, room(text)); length > 0) {
        const auto filled = static_cast<std::size_t>(1LL * length * done / total);
        bar = '[' + std::string(filled, '#') + std::string(static_cast<std::size_t>(length) - filled, '.') + "] ";
    }
    text = bar + text;
    // What is left of a longer line is written over, which every terminal can.
    const int length = static_cast<int>(text.size());
    std::fprintf(stderr, "\r%s%*s", text.c_str(), std::max(drawnLength - length, 0), "");
    std::fflush(stderr);
    drawnLength = length;
}

void Progress::printLine(double seconds) const {
    std::fprintf(stderr, "%s %d of %d, %s %s\n", name.c_str(), done, total,
                 rateOf(seconds > 0 ? done / seconds : 0.0).c_str(), name == "frame" ? "fps" : "per second");
}

} // namespace show
