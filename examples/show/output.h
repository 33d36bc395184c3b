/// \file
/// Where frames go: a video, numbered pictures, or a contact sheet.
#ifndef QMUR_SHOW_OUTPUT_H
#define QMUR_SHOW_OUTPUT_H

#include "frame_rate.h"
#include "surface.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace show {

/// What an output makes of a frame.
struct EncodedFrame {
    std::vector<unsigned char> bytes;
    Canvas picture;
};

/// The frames that are asked for: from `first` up to and including `last`.
struct FrameRange {
    int first;
    int last;

    int count() const { return last - first + 1; }
    bool holds(int frame) const { return frame >= first && frame <= last; }
};

/// Frames are encoded by any thread in any order, and written by one thread in rising order. An output that is
/// destroyed before finish() was called leaves nothing unfinished behind.
class Output {
public:
    virtual ~Output() = default;

    virtual bool wants(int frame) const;
    virtual EncodedFrame encode(const Surface &frame) const = 0;
    virtual void write(int frame, const EncodedFrame &encoded) = 0;
    /// Answers what there is now, in quotes.
    virtual std::string finish() = 0;
};

struct VideoFormat {
    int width;
    int height;
    FrameRate rate;
    std::filesystem::path music; ///< empty for a silent film
};

using Paths = std::vector<std::filesystem::path>;

/// Refuses, by a Failure, a target that no frame could be written to: one without a format that is known, in a
/// directory that does not exist, or in a format that cannot hold the size. Removes what killed runs left of it.
void checkTarget(const std::filesystem::path &target, const VideoFormat &format);

/// Refuses, by a Failure, targets of which two are one file, or one is a file that is read.
void checkDistinct(const Paths &targets, const Paths &inputs, FrameRange frames);

/// The output for a target that was checked, by its name: .mp4, .webm and .gif are videos, .png with a number such as
/// %04d in its name a sequence, any other .png a contact sheet.
std::unique_ptr<Output> openOutput(const std::filesystem::path &target, const VideoFormat &format, FrameRange frames);

} // namespace show

#endif
