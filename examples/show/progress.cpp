#include "progress.h"

#include <cstdio>
#include <string>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace show {

namespace {

bool errorsGoToTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

std::string minutesAndSeconds(double seconds) {
    const int whole = static_cast<int>(seconds + 0.5);
    const std::string rest = std::to_string(whole % 60);
    return std::to_string(whole / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

} // namespace

Progress::Progress(int frameCount)
    : total(frameCount), onTerminal(errorsGoToTerminal()), start(Clock::now()), lastDrawn(start) {}

Progress::~Progress() {
    if (barDrawn)
        std::fputc('\n', stderr);
}

void Progress::advance() {
    ++done;
    const Clock::time_point now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - start).count();
    if (onTerminal) {
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
    constexpr int length = 30;
    const auto filled = static_cast<std::size_t>(1LL * length * done / total);
    const std::string bar = std::string(filled, '#') + std::string(length - filled, '.');
    const double rate = seconds > 0 ? done / seconds : 0;
    const double left = done > 0 ? seconds * (total - done) / done : 0;
    std::fprintf(stderr, "\r[%s] %3d%%  %d/%d  %.1f fps  %s left \x1B[K", bar.c_str(),
                 static_cast<int>(100LL * done / total), done, total, rate, minutesAndSeconds(left).c_str());
    std::fflush(stderr);
    barDrawn = true;
}

void Progress::printLine(double seconds) const {
    std::fprintf(stderr, "frame %d of %d, %.1f fps\n", done, total, seconds > 0 ? done / seconds : 0.0);
}

} // namespace show
