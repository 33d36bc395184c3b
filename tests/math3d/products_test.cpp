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

_POINT3D anyIntPoint(test::Random &random) {
    const int bound = random.oneIn(2) ? INT_MAX : 1000;
    const int x = random.between(-bound, bound);
    const int y = random.between(-bound, bound);
    return {x, y, random.between(-bound, bound), 0};
}

/// To be used at full width.
Real naiveDot(const _POINT3DFLOAT &a, const _POINT3DFLOAT &b) {
    Real sum = static_cast<Real>(a.z) * static_cast<Real>(b.z);
    sum = sum + static_cast<Real>(a.y) * static_cast<Real>(b.y);
    return sum + static_cast<Real>(a.x) * static_cast<Real>(b.x);
}

_POINT3DFLOAT naiveCross(const _POINT3DFLOAT &a, const _POINT3DFLOAT &b) {
    return qmur::atFullWidth([=] {
        const Real ax = a.x;
        const Real ay = a.y;
        const Real az = a.z;
        return _POINT3DFLOAT{static_cast<float>(ay * b.z - az * b.y), static_cast<float>(az * b.x - ax * b.z),
                             static_cast<float>(ax * b.y - ay * b.x), 0};
    });
}

_I3DVECTOR vectorOf(const _POINT3DFLOAT &p) {
    return {p.x, p.y, p.z, p.w};
}

_POINT3DFLOAT pointOf(const _I3DVECTOR &v) {
    return {v.x, v.y, v.z, v.w};
}

using Address = void (*)();

/// Where a function really lies: a compiler may take two declarations for two functions.
template <class Function>
Address addressOf(Function *function) {
    const volatile Address address = reinterpret_cast<Address>(function);
    return address;
}

TEST(DotProduct, vectors_and_points_share_one_body) {
    EXPECT_EQ(addressOf(&DotProduct), addressOf(&fDot_Product));
    EXPECT_EQ(addressOf(static_cast<float (*)(_I3DVECTOR &)>(&Magnitude)),
              addressOf(static_cast<float (*)(_POINT3DFLOAT *)>(&Magnitude)));
    EXPECT_EQ(addressOf(static_cast<_I3DVECTOR (*)(_I3DVECTOR &)>(&Normalize)),
              addressOf(static_cast<_POINT3DFLOAT (*)(_POINT3DFLOAT *)>(&Normalize)));
}

TEST(DotProduct, z_is_added_first_and_at_full_width) {
    // 2^60 swallows the 0.5 that is added to it, and the sum then falls to 0; added last, the 0.5 stays.
    _I3DVECTOR a = {0.5F, 0x1p30F, 0x1p30F, 0};
    _I3DVECTOR b = {1, -0x1p30F, 0x1p30F, 0};
    EXPECT_EQ(DotProduct(a, b), 0.5F);
    _I3DVECTOR c = {0x1p35F, -0x1p35F, 0.5F, 0};
    _I3DVECTOR d = {0x1p35F, 0x1p35F, 1, 0};
    EXPECT_EQ(DotProduct(c, d), 0.0F);
    // 2^48 + 1 needs more bits than a float or a product rounded to one has.
    _I3DVECTOR e = {-0x1p24F, 1, 0x1p24F, 0};
    _I3DVECTOR f = {0x1p24F, 1, 0x1p24F, 0};
    EXPECT_EQ(DotProduct(e, f), 1.0F);
}

#if defined(__i386__)
TEST(DotProduct, keeps_its_full_width_until_the_caller_stores_it) {
    using WideDot = Real (*)(_POINT3DFLOAT *, _POINT3DFLOAT *);
    _POINT3DFLOAT a = {1, 0x1p24F, 0, 0};
    _POINT3DFLOAT b = {1, 0x1p24F, 0, 0};
    EXPECT_EQ(reinterpret_cast<WideDot>(addressOf(&fDot_Product))(&a, &b), 0x1p48L + 1);
}
#endif

TEST(Magnitude, squares_need_not_fit_a_float) {
    _POINT3DFLOAT large = {3e30F, 4e30F, 0, 0};
    EXPECT_EQ(Magnitude(&large), 5e30F);
    _POINT3DFLOAT small = {0, 3e-30F, 4e-30F, 0};
    EXPECT_EQ(Magnitude(&small), 5e-30F);
}

TEST(Normalize, zero_stays_zero_and_the_smallest_vector_becomes_a_unit) {
    _I3DVECTOR zero = {0, 0, 0, 5};
    const _I3DVECTOR still = Normalize(zero);
    EXPECT_EQ(still.x, 0);
    EXPECT_EQ(still.y, 0);
    EXPECT_EQ(still.z, 0);
    _POINT3DFLOAT tiny = {0, -1e-38F, 0, 0};
    EXPECT_EQ(Normalize(&tiny).y, -1);
}

