#include "process.h"

#include "failure.h"
#include "interruption.h"
#include "text.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;
#endif

namespace show {

namespace {

#ifdef _WIN32

using Pipe = HANDLE;
const Pipe noPipe = nullptr;

void closePipe(Pipe pipe) {
    CloseHandle(pipe);
}

/// The count of bytes, 0 at the end.
std::size_t readPipe(Pipe pipe, char *bytes, std::size_t count) {
    DWORD got = 0;
    return ReadFile(pipe, bytes, static_cast<DWORD>(count), &got, nullptr) ? got : 0;
}

#else

using Pipe = int;
constexpr Pipe noPipe = -1;

void closePipe(Pipe pipe) {
    ::close(pipe);
}

std::size_t readPipe(Pipe pipe, char *bytes, std::size_t count) {
    ssize_t got = 0;
    do
        got = ::read(pipe, bytes, count);
    while (got < 0 && errno == EINTR);
    return got > 0 ? static_cast<std::size_t>(got) : 0;
}

#endif

/// One end of a pipe, closed once.
class PipeEnd {
public:
    PipeEnd() = default;
    ~PipeEnd() { close(); }
    PipeEnd(const PipeEnd &) = delete;
    PipeEnd &operator=(const PipeEnd &) = delete;

    Pipe get() const { return pipe; }
    void set(Pipe opened) {
        close();
        pipe = opened;
    }
    void close() {
        if (pipe != noPipe)
            closePipe(pipe);
        pipe = noPipe;
    }

private:
    Pipe pipe = noPipe;
};

/// Reads lines in a thread until the program's end of the pipe is closed.
class Listening {
public:
    ~Listening() { wait(); }

    void start(PipeEnd &source, LineListener listener) {
        const SignalsBlocked blocked;
        thread = std::thread([&source, listener = std::move(listener)] {
            constexpr std::size_t longestLine = 4096;
            std::array<char, 4096> bytes;
            std::array<char, longestLine> line;
            std::size_t length = 0;
            while (const std::size_t count = readPipe(source.get(), bytes.data(), bytes.size()))
                for (std::size_t i = 0; i < count; ++i)
                    if (bytes[i] == '\n' || bytes[i] == '\r') {
                        if (length > 0)
                            listener({line.data(), length});
                        length = 0;
                    } else if (length < longestLine) {
                        line[length++] = bytes[i];
                    }
            if (length > 0)
                listener({line.data(), length});
        });
    }

    void wait() {
        if (thread.joinable())
            thread.join();
    }

private:
    std::thread thread;
};

[[noreturn]] void failToStart(const std::vector<std::string> &command, const std::string &reason) {
    throw Failure("cannot start " + command.front() + ": " + reason);
}

constexpr auto betweenLooks = std::chrono::milliseconds(10);

} // namespace

#ifdef _WIN32

struct Process::State {
    HANDLE process = nullptr;
    PipeEnd input;
    PipeEnd outputEnd;
    PipeEnd errorsEnd;
    Listening output;
    Listening errors;

    bool hasEnded(DWORD milliseconds) const { return WaitForSingleObject(process, milliseconds) != WAIT_TIMEOUT; }
    void kill() const {
        TerminateProcess(process, 1);
        hasEnded(INFINITE);
    }
    bool succeeded() const {
        DWORD status = 1;
        return GetExitCodeProcess(process, &status) && status == 0;
    }
    void forget() {
        CloseHandle(process);
        process = nullptr;
    }
    bool isStarted() const { return process != nullptr; }
};

namespace {

std::wstring pathOfProgram(const std::string &program) {
    const std::wstring name = pathOf(program).wstring();
    std::array<wchar_t, 4096> path = {};
    const DWORD length =
        SearchPathW(nullptr, name.c_str(), L".exe", static_cast<DWORD>(path.size()), path.data(), nullptr);
    return length > 0 && length < path.size() ? std::wstring(path.data(), length) : std::wstring();
}

/// An argument so that the program's own reading of the command line takes it for one.
std::wstring asArgument(const std::string &text) {
    std::wstring result = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : pathOf(text).wstring()) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        result.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        backslashes = 0;
        result += c;
    }
    result.append(2 * backslashes, L'\\');
    return result + L'"';
}

