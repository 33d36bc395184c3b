// HEIC, and what else libheif reads.

#include "../failure.h"
#include "../numbers.h"
#include "decoder.h"

#include <memory>
#include <new>

#include <libheif/heif.h>

namespace show {

namespace {

template <auto release>
struct Release {
    void operator()(auto *owned) const { release(owned); }
};

using Context = std::unique_ptr<heif_context, Release<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Release<heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options, Release<heif_decoding_options_free>>;

/// The decoders that the library loads pass on that they failed, and not why.
void check(const heif_error &error, PictureSize size = {0, 0}) {
    if (error.code == heif_error_Ok)
        return;
    checkMemoryFor(size);
    if (error.code == heif_error_Memory_allocation_error && error.subcode != heif_suberror_Security_limit_exceeded)
        throw std::bad_alloc();
    if (error.subcode == heif_suberror_End_of_data)
        throw Failure("the HEIC picture is cut off");
    throw Failure(std::string("the HEIC picture cannot be decoded (") + error.message + ")");
}

struct Opened {
    Context context;
    Handle picture;

    explicit Opened(Bytes file) : context(heif_context_alloc()) {
        if (!context)
            throw std::bad_alloc();
        heif_context_set_max_decoding_threads(context.get(), 0); // photographs are read by threads already
        check(heif_context_read_from_memory_without_copy(context.get(), file.data(), file.size(), nullptr));
        heif_image_handle *found = nullptr;
        check(heif_context_get_primary_image_handle(context.get(), &found));
        picture.reset(found);
    }
};

bool recognises(Bytes start) {
    return standsAt(start, 4, "ftyp") &&
           heif_check_filetype(start.data(), static_cast<int>(start.size())) != heif_filetype_no;
}

PictureSize sizeOf(Bytes file) {
    const Opened opened(file);
    const PictureSize size = {heif_image_handle_get_width(opened.picture.get()),
                              heif_image_handle_get_height(opened.picture.get())};
    if (size.width <= 0 || size.height <= 0)
        throw Failure("the HEIC picture is damaged (its header)");
    return size;
}

void decode(Bytes file, const Surface &picture) {
    // A decoder that the library loads may wait for ever for a thread that could not start.
    checkMemoryFor({picture.width, picture.height});
    const Opened opened(file);
    const Options options(heif_decoding_options_alloc());
    if (!options)
        throw std::bad_alloc();
    options->convert_hdr_to_8bit = 1;
    heif_image *decoded = nullptr;
    check(heif_decode_image(opened.picture.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA,
                            options.get()),
          {picture.width, picture.height});
    const Image image(decoded);
    int stride = 0;
    const std::uint8_t *const plane = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    if (!plane || heif_image_get_width(image.get(), heif_channel_interleaved) != picture.width ||
        heif_image_get_height(image.get(), heif_channel_interleaved) != picture.height)
        throw Failure("the HEIC picture is damaged (it has two sizes)");
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t *bytes = plane + static_cast<std::ptrdiff_t>(y) * stride;
        for (int x = 0; x < picture.width; ++x, bytes += 4)
            *picture.at(x, y) = static_cast<q_ulong>(bytes[3]) << 24 | static_cast<q_ulong>(bytes[0]) << 16 |
                                static_cast<q_ulong>(bytes[1]) << 8 | bytes[2];
    }
}

ExifNotes notes(Bytes file) {
    const Opened opened(file);
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(opened.picture.get(), "Exif", &id, 1) != 1)
        return {};
    std::vector<unsigned char> block(heif_image_handle_get_metadata_size(opened.picture.get(), id));
    check(heif_image_handle_get_metadata(opened.picture.get(), id, block.data()));
    // The first number says how far behind it the structure begins.
    ExifNotes found = readExif(part(block, 4 + std::size_t{Numbers{block, false}.at(0, 4)}, block.size()));
    found.orientation = 1; // the library has turned it
    return found;
}

std::vector<unsigned char> profile(Bytes file) {
    const Opened opened(file);
    std::vector<unsigned char> bytes(heif_image_handle_get_raw_color_profile_size(opened.picture.get()));
    if (!bytes.empty())
        check(heif_image_handle_get_raw_color_profile(opened.picture.get(), bytes.data()));
    return bytes;
}

} // namespace

const Decoder heifDecoder = {"HEIC", recognises, sizeOf, decode, notes, profile};

} // namespace show
