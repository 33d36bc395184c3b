#include "full_width.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using test::anyPoint;
using test::callAtAnyPrecision;
using test::Case;
using test::expectEqualPoints;
using test::forEachCase;
using test::low32;
using test::Real;

TEST(iMean2Vector, rounds_toward_minus_infinity_where_the_float_form_does_not_round) {
    _POINT3D a = {-1, -3, 3, 0};
    _POINT3D b = {0, 0, 0, 0};
    const _POINT3D mean = iMean2Vector(&a, &b);
    EXPECT_EQ(mean.x, -1);
    EXPECT_EQ(mean.y, -2);
    EXPECT_EQ(mean.z, 1);
    const _POINT3D quarter = iMean4Vector(&a, &b, &b, &b);
    EXPECT_EQ(quarter.x, -1);
    EXPECT_EQ(quarter.y, -1);
    EXPECT_EQ(quarter.z, 0);
    _POINT3DFLOAT fa = {-1, -3, 3, 0};
    _POINT3DFLOAT fb = {0, 0, 0, 0};
    EXPECT_EQ(fMean2Vector(&fa, &fb).x, -0.5F);
    EXPECT_EQ(fMean4Vector(&fa, &fb, &fb, &fb).y, -0.75F);
}

TEST(fMean4Vector, the_sum_is_not_rounded_before_it_is_divided) {
    _POINT3DFLOAT large = {0x1p24F, 0, 0, 0};
    _POINT3DFLOAT negative = {-0x1p24F, 0, 0, 0};
    _POINT3DFLOAT one = {1, 0, 0, 0};
    EXPECT_EQ(fMean4Vector(&large, &one, &negative, &one).x, 0.5F);
}

TEST(fMean2Vector, agrees_with_naive_means) {
    forEachCase("fMean2Vector", [](Case &c) {
        _POINT3DFLOAT a = anyPoint(c.random);
        _POINT3DFLOAT b = anyPoint(c.random);
        const auto mean = [](float p, float q) {
            return qmur::atFullWidth([=] { return static_cast<float>((static_cast<Real>(p) + q) / 2); });
        };
        _POINT3DFLOAT result = {};
        callAtAnyPrecision(c, [&] { result = fMean2Vector(&a, &b); });
        expectEqualPoints(c, result, {mean(a.x, b.x), mean(a.y, b.y), mean(a.z, b.z), 0});
    });
    forEachCase("fMean4Vector", [](Case &c) {
        _POINT3DFLOAT p[4];
        for (_POINT3DFLOAT &point : p)
            point = anyPoint(c.random);
        const auto mean = [&p](float _POINT3DFLOAT::*k) {
            return qmur::atFullWidth([&p, k] {
                Real sum = p[0].*k;
                for (int i = 1; i < 4; ++i)
                    sum = sum + p[i].*k;
                return static_cast<float>(sum / 4);
            });
        };
        _POINT3DFLOAT result = {};
        callAtAnyPrecision(c, [&] { result = fMean4Vector(&p[0], &p[1], &p[2], &p[3]); });
        expectEqualPoints(c, result, {mean(&_POINT3DFLOAT::x), mean(&_POINT3DFLOAT::y), mean(&_POINT3DFLOAT::z), 0});
    });
}

TEST(iMean2Vector, agrees_with_naive_means) {
    const auto anyInts = [](Case &c) {
        const int bound = c.random.oneIn(2) ? INT_MAX : 1000;
        const int x = c.random.between(-bound, bound);
        const int y = c.random.between(-bound, bound);
        return _POINT3D{x, y, c.random.between(-bound, bound), 0};
    };
    const auto divided = [](std::int64_t sum, int divisor) {
        const int cut = low32(sum);
        return (cut - (cut % divisor + divisor) % divisor) / divisor;
    };
    forEachCase("iMean2Vector", [&](Case &c) {
        _POINT3D a = anyInts(c);
        _POINT3D b = anyInts(c);
        expectEqualPoints(c, iMean2Vector(&a, &b),
                          {divided(std::int64_t{a.x} + b.x, 2), divided(std::int64_t{a.y} + b.y, 2),
                           divided(std::int64_t{a.z} + b.z, 2), 0});
    });
    forEachCase("iMean4Vector", [&](Case &c) {
        _POINT3D p[4];
        for (_POINT3D &point : p)
            point = anyInts(c);
        const auto mean = [&](int _POINT3D::*k) {
            return divided(std::int64_t{p[0].*k} + p[1].*k + p[2].*k + p[3].*k, 4);
        };
        expectEqualPoints(c, iMean4Vector(&p[0], &p[1], &p[2], &p[3]),
                          {mean(&_POINT3D::x), mean(&_POINT3D::y), mean(&_POINT3D::z), 0});
    });
}

} // namespace
