#include "base/alias.h"
#include "q_Mur/draw.h"
#include "walks/bands.h"

#include <algorithm>

namespace {

using namespace qmur;

/// All that a flat colour needs.
struct Column {
    int x;

    template <class Operation, class... Columns>
    static constexpr Column each(Operation operation, const Columns &...c) {
        return {operation(c.x...)};
    }
};

Corner<Column> cornerOf(const tagPOINT &point) {
    return {static_cast<int>(point.y), {static_cast<int>(point.x)}};
}

} // namespace

extern "C" int q_MurSideOfLine(const int *px, const int *py, const int *ax, const int *ay, const int *bx,
                               const int *by) {
    return isLeftOfLine({*px, *py}, {*ax, *ay}, {*bx, *by});
}

int DecisionLine2(int *, int *, int *, int *, int *, int *) Q_MUR_ALIAS_OF(q_MurSideOfLine);
int DecisionLines(int *, int *, int *, int *, int *, int *) Q_MUR_ALIAS_OF(q_MurSideOfLine);
int VKD_DecisionLines(int *, int *, int *, int *, int *, int *) Q_MUR_ALIAS_OF(q_MurSideOfLine);

int DecisionLine(int *px, int *py, int *ax, int *ay, int *bx, int *by) {
    return isLeftOfLineTurned({*px, *py}, {*ax, *ay}, {*bx, *by});
}

void Rect_Safe(q_ulong *surface, tagRECT *clip, int pitch, tagPOINT *p0, tagPOINT *p1, tagPOINT *p2, tagPOINT *p3,
               q_ulong *color) {
    const Quad<Column> corners = sortedQuad<Column>({cornerOf(*p0), cornerOf(*p1), cornerOf(*p2), cornerOf(*p3)});
    const Window window = windowOf(*clip);
    const q_ulong colour = *color;
    // Where a walk ends that goes to a last row or column and draws it, or `drawn` of it.
    const auto endAfter = [](int last, int drawn, Span span) { return last < span.end ? last + drawn : span.end; };

    forEachBand(corners, isLeftOfLine, [=, &corners](const Edge<Column> &left, const Edge<Column> &right) {
        // Meant: beside a right side of one edge, what lies below the first corner on the left ends one pixel short.
        const bool oneEdgeOnRight = &right.upper == &corners.front() && &right.lower == &corners.back();
        const int rightDrawn = oneEdgeOnRight && &left.upper != &corners.front() ? 0 : 1;
        const SlopedEdge<18, Column> leftEdge(left, heightOf(left));
        const SlopedEdge<18, Column> rightEdge(right, heightOf(right));
        // Meant: a band's last row is drawn, and drawn again as the first of the next.
        const Span rows = rowsOf(left, right);
        const int end = endAfter(rows.end, 1, window.rows);
        for (int y = larger(rows.begin, window.rows.begin); y < end; ++y) {
            const Span columns = {larger(leftEdge.at(y).x, window.columns.begin),
                                  endAfter(rightEdge.at(y).x, rightDrawn, window.columns)};
            if (!columns.empty())
                std::fill_n(pixelAt(surface, pitch, columns.begin, y), columns.length(), colour);
        }
    });
}
