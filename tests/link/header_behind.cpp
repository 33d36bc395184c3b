#if defined(_WIN32)
#include <windows.h>
#endif

#include <q_Mur.h>

#include "headers.h"

void fillWithHeaderBehind(q_ulong *dst, tagRECT rect, tagPOINT offset) {
    rect.left += offset.x;
    rect.right += offset.x;
#if defined(_WIN32)
    // The platform's own names must do.
    DWORD *pixels = dst;
    RECT *place = &rect;
    iFillRect(pixels, place, 4, RGB(2, 0, 0));
#else
    iFillRect(dst, &rect, 4, 2);
#endif
}
