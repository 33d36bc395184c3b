/// \file
/// Three files that include the library's header before the platform's, behind it, and without it: each fills the
/// rectangle that it is handed. They are one program, so the types must be the same in all of them.
#ifndef Q_MUR_TESTS_LINK_HEADERS_H
#define Q_MUR_TESTS_LINK_HEADERS_H

#include <q_Mur.h>

void fillWithHeaderBefore(q_ulong *dst, tagRECT rect, tagPOINT offset);
void fillWithHeaderBehind(q_ulong *dst, tagRECT rect, tagPOINT offset);
void fillWithHeaderAlone(q_ulong *dst, tagRECT rect, tagPOINT offset);

/// Returns the condition that failed, or null.
inline const char *checkHeaders() {
    q_ulong pixels[4] = {};
    const tagRECT rect = {0, 0, 1, 1};
    fillWithHeaderBefore(pixels, rect, {0, 0});
    fillWithHeaderBehind(pixels, rect, {1, 0});
    fillWithHeaderAlone(pixels, rect, {2, 0});
    const bool filled = pixels[0] == 1 && pixels[1] == 2 && pixels[2] == 3 && pixels[3] == 0;
    return filled ? nullptr : "all three files fill their pixel";
}

#endif
