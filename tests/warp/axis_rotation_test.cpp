#include "plain/turns.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using test::anyTurn;
using test::Surface;

enum Axis { axisX, axisY };

int toInt(q_long value) {
    return static_cast<int>(value);
}

/// The pixel of a line at a place along it: lines are rows for X and columns for Y.
q_ulong &pixelOf(Surface &surface, Axis axis, int line, int along, tagPOINT origin = {}) {
    const int x = (axis == axisX ? along : line) + toInt(origin.x);
    const int y = (axis == axisX ? line : along) + toInt(origin.y);
    return surface.at(x, y);
}

q_ulong *pixelsAt(Surface *surface, tagPOINT origin) {
    return surface ? &surface->at(toInt(origin.x), toInt(origin.y)) : nullptr;
}

/// A full turn and its surfaces.
struct Turn {
    double angle = 0;
    double scale = 1;
    double perspective = 0;
    tagRECT srcRect = {};
    tagPOINT destCentre = {};
    tagPOINT pivot = {};
    int clearOutside = 0;
    q_ulong backColour = 0;
    int width = 0;
    int height = 0;
    Surface *front = nullptr;
    Surface *back = nullptr;
    Surface *background = nullptr;
    tagPOINT dstOrigin = {}; ///< what is handed over as the corner of a surface
    tagPOINT faceOrigin = {};
    tagPOINT backgroundOrigin = {};

    void draw(Axis axis, Surface &dst) const { drawBy(axis == axisX ? iBltNear32_X_Roto : iBltNear32_Y_Roto, dst); }
    void drawPlainly(Axis axis, Surface &dst) const {
        drawBy(axis == axisX ? plain::iBltNear32_X_Roto : plain::iBltNear32_Y_Roto, dst);
    }

private:
    void drawBy(decltype(iBltNear32_X_Roto) *blit, Surface &dst) const {
        blit(pixelsAt(&dst, dstOrigin), pixelsAt(front, faceOrigin), pixelsAt(back, faceOrigin),
             pixelsAt(background, backgroundOrigin), angle, scale, perspective, srcRect, destCentre, pivot,
             clearOutside, backColour, 0x5A5A5A5A, dst.pitch(), width, height);
    }
};

/// A blit of a whole frame.
struct FrameTurn {
    enum Kind { oneFace, withBackground, aboutY };

    Kind kind = oneFace;
    double angle = 0;
    double scale = 1;
    double perspective = 0;
    int width = 0;
    int height = 0;
    Surface *src = nullptr;
    Surface *background = nullptr;
    tagPOINT dstOrigin = {}; ///< what is handed over as the corner of a surface
    tagPOINT srcOrigin = {};

    void draw(Surface &dst) const {
        drawBy(iBltNear32_X_Roto_Fast, iBltNear32_X_Roto_Fast, iBltNear32_Y_Roto_Fast, dst);
    }
    void drawPlainly(Surface &dst) const {
        drawBy(plain::iBltNear32_X_Roto_Fast, plain::iBltNear32_X_Roto_Fast, plain::iBltNear32_Y_Roto_Fast, dst);
    }

private:
    using Blit = void(q_ulong *, int, q_ulong *, int, double, double, double, int, int);
    using BlitWithBackground = void(q_ulong *, int, q_ulong *, int, q_ulong *, int, double, double, double, int, int);

    void drawBy(Blit *aboutX, BlitWithBackground *aboutXWithBackground, Blit *turnAboutY, Surface &dst) const {
        q_ulong *const to = pixelsAt(&dst, dstOrigin);
        q_ulong *const from = pixelsAt(src, srcOrigin);
        if (kind == oneFace)
            aboutX(to, dst.pitch(), from, src->pitch(), angle, scale, perspective, width, height);
        else if (kind == withBackground)
            aboutXWithBackground(to, dst.pitch(), from, src->pitch(), background->pixels(), -999, angle, scale,
                                 perspective, width, height);
        else
            turnAboutY(to, dst.pitch(), from, src->pitch(), angle, scale, perspective, width, height);
    }
};

