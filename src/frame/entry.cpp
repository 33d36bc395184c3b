#include "q_Mur/types.h"

#if defined(_WIN32)

/// The load-time entry answers success and does nothing else: the tables are filled by the host's own call.
extern "C" int __stdcall DllMain(HINSTANCE__ *, unsigned long, void *) {
    return 1;
}

#endif
