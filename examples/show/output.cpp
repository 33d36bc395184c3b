#include "output.h"

#include "contact_sheet.h"
#include "failure.h"
#include "image_sequence.h"
#include "text.h"
#include "unfinished_file.h"
#include "video.h"

#include <algorithm>
#include <optional>
#include <set>

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace show {

namespace {

bool isSequence(const std::filesystem::path &target) {
    return utf8(target.filename()).find('%') != std::string::npos;
}

/// What tells a file from every other, whatever its names; of a file that does not exist yet, what its names have in
/// common.
std::string identityOf(const std::filesystem::path &path) {
    std::error_code error;
#ifdef _WIN32
    std::string name = utf8(std::filesystem::weakly_canonical(std::filesystem::absolute(path, error), error));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return name;
#else
    const auto numbers = [](const std::filesystem::path &existing) {
        struct stat status;
        return ::stat(existing.c_str(), &status) == 0
                   ? std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino)
                   : std::string();
    };
    const std::string own = numbers(path);
    if (!own.empty())
        return own;
    const auto place = UnfinishedFile::endOfLinks(path);
    return numbers(place.has_parent_path() ? place.parent_path() : ".") + '/' + place.filename().string();
#endif
}

/// The files that a target will write.
class WrittenFiles {
public:
    WrittenFiles(const std::filesystem::path &target, FrameRange range) : named(target), frames(range) {
        if (!isSequence(target)) {
            identities.insert(identityOf(target));
            return;
        }
        names.emplace(target);
        directory = identityOf(names->directory());
        std::error_code error;
        for (std::filesystem::directory_iterator entry(names->directory(), error), end; !error && entry != end;
             entry.increment(error))
            if (isFrame(entry->path().filename()))
                identities.insert(identityOf(entry->path()));
    }

    const std::filesystem::path &target() const { return named; }

    bool hold(const std::filesystem::path &file) const {
        if (identities.contains(identityOf(file)))
            return true;
        const auto place = UnfinishedFile::endOfLinks(file);
        return names && isFrame(place.filename()) &&
               identityOf(place.has_parent_path() ? place.parent_path() : ".") == directory;
    }

    bool overlap(const WrittenFiles &other) const {
        if (!names)
            return other.hold(named);
        if (!other.names)
            return hold(other.named);
        if (directory == other.directory)
            for (int frame = frames.first; frame <= frames.last; ++frame)
                if (other.isFrame(names->of(frame).filename()))
                    return true;
        return std::any_of(identities.begin(), identities.end(),
                           [&](const std::string &identity) { return other.identities.contains(identity); });
    }

private:
    bool isFrame(const std::filesystem::path &name) const {
        const std::optional<int> frame = names->frameOf(utf8(name));
        return frame && frames.holds(*frame);
    }

    std::filesystem::path named;
    FrameRange frames;
    std::set<std::string> identities; ///< of those that are there already
    std::optional<FrameNames> names;
    std::string directory;
};

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
        throw Failure("cannot write " + quoted(target) + ": the name must end in .mp4, .webm, .mkv, .gif or .png");
    }
    UnfinishedFile::removeLeftovers(target);
    const UnfinishedFile attempt(target, target);
}

void checkDistinct(const Paths &targets, const Paths &inputs, FrameRange frames) {
    std::vector<WrittenFiles> written;
    for (const auto &target : targets)
        written.emplace_back(target, frames);
    for (std::size_t i = 0; i < written.size(); ++i) {
        for (const auto &input : inputs)
            if (written[i].hold(input))
                throw Failure("cannot write " + quoted(targets[i]) + ": it would replace " + quoted(input) +
                              ", which is read");
        for (std::size_t j = 0; j < i; ++j)
            if (written[i].overlap(written[j]))
                throw Failure("cannot write " + quoted(targets[i]) + ": it is one file with " + quoted(targets[j]));
    }
}

std::unique_ptr<Output> openOutput(const std::filesystem::path &target, const VideoFormat &format, FrameRange frames) {
    const std::string extension = lowerCaseExtension(target);
    if (extension != ".png")
        return openVideo(target, extension, format, frames);
    if (isSequence(target))
        return std::make_unique<ImageSequence>(target, frames);
    return std::make_unique<ContactSheet>(target, format.width, format.height, frames);
}

} // namespace show
