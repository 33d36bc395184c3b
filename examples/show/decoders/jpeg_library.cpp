// JPEG by libjpeg, in the version of libjpeg-turbo where that is the system's.

#include "../failure.h"
#include "jpeg_file.h"

#include <csetjmp>
#include <cstdio>

#include <jerror.h>
#include <jpeglib.h>

namespace show {

namespace {

constexpr int mostScans = 500; // a few bytes each, every one decodes the whole picture anew

/// The library's own way to say that it cannot go on is to leave by a jump, so nothing that a jump passes over may have
/// a destructor.
struct Reader {
    jpeg_decompress_struct decompress;
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress;
    std::jmp_buf leave;
    char message[JMSG_LENGTH_MAX];
    int failure; ///< the code of what made it leave
    bool endMissing;
    bool damaged;
};

Reader &readerOf(j_common_ptr common) {
    return *static_cast<Reader *>(common->client_data);
}

[[noreturn]] void leave(j_common_ptr common) {
    Reader &reader = readerOf(common);
    reader.failure = reader.errors.msg_code;
    (*reader.errors.format_message)(common, reader.message);
    std::longjmp(reader.leave, 1);
}

void noteMessage(j_common_ptr common, int level) {
    if (level >= 0)
        return;
    Reader &reader = readerOf(common);
    switch (reader.errors.msg_code) {
    case JWRN_JPEG_EOF:
        reader.endMissing = true;
        break;
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_MUST_RESYNC:
        reader.damaged = true;
        break;
    default: // what cameras write and nobody sees
        break;
    }
}

void discardMessage(j_common_ptr) {}

void watchScans(j_common_ptr common) {
    if (!common->is_decompressor)
        return;
    Reader &reader = readerOf(common);
    if (reader.decompress.input_scan_number > mostScans) {
        reader.damaged = true;
        reader.errors.msg_code = JERR_BAD_PROGRESSION;
        leave(common);
    }
}

q_ulong opaque(unsigned red, unsigned green, unsigned blue) {
    return 0xFF000000U | red << 16 | green << 8 | blue;
}

void storeRow(q_ulong *out, const JSAMPLE *row, const jpeg_decompress_struct &decompress) {
    const int width = static_cast<int>(decompress.output_width);
    if (decompress.out_color_space != JCS_CMYK) {
        for (int x = 0; x < width; ++x, row += 3)
            out[x] = opaque(row[0], row[1], row[2]);
        return;
    }
    // Programs that sign as Adobe does store how much light is left rather than how much ink there is.
    const unsigned turned = decompress.saw_Adobe_marker ? 0 : 255;
    for (int x = 0; x < width; ++x, row += 4) {
        const unsigned black = row[3] ^ turned;
        out[x] =
            opaque((row[0] ^ turned) * black / 255, (row[1] ^ turned) * black / 255, (row[2] ^ turned) * black / 255);
    }
}

/// False if the library left; the reader says why.
bool decodeRows(Reader &reader, Bytes file, const Surface &picture, JSAMPLE *row) {
    if (setjmp(reader.leave) != 0)
        return false;
    jpeg_decompress_struct &decompress = reader.decompress;
    jpeg_create_decompress(&decompress);
    decompress.client_data = &reader;
    decompress.progress = &reader.progress;
    jpeg_mem_src(&decompress, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&decompress, TRUE);
    const bool inks = decompress.jpeg_color_space == JCS_CMYK || decompress.jpeg_color_space == JCS_YCCK;
    decompress.out_color_space = inks ? JCS_CMYK : JCS_RGB;
    jpeg_start_decompress(&decompress);
    const auto sameAs = [](JDIMENSION have, int want) { return have == static_cast<JDIMENSION>(want); };
    if (!sameAs(decompress.output_width, picture.width) || !sameAs(decompress.output_height, picture.height)) {
        reader.damaged = true;
        return false;
    }
    for (int y = 0; y < picture.height && !reader.endMissing && !reader.damaged; ++y) {
        jpeg_read_scanlines(&decompress, &row, 1);
        storeRow(picture.at(0, y), row, decompress);
    }
    return !reader.endMissing && !reader.damaged;
}

void decode(Bytes file, const Surface &picture) {
    std::vector<JSAMPLE> row(static_cast<std::size_t>(picture.width) * 4);
    Reader reader = {};
    reader.decompress.err = jpeg_std_error(&reader.errors);
    reader.decompress.client_data = &reader;
    reader.errors.error_exit = leave;
    reader.errors.emit_message = noteMessage;
    reader.errors.output_message = discardMessage;
    reader.progress.progress_monitor = watchScans;
    const bool decoded = decodeRows(reader, file, picture, row.data());
    jpeg_destroy_decompress(&reader.decompress);
    if (decoded)
        return;
    if (reader.failure == JERR_OUT_OF_MEMORY || reader.failure == JERR_NO_BACKING_STORE)
        throw std::bad_alloc();
    if (reader.endMissing || reader.failure == JERR_INPUT_EOF)
        throw Failure("the JPEG picture is cut off");
    throw Failure(std::string("the JPEG picture is damaged") +
                  (reader.failure == 0 ? "" : std::string(" (") + reader.message + ")"));
}

} // namespace

const Decoder jpegDecoder = {"JPEG", isJpeg, sizeOfJpeg, decode, notesOfJpeg, profileOfJpeg};

} // namespace show
