#include "q_Mur/draw.h"
#include "q_Mur/warp.h"
#include "walks/stretch.h"

#include <utility>

namespace {

using namespace qmur;

/// What runs along an edge: the destination column and the source position.
struct Crossing {
    int x;
    int u;
    int v;
};

/// A corner of the triangle on both surfaces.
struct Corner {
    int y;
    Crossing at;

    Corner(const _POINTINT &screen, const _POINTINT &source) : y(screen.y), at{screen.x, source.x, source.y} {}
};

/// 1 / `extent` with 20 fraction bits.
constexpr int reciprocal(int extent) {
    return 1048576 / (extent == 0 ? 1 : extent);
}

/// An edge from its upper corner to its lower one. Meant: it is interpolated over one row less than its height, so that
/// it reaches its end one row early.
class Edge {
public:
    Edge(const Corner &from, const Corner &to)
        : upper(from), lower(to), inverse(reciprocal(wrapSubtract(wrapSubtract(to.y, from.y), 1))) {}

    Crossing at(int y) const {
        const int factor = wrapMultiply(wrapSubtract(y, upper.y), inverse);
        const auto value = [factor](int start, int end) {
            return wrapAdd(wrapMultiply(wrapSubtract(end, start), factor) >> 20, start);
        };
        return {value(upper.at.x, lower.at.x), value(upper.at.u, lower.at.u), value(upper.at.v, lower.at.v)};
    }

private:
    const Corner &upper;
    const Corner &lower;
    int inverse;
};

} // namespace

void Blt_Triangle(q_ulong *dst, tagRECT *clip, int dstPitch, _POINTINT *p0, _POINTINT *p1, _POINTINT *p2, q_ulong *src,
                  int srcPitch, _POINTINT *t0, _POINTINT *t1, _POINTINT *t2) {
    // Sorted by row; of equal rows the later corner goes first.
    Corner top(*p0, *t0);
    Corner mid(*p1, *t1);
    Corner bottom(*p2, *t2);
    if (top.y >= mid.y)
        std::swap(top, mid);
    if (bottom.y <= mid.y) {
        std::swap(mid, bottom);
        if (mid.y <= top.y)
            std::swap(top, mid);
    }

    const bool midOnLeft = DecisionLine(&mid.at.x, &mid.y, &top.at.x, &top.y, &bottom.at.x, &bottom.y) != 0;
    const Edge longEdge(top, bottom);
    const Edge upperEdge(top, mid);
    const Edge lowerEdge(mid, bottom);
    const Span clipColumns = columnsOf(*clip);
    const Span clipRows = rowsOf(*clip);

    const auto drawRows = [&](Span rows, const Edge &shortEdge) {
        const Edge &leftEdge = midOnLeft ? shortEdge : longEdge;
        const Edge &rightEdge = midOnLeft ? longEdge : shortEdge;
        const Span walked = intersection(rows, clipRows);
        for (int y = walked.begin; y < walked.end; ++y) {
            const Crossing left = leftEdge.at(y);
            const Crossing right = rightEdge.at(y);
            const Span columns = intersection({left.x, right.x}, clipColumns);
            if (columns.empty())
                continue;
            const int inverse = reciprocal(wrapSubtract(wrapSubtract(right.x, left.x), 1));
            const int skipped = wrapSubtract(columns.begin, left.x);
            const auto track = [inverse, skipped](int start, int end, Span bounds) {
                const int step = wrapMultiply(wrapSubtract(end, start), inverse);
                return Track{wrapMultiply(skipped, step), step, scaledBounds(bounds.begin, bounds.end, start, 20)};
            };
            q_ulong *const row = pixelAt(dst, dstPitch, columns.begin, y);
            const Distance source = static_cast<Distance>(left.v) * srcPitch + left.u;
            forEachInside(track(left.u, right.u, clipColumns), track(left.v, right.v, clipRows), columns.length(),
                          [row, src, source, srcPitch](int x, int u, int v) {
                              row[x] = src[source + static_cast<Distance>(v >> 20) * srcPitch + (u >> 20)];
                          });
        }
    };
    drawRows({top.y, mid.y}, upperEdge);
    drawRows({mid.y, bottom.y}, lowerEdge);
}
