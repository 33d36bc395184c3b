/// \file
/// The region fills once more, step by step, with the parents' spans as arguments.
#ifndef Q_MUR_TESTS_PLAIN_REGION_FILL_H
#define Q_MUR_TESTS_PLAIN_REGION_FILL_H

#include "words.h"

#include <functional>

namespace plain {

inline void SetRegionFill(_PRIVATE_QMGP_DATA *data, q_ulong *destSurface, int destPitch, q_ulong *testSurface,
                          int testPitch) {
    data->destSurface = destSurface;
    data->destPitch = destPitch;
    data->testSurface = testSurface;
    data->testPitch = testPitch;
}

inline void bSetRegionFill(_PRIVATE_QMGP_DATA *data, unsigned char *plane, tagRECT *planeRect, int planePitch) {
    data->plane = plane;
    data->planeRect = planeRect;
    data->planePitch = planePitch;
}

inline void SetRegionSrcFill(_PRIVATE_QMGP_DATA *data, q_ulong *destSurface, int destPitch, q_ulong *testSurface,
                             int testPitch, unsigned char *plane, tagRECT *planeRect, int planePitch) {
    plain::SetRegionFill(data, destSurface, destPitch, testSurface, testPitch);
    plain::bSetRegionFill(data, plane, planeRect, planePitch);
}

/// The end of a span from `x` on in steps of `step`; `isBeyond(x)` is where the limit is passed.
template <class IsBorder, class IsBeyond>
Number spanEnd(Number x, int step, IsBorder isBorder, IsBeyond isBeyond) {
    if (isBorder(x))
        return x - step;
    do
        x += step;
    while (!isBorder(x) && !isBeyond(x));
    return x - step;
}

template <class IsBorder>
Number leftEnd(Number x, Number limit, IsBorder isBorder) {
    return spanEnd(x, -1, isBorder, [=](Number at) { return at < limit; });
}

template <class IsBorder>
Number rightEnd(Number x, Number limit, IsBorder isBorder) {
    return spanEnd(x, 1, isBorder, [=](Number at) { return at >= limit; });
}

inline int scan_left(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong border, int limit) {
    const Pixels test = {data->testSurface, data->testPitch};
    return int32(leftEnd(x, limit, [&](Number at) { return test.at(at, y) == border; }));
}

inline int scan_right(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong border, int limit) {
    const Pixels test = {data->testSurface, data->testPitch};
    return int32(rightEnd(x, limit, [&](Number at) { return test.at(at, y) == border; }));
}

inline int bscan_left(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value) {
    const View<unsigned char> plane = {data->plane, data->planePitch};
    return int32(leftEnd(x, data->planeRect->left, [&](Number at) { return plane.at(at, y) == value; }));
}

inline int bscan_right(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value) {
    const View<unsigned char> plane = {data->plane, data->planePitch};
    return int32(rightEnd(x, data->planeRect->right, [&](Number at) { return plane.at(at, y) == value; }));
}

/// What the fills have in common. One that goes round an island without end stops when its calls are used up.
struct Fill {
    using At = std::function<bool(Number x, Number y)>;
    using Paint = std::function<void(Number x, Number y)>;

    tagRECT limits;
    At isScannedBorder;
    At isTestedBorder;
    Paint paint;
    Paint paintEdge;
    Number callsLeft = 1 << 30;

    Number from(Number x, Number y, Number parentLeft, Number parentRight, int direction) {
        if (--callsLeft < 0)
            return x;
        if (y <= limits.top || y >= limits.bottom - 1) {
            paintEdge(x, y <= limits.top ? 0 : limits.bottom - 1);
            return x;
        }
        const auto isBorder = [&](Number at) { return isScannedBorder(at, y); };
        const Number l = leftEnd(x, limits.left, isBorder);
        const Number r = rightEnd(x, limits.right, isBorder);
        for (Number i = l; i <= r; ++i)
            paint(i, y);
        const auto enter = [&](Number first, Number last, Number row, int way) {
            for (Number i = first; i <= last && callsLeft >= 0; ++i)
                if (!isTestedBorder(i, row))
                    i = from(i, row, l, r, way);
        };
        const auto enterOverhangs = [&](Number row, int way) {
            enter(l, parentLeft - 1, row, way);
            enter(parentRight + 1, r, row, way);
        };
        if (direction == 0 || direction == 1)
            enter(l, r, y - 1, 1);
        if (direction == 1)
            enterOverhangs(y + 1, 2);
        if (direction == 2)
            enterOverhangs(y - 1, 1);
        if (direction == 0 || direction == 2)
            enter(l, r, y + 1, 2);
        return r;
    }
};

inline Fill colourFill(const _PRIVATE_QMGP_DATA &data, const tagRECT &limits, q_ulong fill, q_ulong border) {
    const Pixels dst = {data.destSurface, data.destPitch};
    const Pixels test = {data.testSurface, data.testPitch};
    const auto isBorder = [=](Number x, Number y) { return test.at(x, y) == border; };
    const auto paint = [=](Number x, Number y) { dst.at(x, y) = fill; };
    return {limits, isBorder, isBorder, paint, paint};
}

inline Fill planeFill(const _PRIVATE_QMGP_DATA &data, unsigned char value) {
    const View<unsigned char> plane = {data.plane, data.planePitch};
    const auto isBorder = [=](Number x, Number y) { return plane.at(x, y) == value; };
    const auto paint = [=](Number x, Number y) { plane.at(x, y) = value; };
    return {*data.planeRect, isBorder, isBorder, paint, paint};
}

/// The rows beside a span are found with the pitch of the source.
inline Fill sourceFill(const _PRIVATE_QMGP_DATA &data, unsigned char value) {
    const Fill onPlane = planeFill(data, value);
    const View<unsigned char> tested = {data.plane, data.testPitch};
    const Pixels dst = {data.destSurface, data.destPitch};
    const Pixels src = {data.testSurface, data.testPitch};
    return {*data.planeRect, onPlane.isScannedBorder, [=](Number x, Number y) { return tested.at(x, y) == value; },
            [=](Number x, Number y) { dst.at(x, y) = src.at(x, y); }, onPlane.paintEdge};
}

inline int Region_Fill(_PRIVATE_QMGP_DATA *data, int x, int y, q_ulong fill, q_ulong border, int parentLeft,
                       int parentRight, int direction, tagRECT *rect) {
    return int32(colourFill(*data, *rect, fill, border).from(x, y, parentLeft, parentRight, direction));
}

template <Fill (*fillOf)(const _PRIVATE_QMGP_DATA &, unsigned char)>
int fillByValue(_PRIVATE_QMGP_DATA *data, int x, int y, unsigned char value, int parentLeft, int parentRight,
                int direction) {
    return int32(fillOf(*data, value).from(x, y, parentLeft, parentRight, direction));
}
inline constexpr auto bRegion_Fill = fillByValue<planeFill>;
inline constexpr auto Region_Src_Fill = fillByValue<sourceFill>;

} // namespace plain

#endif
