/// \file
/// Two crossed spikes: a column and a row of light that fade from where they cross.
#ifndef Q_MUR_WALKS_SPIKES_H
#define Q_MUR_WALKS_SPIKES_H

#include "base/pixel.h"
#include "walks/round.h"

namespace qmur {

/// What spikes add where they are brightest. Numbers beyond a byte, and negative ones, are taken as they are.
struct SpikeColour {
    int red;
    int green;
    int blue;
};

/// Adds spikes that reach `size` pixels, 1 or more, to all four sides, as far as they lie within `clip`. Sums are
/// capped at 255; top byte 0. Meant: the centre lies in both spikes and takes the colour twice, and a centre outside
/// the clip, in its last column or in its last row drops both.
inline void addSpikes(const Centre &centre, const Window &clip, int size, SpikeColour colour) {
    const Window offsets = offsetsFrom(centre, clip);
    const auto holdsCentre = [](Span span) { return span.begin <= 0 && span.end > 1; };
    if (!holdsCentre(offsets.columns) || !holdsCentre(offsets.rows))
        return;
    const int inverse = 65536 / size;
    const auto addSpike = [=](Span span, Distance stride) {
        const Span spike = intersection(span, squareThrough(size).columns);
        for (int offset = spike.begin; offset < spike.end; ++offset) {
            q_ulong &d = centre.pixel(0, 0)[offset * stride];
            const auto added = [distance = wrapMultiply(magnitudeOf(offset), inverse)](q_ulong old, int c) {
                const int sum = wrapAdd(static_cast<int>(old), wrapSubtract(c, wrapMultiply(distance, c) >> 16));
                return static_cast<q_ulong>(smaller(sum, 255)) & 0xFF;
            };
            d = pixelOf(added(redOf(d), colour.red), added(greenOf(d), colour.green), added(blueOf(d), colour.blue));
        }
    };
    addSpike(offsets.columns, 1);
    addSpike(offsets.rows, centre.pitch);
}

} // namespace qmur

#endif
