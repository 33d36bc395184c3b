#include "pen.h"
#include "q_Mur/region.h"

namespace {

using namespace qmur;

/// A number of 27-bit digits behind the point, and exact: products with a parameter lose nothing.
/// The value is the whole plus the digits, which are never negative.
class ExactNumber {
public:
    /// The parameter of a curve, from 0 to a little above 1, in units of 2^-27.
    using Parameter = long long;

    explicit ExactNumber(long long number) : whole(number) {}

    void add(long long number) { whole += number; }

    /// May be called as often as there are digits.
    void multiply(Parameter t) {
        long long carry = 0;
        const auto digitOf = [&carry, t](long long digit) {
            const long long product = digit * t + carry;
            carry = product >> digitBits;
            return product & digitMask;
        };
        digits[2] = digitOf(digits[1]);
        digits[1] = digitOf(digits[0]);
        digits[0] = digitOf(whole);
        whole = carry;
    }

    /// Truncated toward zero.
    long long truncated() const { return whole < 0 && (digits[0] | digits[1] | digits[2]) != 0 ? whole + 1 : whole; }

private:
    static constexpr int digitBits = 27;
    static constexpr long long digitMask = (1LL << digitBits) - 1;

    long long whole;
    long long digits[3] = {};
};

constexpr int chords = 15;

/// 1/15 as a float holds it. Fifteen steps end a little above 1.
constexpr ExactNumber::Parameter chordStep = 8947849;
static_assert(static_cast<double>(0.06666667F) == chordStep * 0x1p-27);

/// One coordinate of a cubic curve at a parameter. Only exact arithmetic keeps a point on its place where the four
/// coordinates are the same: a sum of rounded weights may fall short of 1, and truncation would make that a pixel.
int coordinateAt(ExactNumber::Parameter t, int from, int control1, int control2, int to) {
    const auto asFloat = [](int value) { return static_cast<long long>(static_cast<float>(value)); };
    const long long p0 = asFloat(from);
    const long long p1 = asFloat(control1);
    const long long p2 = asFloat(control2);
    const long long p3 = asFloat(to);
    // With 32-bit coordinates every intermediate stays below 2^36, and 2^63 in its product with the parameter.
    ExactNumber value(p3 - p0 + 3 * (p1 - p2));
    value.multiply(t);
    value.add(3 * (p0 - 2 * p1 + p2));
    value.multiply(t);
    value.add(3 * (p1 - p0));
    value.multiply(t);
    value.add(p0);
    return static_cast<int>(value.truncated());
}

/// The last place within a span; of an empty one the place before its end.
int limitedTo(Span span, int value) {
    return smaller(larger(value, span.begin), wrapSubtract(span.end, 1));
}

template <class Element>
void drawCurve(const Pen<Element> &pen, Point from, Point control1, Point control2, Point to) {
    Point current = from;
    for (int i = 1; i <= chords; ++i) {
        const ExactNumber::Parameter t = i * chordStep;
        // Meant: the curve slides along the clip's edge. Its first point alone stays where it is.
        const Point next = {limitedTo(pen.clip.columns, coordinateAt(t, from.x, control1.x, control2.x, to.x)),
                            limitedTo(pen.clip.rows, coordinateAt(t, from.y, control1.y, control2.y, to.y))};
        drawLine(pen, current, next);
        current = next;
    }
}

/// The points of a smooth curve with the handles that leave and enter them.
class SmoothCurve {
public:
    SmoothCurve(const short *pointXs, const short *pointYs, int pointCount, bool isOpen)
        : xs(pointXs), ys(pointYs), count(pointCount), open(isOpen) {}

    int segments() const {
        if (open)
            return count > 1 ? count - 1 : 0;
        return count;
    }

    /// The point behind a segment's first.
    int behind(int i) const { return i + 1 < count ? i + 1 : open ? i : 0; }

    Point point(int i) const { return {xs[i], ys[i]}; }

    Point leaving(int i) const {
        // Meant: an open curve leaves its first point without a handle, but enters its last with one.
        const Point tangent = open && i == 0 ? Point{0, 0} : tangentAt(i);
        return handle(xs[i] + tangent.x, ys[i] + tangent.y);
    }

    Point entering(int i) const {
        const Point tangent = tangentAt(i);
        return handle(xs[i] - tangent.x, ys[i] - tangent.y);
    }

private:
    static Point handle(int x, int y) { return {static_cast<short>(x), static_cast<short>(y)}; }

    Point tangentAt(int i) const {
        const int before = i > 0 ? i - 1 : count - 1;
        const int next = behind(i);
        return {(xs[next] - xs[before]) * 15 / 64, (ys[next] - ys[before]) * 15 / 64};
    }

    const short *xs;
    const short *ys;
    int count;
    bool open;
};

template <class Element>
void drawSmoothCurve(const Pen<Element> &pen, const SmoothCurve &curve) {
    const int segments = curve.segments();
    for (int k = 0; k < segments; ++k) {
        const int next = curve.behind(k);
        drawCurve(pen, curve.point(k), curve.leaving(k), curve.entering(next), curve.point(next));
    }
}

} // namespace

void iBesierLine(q_ulong *surface, int x0, int y0, int x1, int y1, int x2, int y2, int x3, int y3, q_ulong color,
                 tagRECT *clip, int pitch) {
    drawCurve(Pen<q_ulong>{surface, pitch, windowOf(*clip), color}, {x0, y0}, {x1, y1}, {x2, y2}, {x3, y3});
}

void bBesierLine(unsigned char *plane, int x0, int y0, int x1, int y1, int x2, int y2, int x3, int y3,
                 unsigned char value, tagRECT *clip, int pitch) {
    drawCurve(Pen<unsigned char>{plane, pitch, windowOf(*clip), value}, {x0, y0}, {x1, y1}, {x2, y2}, {x3, y3});
}

void iPolyBesier(q_ulong *surface, tagRECT *clip, int pitch, short *xs, short *ys, int count, q_ulong color,
                 int openCurve) {
    drawSmoothCurve(Pen<q_ulong>{surface, pitch, windowOf(*clip), color}, SmoothCurve(xs, ys, count, openCurve != 0));
}

void bPolyBesier(unsigned char *plane, tagRECT *clip, int pitch, short *xs, short *ys, int count, unsigned char value,
                 int openCurve) {
    drawSmoothCurve(Pen<unsigned char>{plane, pitch, windowOf(*clip), value},
                    SmoothCurve(xs, ys, count, openCurve != 0));
}
