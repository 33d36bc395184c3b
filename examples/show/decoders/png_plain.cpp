// PNG by the header-only reader.

#include "plain_reader.h"
#include "png_file.h"

namespace show {

namespace {

void decode(Bytes file, const Surface &picture) {
    readPlainly("PNG", file, picture);
}

} // namespace

const Decoder pngDecoder = {"PNG", isPng, sizeOfPng, decode, notesOfPng, nullptr};

} // namespace show
