#include "spans.h"

#include "base/pixel.h"
#include "base/surface.h"
#include "q_Mur/pipeline.h"

namespace qmur {
namespace {

template <class Operation>
Shade componentwise(const Shade &a, const Shade &b, Operation operation) {
    return {operation(a.red, b.red), operation(a.green, b.green), operation(a.blue, b.blue),
            operation(a.depth, b.depth)};
}

template <class Operation>
Shade componentwise(const Shade &a, Operation operation) {
    return {operation(a.red), operation(a.green), operation(a.blue), operation(a.depth)};
}

Shade operator+(const Shade &a, const Shade &b) {
    return componentwise(a, b, wrapAdd);
}

Shade operator-(const Shade &a, const Shade &b) {
    return componentwise(a, b, wrapSubtract);
}

Shade operator*(const Shade &a, int factor) {
    return componentwise(a, [factor](int value) { return wrapMultiply(value, factor); });
}

Shade operator<<(const Shade &a, int bits) {
    return componentwise(a, [bits](int value) { return value << bits; });
}

/// The least int over -1 wraps, where the processor would trap.
int dividedBy(int value, int divisor) {
    return divisor == -1 ? wrapSubtract(0, value) : value / divisor;
}

Shade operator/(const Shade &a, int divisor) {
    return componentwise(a, [divisor](int value) { return dividedBy(value, divisor); });
}

constexpr int atLeastOne(int count) {
    return count == 0 ? 1 : count;
}

/// An edge on its way down. It is evaluated from its own start, wherever the walk begins, so that it passes through the
/// same values under every clip.
template <int fractionBits>
struct EdgeWalk {
    int x;
    Shade shade;
    int stepX;
    Shade step;

    EdgeWalk(const ShadedEdge &edge, int firstRow) {
        const EdgeEnd &start = edge.start;
        const EdgeEnd &end = edge.end;
        const int height = atLeastOne(wrapSubtract(end.y, start.y));
        const int rows = wrapSubtract(firstRow, start.y);
        stepX = dividedBy(wrapSubtract(end.x, start.x) << fractionBits, height);
        step = ((end.shade - start.shade) << fractionBits) / height;
        x = wrapAdd(wrapMultiply(rows, stepX), start.x << fractionBits);
        shade = step * rows + (start.shade << fractionBits);
    }

