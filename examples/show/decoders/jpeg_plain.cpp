// JPEG by the header-only reader, which trusts the tables of codes that it finds.

#include "jpeg_file.h"
#include "plain_reader.h"

namespace show {

namespace {

void decode(Bytes file, const Surface &picture) {
    checkJpegTables(file);
    readPlainly("JPEG", file, picture);
}

} // namespace

const Decoder jpegDecoder = {"JPEG", isJpeg, sizeOfJpeg, decode, notesOfJpeg, profileOfJpeg};

} // namespace show
