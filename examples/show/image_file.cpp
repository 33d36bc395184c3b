#include "image_file.h"

#include "exif.h"
#include "failure.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

// Without vector instructions the decoder gives the same bytes in every build.
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_NO_SIMD
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNG
#define STBI_ONLY_BMP
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb_image.h>
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace show {

namespace {

std::vector<unsigned char> readFile(const std::filesystem::path &path) {
    if (std::filesystem::is_directory(path))
        throw Failure("cannot read '" + path.string() + "': it is a directory");
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Failure("cannot read '" + path.string() + "': " + std::strerror(errno));
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The place in the stored picture of the pixel that stands at (x, y) when the picture is upright.
struct Uprighting {
    int orientation;
    int storedWidth;
    int storedHeight;

    bool turnsSideways() const { return orientation >= 5; }

    std::size_t storedIndex(int x, int y) const {
        const int fromRight = storedWidth - 1;
        const int fromBottom = storedHeight - 1;
        const auto index = [this](int column, int row) {
            return static_cast<std::size_t>(row) * static_cast<std::size_t>(storedWidth) +
                   static_cast<std::size_t>(column);
        };
        switch (orientation) {
        case 2:
            return index(fromRight - x, y);
        case 3:
            return index(fromRight - x, fromBottom - y);
        case 4:
            return index(x, fromBottom - y);
        case 5:
            return index(y, x);
        case 6:
            return index(y, fromBottom - x);
        case 7:
            return index(fromRight - y, fromBottom - x);
        case 8:
            return index(fromRight - y, x);
        default:
            return index(x, y);
        }
    }
};

} // namespace

Canvas readImage(const std::filesystem::path &path) {
    const std::vector<unsigned char> file = readFile(path);
    constexpr long long mostPixels = 1LL << 28;
    const auto fileSize = static_cast<int>(file.size());
    int width = 0;
    int height = 0;
    int channels = 0;
    if (stbi_info_from_memory(file.data(), fileSize, &width, &height, &channels) != 0 &&
        static_cast<long long>(width) * height > mostPixels)
        throw Failure("cannot read '" + path.string() + "': " + std::to_string(width) + " x " + std::to_string(height) +
                      " pixels are too many");
    const std::unique_ptr<stbi_uc, void (*)(void *)> image(
        stbi_load_from_memory(file.data(), fileSize, &width, &height, &channels, 3), stbi_image_free);
    if (!image)
        throw Failure("cannot read '" + path.string() + "': no JPEG, PNG or BMP picture (" + stbi_failure_reason() +
                      ")");

    const Uprighting upright = {exifOrientation(file), width, height};
    Canvas picture = upright.turnsSideways() ? Canvas(height, width) : Canvas(width, height);
    const Surface surface = picture.surface();
    for (int y = 0; y < surface.height; ++y)
        for (int x = 0; x < surface.width; ++x) {
            const stbi_uc *const bytes = image.get() + 3 * upright.storedIndex(x, y);
            *surface.at(x, y) = static_cast<q_ulong>(bytes[0]) << 16 | static_cast<q_ulong>(bytes[1]) << 8 | bytes[2];
        }
    return picture;
}

std::vector<unsigned char> encodePng(const Surface &picture) {
    std::vector<unsigned char> rgb;
    rgb.reserve(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 3);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const q_ulong pixel = *picture.at(x, y);
            for (const int shift : {16, 8, 0})
                rgb.push_back(static_cast<unsigned char>(pixel >> shift & 0xFF));
        }
    std::vector<unsigned char> file;
    const auto append = [](void *context, void *data, int size) {
        const auto *const bytes = static_cast<unsigned char *>(data);
        auto &target = *static_cast<std::vector<unsigned char> *>(context);
        target.insert(target.end(), bytes, bytes + size);
    };
    stbi_write_png_to_func(append, &file, picture.width, picture.height, 3, rgb.data(), picture.width * 3);
    return file;
}

} // namespace show
