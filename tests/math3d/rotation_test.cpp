#include "full_width.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <tuple>
#include <utility>

namespace {

using test::anyAngle;
using test::anyFloat;
using test::anyPoint;
using test::callAtAnyPrecision;
using test::Case;
using test::forEachCase;
using test::low32;
using test::Real;

using Ints = std::pair<int, int>;

constexpr unsigned short quarter = 16384;
constexpr float quarterTurn = 1.5707964F;

enum Axis { axisX, axisY, axisZ };

/// The six forms of a rotation of floats, each formula written out.
std::pair<float, float> naiveTurn(Axis axis, float floatA, float floatB, float angle, int centreA = 0, int centreB = 0,
                                  bool centred = false) {
    return qmur::atFullWidth([=] {
        const auto [s, c] = qmur::sineCosine(angle);
        const Real a = floatA;
        const Real b = floatB;
        const Real ca = centreA;
        const Real cb = centreB;
        Real newA = 0;
        Real newB = 0;
        if (!centred && axis == axisY) {
            newA = a * c - b * s;
            newB = b * c + a * s;
        } else if (!centred) {
            newA = a * c + b * s;
            newB = b * c - a * s;
        } else if (axis == axisX) {
            newA = (a - ca) * c + b * s + ca;
            newB = b * c - (a - ca) * s;
        } else if (axis == axisY) {
            newA = (a - ca) * c - b * s + ca;
            newB = b * c + (a - ca) * s;
        } else {
            newA = (a - ca) * c + (b - cb) * s + ca;
            newB = (b - cb) * c - (a - ca) * s + cb;
        }
        return std::pair(static_cast<float>(newA), static_cast<float>(newB));
    });
}

/// The same of ints. Wrapping at the end of 64-bit sums gives what wrapping at every step does.
Ints naiveTurn(Axis axis, int a, int b, unsigned short angle, int centreA = 0, int centreB = 0, bool centred = false) {
    const std::int64_t s = iSin[angle / 8];
    const std::int64_t c = iCos[angle / 8];
    const std::int64_t fromA = low32(static_cast<std::int64_t>(a) - centreA);
    const std::int64_t fromB = axis == axisZ ? low32(static_cast<std::int64_t>(b) - centreB) : b;
    const auto shifted = [](std::int64_t sum) {
        return static_cast<std::int64_t>(std::floor(static_cast<double>(low32(sum)) / 32768));
    };
    std::int64_t newA = shifted(axis == axisY ? fromA * c - fromB * s : fromA * c + fromB * s);
    std::int64_t newB = shifted(axis == axisY ? fromB * c + fromA * s : fromB * c - fromA * s);
    if (centred)
        newA += centreA;
    if (centred && axis == axisZ)
        newB += centreB;
    return {low32(newA), low32(newB)};
}

void turnThird(Axis axis, float &a, float &b, float angle) {
    std::tie(a, b) = naiveTurn(axis, a, b, angle);
}

void turnThird(Axis axis, int &a, int &b, unsigned short angle) {
    std::tie(a, b) = naiveTurn(axis, a, b, angle);
}

Ints byX(int a, int b, unsigned short angle) {
    iRotate3DByX(&a, &b, angle);
    return {a, b};
}
Ints byY(int a, int b, unsigned short angle) {
    iRotate3DByY(&a, &b, angle);
    return {a, b};
}
Ints byZ(int a, int b, unsigned short angle) {
    iRotate3DByZ(&a, &b, angle);
    return {a, b};
}

TEST(iRotate3DByX, angle_0_keeps_every_coordinate) {
    for (int a = -65535; a <= 65535; ++a)
        ASSERT_EQ(byX(a, -a, 0), Ints(a, -a));
}

TEST(iRotate3DByX, a_tiny_angle_rounds_toward_minus_infinity) {
    EXPECT_EQ(iCos[1], 32767);
    EXPECT_EQ(byX(-1, 0, 8).first, -1);
    EXPECT_EQ(byX(1, 0, 8).first, 0);
}

TEST(iRotate3DByX, coordinates_of_65536_lose_their_top_bits) {
    EXPECT_EQ(byX(65535, 0, 0).first, 65535);
    EXPECT_EQ(byX(65536, 0, 0).first, -65536);
    EXPECT_EQ(byX(131072, 0, 0).first, 0);
}

TEST(iRotate3DByX, the_angle_counts_in_steps_of_eight_units) {
    for (int angle = 0; angle <= 0xFFFF; ++angle) {
        const auto units = static_cast<unsigned short>(angle);
        ASSERT_EQ(byX(30000, 7, units), byX(30000, 7, static_cast<unsigned short>(units & ~7)));
    }
    EXPECT_EQ(byX(32768, 0, 0xFFFF), Ints(iCos[8191], -iSin[8191]));
}

TEST(iRotate3DByY, a_quarter_turn_goes_the_other_way_than_about_X_and_Z) {
    EXPECT_EQ(byX(5, 3, quarter), Ints(3, -5));
    EXPECT_EQ(byY(5, 3, quarter), Ints(-3, 5));
    EXPECT_EQ(byZ(5, 3, quarter), Ints(3, -5));
}

TEST(iRotate3DByZ, only_Z_has_a_centre_for_both_coordinates) {
    int a = 103;
    int b = 57;
    iRotate3DByX(&a, &b, quarter, 100);
    EXPECT_EQ(Ints(a, b), Ints(157, -3));
    a = 103;
    b = 57;
    iRotate3DByY(&a, &b, quarter, 100);
    EXPECT_EQ(Ints(a, b), Ints(43, 3));
    a = 103;
    b = 57;
    iRotate3DByZ(&a, &b, quarter, 100, 50);
    EXPECT_EQ(Ints(a, b), Ints(107, 47));
}

TEST(fRotate3DByX, signs_and_centres_are_those_of_the_integers) {
    const auto expectNear = [](std::pair<float, float> result, float a, float b) {
        EXPECT_NEAR(result.first, a, 1e-4);
        EXPECT_NEAR(result.second, b, 1e-4);
    };
    const auto with = [](auto call) {
        float a = 103;
        float b = 57;
        call(&a, &b);
        return std::pair(a, b);
    };
    expectNear(with([](float *a, float *b) { fRotate3DByX(a, b, quarterTurn); }), 57, -103);
    expectNear(with([](float *a, float *b) { fRotate3DByY(a, b, quarterTurn); }), -57, 103);
    expectNear(with([](float *a, float *b) { fRotate3DByZ(a, b, quarterTurn); }), 57, -103);
    expectNear(with([](float *a, float *b) { fRotate3DByX(a, b, quarterTurn, 100); }), 157, -3);
    expectNear(with([](float *a, float *b) { fRotate3DByY(a, b, quarterTurn, 100); }), 43, 3);
    expectNear(with([](float *a, float *b) { fRotate3DByZ(a, b, quarterTurn, 100, 50); }), 107, 47);
}

TEST(iRotate3D, turns_about_X_then_Y_then_Z) {
    int x = 1;
    int y = 2;
    int z = 3;
    iRotate3D(&x, &y, &z, quarter, quarter, quarter); // (1, 3, -2), then (2, 3, 1), then (3, -2, 1)
    EXPECT_EQ(x, 3);
    EXPECT_EQ(y, -2);
    EXPECT_EQ(z, 1);
    float fx = 1;
    float fy = 2;
    float fz = 3;
    fRotate3D(&fx, &fy, &fz, quarterTurn, quarterTurn, quarterTurn);
    EXPECT_NEAR(fx, 3, 1e-5);
    EXPECT_NEAR(fy, -2, 1e-5);
    EXPECT_NEAR(fz, 1, 1e-5);
}

void expectTurned(_POINT3DFLOAT p, _POINT3DFLOAT a, _POINT3DFLOAT expected) {
    _POINT3DFLOAT q = {10, 20, 30, 0};
    p = {p.x + q.x, p.y + q.y, p.z + q.z, 0};
    a = {a.x + q.x, a.y + q.y, a.z + q.z, 0};
    fRotate3D(&p, &a, &q, quarterTurn);
    EXPECT_NEAR(p.x - q.x, expected.x, 1e-4);
    EXPECT_NEAR(p.y - q.y, expected.y, 1e-4);
    EXPECT_NEAR(p.z - q.z, expected.z, 1e-4);
}

TEST(fRotate3D, the_sense_about_a_line_follows_its_direction) {
    expectTurned({1, 0, 0, 0}, {0, -1, 0, 0}, {0, 0, 1, 0});
    expectTurned({1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, -1, 0});
    expectTurned({1, 0, 0, 0}, {0, 0, -1, 0}, {0, -1, 0, 0});
    expectTurned({1, 0, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0});
    expectTurned({0, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0});
    expectTurned({0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, -1, 0});
}

TEST(iRotate3D, a_quarter_turn_about_a_line_in_whole_units) {
    _POINT3D q = {10, 20, 30, 0};
    _POINT3D a = {10, 20, -70, 0};
    _POINT3D p = {1010, 20, 30, 0};
    iRotate3D(&p, &a, &q, quarter);
    EXPECT_NEAR(p.x, 10, 2);
    EXPECT_NEAR(p.y, -980, 2);
    EXPECT_NEAR(p.z, 30, 2);
}

TEST(fRotate3D, a_turn_about_a_line_keeps_distances) {
    test::Random random(7);
    for (int i = 0; i < 200; ++i) {
        _POINT3DFLOAT a = anyPoint(random, 4);
        _POINT3DFLOAT q = anyPoint(random, 4);
        _POINT3DFLOAT p = anyPoint(random, 4);
        const auto distance = [](const _POINT3DFLOAT &u, const _POINT3DFLOAT &v) {
            return std::hypot(u.x - v.x, u.y - v.y, u.z - v.z);
        };
        const float toA = distance(p, a);
        const float toQ = distance(p, q);
        fRotate3D(&p, &a, &q, anyAngle(random));
        EXPECT_NEAR(distance(p, a), toA, 2e-3);
        EXPECT_NEAR(distance(p, q), toQ, 2e-3);
    }
}

template <class Turn, class TurnCentred>
void checkFloats(const char *name, Axis axis, Turn turn, TurnCentred turnCentred) {
    forEachCase(name, [&](Case &c) {
        float a = anyFloat(c.random);
        float b = anyFloat(c.random);
        const float angle = anyAngle(c.random);
        const auto expected = naiveTurn(axis, a, b, angle);
        callAtAnyPrecision(c, [&] { turn(&a, &b, angle); });
        c.expectEqual(a, expected.first);
        c.expectEqual(b, expected.second);
    });
    forEachCase(std::string(name) + " centre", [&](Case &c) {
        float a = anyFloat(c.random);
        float b = anyFloat(c.random);
        const float angle = anyAngle(c.random);
        const int centreA = c.random.between(-500, 500);
        const int centreB = c.random.between(-500, 500);
        const auto expected = naiveTurn(axis, a, b, angle, centreA, centreB, true);
        callAtAnyPrecision(c, [&] { turnCentred(&a, &b, angle, centreA, centreB); });
        c.expectEqual(a, expected.first);
        c.expectEqual(b, expected.second);
    });
}

template <class Turn, class TurnCentred>
void checkInts(const char *name, Axis axis, Turn turn, TurnCentred turnCentred) {
    const auto expectEqual = [](Case &c, Ints result, Ints expected) {
        c.expectEqual(static_cast<std::int64_t>(result.first), static_cast<std::int64_t>(expected.first));
        c.expectEqual(static_cast<std::int64_t>(result.second), static_cast<std::int64_t>(expected.second));
    };
    const auto coordinate = [](Case &c) {
        const int bound = c.random.oneIn(4) ? INT_MAX : 70000;
        return c.random.between(-bound, bound);
    };
    forEachCase(name, [&](Case &c) {
        int a = coordinate(c);
        int b = coordinate(c);
        const auto angle = static_cast<unsigned short>(c.random.word());
        const Ints expected = naiveTurn(axis, a, b, angle);
        turn(&a, &b, angle);
        expectEqual(c, {a, b}, expected);
    });
    forEachCase(std::string(name) + " centre", [&](Case &c) {
        int a = coordinate(c);
        int b = coordinate(c);
        const int centreA = coordinate(c);
        const int centreB = coordinate(c);
        const auto angle = static_cast<unsigned short>(c.random.word());
        const Ints expected = naiveTurn(axis, a, b, angle, centreA, centreB, true);
        turnCentred(&a, &b, angle, centreA, centreB);
        expectEqual(c, {a, b}, expected);
    });
}

TEST(fRotate3DByX, agrees_with_the_written_out_formulas) {
    checkFloats(
        "fRotate3DByX", axisX, [](float *a, float *b, float angle) { fRotate3DByX(a, b, angle); },
        [](float *a, float *b, float angle, int centre, int) { fRotate3DByX(a, b, angle, centre); });
}

TEST(fRotate3DByY, agrees_with_the_written_out_formulas) {
    checkFloats(
        "fRotate3DByY", axisY, [](float *a, float *b, float angle) { fRotate3DByY(a, b, angle); },
        [](float *a, float *b, float angle, int centre, int) { fRotate3DByY(a, b, angle, centre); });
}

TEST(fRotate3DByZ, agrees_with_the_written_out_formulas) {
    checkFloats(
        "fRotate3DByZ", axisZ, [](float *a, float *b, float angle) { fRotate3DByZ(a, b, angle); },
        [](float *a, float *b, float angle, int cA, int cB) { fRotate3DByZ(a, b, angle, cA, cB); });
}

TEST(iRotate3DByX, agrees_with_the_written_out_formulas) {
    checkInts(
        "iRotate3DByX", axisX, [](int *a, int *b, unsigned short angle) { iRotate3DByX(a, b, angle); },
        [](int *a, int *b, unsigned short angle, int centre, int) { iRotate3DByX(a, b, angle, centre); });
}

TEST(iRotate3DByY, agrees_with_the_written_out_formulas) {
    checkInts(
        "iRotate3DByY", axisY, [](int *a, int *b, unsigned short angle) { iRotate3DByY(a, b, angle); },
        [](int *a, int *b, unsigned short angle, int centre, int) { iRotate3DByY(a, b, angle, centre); });
}

TEST(iRotate3DByZ, agrees_with_the_written_out_formulas) {
    checkInts(
        "iRotate3DByZ", axisZ, [](int *a, int *b, unsigned short angle) { iRotate3DByZ(a, b, angle); },
        [](int *a, int *b, unsigned short angle, int cA, int cB) { iRotate3DByZ(a, b, angle, cA, cB); });
}

TEST(fRotate3D, agrees_with_three_turns_each_rounded) {
    forEachCase("fRotate3D", [](Case &c) {
        _POINT3DFLOAT p = anyPoint(c.random);
        _POINT3DFLOAT expected = p;
        const float angles[3] = {anyAngle(c.random), anyAngle(c.random), anyAngle(c.random)};
        turnThird(axisX, expected.y, expected.z, angles[0]);
        turnThird(axisY, expected.x, expected.z, angles[1]);
        turnThird(axisZ, expected.x, expected.y, angles[2]);
        callAtAnyPrecision(c, [&] { fRotate3D(&p.x, &p.y, &p.z, angles[0], angles[1], angles[2]); });
        test::expectEqualPoints(c, p, expected);
    });
}

TEST(iRotate3D, agrees_with_three_turns) {
    forEachCase("iRotate3D", [](Case &c) {
        const int bound = c.random.oneIn(4) ? INT_MAX : 30000;
        _POINT3D p = {c.random.between(-bound, bound), c.random.between(-bound, bound), c.random.between(-bound, bound),
                      0};
        _POINT3D expected = p;
        unsigned short angles[3];
        for (unsigned short &angle : angles)
            angle = static_cast<unsigned short>(c.random.word());
        turnThird(axisX, expected.y, expected.z, angles[0]);
        turnThird(axisY, expected.x, expected.z, angles[1]);
        turnThird(axisZ, expected.x, expected.y, angles[2]);
        iRotate3D(&p.x, &p.y, &p.z, angles[0], angles[1], angles[2]);
        test::expectEqualPoints(c, p, expected);
    });
}

TEST(fRotate3D, about_a_line_agrees_with_five_turns) {
    forEachCase("fRotate3D line", [](Case &c) {
        _POINT3DFLOAT p = anyPoint(c.random);
        _POINT3DFLOAT a = anyPoint(c.random);
        _POINT3DFLOAT q = c.random.oneIn(16) ? a : anyPoint(c.random);
        const float angle = anyAngle(c.random);
        _POINT3DFLOAT expected = {p.x - q.x, p.y - q.y, p.z - q.z, 0};
        const auto [t1, t2] = qmur::atFullWidth([=] {
            const Real dx = static_cast<Real>(a.x) - static_cast<Real>(q.x);
            const Real dy = static_cast<Real>(q.y) - static_cast<Real>(a.y);
            const Real dz = static_cast<Real>(q.z) - static_cast<Real>(a.z);
            return std::pair(static_cast<float>(qmur::arcTangent(dx, dy)),
                             static_cast<float>(qmur::arcTangent(dz, std::sqrt(dx * dx + dy * dy))));
        });
        turnThird(axisZ, expected.x, expected.y, t1);
        turnThird(axisX, expected.y, expected.z, t2);
        turnThird(axisY, expected.x, expected.z, angle);
        turnThird(axisX, expected.y, expected.z, -t2);
        turnThird(axisZ, expected.x, expected.y, -t1);
        expected = {expected.x + q.x, expected.y + q.y, expected.z + q.z, 0};
        callAtAnyPrecision(c, [&] { fRotate3D(&p, &a, &q, angle); });
        test::expectEqualPoints(c, p, expected);
    });
}

TEST(iRotate3D, about_a_line_agrees_with_five_turns) {
    forEachCase("iRotate3D line", [](Case &c) {
        const int bound = c.random.oneIn(4) ? INT_MAX : 10000;
        const auto point = [&c, bound] {
            const int x = c.random.between(-bound, bound);
            const int y = c.random.between(-bound, bound);
            return _POINT3D{x, y, c.random.between(-bound, bound), 0};
        };
        const auto minus = [](int u, int v) { return low32(static_cast<std::int64_t>(u) - v); };
        const auto plus = [](int u, int v) { return low32(static_cast<std::int64_t>(u) + v); };
        _POINT3D p = point();
        _POINT3D a = point();
        _POINT3D q = c.random.oneIn(16) ? a : point();
        const auto angle = static_cast<unsigned short>(c.random.word());
        _POINT3D expected = {minus(p.x, q.x), minus(p.y, q.y), minus(p.z, q.z), 0};
        const int dx = minus(a.x, q.x);
        const int dy = minus(q.y, a.y);
        const int dz = minus(q.z, a.z);
        const auto [t1, t2] = qmur::atFullWidth([=] {
            const Real factor = static_cast<Real>(10430.3805204495);
            const Real squares = static_cast<Real>(dx) * dx + static_cast<Real>(dy) * dy;
            return Ints(static_cast<int>(qmur::arcTangent(dx, dy) * factor),
                        static_cast<int>(qmur::arcTangent(dz, std::sqrt(squares)) * factor));
        });
        turnThird(axisZ, expected.x, expected.y, static_cast<unsigned short>(t1));
        turnThird(axisX, expected.y, expected.z, static_cast<unsigned short>(t2));
        turnThird(axisY, expected.x, expected.z, angle);
        turnThird(axisX, expected.y, expected.z, static_cast<unsigned short>(-t2));
        turnThird(axisZ, expected.x, expected.y, static_cast<unsigned short>(-t1));
        expected = {plus(expected.x, q.x), plus(expected.y, q.y), plus(expected.z, q.z), 0};
        callAtAnyPrecision(c, [&] { iRotate3D(&p, &a, &q, angle); });
        test::expectEqualPoints(c, p, expected);
    });
}

} // namespace
