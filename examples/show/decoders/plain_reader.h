/// \file
/// A header-only reader, for the kinds of pictures that this build has no library for.
#ifndef QMUR_SHOW_PLAIN_READER_H
#define QMUR_SHOW_PLAIN_READER_H

#include "decoder.h"

namespace show {

/// Fills `picture`. Throws Failure, which calls the file by the name of its kind.
void readPlainly(const char *kind, Bytes file, const Surface &picture);

} // namespace show

#endif
