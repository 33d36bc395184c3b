/// \file
/// How far a long piece of work has come, on standard error.
#ifndef QMUR_SHOW_PROGRESS_H
#define QMUR_SHOW_PROGRESS_H

#include <chrono>
#include <string>

namespace show {

/// A bar with the time left on a terminal, with the rate as well where there is room; a line at each quarter elsewhere.
class Progress {
public:
    /// `what` is one of those that are counted, such as "frame".
    Progress(std::string what, int count);
    /// Leaves the cursor on a line of its own.
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// One more is done.
    void advance();
    /// Says nothing of work that is done before so many seconds have passed.
    void waitBeforeSaying(double seconds) { silence = seconds; }

private:
    using Clock = std::chrono::steady_clock;

    void drawBar(double seconds);
    void printLine(double seconds) const;

    std::string name;
    int total;
    int done = 0;
    int quarters = 0;
    int columns; ///< of the terminal; 0 where there is none
    int drawnLength = 0;
    double silence = 0;
    Clock::time_point start;
    Clock::time_point lastDrawn;
};

} // namespace show

#endif
