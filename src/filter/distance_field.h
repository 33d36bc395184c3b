/// \file
/// Distances to the nearest pixel of a kind, by rings around a point and for a whole block at once.
#ifndef Q_MUR_FILTER_DISTANCE_FIELD_H
#define Q_MUR_FILTER_DISTANCE_FIELD_H

#include "base/scratch.h"
#include "base/surface.h"

namespace qmur {

/// What a search that has found nothing reports, and what it takes no distance above.
constexpr int noDistance = 1000000;

/// A block of words in which a pixel's neighbours are found by adding to its index. Nothing stops at the end of a row:
/// beside the sides the neighbours belong to the rows above and below.
struct LinearBlock {
    const q_ulong *words;
    Distance count;
    Distance pitch;

    bool isBlack(Distance index) const { return index >= 0 && index < count && words[index] == 0; }
};

/// The number of the first ring with a black word, from 1, around every word that is not black, and 0 for those that
/// are: what FindNearBlackDistanceSquare() without a limit finds, in time that does not grow with the distance. Words
/// that no black one can be found from get a number above `block.count`. From ring 708 on, where corners are as far as
/// #noDistance and the search passes them over, they count here all the same.
///
/// The ring number is the chessboard distance on the index. A shortest way to black goes up in the index first and then
/// down, and so few steps too far that it stays in a margin behind the block: two passes settle it. There is such a
/// margin of ringMargin() numbers on either side of `rings`.
void findRings(const LinearBlock &block, int *rings);

constexpr Distance ringMargin(Distance pitch) {
    return pitch + 2;
}

/// Where black lies before and behind every word of a block, along its row and its column: the nearest black word of a
/// ring is found on its four sides without walking along them.
class NearestOnRings {
public:
    explicit NearestOnRings(const LinearBlock &searched);

    /// False without memory.
    explicit operator bool() const { return alongRow && alongColumn; }

    /// What FindNearBlackDistanceSquare() with a limit of #noDistance and above finds on this ring.
    int squaredDistance(Distance index, int ring) const;

private:
    int fromRow(Distance index) const;
    int fromColumn(Distance index) const;

    LinearBlock block;
    Scratch<int> alongRow;    ///< how many words away
    Scratch<int> alongColumn; ///< how many rows away
};

} // namespace qmur

#endif
