#include "bilinear_patch.h"
#include "base/integers.h"

#include <algorithm>

namespace qmur {

BilinearPatch::BilinearPatch(int sourceWidth, int sourceHeight, const int (&x)[4], const int (&y)[4])
    : width(sourceWidth), height(sourceHeight) {
    // The small addition keeps the leading term from vanishing for a parallelogram or an upright edge.
    static constexpr Wide offset = 0.0001;
    const auto twist = [](const int(&p)[4]) {
        return wrapAdd(wrapSubtract(wrapSubtract(p[0], p[1]), p[3]), p[2]) + offset;
    };
    a = twist(x);
    b = wrapSubtract(x[1], x[0]) + offset;
    g = wrapSubtract(x[3], x[0]) + offset;
    d = twist(y);
    e = wrapSubtract(y[1], y[0]) + offset;
    f = wrapSubtract(y[3], y[0]) + offset;
    startX = x[0] + offset;
    startY = y[0] + offset;
    q = e * a - d * b;
    k1 = e * g + startY * a - d * startX - f * b;
    k2 = startY * g - f * startX;
}

namespace {

double doubled(Wide value) {
    return static_cast<double>(value);
}

} // namespace

DoubledPatch::DoubledPatch(const BilinearPatch &patch, int surfacePitch)
    : width(patch.width), height(patch.height), pitch(surfacePitch), rootSign(patch.q < 0 ? -1 : 1),
      a(doubled(patch.a / patch.width)), g(doubled(patch.g)), b(doubled(patch.b * patch.height / patch.width)),
      start(doubled(patch.startX * patch.height)) {
    const Wide perTwoQ = patch.width / (2 * patch.q);
    const Wide perQ = perTwoQ * patch.width * 2;
    middle = {doubled(-patch.d * perTwoQ), doubled(-patch.k1 * perTwoQ), doubled(patch.a * perTwoQ)};
    product = {doubled(patch.f * perQ), doubled(patch.k2 * perQ), doubled(-patch.g * perQ)};

    const double largestMiddle = largest(middle);
    const double squares = largestMiddle * largestMiddle + largest(product);
    const double ofSquares = 20 * unit * squares;
    const double ofPlace = 24 * unit * (largestMiddle + std::sqrt(squares) + width);
    // Where an index could reach those that stand for none, all is left open.
    mostFraction = std::fabs(pitch) * height < outside ? 0.5 - ofPlace : -1;
    // No less than tells the sign of the root's argument.
    rootDoubt = std::max(ofSquares, std::sqrt(ofSquares) / 2);

    // Of rows within the source; what lies further away has doubts that grow more slowly than its distance.
    const double rows = height + 2;
    const double perPlace = std::fabs(b) + rows * std::fabs(a);
    const double ofNumerator = 16 * unit * (height * width + mostS * std::fabs(b) * width + std::fabs(start));
    const double ofDenominator = 16 * unit * (mostS * std::fabs(a) * width + std::fabs(g));
    // The true denominator is at least half of this one where the doubt of y counts, which is doubled for that.
    plainDoubtY = 2 * (perPlace * ofPlace + ofNumerator + rows * ofDenominator);
    rootDoubtY = 2 * perPlace * rootDoubt;
    leavesRowsOpen = !(plainDoubtY < (mostS * std::fabs(a) * width + std::fabs(g)) / 2);
}

double DoubledPatch::largest(const Plane &plane) const {
    return width * std::fabs(plane.perColumn) + std::fabs(plane.first) + height * std::fabs(plane.perRow);
}

} // namespace qmur
