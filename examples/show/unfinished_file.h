/// \file
/// A file that gets its name when it is complete.
#ifndef QMUR_SHOW_UNFINISHED_FILE_H
#define QMUR_SHOW_UNFINISHED_FILE_H

#include <filesystem>
#include <vector>

namespace show {

/// A file beside its target, under a name of its own. It takes the target's name by finish(), and is removed otherwise.
class UnfinishedFile {
public:
    /// Creates the file, empty. Throws Failure if the directory does not take it.
    explicit UnfinishedFile(std::filesystem::path target);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;

    const std::filesystem::path &path() const { return unfinished; }
    void write(const std::vector<unsigned char> &bytes);
    void finish();

    /// Refuses, by a Failure, a target that could not be written. Leaves nothing behind.
    static void checkTarget(const std::filesystem::path &target);

private:
    std::filesystem::path target;
    std::filesystem::path unfinished;
    bool finished = false;
};

} // namespace show

#endif
