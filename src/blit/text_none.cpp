#include "q_Mur/blit.h"

// Built where no rasteriser is at hand: a text cannot be had.
int iTextOut(q_ulong *, tagRECT *, int, char *, q_ulong, int, int, int, char *) {
    return 0;
}
