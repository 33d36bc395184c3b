/// \file
/// A host that links against the library and checks what it answers. It uses no header but the library's own, so that
/// it compiles without a C runtime and without the platform's headers.
#ifndef Q_MUR_TESTS_LINK_HOST_H
#define Q_MUR_TESTS_LINK_HOST_H

/// Runs all checks. Returns the condition that failed, or null.
const char *checkLibrary();

#endif
