#include "plain/turns.h"
#include "support/painting.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using namespace test;

constexpr double pi = std::numbers::pi;

enum Axis { axisX, axisY };

/// The pixel of a line at a place along it: lines are rows for X and columns for Y.
q_ulong &pixelOf(Surface &surface, Axis axis, int line, int along) {
    return axis == axisX ? surface.at(along, line) : surface.at(line, along);
}

/// A full turn; its pictures have the pitch of what is drawn on.
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
    q_ulong *front = nullptr;
    q_ulong *back = nullptr;
    q_ulong *background = nullptr;

    /// A square picture about its middle, on a frame of the same size.
    static Turn centred(int size, Surface &front) {
        const int middle = size / 2;
        return {.srcRect = {0, 0, size, size},
                .destCentre = {middle, middle},
                .pivot = {middle, middle},
                .width = size,
                .height = size,
                .front = front.pixels()};
    }

    void draw(decltype(iBltNear32_X_Roto) *blit, q_ulong *dst, int pitch) const {
        blit(dst, front, back, background, angle, scale, perspective, srcRect, destCentre, pivot, clearOutside,
             backColour, 0x5A5A5A5A, pitch, width, height);
    }
    Surface drawn(Axis axis, Surface on) const {
        draw(axis == axisX ? iBltNear32_X_Roto : iBltNear32_Y_Roto, on.pixels(), on.pitch());
        return on;
    }
};

TEST(iBltNear32_X_Roto, at_angle_0_copies_straight_around_the_pivot) {
    // Half of a width of 5 is 2.5: the columns 4 to 8 are walked. Source column 1 is outside and column 6 is not
    // reached, since the middle of 2 and 7 is 4.
    Surface front = placesOf(12, 12);
    const Turn aboutX = {.srcRect = {2, 3, 7, 7},
                         .destCentre = {7, 6},
                         .pivot = {4, 5},
                         .width = 12,
                         .height = 12,
                         .front = front.pixels()};
    const auto rowsShown = [](int x, int y) { return place(x - 3, y - 1); };
    EXPECT_EQ(aboutX.drawn(axisX, blank(12, 12)).differenceFrom(painted(blank(12, 12), {5, 4, 9, 8}, rowsShown)), "");
    Turn aboutY = aboutX;
    aboutY.srcRect = {3, 2, 7, 7};
    aboutY.destCentre = {6, 7};
    aboutY.pivot = {5, 4};
    const auto columnsShown = [](int x, int y) { return place(x - 1, y - 3); };
    EXPECT_EQ(aboutY.drawn(axisY, blank(12, 12)).differenceFrom(painted(blank(12, 12), {4, 5, 8, 9}, columnsShown)),
              "");
}

TEST(iBltNear32_X_Roto, six_decimals_limit_the_back_view_and_both_limits_are_front) {
    // A face this close to edge-on has rows only under a huge scale; this one is 3 * 2^17, whose fixed-point form wraps
    // to 0, so that the middle column still shows the middle of the source.
    Surface front(24, 24, 1);
    Surface back(24, 24, 2);
    for (const Axis axis : {axisX, axisY}) {
        const auto seenAt = [&](double angle) {
            Turn turn = Turn::centred(24, front);
            turn.srcRect = {2, 2, 22, 22};
            turn.angle = angle;
            turn.scale = 393216;
            turn.back = back.pixels();
            return turn.drawn(axis, blank(24, 24)).at(12, 12);
        };
        EXPECT_EQ(seenAt(1.570796), 1u);
        EXPECT_EQ(seenAt(std::nextafter(1.570796, 2)), 2u);
        EXPECT_EQ(seenAt(4.712388), 1u);
        EXPECT_EQ(seenAt(std::nextafter(4.712388, 0)), 2u);
    }
}

