#include "image_sequence.h"

#include "failure.h"
#include "image_file.h"
#include "unfinished_file.h"

#include <regex>

namespace show {

FrameNames::FrameNames(const std::filesystem::path &pattern) : directory(pattern.parent_path()) {
    static const std::regex oneNumber("([^%]*)%(0([1-9]))?d([^%]*)");
    const std::string name = pattern.filename().string();
    std::smatch parts;
    if (!std::regex_match(name, parts, oneNumber))
        throw Failure("cannot write '" + pattern.string() + "': the pattern must hold one number, such as %04d");
    before = parts[1];
    digits = parts[3].matched ? static_cast<std::size_t>(std::stoi(parts[3])) : 1;
    after = parts[4];
}

std::filesystem::path FrameNames::of(int frame) const {
    const std::string number = std::to_string(frame);
    const std::size_t zeros = number.size() < digits ? digits - number.size() : 0;
    return directory / (before + std::string(zeros, '0') + number + after);
}

EncodedFrame ImageSequence::encode(const Surface &frame) const {
    return {encodePng(frame), {}};
}

void ImageSequence::write(int frame, const EncodedFrame &encoded) {
    UnfinishedFile file(names.of(frame));
    file.write(encoded.bytes);
    file.finish();
}

} // namespace show
