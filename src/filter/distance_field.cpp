#include "distance_field.h"
#include "base/lanes.h"
#include "q_Mur/filter.h"

#include <initializer_list>

namespace qmur {
namespace {

/// Takes over what the three neighbours in another row allow. The rows do not overlap.
void takeFromRow(int *rings, const int *row, int count) {
    for (int i = 0; i < count; ++i)
        rings[i] = smaller(rings[i], smaller(smaller(row[i - 1], row[i]), row[i + 1]) + 1);
}

/// So many numbers are looked at together: in most places a row gains nothing from its own neighbours.
constexpr int stretch = 16;

/// Takes over what the neighbours before allow, one after the other.
void takeFromBefore(int *rings, int count) {
    for (int begin = 0; begin < count; begin += stretch) {
        const int end = smaller(begin + stretch, count);
        int open = staysSmall || end - begin < stretch;
        if (open == 0)
            for (int i = 0; i < stretch; ++i)
                open |= rings[begin + i] > rings[begin + i - 1] + 1;
        for (int i = begin; open != 0 && i < end; ++i)
            rings[i] = smaller(rings[i], rings[i - 1] + 1);
    }
}

/// The same of the neighbours behind.
void takeFromBehind(int *rings, int count) {
    for (int end = count; end > 0; end -= stretch) {
        const int begin = larger(end - stretch, 0);
        int open = staysSmall || end - begin < stretch;
        if (open == 0)
            for (int i = 0; i < stretch; ++i)
                open |= rings[begin + i] > rings[begin + i + 1] + 1;
        for (int i = end - 1; open != 0 && i >= begin; --i)
            rings[i] = smaller(rings[i], rings[i + 1] + 1);
    }
}

} // namespace

void findRings(const LinearBlock &block, int *rings) {
    constexpr int unreached = 0x3FFFFFFF;
    const Distance margin = ringMargin(block.pitch);
    const Distance end = block.count + margin;
    for (Distance i = 0; i < block.count; ++i)
        rings[i] = block.words[i] == 0 ? 0 : unreached;
    for (Distance i = 0; i < margin; ++i)
        rings[-1 - i] = rings[block.count + i] = unreached;
    // As many as have no neighbour in another row among them.
    const Distance length = block.pitch > 2 ? block.pitch - 1 : 1;
    const auto countFrom = [length](Distance left) { return static_cast<int>(left < length ? left : length); };
    for (Distance i = 0; i < end; i += length) {
        takeFromRow(rings + i, rings + i - block.pitch, countFrom(end - i));
        takeFromBefore(rings + i, countFrom(end - i));
    }
    takeFromBehind(rings + block.count, static_cast<int>(margin) - 1);
    for (Distance i = block.count; i > 0; i -= length) {
        const int count = countFrom(i);
        takeFromRow(rings + i - count, rings + i - count + block.pitch, count);
        takeFromBehind(rings + i - count, count);
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
