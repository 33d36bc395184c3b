#include "messages.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace show {

namespace {

constexpr int usualColumns = 80;

} // namespace

void say(const std::string &text) {
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        std::fprintf(stderr, "qmur-show: %.*s\n", static_cast<int>(line.size()), line.data());
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    }
}

#ifdef _WIN32

int terminalColumns() {
    if (_isatty(_fileno(stderr)) == 0)
        return 0;
    CONSOLE_SCREEN_BUFFER_INFO information;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &information))
        return usualColumns;
    return information.srWindow.Right - information.srWindow.Left + 1;
}

#else

int terminalColumns() {
    const char *const terminal = std::getenv("TERM");
    if (isatty(STDERR_FILENO) == 0 || (terminal && std::string_view(terminal) == "dumb"))
        return 0;
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualColumns;
}

#endif

} // namespace show
