/// \file
/// Standard input, output and errors.
#ifndef QMUR_SHOW_STANDARD_FILES_H
#define QMUR_SHOW_STANDARD_FILES_H

#include <string>

namespace show {

/// Where the program was started with one of them closed, nothing is opened in its place: otherwise the next file would
/// be, and messages would go into it. Call first.
void openStandardFiles();

/// Writes the text to standard output. Throws Failure if it does not arrive.
void print(const std::string &text);

} // namespace show

#endif