constexpr double pi = std::numbers::pi;

/// A picture whose pixels tell their own place: row in the second byte, column in the lowest.
Surface placesOf(int width, int height) {
    Surface surface(width, height);
    for (int y = -Surface::margin; y < height + Surface::margin; ++y)
        for (int x = -Surface::margin; x < width + Surface::margin; ++x)
            surface.at(x, y) = 0xFF000000 | static_cast<q_ulong>((y & 255) << 8 | (x & 255));
    return surface;
}

q_ulong place(int x, int y) {
    return 0xFF000000 | static_cast<q_ulong>((y & 255) << 8 | (x & 255));
}

constexpr q_ulong untouched = 0x11111111;

TEST(iBltNear32_X_Roto, at_angle_0_copies_straight_around_the_pivot) {
    Surface front = placesOf(12, 12);
    Surface dst(12, 12, untouched);
    // Half of a width of 5 is 2.5: the columns 4 to 8 are walked. Source column 1 is outside and column 6 is not
    // reached, since the middle of 2 and 7 is 4.
    const Turn turn = {
        .srcRect = {2, 3, 7, 7}, .destCentre = {7, 6}, .pivot = {4, 5}, .width = 12, .height = 12, .front = &front};
    turn.draw(axisX, dst);
    Surface expected(12, 12, untouched);
    for (int y = 4; y < 8; ++y)
        for (int x = 5; x < 9; ++x)
            expected.at(x, y) = place(x - 3, y - 1);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_Y_Roto, at_angle_0_copies_straight_around_the_pivot) {
    Surface front = placesOf(12, 12);
    Surface dst(12, 12, untouched);
    const Turn turn = {
        .srcRect = {3, 2, 7, 7}, .destCentre = {6, 7}, .pivot = {5, 4}, .width = 12, .height = 12, .front = &front};
    turn.draw(axisY, dst);
    Surface expected(12, 12, untouched);
    for (int x = 4; x < 8; ++x)
        for (int y = 5; y < 9; ++y)
            expected.at(x, y) = place(x - 1, y - 3);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_X_Roto, six_decimals_limit_the_back_view_and_both_limits_are_front) {
    // A face this close to edge-on has rows only under a huge scale; this one is 3 * 2^17, whose fixed-point form wraps
    // to 0, so that the middle column still shows the middle of the source.
    Surface front(24, 24, 1);
    Surface back(24, 24, 2);
    const auto seenAt = [&](Axis axis, double angle) {
        Surface dst(24, 24, untouched);
        const Turn turn = {.angle = angle,
                           .scale = 393216,
                           .srcRect = {2, 2, 22, 22},
                           .destCentre = {12, 12},
                           .pivot = {12, 12},
                           .width = 24,
                           .height = 24,
                           .front = &front,
                           .back = &back};
        turn.draw(axis, dst);
        return dst.at(12, 12);
    };
    for (const Axis axis : {axisX, axisY}) {
        EXPECT_EQ(seenAt(axis, 1.570796), 1u);
        EXPECT_EQ(seenAt(axis, std::nextafter(1.570796, 2)), 2u);
        EXPECT_EQ(seenAt(axis, 4.712388), 1u);
        EXPECT_EQ(seenAt(axis, std::nextafter(4.712388, 0)), 2u);
    }
}

TEST(iBltNear32_X_Roto, angles_beyond_the_circle_are_brought_back_by_6_283184) {
    Surface front(8, 8, 1);
    Surface back(8, 8, 2);
    const auto seenAt = [&](double angle) {
        Surface dst(8, 8, untouched);
        const Turn turn = {.angle = angle,
                           .srcRect = {0, 0, 8, 8},
                           .destCentre = {4, 4},
                           .pivot = {4, 4},
                           .width = 8,
                           .height = 8,
                           .front = &front,
                           .back = &back};
        turn.draw(axisX, dst);
        return dst.at(4, 4);
    };
    EXPECT_EQ(seenAt(-1), 1u); // 5.28
    EXPECT_EQ(seenAt(-2), 2u); // 4.28
    EXPECT_EQ(seenAt(-4), 2u); // 2.28
    EXPECT_EQ(seenAt(-5), 1u); // 1.28
    EXPECT_EQ(seenAt(7), 1u);  // 0.72
    EXPECT_EQ(seenAt(9), 2u);  // 2.72
    EXPECT_EQ(seenAt(2.72 + 50 * 6.283184), 2u);
    EXPECT_EQ(seenAt(0.72 - 50 * 6.283184), 1u);
}

