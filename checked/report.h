/// \file
/// What becomes of a message.
#ifndef Q_MUR_CHECKED_REPORT_H
#define Q_MUR_CHECKED_REPORT_H

#include <string>

namespace checked {

/// Prints a message and ends the program, unless the host wishes otherwise.
void report(const std::string &message);

/// Whether numbers are named that make no sense.
bool areDoubtsNamed();

} // namespace checked

#endif
