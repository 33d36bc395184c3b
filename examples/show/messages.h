/// \file
/// What is said on standard error.
#ifndef QMUR_SHOW_MESSAGES_H
#define QMUR_SHOW_MESSAGES_H

#include <string>

namespace show {

/// Writes each line of the text after the program's name.
void say(const std::string &text);

/// The columns of the terminal that standard error goes to; 0 if it goes elsewhere, or to one that cannot go back to
/// the beginning of a line.
int terminalColumns();

} // namespace show

#endif
