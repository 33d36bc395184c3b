#include "profile.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

namespace show {

namespace {

constexpr const char *ownWork = "the show itself";

[[gnu::format(printf, 1, 2)]] std::string formatted(const char *format, ...) {
    std::array<char, 256> text;
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(text.data(), text.size(), format, values);
    va_end(values);
    return text.data();
}

/// The functions, and what is left for the show, with what took most before.
std::vector<std::pair<std::string, CallSum>> byTime(const std::map<std::string, CallSum> &calls, double seconds) {
    std::vector<std::pair<std::string, CallSum>> rows(calls.begin(), calls.end());
    double rest = seconds;
    for (const auto &[name, sum] : rows)
        rest -= sum.seconds;
    rows.emplace_back(ownWork, CallSum{ownWork, 0, std::max(rest, 0.0)});
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto &a, const auto &b) { return a.second.seconds > b.second.seconds; });
    return rows;
}

} // namespace

void Profile::Sum::add(int frame, const Drawing &drawn) {
    firstFrame = frames == 0 ? frame : std::min(firstFrame, frame);
    lastFrame = frames == 0 ? frame : std::max(lastFrame, frame);
    ++frames;
    seconds += drawn.seconds;
    if (drawn.seconds > slowest) {
        slowest = drawn.seconds;
        slowestFrame = frame;
    }
    for (const CallSum &call : drawn.calls) {
        CallSum &sum = calls[call.function];
        sum.function = call.function;
        sum.calls += call.calls;
        sum.seconds += call.seconds;
    }
}

void Profile::add(int frame, const std::string &effect, const Drawing &drawn) {
    const std::lock_guard lock(mutex);
    frameSeconds.push_back(drawn.seconds);
    all.add(frame, drawn);
    parts[{drawn.shot, drawn.leadsOn, effect}].add(frame, drawn);
}

std::string Profile::frameTable() const {
    constexpr double firstBound = 0.001;
    constexpr int longestBar = 40;
    std::vector<double> sorted = frameSeconds;
    std::sort(sorted.begin(), sorted.end());
    const auto below = [&](std::size_t hundredths) { return 1000 * sorted[(sorted.size() - 1) * hundredths / 100]; };
    std::string text =
        formatted("%d frames: %.2f ms each; half take up to %.2f, 95 in 100 up to %.2f, the slowest, %d, %.2f\n\n",
                  all.frames, 1000 * all.seconds / all.frames, below(50), below(95), all.slowestFrame,
                  1000 * all.slowest) +
        "      ms   frames\n";
    std::vector<int> counts;
    for (const double seconds : sorted) {
        std::size_t row = 0;
        for (double bound = firstBound; seconds >= bound; bound *= 2)
            ++row;
        counts.resize(std::max(counts.size(), row + 1));
        ++counts[row];
    }
    const int most = *std::max_element(counts.begin(), counts.end());
    int bound = 1;
    for (const int count : counts) {
        std::string line = formatted("   < %3d %8d  ", bound, count) +
                           std::string(static_cast<std::size_t>((count * longestBar + most - 1) / most), '#');
        while (line.back() == ' ')
            line.pop_back();
        text += line + '\n';
        bound *= 2;
    }
    return text;
}

std::string Profile::partTable(int threads) const {
    constexpr std::size_t functionsNamed = 2;
    std::string text = "shot      frames          effect        ms/frame   slowest  frames/s  mostly\n";
    std::vector<std::pair<Part, Sum>> inOrder(parts.begin(), parts.end());
    std::sort(inOrder.begin(), inOrder.end(),
              [](const auto &a, const auto &b) { return a.second.firstFrame < b.second.firstFrame; });
    for (const auto &[part, sum] : inOrder) {
        const std::string shots =
            std::to_string(part.shot + 1) + (part.leadsOn ? " to " + std::to_string(part.shot + 2) : "");
        const std::string frames = std::to_string(sum.firstFrame) + " to " + std::to_string(sum.lastFrame);
        text += formatted("%-9s %-15s %-12s %9.2f %9.2f %9.0f  ", shots.c_str(), frames.c_str(), part.effect.c_str(),
                          1000 * sum.seconds / sum.frames, 1000 * sum.slowest, threads * sum.frames / sum.seconds);
        std::string mostly;
        if (const auto rows = byTime(sum.calls, sum.seconds); !sum.calls.empty())
            for (std::size_t i = 0; i < std::min(rows.size(), functionsNamed); ++i)
                mostly += (i == 0 ? "" : ", ") + rows[i].first +
                          formatted(" %.0f %%", 100 * rows[i].second.seconds / sum.seconds);
        text += (mostly.empty() ? "?" : mostly) + '\n';
    }
    return text;
}

std::string Profile::functionTable() const {
    constexpr double leastShare = 0.0005;
    std::string text = "function                              calls/frame  us/call  ms/frame  share\n";
    const auto line = [&](const std::string &name, const CallSum &sum) {
        const bool isCalled = sum.calls > 0;
        text += formatted("%-37s", name.c_str()) +
                (isCalled ? formatted(" %11.2f %8.1f", 1.0 * sum.calls / all.frames, 1e6 * sum.seconds / sum.calls)
                          : formatted(" %20s", "")) +
                formatted(" %9.3f %4.1f %%\n", 1000 * sum.seconds / all.frames, 100 * sum.seconds / all.seconds);
    };
    CallSum others = {};
    int othersCount = 0;
    for (const auto &[name, sum] : byTime(all.calls, all.seconds))
        if (sum.calls == 0 || sum.seconds >= leastShare * all.seconds) {
            line(name, sum);
        } else {
            others.calls += sum.calls;
            others.seconds += sum.seconds;
            ++othersCount;
        }
    if (othersCount > 0)
        line(std::to_string(othersCount) + (othersCount == 1 ? " other" : " others"), others);
    return text;
}

std::string Profile::tables(int threads) const {
    const std::lock_guard lock(mutex);
    if (all.frames == 0)
        return "";
    return frameTable() + '\n' + partTable(threads) + '\n' +
           (callsCanBeTimed() ? functionTable() : "This build cannot tell how long the library's functions take.\n");
}

} // namespace show
