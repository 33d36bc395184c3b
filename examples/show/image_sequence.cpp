#include "image_sequence.h"

#include "failure.h"
#include "image_file.h"
#include "text.h"
#include "unfinished_file.h"

#include <limits>

namespace show {

FrameNames::FrameNames(const std::filesystem::path &pattern) : place(pattern.parent_path()) {
    const std::string name = utf8(pattern.filename());
    const std::size_t sign = name.find('%');
    std::size_t end = sign + 1;
    if (end + 1 < name.size() && name[end] == '0' && name[end + 1] >= '1' && name[end + 1] <= '9') {
        digits = static_cast<std::size_t>(name[end + 1] - '0');
        end += 2;
    }
    if (name.substr(end, 1) != "d" || name.find('%', end) != std::string::npos)
        throw Failure("cannot write " + quoted(pattern) + ": the pattern must hold one number, such as %04d");
    before = name.substr(0, sign);
    after = name.substr(end + 1);
}

std::string FrameNames::nameOf(int frame) const {
    const std::string number = std::to_string(frame);
    const std::size_t zeros = number.size() < digits ? digits - number.size() : 0;
    return before + std::string(zeros, '0') + number + after;
}

std::filesystem::path FrameNames::of(int frame) const {
    return place / pathOf(nameOf(frame));
}

std::optional<int> FrameNames::frameOf(const std::string &name) const {
    if (name.size() <= before.size() + after.size() || !name.starts_with(before) || !name.ends_with(after))
        return std::nullopt;
    const auto number = wholeNumber(name.substr(before.size(), name.size() - before.size() - after.size()));
    if (!number || *number < 0 || *number > std::numeric_limits<int>::max() ||
        nameOf(static_cast<int>(*number)) != name)
        return std::nullopt;
    return static_cast<int>(*number);
}

ImageSequence::ImageSequence(std::filesystem::path framePattern, FrameRange frameRange)
    : pattern(std::move(framePattern)), frames(frameRange), names(pattern) {
    const UnfinishedFile attempt(names.of(frames.last), pattern);
}

EncodedFrame ImageSequence::encode(const Surface &frame) const {
    return {encodePng(frame), {}};
}

void ImageSequence::write(int frame, const EncodedFrame &encoded) {
    UnfinishedFile file(names.of(frame), pattern);
    file.write(encoded.bytes);
    file.finish();
}

std::string ImageSequence::finish() {
    const std::string first = quoted(names.of(frames.first));
    return frames.count() == 1 ? first : first + " to " + quoted(names.of(frames.last));
}

} // namespace show
