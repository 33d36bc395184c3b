/// \file
/// What the user asks for.
#ifndef QMUR_SHOW_OPTIONS_H
#define QMUR_SHOW_OPTIONS_H

#include "output.h"
#include "show.h"

#include <optional>
#include <string>

namespace show {

struct Options {
    ShowSettings show;              ///< without photographs, which have to be found first
    std::vector<ShownPhoto> photos; ///< as they were named
    Paths outputs;
    Paths playlists;
    std::filesystem::path music; ///< empty for a silent film
    bool lastsAsMusic = false;   ///< the music's length is divided among the photographs
    bool skipsBad = false;
    bool showsComments = false;
    std::optional<int> first;
    std::optional<int> last;
    int threads = 1;
    bool listEffects = false;
    bool printsTimings = false;
    bool profiles = false;
    bool plays = false;
    std::string answer; ///< what --help or --version print; nothing else is to be done then
};

/// Throws Failure.
Options parseOptions(const std::vector<std::string> &arguments);

} // namespace show

#endif