TEST(iBltNear32_X_Roto, angles_beyond_the_circle_are_brought_back_by_6_283184) {
    Surface front(8, 8, 1);
    Surface back(8, 8, 2);
    const auto seenAt = [&](double angle) {
        Turn turn = Turn::centred(8, front);
        turn.angle = angle;
        turn.back = back.pixels();
        return turn.drawn(axisX, blank(8, 8)).at(4, 4);
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
    // 4 * cos 1 is 2.16: two lines on either side of the middle. They reach from 1 to 9 along the axis; the rest of the
    // band, lines 1 to 9, is what the face has left behind.
    Surface front(10, 10, 7);
    Surface background = placesOf(10, 10);
    for (const Axis axis : {axisX, axisY}) {
        Turn turn = Turn::centred(10, front);
        turn.angle = 1;
        turn.srcRect = {1, 1, 9, 9};
        const auto expectAround = [&](const auto &uncovered) {
            const Surface expected = painted(blank(10, 10), {1, 1, 9, 9}, [&](int x, int y) {
                const int line = axis == axisX ? y : x;
                return line >= 3 && line < 7 ? 7 : uncovered(x, y);
            });
            EXPECT_EQ(turn.drawn(axis, blank(10, 10)).differenceFrom(expected), "");
        };
        expectAround([](int, int) { return untouched; });
        turn.clearOutside = 1;
        expectAround([](int, int) { return q_ulong{0}; });
        turn.background = background.pixels();
        expectAround(place);
        turn.clearOutside = 0;
        expectAround(place);
    }
}

TEST(iBltNear32_X_Roto, a_null_back_is_the_plain_back_colour) {
    Surface front(8, 8, 1);
    for (const Axis axis : {axisX, axisY}) {
        Turn turn = Turn::centred(8, front);
        turn.angle = pi;
        turn.srcRect = {2, 2, 6, 6};
        turn.backColour = 0xABCDEF01;
        // The source line of line 2 is 6, just outside.
        const tagRECT face = axis == axisX ? tagRECT{2, 3, 6, 6} : tagRECT{3, 2, 6, 6};
        EXPECT_EQ(turn.drawn(axis, blank(8, 8)).differenceFrom(painted(blank(8, 8), face, 0xABCDEF01)), "");
    }
}

TEST(iBltNear32_X_Roto, the_back_view_counts_its_source_lines_from_the_end) {
    // At half a turn line y shows source line 4 - y, inside from 0 to 3, and reads it at 4 minus that. One surface on
    // both faces is flipped once more and reads one line further.
    Surface front(8, 8, 1);
    Surface back = placesOf(8, 8);
    for (const Axis axis : {axisX, axisY}) {
        Turn turn = Turn::centred(4, front);
        turn.angle = pi;
        turn.width = turn.height = 8;
        turn.back = back.pixels();
        Surface dst = turn.drawn(axis, blank(8, 8));
        turn.front = turn.back;
        Surface flipped = turn.drawn(axis, blank(8, 8));
        for (int line = 0; line <= 4; ++line) {
            const bool isInside = line >= 1 && line < 4;
            EXPECT_EQ(pixelOf(dst, axis, line, 2), isInside ? pixelOf(back, axis, line, 2) : untouched) << line;
            EXPECT_EQ(pixelOf(flipped, axis, line, 2), line < 4 ? pixelOf(back, axis, 4 - line, 2) : untouched) << line;
        }
    }
}

TEST(iBltNear32_X_Roto, a_face_over_the_end_loses_its_last_line_to_the_clearing) {
    Surface front(12, 12, 7);
    for (const Axis axis : {axisX, axisY}) {
        const Turn turn = {.srcRect = {0, 0, 12, 12},
                           .destCentre = {4, 4},
                           .pivot = {2, 2},
                           .clearOutside = 1,
                           .width = 8,
                           .height = 8,
                           .front = front.pixels()};
        Surface dst = turn.drawn(axis, blank(12, 12));
        EXPECT_EQ(pixelOf(dst, axis, 6, 4), 7u);
        EXPECT_EQ(pixelOf(dst, axis, 7, 4), 0u);
        EXPECT_EQ(pixelOf(dst, axis, 8, 4), untouched);
    }
}

TEST(iBltNear32_X_Roto, scale_0_and_a_face_edge_on_leave_the_destination) {
    Surface front(8, 8, 7);
    for (const Axis axis : {axisX, axisY}) {
        const auto changes = [&](double angle, double scale) {
            Turn turn = Turn::centred(8, front);
            turn.clearOutside = 1;
            turn.angle = angle;
            turn.scale = scale;
            return !(turn.drawn(axis, blank(8, 8)) == blank(8, 8));
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
    Turn turn = Turn::centred(16, front);
    turn.angle = std::atan(1.0);
    turn.perspective = 256;
    const Surface dst = turn.drawn(axisX, blank(16, 16));
    EXPECT_EQ(drawnInRow(dst, 8), 16);    // the middle: depth 1024
    EXPECT_EQ(drawnInRow(dst, 6), 8);     // 2 lines up: depth 512, step 2.0
    EXPECT_EQ(dst.at(8, 6), place(8, 5)); // -2 / cos 45 degrees is -2.83
    EXPECT_EQ(dst.at(9, 6), place(10, 5));
    EXPECT_EQ(drawnInRow(dst, 10), 16); // 2 lines down: depth 1536, enlarged
    EXPECT_EQ(dst.at(9, 10), place(8, 10));
    EXPECT_EQ(dst.at(10, 10), place(9, 10));
}

/// A blit of a whole frame, its background in one colour.
struct FrameTurn {
    enum Kind { oneFace, withBackground, aboutY };
    static constexpr q_ulong backdrop = 0x22222222;

    Kind kind = oneFace;
    double angle = 0;
    double scale = 1;
    double perspective = 0;

    /// What is stored beside the face.
    q_ulong outside() const { return kind == withBackground ? backdrop : 0; }

    Surface drawn(Surface on, Surface &src) const {
        drawBy(iBltNear32_X_Roto_Fast, iBltNear32_X_Roto_Fast, iBltNear32_Y_Roto_Fast, on, src);
        return on;
    }
    Surface drawnPlainly(Surface on, Surface &src) const {
        drawBy(plain::iBltNear32_X_Roto_Fast, plain::iBltNear32_X_Roto_Fast, plain::iBltNear32_Y_Roto_Fast, on, src);
        return on;
    }

private:
    using Blit = void(q_ulong *, int, q_ulong *, int, double, double, double, int, int);
    using BlitWithBackground = void(q_ulong *, int, q_ulong *, int, q_ulong *, int, double, double, double, int, int);

    void drawBy(Blit *aboutX, BlitWithBackground *aboutXWithBackground, Blit *turnAboutY, Surface &dst,
                Surface &src) const {
        Surface background = painted(dst, dst.rect(), backdrop);
        const auto draw = [&](auto *blit, auto... behind) {
            blit(dst.pixels(), dst.pitch(), src.pixels(), src.pitch(), behind..., angle, scale, perspective,
                 dst.width(), dst.height());
        };
        if (kind == oneFace)
            draw(aboutX);
        else if (kind == withBackground)
            draw(aboutXWithBackground, background.pixels(), -999);
        else
            draw(turnAboutY);
    }
};

constexpr FrameTurn::Kind frameTurns[] = {FrameTurn::oneFace, FrameTurn::withBackground, FrameTurn::aboutY};

TEST(iBltNear32_X_Roto_Fast, at_angle_0_one_face_alone_hides_source_row_0_and_column_0_and_all_clear_their_last_line) {
    Surface src = placesOf(6, 5);
    for (const auto kind : frameTurns) {
        const tagRECT face = kind == FrameTurn::oneFace          ? tagRECT{1, 1, 6, 4}
                             : kind == FrameTurn::withBackground ? tagRECT{0, 0, 6, 4}
                                                                 : tagRECT{0, 0, 5, 5};
        const FrameTurn turn = {.kind = kind};
        const Surface cleared = painted(blank(6, 5), src.rect(), turn.outside());
        EXPECT_EQ(turn.drawn(blank(6, 5), src).differenceFrom(painted(cleared, face, place)), "");
    }
}

TEST(iBltNear32_X_Roto_Fast, enlarged_shows_the_face_in_its_last_line) {
    // At a scale of 2 the margin of a height of 5 is -1 * 2: the face ends beyond the frame. Row y shows row
    // (y - 2) / 2 + 2, column x column (x - 3) / 2 + 3, rounded down.
    constexpr int rows[] = {1, 1, 2, 2, 3};
    constexpr int columns[] = {1, 2, 2, 3, 3, 4};
    Surface src = placesOf(6, 5);
    const Surface expected = painted(blank(6, 5), src.rect(), [&](int x, int y) { return place(columns[x], rows[y]); });
    for (const auto kind : frameTurns) {
        const FrameTurn turn = {.kind = kind, .scale = 2};
        EXPECT_EQ(turn.drawn(blank(6, 5), src).differenceFrom(expected), "");
    }
}

TEST(iBltNear32_X_Roto_Fast, a_margin_that_is_truncated_to_0_clears_the_last_line_and_one_of_minus_1_does_not) {
    // Half of 8 rows is 4: a scale of 1.2 leaves a margin of -0.8, which is 0, one of 1.25 leaves -1.
    Surface src(8, 8, 7);
    for (const auto kind : frameTurns)
        for (const double scale : {1.2, 1.25, -1.2, -1.25}) {
            const FrameTurn turn = {.kind = kind, .scale = scale};
            const Surface dst = turn.drawn(blank(8, 8), src);
            const q_ulong last = kind == FrameTurn::aboutY ? dst.at(7, 4) : dst.at(4, 7);
            EXPECT_EQ(last, std::fabs(scale) == 1.25 ? 7u : turn.outside()) << scale;
        }
}

TEST(iBltNear32_X_Roto_Fast, the_cosine_times_the_scale_decides_whether_the_face_is_edge_on) {
    Surface src(6, 5, 7);
    for (const auto kind : frameTurns) {
        const auto changes = [&](double angle, double scale) {
            const FrameTurn turn = {.kind = kind, .angle = angle, .scale = scale};
            return !(turn.drawn(blank(6, 5), src) == blank(6, 5));
        };
        EXPECT_FALSE(changes(0, 0));
        EXPECT_FALSE(changes(0, 0.9e-7));
        EXPECT_TRUE(changes(0, 1.1e-7));
        EXPECT_FALSE(changes(0, -0.9e-7));
        EXPECT_FALSE(changes(pi / 2 + 1.8e-7, 0.5));
        EXPECT_TRUE(changes(pi / 2 + 0.6e-7, 2));
    }
}

TEST(iBltNear32_X_Roto_Fast, scales_beyond_the_numbers_stay_inside_the_frame) {
    Surface src = placesOf(6, 5);
    for (const auto kind : frameTurns)
        for (const double scale : {1e9, 1e18}) {
            const FrameTurn turn = {.kind = kind, .scale = scale};
            EXPECT_EQ(turn.drawn(blank(6, 5), src).differenceFrom(turn.drawnPlainly(blank(6, 5), src)), "") << scale;
        }
}

TEST(iBltNear32_X_Roto_Fast, steps_that_wrap_bring_the_middle_back_every_128_pixels) {
    // A scale of 1/1024 makes the depth 1 and the step 2^25, which is 1024 source pixels: along the middle line only
    // the middle shows, and once more wherever a multiple of the step wraps to 0.
    for (const auto kind : frameTurns) {
        const bool aboutY = kind == FrameTurn::aboutY;
        Surface src = aboutY ? placesOf(4, 300) : placesOf(300, 4);
        const Surface dst = aboutY ? blank(4, 300) : blank(300, 4);
        const FrameTurn turn = {.kind = kind, .scale = 1.0 / 1024};
        Surface expected = painted(dst, dst.rect(), turn.outside());
        for (const int along : {22, 150, 278})
            (aboutY ? expected.at(2, along) : expected.at(along, 2)) = aboutY ? place(2, 150) : place(150, 2);
        EXPECT_EQ(turn.drawn(dst, src).differenceFrom(expected), "");
    }
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

} // namespace
