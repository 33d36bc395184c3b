#include "plain_reader.h"

#include "../failure.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace {

/// The reader does not always say that memory is what it lacks.
thread_local bool lackedMemory = false;

void *noted(void *memory) {
    if (!memory)
        lackedMemory = true;
    return memory;
}

} // namespace

#define STBI_MALLOC(size) noted(std::malloc(size))
#define STBI_REALLOC(memory, size) noted(std::realloc(memory, size))
#define STBI_FREE(memory) std::free(memory)
// Without vector instructions it gives the same bytes in every build.
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_NO_SIMD
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_ONLY_BMP
#ifndef QMUR_SHOW_JPEG
#define STBI_ONLY_JPEG
#endif
#ifndef QMUR_SHOW_PNG
#define STBI_ONLY_PNG
#endif
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <stb_image.h>
#pragma GCC diagnostic pop

namespace show {

void readPlainly(const char *kind, Bytes file, const Surface &picture) {
    if (file.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw Failure(std::string("the ") + kind + " file is too large");
    int width = 0;
    int height = 0;
    int channels = 0;
    lackedMemory = false;
    const std::unique_ptr<stbi_uc, void (*)(void *)> image(
        stbi_load_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels, 4),
        stbi_image_free);
    if (!image) {
        const char *const reason = stbi_failure_reason();
        const auto says = [reason](const char *one) { return reason && std::strcmp(reason, one) == 0; };
        if (lackedMemory || says("outofmem"))
            throw std::bad_alloc();
        if (says("too large"))
            throw Failure(std::string("the ") + kind + " picture is too large for this build");
        throw Failure(std::string("the ") + kind + " picture is damaged" +
                      (reason ? std::string(" (") + reason + ")" : ""));
    }
    if (width != picture.width || height != picture.height)
        throw Failure(std::string("the ") + kind + " picture is damaged (it has two sizes)");
    const stbi_uc *bytes = image.get();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, bytes += 4)
            *picture.at(x, y) = static_cast<q_ulong>(bytes[3]) << 24 | static_cast<q_ulong>(bytes[0]) << 16 |
                                static_cast<q_ulong>(bytes[1]) << 8 | bytes[2];
}

} // namespace show
