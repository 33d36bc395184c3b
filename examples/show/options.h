/// \file
/// The command line.
#ifndef QMUR_SHOW_OPTIONS_H
#define QMUR_SHOW_OPTIONS_H

#include "show.h"

#include <optional>

namespace show {

struct Options {
    ShowSettings show;
    std::vector<std::filesystem::path> outputs;
    std::optional<int> first;
    std::optional<int> last;
    int threads = 1;
    bool listEffects = false;
    std::string answer; ///< what --help or --version print; nothing else is to be done then
};

/// Throws Failure.
Options parseOptions(int argumentCount, char **arguments);

} // namespace show

#endif
