#include "base/scratch.h"
#include "blending.h"
#include "q_Mur/draw.h"
#include "walks/lines.h"

#include <algorithm>

namespace {

using namespace qmur;

/// Fills the shades of a tube from its centre outwards: white to the colour over the first half, the colour to black
/// over the second. Meant: a single shade is of the second half, and black.
void fillShades(q_ulong *shades, int count, q_ulong colour) {
    const int step = 2048 / count;
    const int half = count / 2;
    const auto towardsColour = [step](q_ulong c, int i) {
        return static_cast<q_ulong>(255 + (static_cast<int>(c) - 255) * step * i / 1024) & 0xFF;
    };
    const auto towardsBlack = [step, count](q_ulong c, int i) {
        return static_cast<q_ulong>((count - 1 - i) * step * static_cast<int>(c) / 1024) & 0xFF;
    };
    // Meant: red and blue change places.
    const auto exchanged = [colour](auto shade, int i) {
        return pixelOf(shade(blueOf(colour), i), shade(greenOf(colour), i), shade(redOf(colour), i));
    };
    for (int i = 0; i < half; ++i)
        shades[i] = exchanged(towardsColour, i);
    for (int i = half; i < count; ++i)
        shades[i] = exchanged(towardsBlack, i);
}

/// A channel on its way along a line, in 16 fraction bits.
struct Ramp {
    int start;
    int growth;
    int change = 0;

    /// Grows by `total` over a number of steps, nearly.
    Ramp(q_ulong from, int total, unsigned steps)
        : start(static_cast<int>(from)), growth(wrapMultiply(total, static_cast<int>(65536U / steps))) {}

    void advance() { change = wrapAdd(change, growth); }
};

struct ColourRamp {
    Ramp red;
    Ramp green;
    Ramp blue;

    void advance() {
        red.advance();
        green.advance();
        blue.advance();
    }
};

} // namespace

void DDLine_Fat(q_ulong *surface, tagRECT *clip, int pitch, int x1, int y1, int x2, int y2, q_ulong colour,
                int halfWidth) {
    const int count = wrapAdd(halfWidth, 1);
    const Line line = lineBetween(x1, y1, x2, y2, pitch, windowOf(*clip));
    // Meant: a first end outside along the major axis drops the whole line.
    if (count < 1 || !line.major.clip.contains(line.major.first))
        return;
    const Scratch<q_ulong> table(count);
    q_ulong *const shades = table.data();
    if (!shades)
        return;
    fillShades(shades, count, colour);

    const auto drawSection = [=](int major, int minor) {
        q_ulong *const centre = surface + line.indexOf(major, minor);
        const Distance stride = line.minor.stride;
        const auto at = static_cast<long long>(minor);
        const Span clipped = line.minor.clip;
        const auto sides = std::min({at - clipped.begin, clipped.end - 1LL - at, static_cast<long long>(halfWidth)});
        // Meant: the centre is not clipped in the minor direction, and a side that is cut takes its twin along.
        *centre = shades[0];
        for (Distance k = 1; k <= sides; ++k)
            centre[-k * stride] = centre[k * stride] = shades[k];
    };
    drawSection(line.major.first, line.minor.first);
    forEachStep(line, [=](int major, int minor) {
        if (line.major.clip.contains(major))
            drawSection(major, minor);
    });
}

void DDLine_Color_Change(q_ulong *surface, int pitch, int x1, int y1, int x2, int y2, q_ulong colour1,
                         q_ulong colour2) {
    const Line line = lineBetween(x1, y1, x2, y2, pitch);
    const unsigned steps = line.major.extent();
    surface[line.indexOf(line.major.first, line.minor.first)] = colour1;
    if (steps == 0)
        return;
    const auto rampBetween = [steps](q_ulong from, q_ulong to) {
        return Ramp(from, static_cast<int>(to) - static_cast<int>(from), steps);
    };
    const auto byteOf = [](const Ramp &ramp) { return static_cast<q_ulong>(ramp.change / 65536 + ramp.start) & 0xFF; };
    // Meant: red is the colours' whole upper halves, so a top byte bends its change.
    ColourRamp ramp = {rampBetween(upperHalfOf(colour1), upperHalfOf(colour2)),
                       rampBetween(greenOf(colour1), greenOf(colour2)), rampBetween(blueOf(colour1), blueOf(colour2))};
    forEachStep(line, [&](int major, int minor) {
        // Meant: written before it grows, so the second pixel repeats the first colour and the second colour is never
        // quite reached.
        surface[line.indexOf(major, minor)] = pixelOf(byteOf(ramp.red), byteOf(ramp.green), byteOf(ramp.blue));
        ramp.advance();
    });
}

void iLineAddSome(q_ulong *surface, int pitch, int x1, int y1, int x2, int y2, q_ulong colour, int width, int height) {
    const Line line = lineBetween(x1, y1, x2, y2, pitch, windowOf(width, height));
    const unsigned steps = line.major.extent();
    if (steps == 0)
        return;
    const auto fadeOf = [steps](q_ulong channel) { return Ramp(channel, static_cast<int>(channel), steps); };
    const auto added = [](const Ramp &fade, q_ulong old) {
        return cappedAt255(static_cast<q_ulong>(fade.start - (fade.change >> 16)) + old);
    };
    // Meant: the colour's red is its whole upper half, the pixel's is a byte.
    ColourRamp fade = {fadeOf(upperHalfOf(colour)), fadeOf(greenOf(colour)), fadeOf(blueOf(colour))};
    // Meant: the first end is not drawn; the pixel after it gets the whole colour.
    forEachStep(line, [&](int major, int minor) {
        if (line.major.clip.contains(major) && line.minor.clip.contains(minor)) {
            q_ulong &d = surface[line.indexOf(major, minor)];
            d = pixelOf(added(fade.red, redOf(d)), added(fade.green, greenOf(d)), added(fade.blue, blueOf(d)));
        }
        fade.advance();
    });
}
