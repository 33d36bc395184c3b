/// \file
/// Runs of pixels of one colour.
#ifndef Q_MUR_WALKS_FILL_H
#define Q_MUR_WALKS_FILL_H

#include "base/lanes.h"
#include "base/surface.h"

namespace qmur {

/// Sixteen pixels at a time: what is left over is written together with some before it, so that runs of like lengths
/// take the same turns.
inline void fillRun(q_ulong *run, Distance count, q_ulong colour) {
    constexpr Distance turn = 16;
    constexpr int atOnce = sizeof(MostPixels) / sizeof(q_ulong);
    const auto pixels = MostPixels::all(colour);
    const auto fillTurn = [pixels](q_ulong *first) {
        for (int x = 0; x < turn; x += atOnce)
            pixels.store(first + x);
    };
    if (count >= turn) {
        q_ulong *const last = run + count - turn;
        for (; run < last; run += turn)
            fillTurn(run);
        fillTurn(last);
    } else if constexpr (atOnce == turn) {
        pixels.storeFirst(run, static_cast<int>(count));
    } else {
        const auto four = Numbers<4>::all(colour);
        if (count >= 8) {
            four.store(run);
            four.store(run + 4);
            four.store(run + count - 8);
            four.store(run + count - 4);
        } else if (count >= 4) {
            four.store(run);
            four.store(run + count - 4);
        } else {
            for (Distance x = 0; x < count; ++x)
                run[x] = colour;
        }
    }
}

} // namespace qmur

#endif
