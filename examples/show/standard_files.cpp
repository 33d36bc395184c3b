#include "standard_files.h"

#include "failure.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace show {

#ifdef _WIN32

void openStandardFiles() {
    SetConsoleOutputCP(CP_UTF8);
}

#else

void openStandardFiles() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDWR) != descriptor)
            std::_Exit(2);
}

#endif

void print(const std::string &text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
        throw Failure(std::string("cannot write to standard output: ") + std::strerror(errno));
}

} // namespace show
