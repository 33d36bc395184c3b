/// \file
/// How far the rendering has come, on standard error.
#ifndef QMUR_SHOW_PROGRESS_H
#define QMUR_SHOW_PROGRESS_H

#include <chrono>

namespace show {

/// A bar with frame rate and time left on a terminal; a line at each quarter elsewhere.
class Progress {
public:
    explicit Progress(int frameCount);
    /// Leaves the cursor on a line of its own.
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// One more frame is done.
    void advance();

private:
    using Clock = std::chrono::steady_clock;

    void drawBar(double seconds);
    void printLine(double seconds) const;

    int total;
    int done = 0;
    int quarters = 0;
    bool onTerminal;
    bool barDrawn = false;
    Clock::time_point start;
    Clock::time_point lastDrawn;
};

} // namespace show

#endif
