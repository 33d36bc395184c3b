#include "distance_field.h"
#include "q_Mur/filter.h"

#include <initializer_list>

namespace qmur {
namespace {

/// Takes over what the neighbours at `-offset` and `offset` allow; true if that is less than before.
class Spread {
public:
    Spread(int *ringNumbers, const LinearBlock &block) : rings(ringNumbers), count(block.count), pitch(block.pitch) {}

    bool from(Distance index, int direction) {
        const Distance neighbours[] = {1, pitch - 1, pitch, pitch + 1};
        int least = rings[index];
        for (const Distance offset : neighbours) {
            const Distance neighbour = index - direction * offset;
            if (neighbour >= 0 && neighbour < count && rings[neighbour] + 1 < least)
                least = rings[neighbour] + 1;
        }
        const bool changed = least < rings[index];
        rings[index] = least;
        return changed;
    }

    /// The same where all of the neighbours are in the block.
    bool fromInside(Distance index, int direction) {
        int *const ring = rings + index;
        const int *const row = ring - direction * pitch;
        const int least = smaller(smaller(row[-1], row[0]), smaller(row[1], ring[-direction])) + 1;
        const int before = *ring;
        *ring = smaller(before, least);
        return least < before;
    }

    /// Down and then up over the whole block; true if anything has changed.
    bool everywhere() {
        const Distance margin = pitch + 1 < count ? pitch + 1 : count;
        bool changed = false;
        Distance i = 0;
        for (; i < margin; ++i)
            changed |= from(i, 1);
        for (; i < count; ++i)
            changed |= fromInside(i, 1);
        for (i = count - 1; i >= count - margin; --i)
            changed |= from(i, -1);
        for (; i >= 0; --i)
            changed |= fromInside(i, -1);
        return changed;
    }

private:
    int *rings;
    Distance count;
    Distance pitch;
};

} // namespace

void findRings(const LinearBlock &block, int *rings) {
    constexpr int unreached = 0x3FFFFFFF;
    for (Distance i = 0; i < block.count; ++i)
        rings[i] = block.words[i] == 0 ? 0 : unreached;
    Spread spread(rings, block);
    while (spread.everywhere()) {
    }
}

namespace {

/// Farther than any ring is looked at.
constexpr int outOfReach = 1 << 29;

/// The distance to the nearest black word on either side, counted in steps of `stride` words.
void findNearest(const LinearBlock &block, Distance stride, int *distances) {
    for (Distance i = 0; i < block.count; ++i) {
        const int before = i >= stride ? distances[i - stride] + 1 : outOfReach;
        distances[i] = block.words[i] == 0 ? 0 : smaller(before, outOfReach);
    }
    for (Distance i = block.count - stride; --i >= 0;)
        distances[i] = smaller(distances[i], distances[i + stride] + 1);
}

} // namespace

NearestOnRings::NearestOnRings(const LinearBlock &searched)
    : block(searched), alongRow(searched.count), alongColumn(searched.count) {
    if (!alongRow || !alongColumn)
        return;
    findNearest(block, 1, alongRow.data());
    findNearest(block, block.pitch, alongColumn.data());
}

/// The nearest black word before or behind any index.
int NearestOnRings::fromRow(Distance index) const {
    if (index < -outOfReach || index - block.count > outOfReach)
        return outOfReach;
    if (index < 0)
        return alongRow[0] - static_cast<int>(index);
    if (index >= block.count)
        return alongRow[block.count - 1] + static_cast<int>(index - (block.count - 1));
    return alongRow[index];
}

/// The nearest black word above or below any index.
int NearestOnRings::fromColumn(Distance index) const {
    const Distance last = block.count - 1;
    const Distance rows = index < 0      ? (-index + block.pitch - 1) / block.pitch
                          : index > last ? -((index - last + block.pitch - 1) / block.pitch)
                                         : 0;
    const Distance inside = index + rows * block.pitch;
    if (inside < 0 || inside > last)
        return outOfReach;
    return alongColumn[inside] + static_cast<int>(rows < 0 ? -rows : rows);
}

int NearestOnRings::squaredDistance(Distance index, int ring) const {
    int least = outOfReach;
    for (const Distance side : {-static_cast<Distance>(ring), static_cast<Distance>(ring)}) {
        least = smaller(least, fromRow(index + side * block.pitch));
        least = smaller(least, fromColumn(index + side));
    }
    if (ring >= noDistance || least > ring)
        return noDistance;
    const long long square = static_cast<long long>(ring) * ring + static_cast<long long>(least) * least;
    return square < noDistance ? static_cast<int>(square) : noDistance;
}

} // namespace qmur

namespace {

using namespace qmur;

/// The smallest squared distance that a search has met.
struct Nearest {
    int best = noDistance;
    bool found = false;

    void take(Distance dx, Distance dy) {
        const long long square = static_cast<long long>(dx) * dx + static_cast<long long>(dy) * dy;
        if (square < best) {
            best = static_cast<int>(square);
            found = true;
        }
    }
};

/// Searches the outline of the square of side 2 `ring` + 1 around `index`, its side columns without the corners.
Nearest searchRing(const LinearBlock &block, Distance index, Distance ring) {
    Nearest nearest;
    for (Distance dx = -ring; dx <= ring; ++dx)
        for (const Distance dy : {-ring, ring})
            if (block.isBlack(index + dy * block.pitch + dx))
                nearest.take(dx, dy);
    for (Distance dy = 1 - ring; dy <= ring - 1; ++dy)
        for (const Distance dx : {-ring, ring})
            if (block.isBlack(index + dy * block.pitch + dx))
                nearest.take(dx, dy);
    return nearest;
}

} // namespace

int FindNearBlackDistanceSquare(q_ulong *block, int blockWords, int index, int pitch, int ring, int *distanceSquare,
                                int limit) {
    const Nearest nearest = searchRing({block, blockWords, pitch}, index, ring);
    if (nearest.best > limit) {
        *distanceSquare = limit;
        return 0;
    }
    *distanceSquare = nearest.best;
    return nearest.found ? 0 : 1;
}

int FindNearBlackDistanceSquare(q_ulong *block, int blockWords, int index, int pitch, int ring, int *distanceSquare) {
    // Meant: the field has the rings' square contours, not the true distance.
    *distanceSquare = wrapMultiply(ring, ring);
    return searchRing({block, blockWords, pitch}, index, ring).found ? 0 : 1;
}

int FindNearSrcDistanceSquare(q_ulong *surface, int width, int height, int x, int y, int ring, int *distanceSquare) {
    Nearest nearest;
    const auto test = [=, &nearest](int dx, int dy) {
        const q_ulong pixel = *pixelAt(surface, width, static_cast<Distance>(x) + dx, static_cast<Distance>(y) + dy);
        if ((pixel & 0xFFFFFF) != 0)
            nearest.take(dx, dy);
    };
    const Span columns = {larger(-ring, -x), smaller(ring, width - x - 1)};
    const Span rows = {larger(-ring, -y), smaller(ring, height - y - 1)};
    for (const int dy : {-ring, ring})
        if (y + dy >= 0 && y + dy < height)
            for (int dx = columns.begin; dx <= columns.end; ++dx)
                test(dx, dy);
    for (const int dx : {-ring, ring})
        if (x + dx >= 0 && x + dx < width)
            for (int dy = rows.begin; dy <= rows.end; ++dy)
                test(dx, dy);
    *distanceSquare = nearest.best;
    return nearest.found ? 0 : 1;
}
