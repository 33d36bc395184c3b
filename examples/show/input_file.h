/// \file
/// Files that are read whole.
#ifndef QMUR_SHOW_INPUT_FILE_H
#define QMUR_SHOW_INPUT_FILE_H

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace show {

using Bytes = std::span<const unsigned char>;

/// A regular file that is open for reading. What has no end, or would wait for somebody to write, is refused.
class InputFile {
public:
    /// Throws Failure, which says why and not which file.
    explicit InputFile(const std::filesystem::path &path);
    ~InputFile();
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    std::uint64_t size() const { return fileSize; }

    /// Appends up to `count` bytes from the place where the last reading ended. Throws Failure.
    void read(std::vector<unsigned char> &bytes, std::size_t count);

private:
    int descriptor;
    std::uint64_t fileSize = 0;
};

} // namespace show

#endif
