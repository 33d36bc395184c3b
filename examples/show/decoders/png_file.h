/// \file
/// What can be said of a PNG file without decoding it.
#ifndef QMUR_SHOW_PNG_FILE_H
#define QMUR_SHOW_PNG_FILE_H

#include "decoder.h"

namespace show {

bool isPng(Bytes start);
PictureSize sizeOfPng(Bytes file);
ExifNotes notesOfPng(Bytes file);

} // namespace show

#endif
