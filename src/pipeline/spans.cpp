#include "spans.h"

#include "base/pixel.h"
#include "q_Mur/pipeline.h"

namespace qmur {
namespace {

/// Calls `pixel(index, shade)` for every pixel of a band inside the clip.
template <int fractionBits, class Pixel>
void forEachPixel(const tagRECT &clip, q_ulong pitch, const ShadedEdge &left, const ShadedEdge &right, Pixel pixel) {
    const Distance rowStep = asDistance(pitch);
    forEachSteppedRow<fractionBits>(left, right, windowOf(clip), [=](int y, Span columns, Running<ShadedColumn> shade) {
        const Distance row = y * rowStep;
        for (Distance i = row + columns.begin; i < row + columns.end; ++i, shade.advance())
            pixel(i, shade.value);
    });
}

/// Bits of fixed point with and without a depth. The ways with a depth reach 524288 pixels far, the other 8192.
constexpr int depthFractionBits = 12;
constexpr int additiveFractionBits = 18;

/// Not masked: a channel outside 0 to 255 runs into its neighbours.
q_ulong packed(const ShadedColumn &shade, int bits) {
    const auto channel = [bits](int value) { return static_cast<q_ulong>(value >> bits); };
    return ((channel(shade.red) << 8 | channel(shade.green)) << 8) | channel(shade.blue);
}

/// Half of the pixel and half of the shade, each halved before the sum.
q_ulong halfMixed(q_ulong d, const ShadedColumn &shade) {
    return (d >> 1 & 0x7F7F7F) + packed(shade, depthFractionBits + 1);
}

/// What draws with a depth: `store(dst pixel, shade)` for each pixel that passes both tests.
template <class Store>
void drawNearest(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch,
                 const ShadedEdge &left, const ShadedEdge &right, Store store) {
    short *const zBuffer = data.zBuffer;
    const int nearLimit = data.nearLimit;
    forEachPixel<depthFractionBits>(clip, pitch, left, right, [=](Distance i, const ShadedColumn &shade) {
        const int z = shade.depth >> depthFractionBits;
        if (z > nearLimit && z < zBuffer[i]) {
            store(dst[i], shade);
            zBuffer[i] = static_cast<short>(z);
        }
    });
}

} // namespace

void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right) {
    drawNearest(data, dst, clip, pitch, left, right,
                [](q_ulong &d, const ShadedColumn &shade) { d = packed(shade, depthFractionBits); });
}

void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right, int opacity) {
    if (opacity == 128) {
        forEachPixel<depthFractionBits>(clip, pitch, left, right, [dst](Distance i, const ShadedColumn &shade) {
            dst[i] = halfMixed(dst[i], shade);
        });
        return;
    }
    const auto shadeWeight = static_cast<q_ulong>(opacity);
    const q_ulong dstWeight = 256 - shadeWeight;
    drawNearest(data, dst, clip, pitch, left, right, [=](q_ulong &d, const ShadedColumn &shade) {
        const auto weighted = [shadeWeight](int value) {
            return static_cast<q_ulong>(value >> depthFractionBits) * shadeWeight;
        };
        // Meant: red takes the destination's top byte along.
        const q_ulong red = (weighted(shade.red) << 8) + (d >> 8 & 0xFFFF00) * dstWeight;
        const q_ulong green = weighted(shade.green) + greenOf(d) * dstWeight;
        const q_ulong blue = weighted(shade.blue) + blueOf(d) * dstWeight;
        d = (red & 0xFFFF00FF) | (green & 0xFFFFFF00) | blue >> 8;
    });
}

void mixBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
             const ShadedEdge &right) {
    const int nearLimit = data.nearLimit;
    forEachPixel<depthFractionBits>(clip, pitch, left, right, [=](Distance i, const ShadedColumn &shade) {
        if (shade.depth >> depthFractionBits > nearLimit)
            dst[i] = halfMixed(dst[i], shade);
    });
}

void addBand(q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left, const ShadedEdge &right) {
    forEachPixel<additiveFractionBits>(clip, pitch, left, right, [dst](Distance i, const ShadedColumn &shade) {
        // Meant: a sum below 0 reads as a large one and saturates, and red is taken with the top byte.
        const auto sum = [](int value, q_ulong d) {
            return cappedAt255(static_cast<q_ulong>(value >> additiveFractionBits) + d);
        };
        const q_ulong d = dst[i];
        dst[i] = pixelOf(sum(shade.red, upperHalfOf(d)), sum(shade.green, greenOf(d)), sum(shade.blue, blueOf(d)));
    });
}

} // namespace qmur

using namespace qmur;

void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0,
                   int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1,
                   int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1, int zB0, int zB1) {
    drawBand(*data, dst, *clip, pitch,
             {shadedCorner(xA0, yA0, rA0, gA0, bA0, zA0), shadedCorner(xA1, yA1, rA1, gA1, bA1, zA1)},
             {shadedCorner(xB0, yB0, rB0, gB0, bB0, zB0), shadedCorner(xB1, yB1, rB1, gB1, bB1, zB1)});
}

void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0,
                   int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1,
                   int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1, int zB0, int zB1,
                   int opacity) {
    drawBand(*data, dst, *clip, pitch,
             {shadedCorner(xA0, yA0, rA0, gA0, bA0, zA0), shadedCorner(xA1, yA1, rA1, gA1, bA1, zA1)},
             {shadedCorner(xB0, yB0, rB0, gB0, bB0, zB0), shadedCorner(xB1, yB1, rB1, gB1, bB1, zB1)}, opacity);
}

void VKD_3D_Render_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                         int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1,
                         int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1,
                         int zB0, int zB1) {
    mixBand(*data, dst, *clip, pitch,
            {shadedCorner(xA0, yA0, rA0, gA0, bA0, zA0), shadedCorner(xA1, yA1, rA1, gA1, bA1, zA1)},
            {shadedCorner(xB0, yB0, rB0, gB0, bB0, zB0), shadedCorner(xB1, yB1, rB1, gB1, bB1, zB1)});
}

void VKD_3D_Render_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0, int xB1, int yA0, int yA1,
                       int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1, int gB0, int gB1,
                       int bA0, int bA1, int bB0, int bB1) {
    addBand(dst, *clip, pitch, {shadedCorner(xA0, yA0, rA0, gA0, bA0, 0), shadedCorner(xA1, yA1, rA1, gA1, bA1, 0)},
            {shadedCorner(xB0, yB0, rB0, gB0, bB0, 0), shadedCorner(xB1, yB1, rB1, gB1, bB1, 0)});
}
