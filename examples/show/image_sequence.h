/// \file
/// Frames as numbered PNG files.
#ifndef QMUR_SHOW_IMAGE_SEQUENCE_H
#define QMUR_SHOW_IMAGE_SEQUENCE_H

#include "output.h"

#include <optional>
#include <string>

namespace show {

/// File names with a number in them, from a pattern such as frame-%04d.png.
class FrameNames {
public:
    /// Throws Failure if the pattern holds anything but one number.
    explicit FrameNames(const std::filesystem::path &pattern);

    std::filesystem::path directory() const { return place.empty() ? "." : place; }
    std::filesystem::path of(int frame) const;
    /// The number of the frame that has this name, without its directory.
    std::optional<int> frameOf(const std::string &name) const;

private:
    std::string nameOf(int frame) const;

    std::filesystem::path place;
    std::string before;
    std::string after;
    std::size_t digits = 1;
};

/// Each frame becomes a file of its own as soon as it is complete.
class ImageSequence : public Output {
public:
    /// Throws Failure if there could be no file for the last frame.
    ImageSequence(std::filesystem::path framePattern, FrameRange frameRange);

    EncodedFrame encode(const Surface &frame) const override;
    void write(int frame, const EncodedFrame &encoded) override;
    std::string finish() override;

private:
    std::filesystem::path pattern;
    FrameRange frames;
    FrameNames names;
};

} // namespace show

#endif
