#include "base/pixel.h"
#include "outline.h"
#include "q_Mur/draw.h"
#include "walks/round.h"

#include <initializer_list>

namespace {

using namespace qmur;

/// The ellipse through the corners of a box.
struct OuterEllipse {
    int x;
    int y;
    int halfWidth;
    int halfHeight;
    int ratio; ///< horizontal pixels for each vertical one, 20 fraction bits

    /// A row's distance from the axis in horizontal pixels.
    int scaledRow(int dy) const { return wrapMultiply(dy, ratio) >> 20; }
};

/// The ellipse of a box that has none is empty.
OuterEllipse outerEllipseOf(const tagRECT &box) {
    constexpr int halfRoot = 370728; // 1 / sqrt(2), 19 fraction bits
    const int width = wrapMultiply(widthOf(box), halfRoot);
    const int height = wrapMultiply(heightOf(box), halfRoot);
    if (heightOf(box) == 0 || width >> 18 == 0)
        return {.x = 0, .y = 0, .halfWidth = -1, .halfHeight = -1, .ratio = 0};
    const int halfWidth = width >> 19;
    return {.x = wrapAdd(static_cast<int>(box.left), static_cast<int>(box.right)) >> 1,
            .y = wrapAdd(static_cast<int>(box.top), static_cast<int>(box.bottom)) >> 1,
            .halfWidth = halfWidth,
            .halfHeight = (height >> 18) * halfWidth / (width >> 18),
            .ratio = wrapDivide(widthOf(box) << 20, heightOf(box))};
}

} // namespace

void Draw_Outer_Ellipse_NoFillInside(q_ulong *surface, int pitch, tagRECT *clip, tagRECT *box, int thickness,
                                     q_ulong colour) {
    const OuterEllipse ellipse = outerEllipseOf(*box);
    const Centre centre = {surface, pitch, ellipse.x, ellipse.y};
    drawOutline(centre, offsetsFrom(centre, windowOf(*clip)), ellipse.halfWidth, ellipse.halfHeight, thickness, colour,
                [&ellipse](int dy) { return ellipse.scaledRow(dy); });
}

void Draw_Outer_Ellipse_AlphaFast(q_ulong *surface, int pitch, tagRECT *clip, tagRECT *box, int, q_ulong colour) {
    const OuterEllipse ellipse = outerEllipseOf(*box);
    const Window window = windowOf(*clip);
    if (window.empty())
        return;
    const Centre centre = {surface, pitch, ellipse.x, ellipse.y};
    const Window offsets = offsetsFrom(centre, window);
    const auto mixRun = [&](Span run, int dy) {
        const Span columns = intersection(run, offsets.columns);
        if (columns.empty() || !offsets.rows.contains(dy))
            return;
        q_ulong *const first = centre.pixel(columns.begin, dy);
        for (int i = 0; i < columns.length(); ++i)
            first[i] = halfMix(first[i], colour);
    };
    const int rim = ellipse.halfWidth < 0 ? -1 : ellipse.halfWidth * ellipse.halfWidth;
    for (int dy = -ellipse.halfHeight; dy < 0; ++dy) {
        const int row = ellipse.scaledRow(dy);
        const int half = halfChord(rim, row * row); // -1 makes both runs empty
        for (const int mirrored : {dy, -dy}) {
            mixRun({-half, 0}, mirrored);
            mixRun({1, half + 1}, mirrored);
        }
    }

    // Meant: the axes stop short of their far ends, stay on the edge of the clip when the centre lies outside, and both
    // include the centre; the vertical one starts at row 0, not at the top of the clip.
    const auto heldIn = [](Span span, int value) { return larger(span.begin, smaller(value, span.end - 1)); };
    const Centre onColumn = {surface, pitch, heldIn(window.columns, centre.x), centre.y};
    const Span rows =
        intersection(offsetsFrom(centre.y, {0, window.rows.end}), {-ellipse.halfHeight, ellipse.halfHeight});
    for (int dy = rows.begin; dy < rows.end; ++dy) {
        q_ulong &d = *onColumn.pixel(0, dy);
        d = halfMix(d, colour);
    }
    const Centre onRow = {surface, pitch, centre.x, heldIn(window.rows, centre.y)};
    const Span columns = intersection(offsets.columns, {-ellipse.halfWidth, ellipse.halfWidth});
    for (int dx = columns.begin; dx < columns.end; ++dx) {
        q_ulong &d = *onRow.pixel(dx, 0);
        d = halfMix(d, colour);
    }
}