    void advance() {
        x = wrapAdd(x, stepX);
        shade = shade + step;
    }
};

/// Calls `pixel(index, shade)` for every pixel of the rows that both edges cover, from the left edge's column up to,
/// not including, the right edge's. Columns are floors, so that bands which share an edge meet without a gap or an
/// overlap.
template <int fractionBits, class Pixel>
void forEachPixel(const tagRECT &clip, q_ulong pitch, const ShadedEdge &leftEdge, const ShadedEdge &rightEdge,
                  Pixel pixel) {
    const Span columns = columnsOf(clip);
    const Span rows = intersection(
        rowsOf(clip), intersection({leftEdge.start.y, leftEdge.end.y}, {rightEdge.start.y, rightEdge.end.y}));
    if (rows.empty())
        return;
    EdgeWalk<fractionBits> left(leftEdge, rows.begin);
    EdgeWalk<fractionBits> right(rightEdge, rows.begin);
    const Distance rowStep = asDistance(pitch);
    Distance row = rows.begin * rowStep;
    for (int y = rows.begin; y < rows.end; ++y, row += rowStep, left.advance(), right.advance()) {
        const int leftColumn = left.x >> fractionBits;
        const Span inside = intersection({leftColumn, right.x >> fractionBits}, columns);
        if (inside.empty())
            continue;
        // The width is that of the fixed-point numbers; it may differ from that of the columns by one.
        const int width = atLeastOne(wrapSubtract(right.x, left.x) >> fractionBits);
        const Shade step = (right.shade - left.shade) / width;
        Shade shade = left.shade + step * wrapSubtract(inside.begin, leftColumn);
        for (Distance i = row + inside.begin; i < row + inside.end; ++i, shade = shade + step)
            pixel(i, shade);
    }
}

/// Bits of fixed point with and without a depth. The ways with a depth reach 524288 pixels far, the other 8192.
constexpr int depthFractionBits = 12;
constexpr int additiveFractionBits = 18;

/// Not masked: a channel outside 0 to 255 runs into its neighbours.
q_ulong packed(const Shade &shade, int bits) {
    const auto channel = [bits](int value) { return static_cast<q_ulong>(value >> bits); };
    return ((channel(shade.red) << 8 | channel(shade.green)) << 8) | channel(shade.blue);
}

/// Half of the pixel and half of the shade, each halved before the sum.
q_ulong halfMixed(q_ulong d, const Shade &shade) {
    return (d >> 1 & 0x7F7F7F) + packed(shade, depthFractionBits + 1);
}

/// What draws with a depth: `store(dst pixel, shade)` for each pixel that passes both tests.
template <class Store>
void drawNearest(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch,
                 const ShadedEdge &left, const ShadedEdge &right, Store store) {
    short *const zBuffer = data.zBuffer;
    const int nearLimit = data.nearLimit;
    forEachPixel<depthFractionBits>(clip, pitch, left, right, [=](Distance i, const Shade &shade) {
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
                [](q_ulong &d, const Shade &shade) { d = packed(shade, depthFractionBits); });
}

void drawBand(const _PRIVATE_QMGL_DATA &data, q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left,
              const ShadedEdge &right, int opacity) {
    if (opacity == 128) {
        forEachPixel<depthFractionBits>(clip, pitch, left, right,
                                        [dst](Distance i, const Shade &shade) { dst[i] = halfMixed(dst[i], shade); });
        return;
    }
    const auto shadeWeight = static_cast<q_ulong>(opacity);
    const q_ulong dstWeight = 256 - shadeWeight;
    drawNearest(data, dst, clip, pitch, left, right, [=](q_ulong &d, const Shade &shade) {
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
    forEachPixel<depthFractionBits>(clip, pitch, left, right, [=](Distance i, const Shade &shade) {
        if (shade.depth >> depthFractionBits > nearLimit)
            dst[i] = halfMixed(dst[i], shade);
    });
}

void addBand(q_ulong *dst, const tagRECT &clip, q_ulong pitch, const ShadedEdge &left, const ShadedEdge &right) {
    forEachPixel<additiveFractionBits>(clip, pitch, left, right, [dst](Distance i, const Shade &shade) {
        // Meant: a sum below 0 reads as a large one and saturates, and red is taken with the top byte.
        const auto sum = [](int value, q_ulong d) {
            const q_ulong total = static_cast<q_ulong>(value >> additiveFractionBits) + d;
            return total > 255 ? 255 : total;
        };
        const q_ulong d = dst[i];
        dst[i] = sum(shade.red, d >> 16) << 16 | sum(shade.green, greenOf(d)) << 8 | sum(shade.blue, blueOf(d));
    });
}

} // namespace qmur

using namespace qmur;

void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0,
                   int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1,
                   int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1, int zB0, int zB1) {
    drawBand(*data, dst, *clip, pitch, {{xA0, yA0, {rA0, gA0, bA0, zA0}}, {xA1, yA1, {rA1, gA1, bA1, zA1}}},
             {{xB0, yB0, {rB0, gB0, bB0, zB0}}, {xB1, yB1, {rB1, gB1, bB1, zB1}}});
}

void VKD_3D_Render(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0,
                   int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1,
                   int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1, int zB0, int zB1,
                   int opacity) {
    drawBand(*data, dst, *clip, pitch, {{xA0, yA0, {rA0, gA0, bA0, zA0}}, {xA1, yA1, {rA1, gA1, bA1, zA1}}},
             {{xB0, yB0, {rB0, gB0, bB0, zB0}}, {xB1, yB1, {rB1, gB1, bB1, zB1}}}, opacity);
}

void VKD_3D_Render_Alpha(_PRIVATE_QMGL_DATA *data, q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1,
                         int xB0, int xB1, int yA0, int yA1, int yB0, int yB1, int rA0, int rA1, int rB0, int rB1,
                         int gA0, int gA1, int gB0, int gB1, int bA0, int bA1, int bB0, int bB1, int zA0, int zA1,
                         int zB0, int zB1) {
    mixBand(*data, dst, *clip, pitch, {{xA0, yA0, {rA0, gA0, bA0, zA0}}, {xA1, yA1, {rA1, gA1, bA1, zA1}}},
            {{xB0, yB0, {rB0, gB0, bB0, zB0}}, {xB1, yB1, {rB1, gB1, bB1, zB1}}});
}

void VKD_3D_Render_Add(q_ulong *dst, tagRECT *clip, q_ulong pitch, int xA0, int xA1, int xB0, int xB1, int yA0, int yA1,
                       int yB0, int yB1, int rA0, int rA1, int rB0, int rB1, int gA0, int gA1, int gB0, int gB1,
                       int bA0, int bA1, int bB0, int bB1) {
    addBand(dst, *clip, pitch, {{xA0, yA0, {rA0, gA0, bA0, 0}}, {xA1, yA1, {rA1, gA1, bA1, 0}}},
            {{xB0, yB0, {rB0, gB0, bB0, 0}}, {xB1, yB1, {rB1, gB1, bB1, 0}}});
}
