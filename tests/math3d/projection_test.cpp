#include "full_width.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using test::anyAngle;
using test::anyFloat;
using test::anyPoint;
using test::callAtAnyPrecision;
using test::Case;
using test::expectEqualPoints;
using test::forEachCase;
using test::low32;
using test::Real;

_POINT3DFLOAT projected(_POINT3DFLOAT p, int distance) {
    fConvertReal2Viewport(&p.x, &p.y, &p.z, distance);
    return p;
}

_POINT3D projected(_POINT3D p, int distance) {
    iConvertReal2Viewport(&p.x, &p.y, &p.z, distance);
    return p;
}

_POINT3DFLOAT naiveProjection(_POINT3DFLOAT p, int distance) {
    return qmur::atFullWidth([=] {
        Real depth = static_cast<Real>(distance) + static_cast<Real>(p.z);
        if (!(depth > 16.0L))
            depth = 16.0L;
        const Real k = static_cast<Real>(distance) / depth;
        return _POINT3DFLOAT{static_cast<float>(p.x * k), static_cast<float>(p.y * k), p.z, 0};
    });
}

int naiveProjection(int coordinate, int z, int distance) {
    const int depth = std::max(low32(static_cast<std::int64_t>(distance) + z), 16);
    return low32(static_cast<std::int64_t>(coordinate) * distance) / depth;
}

_POINT3D anyIntPoint(test::Random &random) {
    const int bound = random.oneIn(4) ? INT_MAX : 2000;
    const int x = random.between(-bound, bound);
    const int y = random.between(-bound, bound);
    return {x, y, random.between(-bound, bound), 0};
}

TEST(fConvertReal2Viewport, what_is_nearer_than_16_is_scaled_as_at_16) {
    for (const float z : {-240.0F, -500.0F, -224.0F, -224.5F}) {
        const _POINT3DFLOAT p = projected(_POINT3DFLOAT{2, -3, z, 0}, 240);
        EXPECT_EQ(p.x, 30) << z;
        EXPECT_EQ(p.y, -45) << z;
        EXPECT_EQ(p.z, z);
    }
    EXPECT_EQ(projected(_POINT3DFLOAT{32, 0, -208, 0}, 240).x, 240) << "32 away is not clamped";
}

TEST(fConvertReal2Viewport, the_centre_stays_where_it_is) {
    _POINT3DFLOAT p = {110, 45, 240, 0};
    fConvertReal2Viewport(&p.x, &p.y, &p.z, 100, 50, 240);
    EXPECT_EQ(p.x, 105);
    EXPECT_EQ(p.y, 47.5F);
    p = {100, 50, 1234, 0};
    fConvertReal2Viewport(&p.x, &p.y, &p.z, 100, 50, 240);
    EXPECT_EQ(p.x, 100);
    EXPECT_EQ(p.y, 50);
}

TEST(fConvertReal2Viewport, the_way_from_the_centre_is_rounded_to_a_float) {
    // 16777218.5 is no float; 16777218 is what the way becomes, ties going to the even one.
    _POINT3DFLOAT p = {0.5F, 0, 0, 0};
    fConvertReal2Viewport(&p.x, &p.y, &p.z, -16777218, 0, 240);
    EXPECT_EQ(p.x, 0);
}

TEST(iConvertReal2Viewport, the_division_goes_toward_zero) {
    EXPECT_EQ(projected(_POINT3D{5, -5, 0, 0}, 3).x, 0) << "15 / 16";
    EXPECT_EQ(projected(_POINT3D{5, -5, 0, 0}, 3).y, 0) << "-15 / 16";
    EXPECT_EQ(projected(_POINT3D{6, -6, 0, 0}, 3).x, 1);
    EXPECT_EQ(projected(_POINT3D{6, -6, 0, 0}, 3).y, -1);
    EXPECT_EQ(projected(_POINT3D{7, 0, -100, 0}, 100).x, 43) << "700 / 16";
    EXPECT_EQ(projected(_POINT3D{7, 0, -83, 0}, 100).x, 41) << "700 / 17";
}

TEST(fMapping3D, offsets_of_x_and_y_come_behind_the_projection_and_that_of_z_before) {
    _POINT3DFLOAT p = {10, 20, 0, 0};
    fMapping3D(&p.x, &p.y, &p.z, 0, 0, 0, 300, 200, 100, 100);
    EXPECT_EQ(p.x, 305);
    EXPECT_EQ(p.y, 210);
    EXPECT_EQ(p.z, 100);
    _POINT3D i = {10, 20, 0, 0};
    iMapping3D(&i.x, &i.y, &i.z, 0, 0, 0, 300, 200, 100, 100);
    EXPECT_EQ(i.x, 305);
    EXPECT_EQ(i.y, 210);
    EXPECT_EQ(i.z, 100);
}

TEST(fMove3D, agrees_with_sums) {
    forEachCase("fMove3D", [](Case &c) {
        _POINT3DFLOAT p = anyPoint(c.random, 24);
        const int bound = c.random.oneIn(4) ? INT_MAX : 1000;
        const int dx = c.random.between(-bound, bound);
        const int dy = c.random.between(-bound, bound);
        const int dz = c.random.between(-bound, bound);
        const _POINT3DFLOAT expected = {p.x + static_cast<float>(dx), p.y + static_cast<float>(dy),
                                        p.z + static_cast<float>(dz), 0};
        callAtAnyPrecision(c, [&] { fMove3D(&p.x, &p.y, &p.z, dx, dy, dz); });
        expectEqualPoints(c, p, expected);
    });
}