TEST(iBltNear32_X_Roto, without_background_and_clearing_only_the_face_changes) {
    Surface front(10, 10, 7);
    Surface background = placesOf(10, 10);
    for (const Axis axis : {axisX, axisY}) {
        Turn turn = {.angle = 1,
                     .srcRect = {1, 1, 9, 9},
                     .destCentre = {5, 5},
                     .pivot = {5, 5},
                     .width = 10,
                     .height = 10,
                     .front = &front};
        // 4 * cos 1 is 2.16: two lines on either side of the middle. They reach from 1 to 9 along the axis; the rest
        // of the band, lines 1 to 9, is what the face has left behind.
        const auto expectedWith = [&](Surface dst, const auto &uncovered) {
            for (int line = 1; line < 9; ++line)
                for (int along = 1; along < 9; ++along)
                    pixelOf(dst, axis, line, along) = line >= 3 && line < 7 ? 7 : uncovered(line, along);
            return dst;
        };
        Surface dst(10, 10, untouched);
        turn.draw(axis, dst);
        EXPECT_EQ(dst.differenceFrom(expectedWith(Surface(10, 10, untouched), [](int, int) { return untouched; })), "");

        turn.clearOutside = 1;
        dst = Surface(10, 10, untouched);
        turn.draw(axis, dst);
        EXPECT_EQ(dst.differenceFrom(expectedWith(Surface(10, 10, untouched), [](int, int) { return q_ulong{0}; })),
                  "");

        turn.background = &background;
        for (turn.clearOutside = 0; turn.clearOutside < 2; ++turn.clearOutside) {
            dst = Surface(10, 10, untouched);
            turn.draw(axis, dst);
            EXPECT_EQ(dst.differenceFrom(
                          expectedWith(Surface(10, 10, untouched),
                                       [&](int line, int along) { return pixelOf(background, axis, line, along); })),
                      "");
        }
    }
}

TEST(iBltNear32_X_Roto, a_null_back_is_the_plain_back_colour) {
    Surface front(8, 8, 1);
    for (const Axis axis : {axisX, axisY}) {
        Surface dst(8, 8, untouched);
        const Turn turn = {.angle = pi,
                           .srcRect = {2, 2, 6, 6},
                           .destCentre = {4, 4},
                           .pivot = {4, 4},
                           .backColour = 0xABCDEF01,
                           .width = 8,
                           .height = 8,
                           .front = &front};
        turn.draw(axis, dst);
        // The source line of line 2 is 6, just outside.
        Surface expected(8, 8, untouched);
        for (int line = 3; line < 6; ++line)
            for (int along = 2; along < 6; ++along)
                pixelOf(expected, axis, line, along) = 0xABCDEF01;
        EXPECT_EQ(dst.differenceFrom(expected), "");
    }
}

TEST(iBltNear32_X_Roto, the_back_view_counts_its_source_lines_from_the_end) {
    // At half a turn line y shows source line 4 - y, inside from 0 to 3, and reads it at 4 minus that.
    Surface front(8, 8, 1);
    Surface back = placesOf(8, 8);
    Surface dst(8, 8, untouched);
    Turn turn = {.angle = pi,
                 .srcRect = {0, 0, 4, 4},
                 .destCentre = {2, 2},
                 .pivot = {2, 2},
                 .width = 8,
                 .height = 8,
                 .front = &front,
                 .back = &back};
    turn.draw(axisX, dst);
    EXPECT_EQ(dst.at(2, 0), untouched);
    for (int y = 1; y < 4; ++y)
        EXPECT_EQ(dst.at(2, y), place(2, y));
    EXPECT_EQ(dst.at(2, 4), untouched);

    dst = Surface(8, 8, untouched);
    turn.draw(axisY, dst);
    EXPECT_EQ(dst.at(0, 2), untouched);
    for (int x = 1; x < 4; ++x)
        EXPECT_EQ(dst.at(x, 2), place(x, 2));
    EXPECT_EQ(dst.at(4, 2), untouched);
}