/// A pipe whose end for the program is inherited, and whose other end is not.
bool openPipe(PipeEnd &ours, PipeEnd &theirs, bool weWrite) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (!CreatePipe(&reading, &writing, &inherited, 1 << 16))
        return false;
    ours.set(weWrite ? writing : reading);
    theirs.set(weWrite ? reading : writing);
    return SetHandleInformation(ours.get(), HANDLE_FLAG_INHERIT, 0);
}

} // namespace

bool isInstalled(const std::string &program) {
    return !pathOfProgram(program).empty();
}

Process::Process(const std::vector<std::string> &command, LineListener output, LineListener errors)
    : state(std::make_unique<State>()) {
    const std::wstring program = pathOfProgram(command.front());
    if (program.empty())
        failToStart(command, "it is not installed");
    std::wstring line;
    for (const std::string &argument : command)
        line += (line.empty() ? L"" : L" ") + asArgument(argument);

    PipeEnd theirInput;
    PipeEnd theirOutput;
    PipeEnd theirErrors;
    if (!openPipe(state->input, theirInput, true) || !openPipe(state->outputEnd, theirOutput, false) ||
        !openPipe(state->errorsEnd, theirErrors, false))
        failToStart(command, "there are no pipes");
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = theirInput.get();
    start.hStdOutput = theirOutput.get();
    start.hStdError = theirErrors.get();
    PROCESS_INFORMATION started = {};
    // In a group of its own it does not see an interrupt from the keyboard.
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP, nullptr,
                        nullptr, &start, &started))
        failToStart(command, "error " + std::to_string(GetLastError()));
    CloseHandle(started.hThread);
    state->process = started.hProcess;
    theirInput.close();
    theirOutput.close();
    theirErrors.close();
    try {
        state->output.start(
            state->outputEnd, output ? std::move(output) : [](std::string_view) {});
        state->errors.start(state->errorsEnd, std::move(errors));
    } catch (const std::system_error &error) {
        state->kill();
        state->forget();
        failToStart(command, error.what());
    }
}

bool Process::write(const unsigned char *bytes, std::size_t count) {
    while (count > 0) {
        throwIfInterrupted();
        DWORD written = 0;
        if (!WriteFile(state->input.get(), bytes, static_cast<DWORD>(std::min<std::size_t>(count, 1 << 16)), &written,
                       nullptr))
            return false;
        bytes += written;
        count -= written;
    }
    return true;
}

#else

struct Process::State {
    pid_t id = 0; // 0 when it has ended
    int status = 0;
    PipeEnd input;
    PipeEnd outputEnd;
    PipeEnd errorsEnd;
    Listening output;
    Listening errors;

    bool hasEnded() { return ::waitpid(id, &status, WNOHANG) == id; }
    void kill() {
        ::kill(-id, SIGKILL); // the whole group
        while (::waitpid(id, &status, 0) < 0 && errno == EINTR)
            ;
    }
    bool succeeded() const { return WIFEXITED(status) && WEXITSTATUS(status) == 0; }
    void forget() { id = 0; }
    bool isStarted() const { return id != 0; }
};

