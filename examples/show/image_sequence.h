/// \file
/// Frames as numbered PNG files.
#ifndef QMUR_SHOW_IMAGE_SEQUENCE_H
#define QMUR_SHOW_IMAGE_SEQUENCE_H

#include "output.h"

#include <string>

namespace show {

/// File names with a number in them, from a pattern such as frame-%04d.png.
class FrameNames {
public:
    /// Throws Failure if the pattern holds anything but one number.
    explicit FrameNames(const std::filesystem::path &pattern);

    std::filesystem::path of(int frame) const;

private:
    std::filesystem::path directory;
    std::string before;
    std::string after;
    std::size_t digits;
};

/// Each frame becomes a file of its own as soon as it is complete.
class ImageSequence : public Output {
public:
    explicit ImageSequence(FrameNames frameNames) : names(std::move(frameNames)) {}

    EncodedFrame encode(const Surface &frame) const override;
    void write(int frame, const EncodedFrame &encoded) override;
    void finish() override {}

private:
    FrameNames names;
};

} // namespace show

#endif
