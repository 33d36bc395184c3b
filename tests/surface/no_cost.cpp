// Calls through the header and the flat ones beside them, in functions of like names: both compile to the same code.
#include <q_Mur/surface.hpp>

extern "C" {

void fill_comfortable(q_ulong *pixels, int width, int height, int pitch, int x, q_ulong colour) {
    q_Mur::fill(q_Mur::View(pixels, width, height, pitch), {x, 2, x + 30, 40}, colour);
}
void fill_flat(q_ulong *pixels, int, int, int pitch, int x, q_ulong colour) {
    tagRECT rect = {x, 2, x + 30, 40};
    iFillRect(pixels, &rect, pitch, colour);
}

void copy_comfortable(q_ulong *dst, const q_ulong *src, int pitch, int x, int y) {
    q_Mur::copy(q_Mur::View(dst, 640, 480, pitch), x, y, q_Mur::ConstView(src, 64, 64), {1, 2, 30, 40});
}
void copy_flat(q_ulong *dst, const q_ulong *src, int pitch, int x, int y) {
    tagRECT rect = {1, 2, 30, 40};
    iBltFast32(dst, const_cast<q_ulong *>(src), static_cast<q_ulong>(x), static_cast<q_ulong>(y), &rect, pitch, 64);
}

void enlarge_comfortable(q_ulong *dst, const q_ulong *src, int width, int height) {
    q_Mur::enlarge(q_Mur::View(dst, 640, 480), q_Mur::ConstView(src, width, height));
}
void enlarge_flat(q_ulong *dst, const q_ulong *src, int width, int height) {
    tagRECT dstRect = {0, 0, 640, 480};
    tagRECT srcRect = {0, 0, width, height};
    iBltBilinear32_KeySrc(dst, const_cast<q_ulong *>(src), &dstRect, &srcRect, 640, static_cast<q_ulong>(width),
                          0xFF000000);
}
}
