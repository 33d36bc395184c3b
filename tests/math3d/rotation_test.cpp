#include <q_Mur.h>

#include <gtest/gtest.h>

#include <utility>

namespace {

using Ints = std::pair<int, int>;

constexpr unsigned short quarter = 16384;
constexpr float quarterTurn = 1.5707964F;

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

template <class Turn>
Ints turned(Turn turn) {
    int a = 103;
    int b = 57;
    turn(&a, &b);
    return {a, b};
}

TEST(iRotate3DByZ, only_Z_has_a_centre_for_both_coordinates) {
    EXPECT_EQ(turned([](int *a, int *b) { iRotate3DByX(a, b, quarter, 100); }), Ints(157, -3));
    EXPECT_EQ(turned([](int *a, int *b) { iRotate3DByY(a, b, quarter, 100); }), Ints(43, 3));
    EXPECT_EQ(turned([](int *a, int *b) { iRotate3DByZ(a, b, quarter, 100, 50); }), Ints(107, 47));
}

template <class Turn>
void expectTurned(Turn turn, float expectedA, float expectedB) {
    float a = 103;
    float b = 57;
    turn(&a, &b);
    EXPECT_NEAR(a, expectedA, 1e-4);
    EXPECT_NEAR(b, expectedB, 1e-4);
}

TEST(fRotate3DByX, signs_and_centres_are_those_of_the_integers) {
    expectTurned([](float *a, float *b) { fRotate3DByX(a, b, quarterTurn); }, 57, -103);
    expectTurned([](float *a, float *b) { fRotate3DByY(a, b, quarterTurn); }, -57, 103);
    expectTurned([](float *a, float *b) { fRotate3DByZ(a, b, quarterTurn); }, 57, -103);
    expectTurned([](float *a, float *b) { fRotate3DByX(a, b, quarterTurn, 100); }, 157, -3);
    expectTurned([](float *a, float *b) { fRotate3DByY(a, b, quarterTurn, 100); }, 43, 3);
    expectTurned([](float *a, float *b) { fRotate3DByZ(a, b, quarterTurn, 100, 50); }, 107, 47);
}

TEST(iRotate3D, turns_about_X_then_Y_then_Z) {
    int i[3] = {1, 2, 3};
    iRotate3D(&i[0], &i[1], &i[2], quarter, quarter, quarter); // (1, 3, -2), then (2, 3, 1), then (3, -2, 1)
    float f[3] = {1, 2, 3};
    fRotate3D(&f[0], &f[1], &f[2], quarterTurn, quarterTurn, quarterTurn);
    const int expected[3] = {3, -2, 1};
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(i[k], expected[k]);
        EXPECT_NEAR(f[k], expected[k], 1e-5);
    }
}

/// A quarter turn of `p` about the line from (10, 20, 30) to there and `a` further on.
void expectTurnedAboutLine(_POINT3DFLOAT p, _POINT3DFLOAT a, _POINT3DFLOAT expected) {
    _POINT3DFLOAT q = {10, 20, 30, 0};
    p = {p.x + q.x, p.y + q.y, p.z + q.z, 0};
    a = {a.x + q.x, a.y + q.y, a.z + q.z, 0};
    fRotate3D(&p, &a, &q, quarterTurn);
    EXPECT_NEAR(p.x - q.x, expected.x, 1e-4);
    EXPECT_NEAR(p.y - q.y, expected.y, 1e-4);
    EXPECT_NEAR(p.z - q.z, expected.z, 1e-4);
}

TEST(fRotate3D, the_sense_about_a_line_follows_its_direction) {
    expectTurnedAboutLine({1, 0, 0, 0}, {0, -1, 0, 0}, {0, 0, 1, 0});
    expectTurnedAboutLine({1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, -1, 0});
    expectTurnedAboutLine({1, 0, 0, 0}, {0, 0, -1, 0}, {0, -1, 0, 0});
    expectTurnedAboutLine({1, 0, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0});
    expectTurnedAboutLine({0, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0});
    expectTurnedAboutLine({0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, -1, 0});
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

} // namespace
