#include "bundled_photos.h"

#include "failure.h"

#ifdef _WIN32
#include <array>
#include <windows.h>
#endif

namespace show {

namespace {

std::filesystem::path programDirectory(const char *programName) {
#ifdef _WIN32
    std::array<wchar_t, 4096> path = {};
    if (GetModuleFileNameW(nullptr, path.data(), path.size()) > 0)
        return std::filesystem::path(path.data()).parent_path();
#else
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error)
        return program.parent_path();
#endif
    return std::filesystem::path(programName).parent_path();
}

} // namespace

std::vector<std::filesystem::path> bundledPhotos(const char *programName) {
    // Beside the program as it is installed, in a directory that was unpacked, and in the tree that it was built from.
    const auto program = programDirectory(programName);
    for (const auto &directory :
         {program / QMUR_SHOW_INSTALLED_PHOTOS, program / "photos", program / QMUR_SHOW_SOURCE_PHOTOS})
        if (std::filesystem::exists(directory / "dandelion.jpg")) {
            std::vector<std::filesystem::path> photos;
            for (const char *const name :
                 {"dandelion", "mountains", "stream", "dogs", "fig", "meadow", "brushes", "sunset"})
                photos.push_back(directory / (std::string(name) + ".jpg"));
            return photos;
        }
    throw Failure("the bundled photographs are not installed; name photographs of your own");
}

} // namespace show