TEST(iBltNear32_X_Roto, one_surface_on_both_faces_is_flipped_once_more_and_reads_one_line_further) {
    Surface both = placesOf(8, 8);
    Turn turn = {.angle = pi,
                 .srcRect = {0, 0, 4, 4},
                 .destCentre = {2, 2},
                 .pivot = {2, 2},
                 .width = 8,
                 .height = 8,
                 .front = &both,
                 .back = &both};
    Surface dst(8, 8, untouched);
    turn.draw(axisX, dst);
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(dst.at(2, y), place(2, 4 - y));
    dst = Surface(8, 8, untouched);
    turn.draw(axisY, dst);
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(dst.at(x, 2), place(4 - x, 2));
}

TEST(iBltNear32_X_Roto, a_face_over_the_end_loses_its_last_line_to_the_clearing) {
    Surface front(12, 12, 7);
    for (const Axis axis : {axisX, axisY}) {
        Surface dst(12, 12, untouched);
        const Turn turn = {.srcRect = {0, 0, 12, 12},
                           .destCentre = {4, 4},
                           .pivot = {2, 2},
                           .clearOutside = 1,
                           .width = 8,
                           .height = 8,
                           .front = &front};
        turn.draw(axis, dst);
        EXPECT_EQ(pixelOf(dst, axis, 6, 4), 7u);
        EXPECT_EQ(pixelOf(dst, axis, 7, 4), 0u);
        EXPECT_EQ(pixelOf(dst, axis, 8, 4), untouched);
    }
}

TEST(iBltNear32_X_Roto, a_face_wholly_outside_draws_nothing) {
    Surface front(8, 8, 7);
    for (const Axis axis : {axisX, axisY})
        for (const int away : {-1000, -20, 20, 1000, INT_MAX, INT_MIN}) {
            Surface dst(8, 8, untouched);
            const Turn turn = {.srcRect = {0, 0, 8, 8},
                               .destCentre = {away, away},
                               .pivot = {4, 4},
                               .width = 8,
                               .height = 8,
                               .front = &front};
            turn.draw(axis, dst);
            EXPECT_EQ(dst.differenceFrom(Surface(8, 8, untouched)), "") << away;
        }
}

TEST(iBltNear32_X_Roto, scale_0_and_a_face_edge_on_leave_the_destination) {
    Surface front(8, 8, 7);
    for (const Axis axis : {axisX, axisY}) {
        Turn turn = {.srcRect = {0, 0, 8, 8},
                     .destCentre = {4, 4},
                     .pivot = {4, 4},
                     .clearOutside = 1,
                     .width = 8,
                     .height = 8,
                     .front = &front};
        const auto changes = [&](double angle, double scale) {
            Surface dst(8, 8, untouched);
            turn.angle = angle;
            turn.scale = scale;
            turn.draw(axis, dst);
            return !(dst == Surface(8, 8, untouched));
        };
        EXPECT_FALSE(changes(0, 0));
        EXPECT_FALSE(changes(pi / 2, 1));
        EXPECT_FALSE(changes(-pi / 2, 1));
        EXPECT_FALSE(changes(3 * pi / 2, 1));
        EXPECT_FALSE(changes(pi / 2 + 0.9e-7, 1));
        EXPECT_TRUE(changes(pi / 2 + 1.1e-7, 1));
        EXPECT_TRUE(changes(pi / 2 - 1.1e-7, 1));
        EXPECT_TRUE(changes(0, 0.25)) << "the cosine alone is tested";
    }
}

