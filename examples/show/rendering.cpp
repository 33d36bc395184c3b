#include "rendering.h"

#include "interruption.h"
#include "messages.h"
#include "progress.h"
#include "threads.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>
#include <new>
#include <utility>

namespace show {

namespace {

/// A frame as each output wants it; empty for those that do not.
using Encodings = std::vector<EncodedFrame>;

/// Frames are taken by threads that draw them, and handed back in order. Nobody draws farther ahead of what has been
/// handed back than a few frames, so memory stays small however long the show is.
class FrameQueue {
public:
    FrameQueue(std::size_t frameCount, std::size_t framesAhead)
        : count(frameCount), ahead(framesAhead), slots(framesAhead) {}

    static constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

    /// The place in the list of the next frame to draw, or false if none will be left.
    bool take(std::size_t &place) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return stopped || returned == count || findOpen(place); });
        if (stopped || returned == count)
            return false;
        slotOf(place).state = State::taken;
        return true;
    }

    void put(std::size_t place, Encodings encodings) {
        const std::lock_guard lock(mutex);
        slotOf(place) = {State::ready, std::move(encodings)};
        changed.notify_all();
    }

    /// For one of the painters, who lacks the memory to draw the frame that it took, or any: false if it leaves that to
    /// the others. The last one gets the memory of all frames that were drawn ahead, once; then its lack stops the
    /// drawing.
    bool goesOnWithLess(std::size_t place, int painters) {
        const std::lock_guard lock(mutex);
        if (place != nowhere)
            slotOf(place).state = State::open;
        changed.notify_all();
        if (++paintersGone < painters)
            return false;
        if (ahead == 1) {
            stop(std::current_exception());
            return false;
        }
        ahead = 1;
        for (Slot &slot : slots)
            slot = {};
        return true;
    }

    /// Waits for the frame that follows the last one handed back. Throws what stopped the drawing.
    Encodings next() {
        std::unique_lock lock(mutex);
        // A signal wakes nobody here, so look out for one from time to time.
        while (!changed.wait_for(lock, std::chrono::milliseconds(50),
                                 [this] { return error || slotOf(returned).state == State::ready; }))
            throwIfInterrupted();
        if (error)
            std::rethrow_exception(error);
        Encodings encodings = std::exchange(slotOf(returned), {}).encodings;
        ++returned;
        changed.notify_all();
        return encodings;
    }

    void stopDrawing(std::exception_ptr reason = nullptr) {
        const std::lock_guard lock(mutex);
        stop(std::move(reason));
    }

private:
    enum class State { open, taken, ready };
    struct Slot {
        State state = State::open;
        Encodings encodings = {};
    };

    Slot &slotOf(std::size_t place) { return slots[place % slots.size()]; }

    bool findOpen(std::size_t &place) {
        const std::size_t end = std::min(count, returned + ahead);
        for (place = returned; place < end; ++place)
            if (slotOf(place).state == State::open)
                return true;
        return false;
    }

    void stop(std::exception_ptr reason) {
        stopped = true;
        if (!error)
            error = std::move(reason);
        changed.notify_all();
    }

    std::mutex mutex;
    std::condition_variable changed;
    const std::size_t count;
    int paintersGone = 0;
    std::size_t ahead;
    std::vector<Slot> slots;
    std::size_t returned = 0;
    std::exception_ptr error;
    bool stopped = false;
};

/// Stops the queue before the threads that serve it are waited for.
struct StopAtEnd {
    FrameQueue &queue;
    ~StopAtEnd() { queue.stopDrawing(); }
};

} // namespace

void renderShow(const Show &show, int width, int height, FrameRange range,
                const std::vector<std::unique_ptr<Output>> &outputs, int threads, const Notice &notice) {
    std::vector<int> frames;
    for (int frame = range.first; frame <= range.last; ++frame)
        if (notice ||
            std::any_of(outputs.begin(), outputs.end(), [frame](const auto &output) { return output->wants(frame); }))
            frames.push_back(frame);

    threads = static_cast<int>(std::min(static_cast<std::size_t>(threads), frames.size()));
    FrameQueue queue(frames.size(), static_cast<std::size_t>(threads) + 2);
    {
        const auto paint = [&](std::size_t &place) {
            Stage stage(width, height);
            while (queue.take(place)) {
                const Drawing drawn = show.render(stage, frames[place]);
                if (notice)
                    notice(frames[place], drawn);
                Encodings encodings;
                for (const auto &output : outputs)
                    encodings.push_back(output->wants(frames[place]) ? output->encode(stage.frame()) : EncodedFrame{});
                queue.put(place, std::move(encodings));
                place = FrameQueue::nowhere;
            }
        };
        const Threads painters(threads, show.memoryToDraw(), [&](int started) {
            for (bool goesOn = true; goesOn;) {
                std::size_t place = FrameQueue::nowhere;
                goesOn = false;
                try {
                    paint(place);
                } catch (const std::bad_alloc &) {
                    goesOn = queue.goesOnWithLess(place, started);
                } catch (...) {
                    queue.stopDrawing(std::current_exception());
                }
            }
        });
        const StopAtEnd stop = {queue};
        Progress progress("frame", static_cast<int>(frames.size()));
        for (const int frame : frames) {
            const Encodings encodings = queue.next();
            for (std::size_t i = 0; i < outputs.size(); ++i)
                if (outputs[i]->wants(frame)) {
                    throwIfInterrupted();
                    outputs[i]->write(frame, encodings[i]);
                }
            progress.advance();
        }
    }
    for (const auto &output : outputs)
        say("wrote " + output->finish());
}

} // namespace show
