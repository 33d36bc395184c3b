/// \file
/// A file that gets its name when it is complete.
#ifndef QMUR_SHOW_UNFINISHED_FILE_H
#define QMUR_SHOW_UNFINISHED_FILE_H

#include <filesystem>
#include <string>
#include <vector>

namespace show {

/// A file beside its target, under a name of its own. It takes the target's name by finish(), and is removed otherwise.
/// Where the target is a link, the file that it leads to is replaced; a file that is replaced hands its mode on.
class UnfinishedFile {
public:
    /// Creates the file, empty. `output` is what the user named, of which the target may be one file of many. Throws
    /// Failure if the directory does not take it, or if the target is nothing that may be replaced.
    UnfinishedFile(const std::filesystem::path &target, const std::filesystem::path &output);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;

    const std::filesystem::path &path() const { return unfinished; }
    void write(const std::vector<unsigned char> &bytes);
    void finish();
    /// Does so if nothing has that name, and answers whether that is so.
    bool finishUnlessThere();

    /// Removes what runs that were killed left behind of this output; what another run is writing stays.
    static void removeLeftovers(const std::filesystem::path &output);

    /// Where a link leads to, through further links, whether there is a file or not.
    static std::filesystem::path endOfLinks(std::filesystem::path path);

private:
    [[noreturn]] void fail(const std::string &reason) const;
    void close();

    std::filesystem::path named;  ///< as the user wrote it
    std::filesystem::path target; ///< where links lead to
    std::filesystem::path unfinished;
    int descriptor = -1; ///< open and locked while the run lives
};

} // namespace show

#endif