TEST(iBltNear32_X_Roto, perspective_narrows_one_edge) {
    // The tangent of 45 degrees times 256: the depth, 1024 at the middle, changes by 256 from line to line.
    Surface front = placesOf(16, 16);
    Surface dst(16, 16, untouched);
    const Turn turn = {.angle = std::atan(1.0),
                       .perspective = 256,
                       .srcRect = {0, 0, 16, 16},
                       .destCentre = {8, 8},
                       .pivot = {8, 8},
                       .width = 16,
                       .height = 16,
                       .front = &front};
    turn.draw(axisX, dst);
    const auto columnsOfLine = [&](int y) {
        int count = 0;
        for (int x = 0; x < 16; ++x)
            count += dst.at(x, y) != untouched;
        return count;
    };
    EXPECT_EQ(columnsOfLine(8), 16);      // the middle: depth 1024
    EXPECT_EQ(columnsOfLine(6), 8);       // 2 lines up: depth 512, step 2.0
    EXPECT_EQ(dst.at(8, 6), place(8, 5)); // -2 / cos 45 degrees is -2.83
    EXPECT_EQ(dst.at(9, 6), place(10, 5));
    EXPECT_EQ(columnsOfLine(10), 16); // 2 lines down: depth 1536, enlarged
    EXPECT_EQ(dst.at(9, 10), place(8, 10));
    EXPECT_EQ(dst.at(10, 10), place(9, 10));
}

TEST(iBltNear32_X_Roto, empty_frames_and_sources_draw_no_face) {
    Surface front(8, 8, 7);
    for (const Axis axis : {axisX, axisY}) {
        Surface dst(8, 8, untouched);
        Turn turn = {.srcRect = {0, 0, 8, 8},
                     .destCentre = {4, 4},
                     .pivot = {4, 4},
                     .clearOutside = 1,
                     .width = 0,
                     .height = 8,
                     .front = &front};
        turn.draw(axis, dst);
        turn.width = 8;
        turn.height = 0;
        turn.draw(axis, dst);
        turn.height = -1;
        turn.draw(axis, dst);
        turn.height = 8;
        turn.srcRect = {4, 4, 4, 4};
        turn.draw(axis, dst);
        EXPECT_EQ(dst.differenceFrom(Surface(8, 8, untouched)), "");
    }
}

double anyPerspective(test::Random &random) {
    if (random.oneIn(3))
        return 0;
    return random.between(-1024, 1024) / (random.oneIn(3) ? 2.0 : 512.0);
}

/// Surfaces of one pitch that share their memory: any of them begins anywhere on one sheet, the destination in its
/// middle, so that some overlap, some touch and some lie apart.
struct Sheet {
    static constexpr int width = 40;
    static constexpr int height = 48;

    static tagPOINT anyOrigin(test::Random &random) {
        // Beside the destination by a little, or above or below it by about its height.
        const int x = random.between(-6, 6);
        int y = random.between(-6, 6);
        if (random.oneIn(2))
            y += y < 0 ? -8 : 8;
        return {12 + x, 18 + y};
    }
    static constexpr tagPOINT dstOrigin = {12, 18};
};

void compareOverlappingTurns(Axis axis) {
    for (int seed = 0; seed < 4000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface sheet = Surface::randomOfSize(random, Sheet::width, Sheet::height);
        Turn turn;
        turn.angle = anyTurn(random);
        turn.scale = random.between(512, 2048) / 1024.0;
        turn.perspective = anyPerspective(random);
        turn.srcRect = random.rectInside(12, 12);
        turn.destCentre = {random.between(3, 9), random.between(3, 9)};
        turn.pivot = {(turn.srcRect.left + turn.srcRect.right) / 2, (turn.srcRect.top + turn.srcRect.bottom) / 2};
        turn.clearOutside = random.between(0, 1);
        turn.backColour = random.pixel();
        turn.width = random.between(1, 12);
        turn.height = random.between(1, 12);
        turn.dstOrigin = Sheet::dstOrigin;
        turn.faceOrigin = Sheet::anyOrigin(random);
        turn.backgroundOrigin = Sheet::anyOrigin(random);
        turn.front = &sheet;
        turn.background = random.oneIn(2) ? &sheet : nullptr;
        const int faces = random.between(0, 2);
        Surface back(Sheet::width, Sheet::height, 0x123456, sheet.pitch() - Sheet::width - 2 * Surface::margin);
        turn.back = faces == 0 ? nullptr : faces == 1 ? &sheet : &back;
        Surface expected = sheet;
        Turn naive = turn;
        naive.front = &expected;
        naive.back = turn.back == &sheet ? &expected : turn.back;
        naive.background = turn.background ? &expected : nullptr;
        naive.drawPlainly(axis, expected);
        turn.draw(axis, sheet);
        ASSERT_EQ(sheet.differenceFrom(expected), "") << seed;
    }
}

