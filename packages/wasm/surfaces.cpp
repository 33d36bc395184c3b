/// \file
/// Memory for what a host of the module hands to its functions: surfaces, records, texts. It lies in the module's own,
/// where the host sees it.
#include <cstdlib>

extern "C" {

/// So many bytes, all 0, at a multiple of 16; a null pointer if there are not so many.
__attribute__((export_name("q_MurAllocate"))) void *q_MurAllocate(unsigned bytes) {
    return std::calloc(bytes, 1);
}

/// Gives back what q_MurAllocate() gave. A null pointer is nothing.
__attribute__((export_name("q_MurRelease"))) void q_MurRelease(void *memory) {
    std::free(memory);
}
}
