/// \file
/// The kinds of picture files that this build reads.
#ifndef QMUR_SHOW_DECODER_H
#define QMUR_SHOW_DECODER_H

#include "../exif.h"
#include "../surface.h"

#include <vector>

namespace show {

struct PictureSize {
    int width;
    int height;
};

/// A kind of picture file. What the functions throw is a Failure that says why, and not which file, or std::bad_alloc.
struct Decoder {
    const char *name;
    bool (*recognises)(Bytes start);
    /// From the header, which is compared with the length of the file: what lies about its size takes no memory.
    PictureSize (*sizeOf)(Bytes file);
    /// Fills `picture`, which has the size that the header says, with pixels as they are stored: opacity in the top
    /// byte.
    void (*decode)(Bytes file, const Surface &picture);
    ExifNotes (*notes)(Bytes file);
    /// What colours the pixels mean, as an ICC profile; empty if the file does not say. Null if such files never do, or
    /// this build does not look.
    std::vector<unsigned char> (*profile)(Bytes file);
};

/// How many bytes of a file's start Decoder::recognises() looks at.
constexpr std::size_t startBytes = 64;

/// The decoder for a file that begins like this, or null.
const Decoder *findDecoder(Bytes start);

/// The names of all kinds, as in "JPEG, PNG or BMP".
std::string decoderNames();

/// For decoders that may call a lack of memory damage: throws std::bad_alloc unless there is as much memory as decoding
/// so many pixels takes at most.
void checkMemoryFor(PictureSize size);

extern const Decoder jpegDecoder;
extern const Decoder pngDecoder;
extern const Decoder bmpDecoder;
extern const Decoder webpDecoder;
extern const Decoder heifDecoder;

} // namespace show

#endif
