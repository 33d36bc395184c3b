#include "timings.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <vector>

namespace show {

double threadSeconds() {
#if defined(CLOCK_THREAD_CPUTIME_ID) && !defined(_WIN32) // Windows counts a thread's time in steps of 15 ms.
    timespec time = {};
    if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) == 0)
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
#endif
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void Timings::add(const std::string &effect, double seconds) {
    const std::lock_guard lock(mutex);
    Sum &sum = sums[effect];
    ++sum.frames;
    sum.seconds += seconds;
    sum.slowest = std::max(sum.slowest, seconds);
}

std::string Timings::line(const std::string &name, const Sum &sum) {
    std::array<char, 128> line;
    std::snprintf(line.data(), line.size(), "%-12s %8d %10.2f %10.2f\n", name.c_str(), sum.frames,
                  1000 * sum.seconds / sum.frames, 1000 * sum.slowest);
    return line.data();
}

std::string Timings::table() const {
    const std::lock_guard lock(mutex);
    std::vector<std::pair<std::string, Sum>> rows(sums.begin(), sums.end());
    std::stable_sort(rows.begin(), rows.end(), [](const auto &a, const auto &b) {
        return a.second.seconds / a.second.frames > b.second.seconds / b.second.frames;
    });
    std::string text = "effect         frames   ms/frame    slowest\n";
    Sum all;
    for (const auto &[name, sum] : rows) {
        text += line(name, sum);
        all.frames += sum.frames;
        all.seconds += sum.seconds;
        all.slowest = std::max(all.slowest, sum.slowest);
    }
    return text + line("all", all);
}

} // namespace show
