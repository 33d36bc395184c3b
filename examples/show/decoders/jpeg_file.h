/// \file
/// What can be said of a JPEG file without decoding it.
#ifndef QMUR_SHOW_JPEG_FILE_H
#define QMUR_SHOW_JPEG_FILE_H

#include "decoder.h"

namespace show {

bool isJpeg(Bytes start);
PictureSize sizeOfJpeg(Bytes file);
ExifNotes notesOfJpeg(Bytes file);

/// Throws Failure unless all tables of codes are such as a decoder can rely on, every scan has its tables, and the
/// picture has its end. For decoders that do not look themselves.
void checkJpegTables(Bytes file);

} // namespace show

#endif
