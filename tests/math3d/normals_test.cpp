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

_POINT3D normalOf(_POINT3D p1, _POINT3D p2, _POINT3D p3) {
    _POINT3D out = {99, 99, 99, 42};
    iBubSun(&out, &p1, &p2, &p3);
    EXPECT_EQ(out.w, 42);
    return out;
}

_POINT3DFLOAT normalOf(_POINT3DFLOAT p1, _POINT3DFLOAT p2, _POINT3DFLOAT p3) {
    _POINT3DFLOAT out = {99, 99, 99, 42};
    fBubSun(&out, &p1, &p2, &p3);
    EXPECT_EQ(out.w, 42);
    return out;
}

bool isFront(_POINT3DFLOAT p1, _POINT3DFLOAT p2, _POINT3DFLOAT p3) {
    return IsFront(&p1, &p2, &p3);
}

TEST(fBubSun, points_the_other_way_than_the_integer_form) {
    const _POINT3DFLOAT f = normalOf(_POINT3DFLOAT{0, 0, 0, 0}, {10, 0, 0, 0}, {0, 10, 0, 0});
    EXPECT_EQ(f.x, 0);
    EXPECT_EQ(f.y, 0);
    EXPECT_EQ(f.z, 1);
    const _POINT3D i = normalOf(_POINT3D{0, 0, 0, 0}, {10, 0, 0, 0}, {0, 10, 0, 0});
    EXPECT_EQ(i.x, 0);
    EXPECT_EQ(i.y, 0);
    EXPECT_EQ(i.z, -256);

    test::Random random(3);
    for (int round = 0; round < 200; ++round) {
        _POINT3D p[3];
        _POINT3DFLOAT q[3];
        for (int k = 0; k < 3; ++k) {
            p[k] = {random.between(-80, 80), random.between(-80, 80), random.between(-80, 80), 0};
            q[k] = {static_cast<float>(p[k].x), static_cast<float>(p[k].y), static_cast<float>(p[k].z), 0};
        }
        const _POINT3D whole = normalOf(p[0], p[1], p[2]);
        const _POINT3DFLOAT real = normalOf(q[0], q[1], q[2]);
        EXPECT_NEAR(static_cast<float>(whole.x), -256 * real.x, 3);
        EXPECT_NEAR(static_cast<float>(whole.y), -256 * real.y, 3);
        EXPECT_NEAR(static_cast<float>(whole.z), -256 * real.z, 3);
    }
}

TEST(fBubSun, points_on_one_line_have_no_normal) {
    const _POINT3DFLOAT f = normalOf(_POINT3DFLOAT{1, 2, 3, 0}, {2, 4, 6, 0}, {3, 6, 9, 0});
    EXPECT_EQ(f.x, 0);
    EXPECT_EQ(f.y, 0);
    EXPECT_EQ(f.z, 0);
    const _POINT3D i = normalOf(_POINT3D{1, 2, 3, 0}, {2, 4, 6, 0}, {3, 6, 9, 0});
    EXPECT_EQ(i.x, 0);
    EXPECT_EQ(i.y, 0);
    EXPECT_EQ(i.z, 0);
}

TEST(iBubSun, the_length_is_truncated_and_so_are_the_components) {
    // (1, 1, 0) x ... gives (1, 1, 1) of length truncate(1.73) = 1: each component is 256.
    const _POINT3D i = normalOf(_POINT3D{0, 0, 0, 0}, {-1, 0, 1, 0}, {1, -1, 0, 0});
    EXPECT_EQ(i.x, -256);
    EXPECT_EQ(i.y, -256);
    EXPECT_EQ(i.z, -256);
}

TEST(iBubSun, squares_that_wrapped_below_zero_give_the_least_int_as_length) {
    // The cross product is (49152, -1, 8388608), its squares 2415919105 modulo 2^32. 8388608 << 8 is the least int too.
    const _POINT3D i = normalOf(_POINT3D{0, 0, 0, 0}, {0, 8388608, 1, 0}, {1, 49152, 0, 0});
    EXPECT_EQ(i.x, 0);
    EXPECT_EQ(i.y, 0);
    EXPECT_EQ(i.z, 1);
}

TEST(IsFront, is_true_clockwise_on_the_screen_and_false_on_a_line) {
    EXPECT_TRUE(isFront({0, 0, 5, 0}, {1, 0, -7, 0}, {0, 1, 0, 0}));
    EXPECT_FALSE(isFront({0, 0, 0, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}));
    EXPECT_FALSE(isFront({0, 0, 0, 0}, {1, 1, 9, 0}, {2, 2, 0, 0}));
    EXPECT_FALSE(isFront({3, 3, 0, 0}, {3, 3, 1, 0}, {3, 3, 2, 0}));
}

