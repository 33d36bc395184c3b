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
    bool changed;
    do {
        changed = false;
        for (Distance i = 0; i < block.count; ++i)
            changed |= spread.from(i, 1);
        for (Distance i = block.count - 1; i >= 0; --i)
            changed |= spread.from(i, -1);
    } while (changed);
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
