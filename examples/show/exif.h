/// \file
/// What a camera notes beside the pixels.
#ifndef QMUR_SHOW_EXIF_H
#define QMUR_SHOW_EXIF_H

#include "input_file.h"

#include <string>
#include <string_view>

namespace show {

struct ExifNotes {
    int orientation = 1; ///< 1 to 8; 1 is upright
    std::string comment; ///< what somebody wrote of the picture, in a line; empty if nobody did
    std::string taken;   ///< as in 2024:07:31 18:05:59, which sorts by time; empty if it is not known
};

/// Reads a TIFF structure, which may stand behind the heading "Exif". What is damaged is as if it were not there.
ExifNotes readExif(Bytes bytes);

/// The caption in a JPEG file's IPTC record, in a line; empty if there is none.
std::string captionOfJpeg(Bytes file);

/// A JPEG file's Exif segment; empty if there is none.
Bytes exifOfJpeg(Bytes file);

/// A PNG file's eXIf chunk; empty if there is none.
Bytes exifOfPng(Bytes file);

/// A WebP file's chunk of this name; empty if there is none.
Bytes chunkOfWebp(Bytes file, std::string_view name);

/// A JPEG file's ICC profile, which may be spread over segments; empty if there is none, or not all of it.
std::vector<unsigned char> profileOfJpeg(Bytes file);

} // namespace show

#endif
