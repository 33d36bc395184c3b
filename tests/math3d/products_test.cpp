#include "points.h"

#include <gtest/gtest.h>

namespace {

using test::Floats;
using test::xyz;

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
    using WideDot = long double (*)(_POINT3DFLOAT *, _POINT3DFLOAT *);
    _POINT3DFLOAT a = {1, 0x1p24F, 0, 0};
    _POINT3DFLOAT b = {1, 0x1p24F, 0, 0};
    void (*const volatile function)() = reinterpret_cast<void (*)()>(&fDot_Product);
    EXPECT_EQ(reinterpret_cast<WideDot>(function)(&a, &b), 0x1p48L + 1);
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
    EXPECT_EQ(xyz(Normalize(zero)), Floats{});
    _POINT3DFLOAT tiny = {0, -1e-38F, 0, 0};
    EXPECT_EQ(Normalize(&tiny).y, -1);
}

TEST(fCross_Product, leaves_the_fourth_word_alone) {
    _POINT3DFLOAT x = {1, 0, 0, 0};
    _POINT3DFLOAT y = {0, 1, 0, 0};
    _POINT3DFLOAT out = {9, 9, 9, 42};
    fCross_Product(&out, &x, &y);
    EXPECT_EQ(xyz(out), (Floats{0, 0, 1}));
    EXPECT_EQ(out.w, 42);
    _POINT3D ix = {1, 0, 0, 0};
    _POINT3D iy = {0, 1, 0, 0};
    _POINT3D iOut = {9, 9, 9, 42};
    iCross_Product(&iOut, &ix, &iy);
    EXPECT_EQ(iOut.z, 1);
    EXPECT_EQ(iOut.w, 42);
}

} // namespace
