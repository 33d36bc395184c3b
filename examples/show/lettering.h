/// \file
/// Lines of text, by the letters that the platform has.
#ifndef QMUR_SHOW_LETTERING_H
#define QMUR_SHOW_LETTERING_H

#include "surface.h"

#include <string>

namespace show {

constexpr q_ulong ink = 0xFFFFFF;

int widthOf(const tagRECT &rect);
int heightOf(const tagRECT &rect);

/// What is not 0 on the surface; empty if all of it is.
tagRECT boundsOf(const Surface &surface);

/// Writes a line, in UTF-8, in the middle of `place`, as large as that allows. False if there are no letters to be had.
bool writeLine(const Surface &out, const std::string &line, const tagRECT &place);

} // namespace show

#endif
