#include "base/alias.h"
#include "q_Mur/blit.h"
#include "q_Mur/filter.h"

// Three names that hosts link against and that draw nothing: one empty body.

#if defined(__wasm__)
void Blur_Ring(q_ulong *, tagPOINT, int, int, int, int) {}
void Blur_Parallelogram(q_ulong *, int, int, int, int, int, int, tagRECT *, int, int) {}
void i3DBltNear32() {}
#else
extern "C" void q_MurEmptyBody() {}

void Blur_Ring(q_ulong *, tagPOINT, int, int, int, int) Q_MUR_ALIAS_OF(q_MurEmptyBody);
void Blur_Parallelogram(q_ulong *, int, int, int, int, int, int, tagRECT *, int, int) Q_MUR_ALIAS_OF(q_MurEmptyBody);
void i3DBltNear32() Q_MUR_ALIAS_OF(q_MurEmptyBody);
#endif
