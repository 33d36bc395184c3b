#include "headers.h"

void fillWithHeaderAlone(q_ulong *dst, tagRECT rect, tagPOINT offset) {
    rect.left += offset.x;
    rect.right += offset.x;
    iFillRect(dst, &rect, 4, 3);
}
