/// \file
/// The host as an ordinary program.
#include "headers.h"
#include "host.h"

#include <cstdio>

int main() {
    const char *failed = checkLibrary();
    if (!failed)
        failed = checkHeaders();
    if (failed) {
        std::fprintf(stderr, "failed: %s\n", failed);
        return 1;
    }
    std::puts("the library answers as it should");
    return 0;
}
