#include "process.h"

#include "failure.h"
#include "interruption.h"

#ifdef _WIN32

namespace show {

// Pictures are what the Windows build writes.
struct Process::State {};

bool canStartPrograms() {
    return false;
}
bool isInstalled(const std::string &) {
    return false;
}
Process::Process(const std::vector<std::string> &command) {
    throw Failure("cannot start " + command.front() + " in this build");
}
Process::~Process() = default;
bool Process::write(const unsigned char *, std::size_t) {
    return false;
}
bool Process::finish() {
    return false;
}
std::string Process::lastWords() const {
    return {};
}

} // namespace show

#else

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace show {

namespace {

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

} // namespace

struct Process::State {
    pid_t id = 0; // 0 when it has ended
    int input = -1;
    std::unique_ptr<std::FILE, CloseFile> errors;

    void closeInput() {
        if (input >= 0)
            ::close(input);
        input = -1;
    }

    /// Waits for the end; `whenWoken` is called when a signal comes in between.
    int wait(void (*whenWoken)()) {
        int status = 0;
        while (::waitpid(id, &status, 0) < 0 && errno == EINTR)
            whenWoken();
        id = 0;
        return status;
    }
};

bool canStartPrograms() {
    return true;
}

bool isInstalled(const std::string &program) {
    const char *const path = std::getenv("PATH");
    std::istringstream directories(path ? path : "");
    for (std::string directory; std::getline(directories, directory, ':');)
        if (::access(((directory.empty() ? "." : directory) + "/" + program).c_str(), X_OK) == 0)
            return true;
    return false;
}

Process::Process(const std::vector<std::string> &command) : state(std::make_unique<State>()) {
    const auto fail = [&command](int error) {
        throw Failure("cannot start " + command.front() + ": " + std::strerror(error));
    };
    std::array<int, 2> ends;
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail(errno);
    state->input = ends[1];
    state->errors.reset(std::tmpfile());

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, ends[0], STDIN_FILENO);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    if (state->errors)
        posix_spawn_file_actions_adddup2(&files, fileno(state->errors.get()), STDERR_FILENO);

    // In a group of its own it does not see an interrupt from the keyboard, and with plain signals it sees a broken
    // pipe.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t plainSignals;
    sigemptyset(&plainSignals);
    sigaddset(&plainSignals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &plainSignals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);

    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const int error = ::posix_spawnp(&state->id, arguments.front(), &files, &attributes, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    ::close(ends[0]);
    if (error != 0) {
        state->closeInput();
        state->id = 0;
        fail(error);
    }
}

Process::~Process() {
    state->closeInput();
    if (state->id != 0) {
        ::kill(state->id, SIGKILL);
        state->wait([] {});
    }
}

bool Process::write(const unsigned char *bytes, std::size_t count) {
    while (count > 0) {
        throwIfInterrupted();
        const ssize_t written = ::write(state->input, bytes, count);
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0) {
            bytes += written;
            count -= static_cast<std::size_t>(written);
        }
    }
    return true;
}

bool Process::finish() {
    state->closeInput();
    const int status = state->wait(throwIfInterrupted);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string Process::lastWords() const {
    std::string last;
    if (!state->errors)
        return last;
    std::rewind(state->errors.get());
    std::string line;
    for (int c = std::getc(state->errors.get()); c != EOF; c = std::getc(state->errors.get())) {
        if (c == '\n' || c == '\r') {
            if (!line.empty())
                last = line;
            line.clear();
        } else {
            line += static_cast<char>(c);
        }
    }
    return line.empty() ? last : line;
}

} // namespace show

#endif
