/// \file
/// Frames that several threads draw ahead of a clock that waits for nobody.
#ifndef QMUR_SHOW_FRAMES_AHEAD_H
#define QMUR_SHOW_FRAMES_AHEAD_H

#include "../output.h"
#include "../rendering.h"
#include "../threads.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <vector>

namespace show {

/// A frame that was drawn, its edges repeated into its margin; at first none.
struct DrawnFrame {
    int number = -1;
    Canvas picture;

    bool isThere() const { return number >= 0; }
};

/// What cannot be drawn in time is left out. The clock stands until the first frame is there, and the one after a jump.
class FramesAhead {
public:
    FramesAhead(const Show &show, int width, int height, FrameRange range, FrameRate rate, int threads, Notice notice);
    ~FramesAhead();
    FramesAhead(const FramesAhead &) = delete;
    FramesAhead &operator=(const FramesAhead &) = delete;

    void goTo(int frame);
    void pause(bool stands);
    bool isPaused() const { return paused; }

    /// Puts the latest of the frames that are due in the place of one taken before, if there is a further one. Throws
    /// what stopped the drawing.
    bool takeNext(DrawnFrame &frame);

    /// Waits for a further one, for so many seconds at most.
    void waitForNext(double seconds);
    /// Whether the last frame has stood for its time; if it was never taken, it is dropped.
    bool isOver();

    int framesDropped() const { return dropped; }

private:
    using Clock = std::chrono::steady_clock;

    void paint();
    bool findFrame(int &frame);
    bool findShot(int &shot);
    void draw(Stage &stage, int frame, std::unique_lock<std::mutex> &lock);
    /// The frame that is due now, and how much of its time has passed.
    double position() const;
    bool hasNext() const { return !ready.empty() && ready.begin()->first <= static_cast<int>(position()); }
    void setClock(double frame);

    const Show &show;
    const int width;
    const int height;
    const FrameRange range;
    const FrameRate rate;
    const Notice notice;
    const std::size_t mostAhead;

    std::mutex mutex;
    std::condition_variable changed;
    std::map<int, Canvas> ready;
    std::vector<Canvas> spare;
    int lastBegun;
    int lastTaken;
    int shotFetched = -1;
    int jumps = 0;
    std::size_t inHand = 0; ///< frames that are being drawn
    double leadSeconds = 0; ///< how long it lately took to draw one
    bool paused = false;
    bool runs = false; ///< the clock, unless it is paused
    double clockFrame;
    Clock::time_point clockTime;
    int dropped = 0;
    bool stopped = false;
    std::exception_ptr error;
    std::unique_ptr<Threads> painters;
};

} // namespace show

#endif
