#include "output.h"

#include "contact_sheet.h"
#include "failure.h"
#include "image_sequence.h"
#include "unfinished_file.h"
#include "video.h"

#include <string>

namespace show {

namespace {

std::string lowerCaseExtension(const std::filesystem::path &path) {
    std::string extension = path.extension().string();
    for (char &c : extension)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return extension;
}

bool isSequence(const std::filesystem::path &target) {
    return target.filename().string().find('%') != std::string::npos;
}

} // namespace

bool Output::wants(int) const {
    return true;
}

void checkTarget(const std::filesystem::path &target, const VideoFormat &format) {
    const std::string extension = lowerCaseExtension(target);
    if (extension == ".png") {
        if (isSequence(target))
            FrameNames{target};
    } else if (isVideo(extension)) {
        checkVideo(target, extension, format);
    } else {
        throw Failure("cannot write '" + target.string() + "': the name must end in .mp4, .webm, .gif or .png");
    }
    UnfinishedFile::checkTarget(target);
}

std::unique_ptr<Output> openOutput(const std::filesystem::path &target, const VideoFormat &format, FrameRange frames) {
    const std::string extension = lowerCaseExtension(target);
    if (extension != ".png")
        return openVideo(target, extension, format);
    if (isSequence(target))
        return std::make_unique<ImageSequence>(FrameNames(target));
    return std::make_unique<ContactSheet>(target, format.width, format.height, frames);
}

} // namespace show