TEST(fCross_Product, leaves_the_fourth_word_alone) {
    _POINT3DFLOAT x = {1, 0, 0, 0};
    _POINT3DFLOAT y = {0, 1, 0, 0};
    _POINT3DFLOAT out = {9, 9, 9, 42};
    fCross_Product(&out, &x, &y);
    EXPECT_EQ(out.x, 0);
    EXPECT_EQ(out.y, 0);
    EXPECT_EQ(out.z, 1);
    EXPECT_EQ(out.w, 42);
    _POINT3D ix = {1, 0, 0, 0};
    _POINT3D iy = {0, 1, 0, 0};
    _POINT3D iOut = {9, 9, 9, 42};
    iCross_Product(&iOut, &ix, &iy);
    EXPECT_EQ(iOut.z, 1);
    EXPECT_EQ(iOut.w, 42);
}

TEST(DotProduct, agrees_with_a_naive_sum) {
    forEachCase("DotProduct", [](Case &c) {
        _POINT3DFLOAT a = anyPoint(c.random);
        _POINT3DFLOAT b = anyPoint(c.random);
        const float expected = qmur::atFullWidth([=] { return static_cast<float>(naiveDot(a, b)); });
        float result = 0;
        _I3DVECTOR va = vectorOf(a);
        _I3DVECTOR vb = vectorOf(b);
        callAtAnyPrecision(c, [&] { result = c.random.oneIn(2) ? DotProduct(va, vb) : fDot_Product(&a, &b); });
        c.expectEqual(result, expected);
    });
}

TEST(Magnitude, agrees_with_a_naive_root) {
    forEachCase("Magnitude", [](Case &c) {
        _POINT3DFLOAT a = anyPoint(c.random, 100);
        const float expected = qmur::atFullWidth([=] { return static_cast<float>(std::sqrt(naiveDot(a, a))); });
        float result = 0;
        callAtAnyPrecision(c, [&] { result = Magnitude(&a); });
        c.expectEqual(result, expected);
    });
}

TEST(Normalize, agrees_with_a_naive_division) {
    forEachCase("Normalize", [](Case &c) {
        _POINT3DFLOAT a = anyPoint(c.random, 100);
        const _POINT3DFLOAT expected = qmur::atFullWidth([=] {
            const Real m = std::sqrt(naiveDot(a, a));
            const Real k = m == 0 ? 32768 : 1 / m;
            return _POINT3DFLOAT{static_cast<float>(a.x * k), static_cast<float>(a.y * k), static_cast<float>(a.z * k),
                                 0};
        });
        _POINT3DFLOAT result = {};
        _I3DVECTOR v = vectorOf(a);
        callAtAnyPrecision(c, [&] { result = c.random.oneIn(2) ? Normalize(&a) : pointOf(Normalize(v)); });
        expectEqualPoints(c, result, expected);
    });
}

TEST(CrossProduct, agrees_with_naive_differences) {
    forEachCase("CrossProduct", [](Case &c) {
        _I3DVECTOR a = vectorOf(anyPoint(c.random));
        _I3DVECTOR b = vectorOf(anyPoint(c.random));
        _I3DVECTOR result = {};
        callAtAnyPrecision(c, [&] { result = CrossProduct(a, b); });
        expectEqualPoints(c, pointOf(result), naiveCross(pointOf(a), pointOf(b)));
    });
    forEachCase("fCross_Product", [](Case &c) {
        _POINT3DFLOAT a = anyPoint(c.random);
        _POINT3DFLOAT b = anyPoint(c.random);
        _POINT3DFLOAT result = {};
        callAtAnyPrecision(c, [&] { fCross_Product(&result, &a, &b); });
        expectEqualPoints(c, result, naiveCross(a, b));
    });
}

TEST(iDot_Product, agrees_with_a_naive_sum) {
    forEachCase("iDot_Product", [](Case &c) {
        _POINT3D a = anyIntPoint(c.random);
        _POINT3D b = anyIntPoint(c.random);
        const auto product = [](int u, int v) { return std::int64_t{low32(static_cast<std::int64_t>(u) * v)}; };
        const int expected = low32(product(a.z, b.z) + product(a.y, b.y) + product(a.x, b.x));
        c.expectEqual(static_cast<std::int64_t>(iDot_Product(&a, &b)), static_cast<std::int64_t>(expected));
    });
}

TEST(iCross_Product, agrees_with_naive_differences) {
    forEachCase("iCross_Product", [](Case &c) {
        _POINT3D a = anyIntPoint(c.random);
        _POINT3D b = anyIntPoint(c.random);
        const auto minor = [](int p, int q, int r, int s) {
            return low32(std::int64_t{low32(static_cast<std::int64_t>(p) * q)} -
                         low32(static_cast<std::int64_t>(r) * s));
        };
        const _POINT3D expected = {minor(a.y, b.z, a.z, b.y), minor(a.z, b.x, a.x, b.z), minor(a.x, b.y, a.y, b.x), 0};
        _POINT3D result = {};
        iCross_Product(&result, &a, &b);
        expectEqualPoints(c, result, expected);
    });
}

} // namespace
