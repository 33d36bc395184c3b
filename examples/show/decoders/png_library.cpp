// PNG by libpng.

#include "../failure.h"
#include "png_file.h"

#include <bit>
#include <cstring>
#include <new>

#include <png.h>

namespace show {

namespace {

struct Image : png_image {
    Image() : png_image{} { version = PNG_IMAGE_VERSION; }
    ~Image() { png_image_free(this); }
    Image(const Image &) = delete;
    Image &operator=(const Image &) = delete;
};

[[noreturn]] void fail(const Image &image) {
    if (std::strstr(image.message, "emory"))
        throw std::bad_alloc();
    throw Failure(std::string("the PNG picture is damaged (") + image.message + ")");
}

void decode(Bytes file, const Surface &picture) {
    Image image;
    if (!png_image_begin_read_from_memory(&image, file.data(), file.size()))
        fail(image);
    if (image.width != static_cast<png_uint_32>(picture.width) ||
        image.height != static_cast<png_uint_32>(picture.height))
        throw Failure("the PNG picture is damaged (it has two sizes)");
    image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    image.format = std::endian::native == std::endian::little ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;
    if (!png_image_finish_read(&image, nullptr, picture.at(0, 0), picture.pitch * 4, nullptr))
        fail(image);
}

} // namespace

const Decoder pngDecoder = {"PNG", isPng, sizeOfPng, decode, notesOfPng};

} // namespace show
