#include "rendering.h"

#include "interruption.h"
#include "messages.h"
#include "progress.h"
#include "threads.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>

namespace show {

namespace {

/// A frame as each output wants it; empty for those that do not.
using Encodings = std::vector<EncodedFrame>;

/// Frames are taken in order by threads that draw them, and handed back in order. Nobody draws farther ahead of what
/// has been handed back than a few frames, so memory stays small however long the show is.
class FrameQueue {
public:
    FrameQueue(std::size_t frameCount, std::size_t framesAhead) : count(frameCount), ahead(framesAhead) {}

    /// The place in the list of the next frame to draw, or false if none is left.
    bool take(std::size_t &place) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return stopped || taken == count || taken < returned + ahead; });
        if (stopped || taken == count)
            return false;
        place = taken++;
        return true;
    }

    void put(std::size_t place, Encodings encodings) {
        const std::lock_guard lock(mutex);
        ready.emplace(place, std::move(encodings));
        changed.notify_all();
    }

    /// Waits for the frame that follows the last one handed back. Throws what stopped the drawing.
    Encodings next() {
        std::unique_lock lock(mutex);
        // A signal wakes nobody here, so look out for one from time to time.
        while (!changed.wait_for(lock, std::chrono::milliseconds(50),
                                 [this] { return error || ready.contains(returned); }))
            throwIfInterrupted();
        if (error)
            std::rethrow_exception(error);
        const auto found = ready.find(returned);
        Encodings encodings = std::move(found->second);
        ready.erase(found);
        ++returned;
        changed.notify_all();
        return encodings;
    }

    void stop(std::exception_ptr reason = nullptr) {
        const std::lock_guard lock(mutex);
        stopped = true;
        if (!error)
            error = std::move(reason);
        changed.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    const std::size_t count;
    const std::size_t ahead;
    std::size_t taken = 0;
    std::size_t returned = 0;
    std::map<std::size_t, Encodings> ready;
    std::exception_ptr error;
    bool stopped = false;
};

/// Stops the queue before the threads that serve it are waited for.
struct StopAtEnd {
    FrameQueue &queue;
    ~StopAtEnd() { queue.stop(); }
};

} // namespace

void renderShow(const Show &show, int width, int height, FrameRange range,
                const std::vector<std::unique_ptr<Output>> &outputs, int threads) {
    std::vector<int> frames;
    for (int frame = range.first; frame <= range.last; ++frame)
        if (std::any_of(outputs.begin(), outputs.end(), [frame](const auto &output) { return output->wants(frame); }))
            frames.push_back(frame);

    FrameQueue queue(frames.size(), static_cast<std::size_t>(threads) + 2);
    {
        const auto paint = [&] {
            Stage stage(width, height);
            for (std::size_t place; queue.take(place);) {
                show.render(stage, frames[place]);
                Encodings encodings;
                for (const auto &output : outputs)
                    encodings.push_back(output->wants(frames[place]) ? output->encode(stage.frame()) : EncodedFrame{});
                queue.put(place, std::move(encodings));
            }
        };
        const Threads painters(threads, [&] {
            try {
                paint();
            } catch (...) {
                queue.stop(std::current_exception());
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