TEST(iBltNear32_X_Roto, overlapping_turns_run_row_by_row) {
    compareOverlappingTurns(axisX);
}

TEST(iBltNear32_Y_Roto, overlapping_turns_run_column_by_column) {
    compareOverlappingTurns(axisY);
}

TEST(iBltNear32_Y_Roto, on_a_pitch_below_the_width_the_last_column_wins) {
    // Each row begins before the one above it has ended: what a column writes, one further right may write again.
    for (int seed = 0; seed < 2000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface dst = Surface::randomOfSize(random, 1, 40);
        Surface front(1, 40, 0, dst.pitch() - 1 - 2 * Surface::margin);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < front.pitch(); ++x)
                front.at(x, y) = random.pixel();
        Turn turn;
        turn.angle = anyTurn(random);
        turn.srcRect = {0, 0, random.between(1, 40), random.between(1, 12)};
        turn.destCentre = {random.between(0, 40), random.between(0, 12)};
        turn.pivot = {turn.srcRect.right / 2, turn.srcRect.bottom / 2};
        turn.clearOutside = random.between(0, 1);
        turn.width = dst.pitch() + random.between(-2, 12);
        turn.height = random.between(1, 12);
        turn.front = &front;
        turn.back = &front;
        Surface expected = dst;
        turn.drawPlainly(axisY, expected);
        turn.draw(axisY, dst);
        ASSERT_EQ(dst.differenceFrom(expected), "") << seed;
    }
}

TEST(iBltNear32_Y_Roto, agrees_with_a_naive_turn_at_every_width) {
    test::Random random(5);
    constexpr int height = 5;
    Surface front = Surface::randomOfSize(random, 530, height);
    Surface background(530, height, 0x222222, front.pitch() - 530 - 2 * Surface::margin);
    for (int width = 1; width <= 530; ++width)
        for (const double angle : {0.0, 0.5, 2.5}) {
            Surface dst(530, height, untouched, front.pitch() - 530 - 2 * Surface::margin);
            Turn turn = {.angle = angle,
                         .perspective = 0.01,
                         .srcRect = {0, 0, width, height},
                         .destCentre = {width / 2, height / 2},
                         .pivot = {width / 2, height / 2},
                         .width = width,
                         .height = height,
                         .front = &front,
                         .back = &front,
                         .background = width % 2 == 0 ? &background : nullptr};
            Surface expected = dst;
            turn.drawPlainly(axisY, expected);
            turn.draw(axisY, dst);
            ASSERT_EQ(dst.differenceFrom(expected), "") << width << ", angle " << angle;
        }
}

