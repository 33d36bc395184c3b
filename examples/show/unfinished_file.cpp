#include "unfinished_file.h"

#include "failure.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <random>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <sys/file.h>
#include <unistd.h>
#endif

namespace show {

namespace {

#ifdef _WIN32

int createFile(const std::filesystem::path &path) {
    return _wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
}
/// An open file cannot be removed here: that is lock enough.
bool lockFile(int) {
    return true;
}
void removeUnlessLocked(const std::filesystem::path &path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}
auto writeSome(int descriptor, const unsigned char *bytes, std::size_t count) {
    return _write(descriptor, bytes, static_cast<unsigned>(std::min<std::size_t>(count, 1 << 30)));
}
int closeFile(int descriptor) {
    return _close(descriptor);
}
bool mayBeWritten(const std::filesystem::path &path) {
    return _waccess(path.c_str(), 2) == 0;
}

#else

int createFile(const std::filesystem::path &path) {
    return ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
}
/// False if somebody removed the file in between. Where there are no locks, nobody removes it.
bool lockFile(int descriptor) {
    ::flock(descriptor, LOCK_EX | LOCK_NB);
    struct stat status;
    return ::fstat(descriptor, &status) != 0 || status.st_nlink > 0;
}
void removeUnlessLocked(const std::filesystem::path &path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (descriptor < 0)
        return;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        ::unlink(path.c_str());
    ::close(descriptor);
}
auto writeSome(int descriptor, const unsigned char *bytes, std::size_t count) {
    return ::write(descriptor, bytes, std::min<std::size_t>(count, 1 << 30));
}
int closeFile(int descriptor) {
    return ::close(descriptor);
}
/// Nobody's permissions hold the superuser back, but a file without any was meant to stay.
bool mayBeWritten(const std::filesystem::path &path) {
    struct stat status;
    constexpr mode_t anybodyWrites = S_IWUSR | S_IWGRP | S_IWOTH;
    return ::stat(path.c_str(), &status) == 0 && (status.st_mode & anybodyWrites) != 0 &&
           ::access(path.c_str(), W_OK) == 0;
}

#endif

constexpr std::string_view unfinishedEnding = ".unfinished";

std::filesystem::path directoryOf(const std::filesystem::path &target) {
    return target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
}

/// What the names of all unfinished files of an output begin with. Long names are cut, since no file system takes more
/// than 255 bytes, and told apart by a number.
std::string beginningFor(const std::filesystem::path &output) {
    constexpr std::size_t longestName = 160;
    std::string name = utf8(output.filename());
    if (name.size() > longestName) {
        std::uint64_t hash = 0xCBF29CE484222325;
        for (const char c : name)
            hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
        std::size_t length = longestName;
        while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) // within a letter
            --length;
        name = name.substr(0, length) + '~' + std::to_string(hash);
    }
    return '.' + name + '.';
}

} // namespace

void UnfinishedFile::fail(const std::string &reason) const {
    throw Failure("cannot write " + quoted(named) + ": " + reason);
}

UnfinishedFile::UnfinishedFile(const std::filesystem::path &finalTarget, const std::filesystem::path &output)
    : named(finalTarget) {
    target = endOfLinks(finalTarget);
    constexpr std::size_t longestName = 255; // of every file system there is
    if (target.filename().native().size() > longestName)
        fail("its name is too long");
    std::error_code error;
    const auto status = std::filesystem::status(target, error);
    if (status.type() == std::filesystem::file_type::none)
        fail(error.message());
    if (std::filesystem::is_directory(status))
        fail("it is a directory");
    if (std::filesystem::exists(status)) {
        if (!std::filesystem::is_regular_file(status))
            fail("it is no regular file");
        if (!mayBeWritten(target))
            fail("it may not be written to");
    }
    std::random_device random;
    constexpr int mostAttempts = 100;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        unfinished = directoryOf(target) /
                     pathOf(beginningFor(output) + std::to_string(random()) + std::string(unfinishedEnding));
        descriptor = createFile(unfinished);
        if (descriptor >= 0 && lockFile(descriptor))
            return;
        if (descriptor < 0 && errno != EEXIST)
            break;
        close();
    }
    const int reason = errno;
    fail(std::strerror(reason));
}

UnfinishedFile::~UnfinishedFile() {
    close();
    std::error_code ignored;
    if (!unfinished.empty())
        std::filesystem::remove(unfinished, ignored);
}

void UnfinishedFile::close() {
    if (descriptor >= 0)
        closeFile(descriptor);
    descriptor = -1;
}

void UnfinishedFile::write(const std::vector<unsigned char> &bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const auto part = writeSome(descriptor, bytes.data() + done, bytes.size() - done);
        if (part > 0)
            done += static_cast<std::size_t>(part);
        else if (part == 0 || errno != EINTR)
            fail(std::strerror(part == 0 ? ENOSPC : errno));
    }
}

void UnfinishedFile::finish() {
    std::error_code error;
    const auto old = std::filesystem::status(target, error);
    if (std::filesystem::is_regular_file(old)) {
        std::filesystem::permissions(unfinished, old.permissions(), error);
        if (error)
            fail(error.message());
    }
    const int open = descriptor;
    descriptor = -1;
    if (closeFile(open) != 0) // what could not be written may show only now
        fail(std::strerror(errno));
    std::filesystem::rename(unfinished, target, error);
    if (error)
        fail(error.message());
    unfinished.clear();
}

bool UnfinishedFile::finishUnlessThere() {
    const int place = createFile(target); // which nobody else gets then
    if (place < 0 && errno == EEXIST)
        return false;
    if (place < 0)
        fail(std::strerror(errno));
    closeFile(place);
    try {
        finish();
    } catch (const Failure &) {
        std::error_code ignored;
        std::filesystem::remove(target, ignored);
        throw;
    }
    return true;
}

std::filesystem::path UnfinishedFile::endOfLinks(std::filesystem::path path) {
    constexpr int mostLinks = 40;
    std::error_code error;
    for (int i = 0; i < mostLinks && std::filesystem::is_symlink(std::filesystem::symlink_status(path, error)); ++i) {
        const auto next = std::filesystem::read_symlink(path, error);
        path = next.is_absolute() ? next : directoryOf(path) / next;
    }
    return path;
}

void UnfinishedFile::removeLeftovers(const std::filesystem::path &output) {
    const std::string beginning = beginningFor(output);
    std::error_code error;
    for (std::filesystem::directory_iterator entry(directoryOf(endOfLinks(output)), error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = utf8(entry->path().filename());
        if (name.size() <= beginning.size() + unfinishedEnding.size() || !name.starts_with(beginning) ||
            !name.ends_with(unfinishedEnding))
            continue;
        const std::string number =
            name.substr(beginning.size(), name.size() - beginning.size() - unfinishedEnding.size());
        if (wholeNumber(number))
            removeUnlessLocked(entry->path());
    }
}

} // namespace show
