#include "base/alias.h"
#include "base/surface.h"
#include "q_Mur/draw.h"

#include <algorithm>
#include <utility>

namespace {

using namespace qmur;

/// An edge that goes down from one corner to another.
class Edge {
public:
    Edge(tagPOINT from, tagPOINT to)
        : x(static_cast<int>(from.x)), y(static_cast<int>(from.y)), dx(wrapSubtract(static_cast<int>(to.x), x)),
          inverseHeight(from.y == to.y ? one : one / wrapSubtract(static_cast<int>(to.y), y)) {}

    int xAt(int row) const {
        return wrapAdd(wrapMultiply(wrapMultiply(dx, wrapSubtract(row, y)), inverseHeight) >> fractionBits, x);
    }

private:
    static constexpr int fractionBits = 18;
    static constexpr int one = 1 << fractionBits;

    int x;
    int y;
    int dx;
    int inverseHeight;
};

/// Four corners from top to bottom. The first and the last belong to both sides, each of the others to one.
class Quad {
public:
    Quad(tagPOINT p0, tagPOINT p1, tagPOINT p2, tagPOINT p3) : corners{p0, p1, p2, p3} {
        // Equal rows keep the order that these very exchanges give them; it decides on the side of a corner.
        for (int upper = 0; upper < 3; ++upper)
            for (int lower = upper + 1; lower < 4; ++lower)
                if (corners[upper].y > corners[lower].y)
                    std::swap(corners[upper], corners[lower]);
        onLeft[1] = isLeftOfLongEdge(corners[1]);
        onLeft[2] = isLeftOfLongEdge(corners[2]);
    }

    int row(int corner) const { return static_cast<int>(corners[corner].y); }
    bool allOnLeft() const { return onLeft[1] && onLeft[2]; }

    /// The edge of one side that passes through a band, the band being the rows from a corner to the next.
    Edge edge(int band, bool left) const {
        int from = band;
        while (from > 0 && onLeft[from] != left)
            --from;
        int to = band + 1;
        while (to < 3 && onLeft[to] != left)
            ++to;
        return {corners[from], corners[to]};
    }

private:
    bool isLeftOfLongEdge(tagPOINT corner) const {
        int x = static_cast<int>(corner.x);
        int y = static_cast<int>(corner.y);
        int topX = static_cast<int>(corners[0].x);
        int topY = static_cast<int>(corners[0].y);
        int bottomX = static_cast<int>(corners[3].x);
        int bottomY = static_cast<int>(corners[3].y);
        return DecisionLine2(&x, &y, &topX, &topY, &bottomX, &bottomY) == 1;
    }

    tagPOINT corners[4];
    bool onLeft[4] = {};
};

} // namespace

extern "C" int q_MurSideOfLine(const int *px, const int *py, const int *ax, const int *ay, const int *bx,
                               const int *by) {
    return wrapMultiply(wrapSubtract(*py, *ay), wrapSubtract(*bx, *ax)) >
           wrapMultiply(wrapSubtract(*by, *ay), wrapSubtract(*px, *ax));
}

int DecisionLine2(int *, int *, int *, int *, int *, int *) Q_MUR_ALIAS_OF(q_MurSideOfLine);
int DecisionLines(int *, int *, int *, int *, int *, int *) Q_MUR_ALIAS_OF(q_MurSideOfLine);
int VKD_DecisionLines(int *, int *, int *, int *, int *, int *) Q_MUR_ALIAS_OF(q_MurSideOfLine);

// Meant: the factors are turned round, so that the two tests part where a product wraps.
int DecisionLine(int *px, int *py, int *ax, int *ay, int *bx, int *by) {
    return wrapMultiply(wrapSubtract(*bx, *ax), wrapSubtract(*ay, *py)) <
           wrapMultiply(wrapSubtract(*ay, *by), wrapSubtract(*px, *ax));
}

void Rect_Safe(q_ulong *surface, tagRECT *clip, int pitch, tagPOINT *p0, tagPOINT *p1, tagPOINT *p2, tagPOINT *p3,
               q_ulong *color) {
    const Quad quad(*p0, *p1, *p2, *p3);
    const Window window = windowOf(*clip);
    const q_ulong colour = *color;
    // The last row of a band or pixel of a row, brought inside the window, as the end of a walk.
    const auto endAfter = [](int last, Span span) { return last < span.end ? last + 1 : span.end; };

    for (int band = 0; band < 3; ++band) {
        const Edge left = quad.edge(band, true);
        const Edge right = quad.edge(band, false);
        // Meant: with two corners on the left, what lies below the first of them ends one pixel short.
        const bool rightIncluded = !(quad.allOnLeft() && band > 0);
        const int end = endAfter(quad.row(band + 1), window.rows);
        for (int y = larger(quad.row(band), window.rows.begin); y < end; ++y) {
            const int rightX = right.xAt(y);
            const Span columns = {larger(left.xAt(y), window.columns.begin), rightIncluded
                                                                                 ? endAfter(rightX, window.columns)
                                                                                 : smaller(rightX, window.columns.end)};
            if (!columns.empty())
                std::fill_n(pixelAt(surface, pitch, columns.begin, y), columns.length(), colour);
        }
    }
}
