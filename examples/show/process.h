/// \file
/// Another program that is fed through its standard input.
#ifndef QMUR_SHOW_PROCESS_H
#define QMUR_SHOW_PROCESS_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace show {

/// Whether this build can start other programs at all.
bool canStartPrograms();

/// Whether a program of that name is found along the search path.
bool isInstalled(const std::string &program);

class Process {
public:
    /// Starts `command`, its name looked up along the search path. Throws Failure.
    explicit Process(const std::vector<std::string> &command);
    /// Ends the program at once if it still runs.
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    /// Feeds the program. False if it does not listen any more. Throws Interrupted if a signal ended the run meanwhile.
    bool write(const unsigned char *bytes, std::size_t count);

    /// Ends the input and waits. True if the program ended with success.
    bool finish();

    /// The last line that the program wrote to its standard error; call after finish().
    std::string lastWords() const;

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace show

#endif
