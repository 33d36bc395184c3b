#include <q_Mur.h>

#if defined(_WIN32)
#include <windows.h>
static_assert(sizeof(RECT) == sizeof(tagRECT) && sizeof(HINSTANCE) == sizeof(HINSTANCE__ *));
#endif

#include "headers.h"

void fillWithHeaderBefore(q_ulong *dst, tagRECT rect, tagPOINT offset) {
    rect.left += offset.x;
    rect.right += offset.x;
    iFillRect(dst, &rect, 4, 1);
}