TEST(iBltNear32_X_Roto_Fast, at_angle_0_shows_neither_source_row_0_nor_column_0_and_clears_the_last_row) {
    Surface src = placesOf(6, 5);
    Surface dst(6, 5, untouched);
    FrameTurn{.kind = FrameTurn::oneFace, .width = 6, .height = 5, .src = &src}.draw(dst);
    Surface expected(6, 5, untouched);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            expected.at(x, y) = x >= 1 && y >= 1 && y < 4 ? place(x, y) : 0;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_X_Roto_Fast, with_a_background_shows_source_row_0_and_column_0) {
    Surface src = placesOf(6, 5);
    Surface background(6, 5, 0x22222222);
    Surface dst(6, 5, untouched);
    FrameTurn{.kind = FrameTurn::withBackground, .width = 6, .height = 5, .src = &src, .background = &background}.draw(
        dst);
    Surface expected(6, 5, untouched);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            expected.at(x, y) = y < 4 ? place(x, y) : 0x22222222;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_Y_Roto_Fast, at_angle_0_shows_source_row_0_and_column_0_and_clears_the_last_column) {
    Surface src = placesOf(6, 5);
    Surface dst(6, 5, untouched);
    FrameTurn{.kind = FrameTurn::aboutY, .width = 6, .height = 5, .src = &src}.draw(dst);
    Surface expected(6, 5, untouched);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            expected.at(x, y) = x < 5 ? place(x, y) : 0;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_X_Roto_Fast, enlarged_shows_the_face_in_its_last_row) {
    // At a scale of 2 the margin of a height of 5 is -1 * 2: the face ends beyond the frame. Row y shows row
    // (y - 2) / 2 + 2, column x column (x - 3) / 2 + 3, rounded down.
    constexpr int rows[] = {1, 1, 2, 2, 3};
    constexpr int columns[] = {1, 2, 2, 3, 3, 4};
    Surface src = placesOf(6, 5);
    Surface background(6, 5, 0x22222222);
    Surface expected(6, 5, untouched);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            expected.at(x, y) = place(columns[x], rows[y]);
    for (const auto kind : {FrameTurn::oneFace, FrameTurn::withBackground}) {
        Surface dst(6, 5, untouched);
        FrameTurn{.kind = kind, .scale = 2, .width = 6, .height = 5, .src = &src, .background = &background}.draw(dst);
        EXPECT_EQ(dst.differenceFrom(expected), "");
    }
}

TEST(iBltNear32_Y_Roto_Fast, enlarged_shows_the_face_in_its_last_column) {
    constexpr int rows[] = {1, 1, 2, 2, 3};
    constexpr int columns[] = {1, 2, 2, 3, 3, 4};
    Surface src = placesOf(6, 5);
    Surface dst(6, 5, untouched);
    FrameTurn{.kind = FrameTurn::aboutY, .scale = 2, .width = 6, .height = 5, .src = &src}.draw(dst);
    Surface expected(6, 5, untouched);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            expected.at(x, y) = place(columns[x], rows[y]);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_X_Roto_Fast, a_margin_that_is_truncated_to_0_clears_the_last_row_and_one_of_minus_1_does_not) {
    // Half of 8 rows is 4: a scale of 1.2 leaves a margin of -0.8, which is 0, one of 1.25 leaves -1.
    for (const auto kind : {FrameTurn::oneFace, FrameTurn::withBackground, FrameTurn::aboutY})
        for (const bool negative : {false, true})
            for (const double scale : {1.2, 1.25}) {
                Surface src(8, 8, 7);
                Surface background(8, 8, 9);
                Surface dst(8, 8, untouched);
                FrameTurn{.kind = kind,
                          .scale = negative ? -scale : scale,
                          .width = 8,
                          .height = 8,
                          .src = &src,
                          .background = &background}
                    .draw(dst);
                const q_ulong last = kind == FrameTurn::aboutY ? dst.at(7, 4) : dst.at(4, 7);
                const q_ulong outside = kind == FrameTurn::withBackground ? 9 : 0;
                EXPECT_EQ(last, scale == 1.25 ? 7u : outside) << scale;
            }
}

TEST(iBltNear32_X_Roto_Fast, the_cosine_times_the_scale_decides_whether_the_face_is_edge_on) {
    Surface src(6, 5, 7);
    Surface background(6, 5, 9);
    for (const auto kind : {FrameTurn::oneFace, FrameTurn::withBackground, FrameTurn::aboutY}) {
        const auto changes = [&](double angle, double scale) {
            Surface dst(6, 5, untouched);
            FrameTurn{.kind = kind,
                      .angle = angle,
                      .scale = scale,
                      .width = 6,
                      .height = 5,
                      .src = &src,
                      .background = &background}
                .draw(dst);
            return !(dst == Surface(6, 5, untouched));
        };
        EXPECT_FALSE(changes(0, 0));
        EXPECT_FALSE(changes(0, 0.9e-7));
        EXPECT_TRUE(changes(0, 1.1e-7));
        EXPECT_FALSE(changes(0, -0.9e-7));
        EXPECT_FALSE(changes(pi / 2 + 1.8e-7, 0.5));
        EXPECT_TRUE(changes(pi / 2 + 0.6e-7, 2));
    }
}

