/// \file
/// Another program, fed through its standard input and listened to.
#ifndef QMUR_SHOW_PROCESS_H
#define QMUR_SHOW_PROCESS_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace show {

/// Whether a program of that name is found along the search path.
bool isInstalled(const std::string &program);

/// What takes the lines that a program writes, one after the other, without their ends. It runs in a thread of its own
/// and must not throw.
using LineListener = std::function<void(std::string_view line)>;

class Process {
public:
    /// Starts `command`, UTF-8, its name looked up along the search path. What it writes to its standard output goes
    /// nowhere unless there is a listener. Throws Failure.
    Process(const std::vector<std::string> &command, LineListener output, LineListener errors);
    /// Ends the program at once if it still runs.
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    /// Feeds the program. False if it does not listen any more. Throws Interrupted if a signal ended the run meanwhile.
    bool write(const unsigned char *bytes, std::size_t count);

    /// Ends the input and waits until the program has ended and all its lines were heard. True if it ended with
    /// success.
    bool finish();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace show

#endif