TEST(IsFront, the_product_is_not_rounded_to_a_float) {
    // 8192 * 8192 - 8191 * 8193 is 1, and 8191 * 8193 is no float.
    EXPECT_TRUE(isFront({0, 0, 0, 0}, {8192, 8193, 0, 0}, {8191, 8192, 0, 0}));
}

TEST(fBubSun, agrees_with_a_naive_normal) {
    forEachCase("fBubSun", [](Case &c) {
        _POINT3DFLOAT p1 = anyPoint(c.random);
        _POINT3DFLOAT p2 = anyPoint(c.random);
        _POINT3DFLOAT p3 = c.random.oneIn(10) ? p1 : anyPoint(c.random);
        const _POINT3DFLOAT expected = qmur::atFullWidth([=] {
            const Real a[3] = {p1.x - p2.x, p1.y - p2.y, p1.z - p2.z};
            const Real b[3] = {p1.x - p3.x, p1.y - p3.y, p1.z - p3.z};
            const Real x = static_cast<float>(a[1] * b[2] - a[2] * b[1]);
            const Real y = static_cast<float>(a[2] * b[0] - a[0] * b[2]);
            const Real z = static_cast<float>(a[0] * b[1] - a[1] * b[0]);
            const Real m = std::sqrt(z * z + y * y + x * x);
            const Real k = m == 0 ? 32768 : 1 / m;
            return _POINT3DFLOAT{static_cast<float>(x * k), static_cast<float>(y * k), static_cast<float>(z * k), 0};
        });
        _POINT3DFLOAT result = {};
        callAtAnyPrecision(c, [&] { fBubSun(&result, &p1, &p2, &p3); });
        expectEqualPoints(c, result, expected);
    });
}

TEST(iBubSun, agrees_with_a_naive_normal) {
    forEachCase("iBubSun", [](Case &c) {
        const int bound = c.random.oneIn(3) ? INT_MAX : c.random.oneIn(2) ? 300 : 100;
        const auto point = [&c, bound] {
            const int x = c.random.between(-bound, bound);
            const int y = c.random.between(-bound, bound);
            return _POINT3D{x, y, c.random.between(-bound, bound), 0};
        };
        const auto minus = [](int u, int v) { return low32(static_cast<std::int64_t>(u) - v); };
        const auto times = [](int u, int v) { return low32(static_cast<std::int64_t>(u) * v); };
        _POINT3D p1 = point();
        _POINT3D p2 = point();
        _POINT3D p3 = c.random.oneIn(10) ? p1 : point();
        const int a[3] = {minus(p3.x, p1.x), minus(p3.y, p1.y), minus(p3.z, p1.z)};
        const int b[3] = {minus(p2.x, p1.x), minus(p2.y, p1.y), minus(p2.z, p1.z)};
        const int n[3] = {minus(times(a[1], b[2]), times(a[2], b[1])), minus(times(a[2], b[0]), times(a[0], b[2])),
                          minus(times(a[0], b[1]), times(a[1], b[0]))};
        const int squares = low32(std::int64_t{times(n[2], n[2])} + times(n[1], n[1]) + times(n[0], n[0]));
        std::int64_t length = INT_MIN;
        if (squares >= 0)
            for (length = 0; (length + 1) * (length + 1) <= squares; ++length) {
            }
        const auto component = [length](int value) {
            return length == 0 ? 0 : static_cast<int>(low32(static_cast<std::int64_t>(value) * 256) / length);
        };
        const _POINT3D expected = {component(n[0]), component(n[1]), component(n[2]), 0};
        _POINT3D result = {};
        callAtAnyPrecision(c, [&] { iBubSun(&result, &p1, &p2, &p3); });
        expectEqualPoints(c, result, expected);
    });
}

TEST(IsFront, agrees_with_a_naive_test) {
    forEachCase("IsFront", [](Case &c) {
        _POINT3DFLOAT p1 = anyPoint(c.random);
        _POINT3DFLOAT p2 = anyPoint(c.random);
        _POINT3DFLOAT p3 = c.random.oneIn(4) ? p2 : anyPoint(c.random);
        const bool expected = qmur::atFullWidth([=] {
            const Real x = p1.x;
            const Real y = p1.y;
            return (x - p2.x) * (y - p3.y) - (x - p3.x) * (y - p2.y) > 0;
        });
        bool result = false;
        callAtAnyPrecision(c, [&] { result = IsFront(&p1, &p2, &p3); });
        c.expectEqual(std::int64_t{result}, std::int64_t{expected});
    });
}

} // namespace
