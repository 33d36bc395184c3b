// PNG by libpng.

#include "../failure.h"
#include "png_file.h"

#include <bit>
#include <csetjmp>
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

struct Source {
    Bytes rest;

    static void read(png_structp reader, png_bytep out, std::size_t count) {
        Source &source = *static_cast<Source *>(png_get_io_ptr(reader));
        if (count > source.rest.size())
            png_error(reader, "cut off");
        std::memcpy(out, source.rest.data(), count);
        source.rest = source.rest.subspan(count);
    }
};

/// The library leaves by a jump, so nothing that a jump passes over may have a destructor. False if it left.
bool findProfile(png_structp reader, png_infop info, Bytes &found) {
    if (setjmp(png_jmpbuf(reader)) != 0)
        return false;
    png_read_info(reader, info);
    png_charp name = nullptr;
    int compression = 0;
    png_bytep bytes = nullptr;
    png_uint_32 length = 0;
    if (png_get_iCCP(reader, info, &name, &compression, &bytes, &length) != 0)
        found = {bytes, length};
    return true;
}

void discardWarning(png_structp, png_const_charp) {}

[[noreturn]] void leave(png_structp reader, png_const_charp) {
    png_longjmp(reader, 1);
}

std::vector<unsigned char> profile(Bytes file) {
    png_structp reader = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, discardWarning);
    png_infop info = reader ? png_create_info_struct(reader) : nullptr;
    Source source = {file};
    Bytes found;
    std::vector<unsigned char> copy;
    if (info) {
        png_set_error_fn(reader, nullptr, leave, discardWarning);
        png_set_read_fn(reader, &source, Source::read);
        if (findProfile(reader, info, found))
            copy.assign(found.begin(), found.end());
    }
    png_destroy_read_struct(&reader, &info, nullptr);
    return copy;
}

} // namespace

const Decoder pngDecoder = {"PNG", isPng, sizeOfPng, decode, notesOfPng, profile};

} // namespace show