namespace {

bool openPipe(PipeEnd &reading, PipeEnd &writing) {
    std::array<int, 2> ends;
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    reading.set(ends[0]);
    writing.set(ends[1]);
    return true;
}

/// What a new program finds open, and how it takes signals.
class SpawnSettings {
public:
    SpawnSettings() {
        note(posix_spawn_file_actions_init(&files));
        note(posix_spawnattr_init(&attributes));
        // In a group of its own it does not see an interrupt from the keyboard, and with the usual way of a broken pipe
        // it ends with us.
        sigset_t usual;
        sigemptyset(&usual);
        sigaddset(&usual, SIGPIPE);
        note(posix_spawnattr_setsigdefault(&attributes, &usual));
        note(posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF));
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    void connect(int theirs, const PipeEnd &end) {
        if (end.get() == noPipe)
            note(posix_spawn_file_actions_addopen(&files, theirs, "/dev/null", O_WRONLY, 0));
        else
            note(posix_spawn_file_actions_adddup2(&files, end.get(), theirs));
    }

    /// 0, or the first thing that went wrong.
    int spawn(pid_t &id, const std::vector<std::string> &command) {
        std::vector<char *> arguments;
        for (const std::string &argument : command)
            arguments.push_back(const_cast<char *>(argument.c_str()));
        arguments.push_back(nullptr);
        if (error == 0)
            note(::posix_spawnp(&id, arguments.front(), &files, &attributes, arguments.data(), environ));
        return error;
    }

private:
    void note(int result) {
        if (error == 0)
            error = result;
    }

    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    int error = 0;
};

} // namespace

bool isInstalled(const std::string &program) {
    const char *const path = std::getenv("PATH");
    std::string_view directories = path ? path : "";
    while (!directories.empty()) {
        const std::string directory(directories.substr(0, directories.find(':')));
        if (::access(((directory.empty() ? "." : directory) + "/" + program).c_str(), X_OK) == 0)
            return true;
        directories.remove_prefix(std::min(directory.size() + 1, directories.size()));
    }
    return false;
}

Process::Process(const std::vector<std::string> &command, LineListener output, LineListener errors)
    : state(std::make_unique<State>()) {
    PipeEnd theirInput;
    PipeEnd theirOutput;
    PipeEnd theirErrors;
    if (!openPipe(theirInput, state->input) || (output && !openPipe(state->outputEnd, theirOutput)) ||
        !openPipe(state->errorsEnd, theirErrors) || ::fcntl(state->input.get(), F_SETFL, O_NONBLOCK) != 0)
        failToStart(command, std::strerror(errno));
    SpawnSettings settings;
    settings.connect(STDIN_FILENO, theirInput);
    settings.connect(STDOUT_FILENO, theirOutput);
    settings.connect(STDERR_FILENO, theirErrors);
    pid_t id = 0;
    if (const int error = settings.spawn(id, command))
        failToStart(command, std::strerror(error));
    state->id = id;
    theirOutput.close();
    theirErrors.close();
    try {
        if (output)
            state->output.start(state->outputEnd, std::move(output));
        state->errors.start(state->errorsEnd, std::move(errors));
    } catch (const std::system_error &error) {
        state->kill();
        state->forget();
        failToStart(command, error.code().message());
    }
}

bool Process::write(const unsigned char *bytes, std::size_t count) {
    constexpr int longestWait = 100; // milliseconds; a signal that comes just before the wait does not end it
    while (count > 0) {
        throwIfInterrupted();
        const ssize_t written = ::write(state->input.get(), bytes, count);
        if (written > 0) {
            bytes += written;
            count -= static_cast<std::size_t>(written);
        } else if (errno == EAGAIN) {
            pollfd waiting = {state->input.get(), POLLOUT, 0};
            ::poll(&waiting, 1, longestWait);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

#endif

Process::~Process() {
    state->input.close();
    if (state->isStarted()) {
        state->kill();
        state->forget();
    }
}

bool Process::finish() {
    state->input.close();
#ifdef _WIN32
    while (!state->hasEnded(static_cast<DWORD>(betweenLooks.count())))
        throwIfInterrupted();
#else
    while (!state->hasEnded()) {
        throwIfInterrupted();
        std::this_thread::sleep_for(betweenLooks);
    }
#endif
    const bool succeeded = state->succeeded();
    state->forget();
    state->output.wait();
    state->errors.wait();
    return succeeded;
}

} // namespace show
