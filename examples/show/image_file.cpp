#include "image_file.h"

#include "colour_profile.h"
#include "decoders/decoder.h"
#include "failure.h"
#include "input_file.h"
#include "text.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace {

/// The encoder does not look whether it got what it asked for.
void *certainly(void *memory) {
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

} // namespace

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#define STBIW_MALLOC(size) certainly(std::malloc(size))
#define STBIW_REALLOC(memory, size) certainly(std::realloc(memory, size))
#define STBIW_FREE(memory) std::free(memory)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace show {

namespace {

constexpr q_ulong ground = 0x17181B;
constexpr int longestSide = 1000000;

/// The place in the stored picture of the pixel that stands at (x, y) when the picture is upright.
struct Uprighting {
    int orientation;
    Surface stored;

    bool turnsSideways() const { return orientation >= 5; }

    const q_ulong *storedPixel(int x, int y) const {
        const int fromRight = stored.width - 1;
        const int fromBottom = stored.height - 1;
        switch (orientation) {
        case 2:
            return stored.at(fromRight - x, y);
        case 3:
            return stored.at(fromRight - x, fromBottom - y);
        case 4:
            return stored.at(x, fromBottom - y);
        case 5:
            return stored.at(y, x);
        case 6:
            return stored.at(y, fromBottom - x);
        case 7:
            return stored.at(fromRight - y, fromBottom - x);
        case 8:
            return stored.at(fromRight - y, x);
        default:
            return stored.at(x, y);
        }
    }
};

Canvas upright(Canvas picture, int orientation) {
    if (orientation == 1)
        return picture;
    const Uprighting way = {orientation, picture.surface()};
    Canvas result =
        way.turnsSideways() ? Canvas(picture.height(), picture.width()) : Canvas(picture.width(), picture.height());
    const Surface out = result.surface();
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x)
            *out.at(x, y) = *way.storedPixel(x, y);
    return result;
}

/// Mixes with the ground what is not opaque; the top bytes are 0 afterwards.
void layOnGround(const Surface &picture) {
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            q_ulong &pixel = *picture.at(x, y);
            const q_ulong opacity = pixel >> 24;
            if (opacity == 255) {
                pixel &= 0xFFFFFF;
                continue;
            }
            q_ulong mixed = 0;
            for (const int shift : {16, 8, 0}) {
                const q_ulong above = pixel >> shift & 0xFF;
                const q_ulong below = ground >> shift & 0xFF;
                mixed |= (above * opacity + below * (255 - opacity) + 127) / 255 << shift;
            }
            pixel = mixed;
        }
}

ImageFile decodeFile(const std::filesystem::path &path, int mostMegapixels) {
    InputFile file(path);
    std::vector<unsigned char> bytes;
    file.read(bytes, startBytes);
    const Decoder *const decoder = findDecoder(bytes);
    if (!decoder)
        throw Failure("it is no " + decoderNames() + " picture");

    const long long mostPixels = 1000000LL * mostMegapixels;
    if (file.size() > 4 * static_cast<std::uint64_t>(mostPixels))
        throw Failure("its " + std::to_string(file.size() / 1000000) +
                      " megabytes are too many; --max-megapixels raises the limit");
    if (file.size() > bytes.size())
        file.read(bytes, static_cast<std::size_t>(file.size()) - bytes.size());

    const PictureSize size = decoder->sizeOf(bytes);
    if (size.width > longestSide || size.height > longestSide ||
        static_cast<long long>(size.width) * size.height > mostPixels)
        throw Failure(std::to_string(size.width) + " x " + std::to_string(size.height) +
                      " pixels are too many; --max-megapixels raises the limit");
    ExifNotes notes = decoder->notes(bytes);
    Canvas stored(size.width, size.height);
    decoder->decode(bytes, stored.surface());
#ifdef QMUR_SHOW_COLOURS
    if (decoder->profile)
        if (const std::vector<unsigned char> profile = decoder->profile(bytes); !profile.empty())
            convertToScreen(stored.surface(), profile);
#endif
    layOnGround(stored.surface());
    return {upright(std::move(stored), notes.orientation), std::move(notes.comment), std::move(notes.taken)};
}

} // namespace

ImageFile readImage(const std::filesystem::path &path, int mostMegapixels) {
    try {
        return decodeFile(path, mostMegapixels);
    } catch (const Failure &failure) {
        throw Failure("cannot read " + quoted(path) + ": " + printable(failure.what()));
    }
}

std::vector<unsigned char> encodePng(const Surface &picture) {
    std::vector<unsigned char> rgb(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                                   3);
    unsigned char *byte = rgb.data();
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const q_ulong pixel = *picture.at(x, y);
            for (const int shift : {16, 8, 0})
                *byte++ = static_cast<unsigned char>(pixel >> shift & 0xFF);
        }
    std::vector<unsigned char> file;
    const auto append = [](void *context, void *data, int size) {
        const auto *const bytes = static_cast<unsigned char *>(data);
        auto &target = *static_cast<std::vector<unsigned char> *>(context);
        target.insert(target.end(), bytes, bytes + size);
    };
    if (!stbi_write_png_to_func(append, &file, picture.width, picture.height, 3, rgb.data(), picture.width * 3))
        throw std::bad_alloc();
    return file;
}

} // namespace show
