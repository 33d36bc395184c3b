#include "pen.h"
#include "q_Mur/region.h"

using namespace qmur;

void iLine(q_ulong *surface, int x1, int y1, int x2, int y2, q_ulong color, tagRECT *clip, int pitch) {
    drawLine(Pen<q_ulong>{surface, pitch, windowOf(*clip), color}, {x1, y1}, {x2, y2});
}

void bLine(unsigned char *plane, int x1, int y1, int x2, int y2, unsigned char value, tagRECT *clip, int pitch) {
    drawLine(Pen<unsigned char>{plane, pitch, windowOf(*clip), value}, {x1, y1}, {x2, y2});
}
