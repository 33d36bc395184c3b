#include "input_file.h"

#include "failure.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace show {

namespace {

#ifdef _WIN32

using FileStatus = struct _stat64;

int openForReading(const std::filesystem::path &path) {
    return _wopen(path.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
}
bool statusOf(int descriptor, FileStatus &status) {
    return _fstat64(descriptor, &status) == 0;
}
bool isRegular(const FileStatus &status) {
    return (status.st_mode & _S_IFMT) == _S_IFREG;
}
int readSome(int descriptor, unsigned char *bytes, std::size_t count) {
    return _read(descriptor, bytes, static_cast<unsigned>(std::min<std::size_t>(count, 1 << 30)));
}
void closeFile(int descriptor) {
    _close(descriptor);
}

#else

using FileStatus = struct stat;

int openForReading(const std::filesystem::path &path) {
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK); // a pipe without a writer does not wait
}
bool statusOf(int descriptor, FileStatus &status) {
    return ::fstat(descriptor, &status) == 0;
}
bool isRegular(const FileStatus &status) {
    return S_ISREG(status.st_mode);
}
ssize_t readSome(int descriptor, unsigned char *bytes, std::size_t count) {
    return ::read(descriptor, bytes, std::min<std::size_t>(count, 1 << 30));
}
void closeFile(int descriptor) {
    ::close(descriptor);
}

#endif

} // namespace

InputFile::InputFile(const std::filesystem::path &path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw Failure("it is a directory");
    descriptor = openForReading(path);
    if (descriptor < 0)
        throw Failure(std::strerror(errno));
    FileStatus status;
    if (!statusOf(descriptor, status) || !isRegular(status)) {
        closeFile(descriptor);
        throw Failure("it is no regular file");
    }
    fileSize = static_cast<std::uint64_t>(status.st_size);
}

InputFile::~InputFile() {
    closeFile(descriptor);
}

void InputFile::read(std::vector<unsigned char> &bytes, std::size_t count) {
    std::size_t done = bytes.size();
    bytes.resize(done + count);
    while (done < bytes.size()) {
        const auto part = readSome(descriptor, bytes.data() + done, bytes.size() - done);
        if (part < 0 && errno == EINTR)
            continue;
        if (part < 0)
            throw Failure(std::strerror(errno));
        if (part == 0)
            break;
        done += static_cast<std::size_t>(part);
    }
    bytes.resize(done);
}

} // namespace show
