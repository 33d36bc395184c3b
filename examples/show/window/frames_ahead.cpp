#include "frames_ahead.h"

#include "../painting.h"
#include "../picture.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace show {

namespace {

/// So many that a photograph can be read meanwhile.
std::size_t framesFor(const Canvas &frame, const FrameRate &rate, int threads) {
    constexpr double seconds = 1;
    constexpr std::size_t mostBytes = 128 << 20;
    const std::size_t wanted = static_cast<std::size_t>(seconds * rate.perSecond()) + 1;
    return std::max(std::min(wanted, mostBytes / frame.bytes()), static_cast<std::size_t>(threads) + 1);
}

} // namespace

FramesAhead::FramesAhead(const Show &shown, int frameWidth, int frameHeight, FrameRange frames, FrameRate frameRate,
                         int threads, Notice noticeOfFrames)
    : show(shown), width(frameWidth), height(frameHeight), range(frames), rate(frameRate),
      notice(std::move(noticeOfFrames)), mostAhead(framesFor(Canvas(width, height), rate, threads)),
      lastBegun(range.first - 1), lastTaken(range.first - 1), clockFrame(range.first) {
    painters = std::make_unique<Threads>(threads, show.memoryToDraw(), [this](int) {
        try {
            paint();
        } catch (...) {
            const std::lock_guard lock(mutex);
            if (!error)
                error = std::current_exception();
            stopped = true;
            changed.notify_all();
        }
    });
}

FramesAhead::~FramesAhead() {
    {
        const std::lock_guard lock(mutex);
        stopped = true;
        changed.notify_all();
    }
    painters->wait();
}

double FramesAhead::position() const {
    if (!runs || paused)
        return clockFrame;
    return clockFrame + std::chrono::duration<double>(Clock::now() - clockTime).count() * rate.perSecond();
}

void FramesAhead::setClock(double frame) {
    clockFrame = frame;
    clockTime = Clock::now();
}

void FramesAhead::goTo(int frame) {
    const std::lock_guard lock(mutex);
    frame = std::clamp(frame, range.first, range.last);
    ++jumps;
    for (auto &[number, picture] : ready)
        spare.push_back(std::move(picture));
    ready.clear();
    lastBegun = lastTaken = frame - 1;
    shotFetched = -1;
    runs = false;
    setClock(frame);
    changed.notify_all();
}

void FramesAhead::pause(bool stands) {
    const std::lock_guard lock(mutex);
    setClock(position());
    paused = stands;
}

bool FramesAhead::takeNext(DrawnFrame &frame) {
    const std::lock_guard lock(mutex);
    if (error)
        std::rethrow_exception(error);
    if (!hasNext())
        return false;
    const auto behind = ready.upper_bound(static_cast<int>(position()));
    const auto latest = std::prev(behind);
    std::swap(frame.picture, latest->second);
    frame.number = latest->first;
    for (auto one = ready.begin(); one != behind; ++one)
        if (one->second.width() > 0)
            spare.push_back(std::move(one->second));
    ready.erase(ready.begin(), behind);
    dropped += frame.number - lastTaken - 1;
    lastTaken = frame.number;
    if (!runs)
        setClock(frame.number);
    runs = true;
    changed.notify_all();
    return true;
}

void FramesAhead::waitForNext(double seconds) {
    std::unique_lock lock(mutex);
    if (runs && !paused) // until the next one is due
        seconds = std::min(seconds, (std::floor(position()) + 1 - position()) / rate.perSecond());
    changed.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return error || hasNext(); });
}

bool FramesAhead::isOver() {
    const std::lock_guard lock(mutex);
    if (position() < range.last + 1)
        return false;
    dropped += range.last - lastTaken;
    lastTaken = range.last;
    return true;
}

bool FramesAhead::findFrame(int &frame) {
    if (ready.size() + inHand >= mostAhead)
        return false;
    frame = lastBegun + 1;
    if (runs && !paused) // one that would be late is not begun
        frame = std::max(frame, static_cast<int>(position() + leadSeconds * rate.perSecond()));
    return frame <= range.last;
}

bool FramesAhead::findShot(int &shot) {
    shot = show.shotOf(std::max(lastBegun, range.first)) + 1;
    return shot < show.shotCount() && shot > shotFetched;
}

void FramesAhead::draw(Stage &stage, int frame, std::unique_lock<std::mutex> &lock) {
    lastBegun = frame;
    ++inHand;
    const int jumpsBefore = jumps;
    Canvas picture;
    if (!spare.empty()) {
        picture = std::move(spare.back());
        spare.pop_back();
    }
    lock.unlock();
    const Clock::time_point start = Clock::now();
    const Drawing drawn = show.render(stage, frame);
    if (notice)
        notice(frame, drawn);
    if (picture.width() == 0)
        picture = Canvas(width, height);
    copy(picture, stage.frame());
    extendEdges(picture);
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    lock.lock();
    leadSeconds = mix(leadSeconds, seconds, 0.3);
    --inHand;
    if (jumps == jumpsBefore && frame > lastTaken)
        ready.emplace(frame, std::move(picture));
    else
        spare.push_back(std::move(picture));
    changed.notify_all();
}

void FramesAhead::paint() {
    Stage stage(width, height);
    std::unique_lock lock(mutex);
    while (!stopped) {
        int found = 0;
        if (findFrame(found)) {
            draw(stage, found, lock);
        } else if (findShot(found)) {
            shotFetched = found;
            lock.unlock();
            show.fetchPhoto(found);
            lock.lock();
        } else {
            changed.wait(lock);
        }
    }
}

} // namespace show