TEST(iBltNear32_X_Roto_Fast, an_enlarged_frame_writes_nothing_outside) {
    Surface src = placesOf(6, 5);
    Surface background(6, 5, 9);
    for (const auto kind : {FrameTurn::oneFace, FrameTurn::withBackground, FrameTurn::aboutY})
        for (const double scale : {1.5, 2.0, 3.0, 40.0, 1e9, 1e18}) {
            const FrameTurn turn = {
                .kind = kind, .scale = scale, .width = 6, .height = 5, .src = &src, .background = &background};
            Surface dst(6, 5, untouched);
            Surface expected(6, 5, untouched);
            turn.draw(dst);
            turn.drawPlainly(expected);
            EXPECT_EQ(dst.differenceFrom(expected), "") << scale;
        }
}

void compareOverlappingFrameTurns(FrameTurn::Kind kind) {
    for (int seed = 0; seed < 4000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface sheet = Surface::randomOfSize(random, Sheet::width, Sheet::height);
        FrameTurn turn;
        turn.kind = kind;
        turn.angle = anyTurn(random);
        turn.scale = random.between(512, 2048) / 1024.0;
        turn.perspective = anyPerspective(random);
        turn.width = random.between(1, 12);
        turn.height = random.between(1, 12);
        turn.dstOrigin = Sheet::dstOrigin;
        turn.srcOrigin = Sheet::anyOrigin(random);
        turn.src = &sheet;
        Surface background(Sheet::width, Sheet::height, 0x654321, sheet.pitch() - Sheet::width - 2 * Surface::margin);
        turn.background = &background;
        Surface expected = sheet;
        FrameTurn naive = turn;
        naive.src = &expected;
        naive.drawPlainly(expected);
        turn.draw(sheet);
        ASSERT_EQ(sheet.differenceFrom(expected), "") << seed;
    }
}

TEST(iBltNear32_X_Roto_Fast, overlapping_turns_run_row_by_row) {
    compareOverlappingFrameTurns(FrameTurn::oneFace);
    compareOverlappingFrameTurns(FrameTurn::withBackground);
}

TEST(iBltNear32_Y_Roto_Fast, overlapping_turns_run_column_by_column) {
    compareOverlappingFrameTurns(FrameTurn::aboutY);
}

TEST(iBltNear32_Y_Roto_Fast, in_place_the_face_shows_margins_that_are_cleared_already) {
    // Column x of the face, 8 to 22, shows column 2x - 16.
    constexpr int size = 32;
    std::vector<q_ulong> frame(size * size, 0x123456);
    iBltNear32_Y_Roto_Fast(frame.data(), size, frame.data(), size, 0.0, 0.5, 0.0, size, size);
    for (int x = 0; x < size; ++x)
        // 8 to 11 show the left margin, 12 to 15 what these have become, 20 to 22 the right margin.
        EXPECT_EQ(frame[16 * size + static_cast<std::size_t>(x)], x >= 16 && x < 20 ? 0x123456U : 0U) << x;
}

TEST(iBltNear32_Y_Roto_Fast, agrees_with_a_naive_turn_at_every_width) {
    test::Random random(6);
    Surface src = Surface::randomOfSize(random, 530, 5);
    for (int width = 1; width <= 530; ++width)
        for (const double angle : {0.0, 0.5, 2.5}) {
            const FrameTurn turn = {.kind = FrameTurn::aboutY,
                                    .angle = angle,
                                    .perspective = 0.01,
                                    .width = width,
                                    .height = 5,
                                    .src = &src};
            Surface dst(530, 5, untouched);
            Surface expected = dst;
            turn.drawPlainly(expected);
            turn.draw(dst);
            ASSERT_EQ(dst.differenceFrom(expected), "") << width << ", angle " << angle;
        }
}

} // namespace