TEST(iMove3D, agrees_with_sums) {
    forEachCase("iMove3D", [](Case &c) {
        _POINT3D p = anyIntPoint(c.random);
        const _POINT3D d = anyIntPoint(c.random);
        const _POINT3D expected = {low32(static_cast<std::int64_t>(p.x) + d.x),
                                   low32(static_cast<std::int64_t>(p.y) + d.y),
                                   low32(static_cast<std::int64_t>(p.z) + d.z), 0};
        iMove3D(&p.x, &p.y, &p.z, d.x, d.y, d.z);
        expectEqualPoints(c, p, expected);
    });
}

TEST(fConvertReal2Viewport, agrees_with_a_naive_projection) {
    forEachCase("fConvertReal2Viewport", [](Case &c) {
        _POINT3DFLOAT p = anyPoint(c.random);
        const int distance = c.random.between(-100, 1000);
        const _POINT3DFLOAT expected = naiveProjection(p, distance);
        callAtAnyPrecision(c, [&] { fConvertReal2Viewport(&p.x, &p.y, &p.z, distance); });
        expectEqualPoints(c, p, expected);
    });
    forEachCase("fConvertReal2Viewport centre", [](Case &c) {
        _POINT3DFLOAT p = anyPoint(c.random);
        const int distance = c.random.between(-100, 1000);
        const int centreX = c.random.between(-1000, 1000);
        const int centreY = c.random.between(-1000, 1000);
        const _POINT3DFLOAT expected = qmur::atFullWidth([=] {
            Real depth = static_cast<Real>(distance) + static_cast<Real>(p.z);
            depth = depth > 16 ? depth : 16;
            const Real k = distance / depth;
            const float x = p.x - static_cast<float>(centreX);
            const float y = p.y - static_cast<float>(centreY);
            return _POINT3DFLOAT{static_cast<float>(x * k + centreX), static_cast<float>(y * k + centreY), p.z, 0};
        });
        callAtAnyPrecision(c, [&] { fConvertReal2Viewport(&p.x, &p.y, &p.z, centreX, centreY, distance); });
        expectEqualPoints(c, p, expected);
    });
}

TEST(iConvertReal2Viewport, agrees_with_a_naive_projection) {
    forEachCase("iConvertReal2Viewport", [](Case &c) {
        _POINT3D p = anyIntPoint(c.random);
        const int distance = c.random.oneIn(4) ? static_cast<int>(c.random.word()) : c.random.between(-100, 1000);
        const _POINT3D expected = {naiveProjection(p.x, p.z, distance), naiveProjection(p.y, p.z, distance), p.z, 0};
        iConvertReal2Viewport(&p.x, &p.y, &p.z, distance);
        expectEqualPoints(c, p, expected);
    });
    forEachCase("iConvertReal2Viewport centre", [](Case &c) {
        _POINT3D p = anyIntPoint(c.random);
        const _POINT3D centre = anyIntPoint(c.random);
        const int distance = c.random.between(-100, 1000);
        const auto about = [&](int coordinate, int middle) {
            const int way = low32(static_cast<std::int64_t>(coordinate) - middle);
            return low32(static_cast<std::int64_t>(naiveProjection(way, p.z, distance)) + middle);
        };
        const _POINT3D expected = {about(p.x, centre.x), about(p.y, centre.y), p.z, 0};
        iConvertReal2Viewport(&p.x, &p.y, &p.z, centre.x, centre.y, distance);
        expectEqualPoints(c, p, expected);
    });
}

TEST(fMapping3D, agrees_with_its_four_steps) {
    forEachCase("fMapping3D", [](Case &c) {
        _POINT3DFLOAT p = anyPoint(c.random);
        const float angles[3] = {anyAngle(c.random), anyAngle(c.random), anyAngle(c.random)};
        const int offsetX = c.random.between(-500, 500);
        const int offsetY = c.random.between(-500, 500);
        const int offsetZ = c.random.between(-500, 500);
        const int distance = c.random.between(-100, 1000);
        _POINT3DFLOAT expected = p;
        fRotate3D(&expected.x, &expected.y, &expected.z, angles[0], angles[1], angles[2]);
        expected.z += static_cast<float>(offsetZ);
        expected = naiveProjection(expected, distance);
        expected.x += static_cast<float>(offsetX);
        expected.y += static_cast<float>(offsetY);
        expected.z += 0.0F;
        callAtAnyPrecision(c, [&] {
            fMapping3D(&p.x, &p.y, &p.z, angles[0], angles[1], angles[2], offsetX, offsetY, offsetZ, distance);
        });
        expectEqualPoints(c, p, expected);
    });
}

TEST(iMapping3D, agrees_with_its_four_steps) {
    forEachCase("iMapping3D", [](Case &c) {
        _POINT3D p = anyIntPoint(c.random);
        const _POINT3D offset = anyIntPoint(c.random);
        const int distance = c.random.between(-100, 1000);
        unsigned short angles[3];
        for (unsigned short &angle : angles)
            angle = static_cast<unsigned short>(c.random.word());
        _POINT3D expected = p;
        iRotate3D(&expected.x, &expected.y, &expected.z, angles[0], angles[1], angles[2]);
        expected.z = low32(static_cast<std::int64_t>(expected.z) + offset.z);
        expected.x = low32(static_cast<std::int64_t>(naiveProjection(expected.x, expected.z, distance)) + offset.x);
        expected.y = low32(static_cast<std::int64_t>(naiveProjection(expected.y, expected.z, distance)) + offset.y);
        iMapping3D(&p.x, &p.y, &p.z, angles[0], angles[1], angles[2], offset.x, offset.y, offset.z, distance);
        expectEqualPoints(c, p, expected);
    });
}

} // namespace
