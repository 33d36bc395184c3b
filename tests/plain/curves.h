/// \file
/// Plain lines and Bezier curves once more, on planes of any element.
#ifndef Q_MUR_TESTS_PLAIN_CURVES_H
#define Q_MUR_TESTS_PLAIN_CURVES_H

#include "lines.h"

#include <vector>

namespace plain {

/// A value and where it may be left.
template <class Element>
struct Pen {
    View<Element> plane;
    tagRECT clip;
    Element value;

    void dot(Number x, Number y) const {
        if (contains(clip, x, y))
            plane.at(x, y) = value;
    }
};

template <class Element>
void drawLine(const Pen<Element> &pen, Number x1, Number y1, Number x2, Number y2) {
    forBresenham(x1, y1, x2, y2, [&pen](Number x, Number y, Number) { pen.dot(x, y); });
}

/// A number in units of 2^-81, exact: digits of 27 bits, the last of which takes the sign and whatever lies above.
struct Exact {
    std::array<Number, 4> digits{};

    Exact settled() const {
        constexpr Number base = 1 << 27;
        Exact result;
        Number carry = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const Number all = digits[i] + carry;
            carry = flooredQuotient(all, base);
            result.digits[i] = i < 3 ? all - carry * base : all;
        }
        return result;
    }
    friend Exact operator*(Exact number, Number factor) {
        for (Number &digit : number.digits)
            digit *= factor;
        return number.settled();
    }
    friend Exact operator+(Exact a, const Exact &b) {
        for (std::size_t i = 0; i < 4; ++i)
            a.digits[i] += b.digits[i];
        return a.settled();
    }
    Number truncated() const {
        const bool hasFraction = digits[0] != 0 || digits[1] != 0 || digits[2] != 0;
        return digits[3] + (digits[3] < 0 && hasFraction ? 1 : 0);
    }
};

/// One coordinate of the end of chord i: the four points times s^3, 3 s^2 t, 3 s t^2 and t^3, with t = i times 1/15 as
/// a float, which has 27 binary places, and s = 1 - t.
inline Number chordEnd(int i, int p0, int p1, int p2, int p3) {
    constexpr Number one = 1 << 27;
    const Number t = i * static_cast<Number>(0.06666667F * static_cast<float>(one));
    const Number s = one - t;
    const auto point = [](int p) { return Exact{{static_cast<Number>(static_cast<float>(p))}}; };
    return (point(p0) * s * s * s + point(p1) * 3 * s * s * t + point(p2) * 3 * s * t * t + point(p3) * t * t * t)
        .truncated();
}

template <class Element>
void drawCurve(const Pen<Element> &pen, const std::array<int, 4> &xs, const std::array<int, 4> &ys) {
    const tagRECT &clip = pen.clip;
    Number x = xs[0];
    Number y = ys[0];
    for (int i = 1; i <= 15; ++i) {
        const Number nextX =
            std::min<Number>(std::max<Number>(chordEnd(i, xs[0], xs[1], xs[2], xs[3]), clip.left), clip.right - 1);
        const Number nextY =
            std::min<Number>(std::max<Number>(chordEnd(i, ys[0], ys[1], ys[2], ys[3]), clip.top), clip.bottom - 1);
        drawLine(pen, x, y, nextX, nextY);
        x = nextX;
        y = nextY;
    }
}

/// The handles stand in arrays of their own, those that enter a point under the number of the segment that ends there.
template <class Element>
void drawSmoothCurve(const Pen<Element> &pen, const short *xs, const short *ys, int count, bool open) {
    if (count < 1)
        return;
    struct Handles {
        std::vector<short> out, in;
    };
    const auto handlesOf = [=](const short *points) {
        const auto size = static_cast<std::size_t>(count);
        Handles handles = {std::vector<short>(size), std::vector<short>(size)};
        const auto set = [&](int i, int before, int behind, int segment) {
            const int tangent = (points[behind] - points[before]) * 15 / 64;
            handles.out[static_cast<std::size_t>(i)] = static_cast<short>(points[i] + tangent);
            handles.in[static_cast<std::size_t>(segment)] = static_cast<short>(points[i] - tangent);
        };
        handles.out[0] = points[0];
        for (int i = 1; i < count; ++i)
            set(i, i - 1, open ? std::min(i + 1, count - 1) : (i + 1) % count, i - 1);
        if (!open)
            set(0, count - 1, 1 % count, count - 1);
        return handles;
    };
    const Handles x = handlesOf(xs);
    const Handles y = handlesOf(ys);
    for (int k = 0; k < (open ? count - 1 : count); ++k) {
        const int next = (k + 1) % count;
        const auto i = static_cast<std::size_t>(k);
        drawCurve(pen, {xs[k], x.out[i], x.in[i], xs[next]}, {ys[k], y.out[i], y.in[i], ys[next]});
    }
}

// On pixels and on planes of bytes

template <class Element>
void strokeLine(Element *surface, int x1, int y1, int x2, int y2, Element value, tagRECT *clip, int pitch) {
    drawLine(Pen<Element>{{surface, pitch}, *clip, value}, x1, y1, x2, y2);
}
inline constexpr auto iLine = strokeLine<q_ulong>;
inline constexpr auto bLine = strokeLine<unsigned char>;

template <class Element>
void strokeCurve(Element *surface, int x0, int y0, int x1, int y1, int x2, int y2, int x3, int y3, Element value,
                 tagRECT *clip, int pitch) {
    drawCurve(Pen<Element>{{surface, pitch}, *clip, value}, {x0, x1, x2, x3}, {y0, y1, y2, y3});
}
inline constexpr auto iBesierLine = strokeCurve<q_ulong>;
inline constexpr auto bBesierLine = strokeCurve<unsigned char>;

template <class Element>
void strokeSmoothCurve(Element *surface, tagRECT *clip, int pitch, short *xs, short *ys, int count, Element value,
                       int openCurve) {
    drawSmoothCurve(Pen<Element>{{surface, pitch}, *clip, value}, xs, ys, count, openCurve != 0);
}
inline constexpr auto iPolyBesier = strokeSmoothCurve<q_ulong>;
inline constexpr auto bPolyBesier = strokeSmoothCurve<unsigned char>;

} // namespace plain

#endif
