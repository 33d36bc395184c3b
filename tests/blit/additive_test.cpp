#include "blit/naive_walks.h"
#include "frame/x87.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <vector>

namespace {

using test::Case;
using test::forEachCase;
using test::heightOf;
using test::naiveNearest;
using test::NaiveSums;
using test::naiveTapsInside;
using test::PositionFormat;
using test::SourcePosition;
using test::Surface;
using test::unclipped;
using test::widthOf;

constexpr PositionFormat unsigned17_15 = {15, false};
constexpr PositionFormat signed17_15 = {15, true};
constexpr PositionFormat signed16_16 = {16, true};

constexpr int least = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

struct Scales {
    unsigned char red;
    unsigned char green;
    unsigned char blue;
};

constexpr Scales severalScales[] = {{0, 0, 0},       {1, 2, 3},       {127, 128, 129}, {254, 1, 255},
                                    {255, 255, 255}, {64, 200, 17},   {255, 0, 128},   {3, 254, 85},
                                    {128, 255, 0},   {200, 100, 250}, {16, 15, 17},    {99, 33, 66}};

Scales randomScales(test::Random &random) {
    const auto scale = [&random] {
        return static_cast<unsigned char>(random.oneIn(4) ? 255 * random.between(0, 1) : random.between(0, 255));
    };
    return {scale(), scale(), scale()};
}

// What the stores do to the three bytes of a pixel, in plain numbers.

struct Channels {
    std::int64_t red;
    std::int64_t green;
    std::int64_t blue;
};

Channels channelsOf(q_ulong pixel) {
    return {static_cast<std::int64_t>(pixel / 0x10000 % 256), static_cast<std::int64_t>(pixel / 0x100 % 256),
            static_cast<std::int64_t>(pixel % 256)};
}

q_ulong pixelOf(std::int64_t red, std::int64_t green, std::int64_t blue) {
    return static_cast<q_ulong>(red * 0x10000 | green * 0x100 | blue);
}

std::int64_t clamped(std::int64_t sum) {
    return sum > 255 ? 255 : sum;
}

std::int64_t wrapped(std::int64_t sum) {
    return sum % 256;
}

constexpr auto clampAll = [](q_ulong &d, q_ulong s) {
    const Channels a = channelsOf(d);
    const Channels b = channelsOf(s);
    d = pixelOf(clamped(a.red + b.red), clamped(a.green + b.green), clamped(a.blue + b.blue));
};

constexpr auto clampAllUnlessZero = [](q_ulong &d, q_ulong s) {
    if (s != 0)
        clampAll(d, s);
};

constexpr auto spillBlue = [](q_ulong &d, q_ulong s) {
    const Channels a = channelsOf(d);
    const Channels b = channelsOf(s);
    d = pixelOf(clamped(a.red + b.red), clamped(a.green + b.green), a.blue + b.blue);
};

auto wrapScaled(Scales scales) {
    return [scales](q_ulong &d, q_ulong s) {
        const Channels a = channelsOf(d);
        const Channels b = channelsOf(s);
        d = pixelOf(wrapped(a.red + b.red * scales.red / 256), wrapped(a.green + b.green * scales.green / 256),
                    clamped(a.blue + b.blue * scales.blue / 256));
    };
}

/// Adds filtered sums, 256 times a channel each, times scale / 256.
void addSums(q_ulong &d, const NaiveSums &sums, int scaleRed, int scaleGreen, int scaleBlue) {
    const Channels a = channelsOf(d);
    d = pixelOf(clamped(a.red + sums[2] * scaleRed / 65536), clamped(a.green + sums[1] * scaleGreen / 65536),
                clamped(a.blue + sums[0] * scaleBlue / 65536));
}

// The exported functions and their naive counterparts, with one signature for each kind of walk.

using PlacedAdd = std::function<void(Surface &dst, int dstX, int dstY, Surface &src, tagRECT srcRect)>;
using ScaledAdd = std::function<void(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect)>;

q_ulong unsignedPitch(const Surface &surface) {
    return static_cast<q_ulong>(surface.pitch());
}

void fastAdd(Surface &dst, int dstX, int dstY, Surface &src, tagRECT srcRect) {
    iBltFast32_Add(dst.pixels(), src.pixels(), static_cast<q_ulong>(dstX), static_cast<q_ulong>(dstY), &srcRect,
                   unsignedPitch(dst), unsignedPitch(src));
}

PlacedAdd fastAddScaled(Scales scales) {
    return [scales](Surface &dst, int dstX, int dstY, Surface &src, tagRECT srcRect) {
        iBltFast32_Add(dst.pixels(), src.pixels(), static_cast<q_ulong>(dstX), static_cast<q_ulong>(dstY), &srcRect,
                       unsignedPitch(dst), unsignedPitch(src), scales.red, scales.green, scales.blue);
    };
}

PlacedAdd fastKeyAdd(q_ulong key) {
    return [key](Surface &dst, int dstX, int dstY, Surface &src, tagRECT srcRect) {
        iBltFast32_KeySrc_Add(dst.pixels(), src.pixels(), dstX, dstY, &srcRect, dst.pitch(), src.pitch(), key);
    };
}

template <class Store>
PlacedAdd naivePlaced(Store store) {
    return [store](Surface &dst, int dstX, int dstY, Surface &src, tagRECT srcRect) {
        for (int y = 0; y < heightOf(srcRect); ++y)
            for (int x = 0; x < widthOf(srcRect); ++x)
                store(dst.at(dstX + x, dstY + y),
                      src.at(static_cast<int>(srcRect.left) + x, static_cast<int>(srcRect.top) + y));
    };
}

void nearAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltNear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedPitch(dst), unsignedPitch(src));
}

ScaledAdd nearAddScaled(Scales scales) {
    return [scales](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        iBltNear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedPitch(dst), unsignedPitch(src),
                       scales.red, scales.green, scales.blue);
    };
}

void bilinearAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltBilinear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedPitch(dst), unsignedPitch(src));
}

ScaledAdd bilinearAddScaled(Scales scales) {
    return [scales](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        iBltBilinear32_Add(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedPitch(dst), unsignedPitch(src),
                           scales.red, scales.green, scales.blue);
    };
}

/// Clipped to the destination's picture.
void safeKeyAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltNear32SafeKeySrcAdd(dst.pixels(), src.pixels(), &dstRect, &srcRect, dst.pitch(), src.pitch(), dst.width(),
                            dst.height());
}

bool isEmpty(const tagRECT &rect) {
    return widthOf(rect) < 1 || heightOf(rect) < 1;
}

/// Without pixels, but not turned inside out.
bool lacksExtent(const tagRECT &rect) {
    return widthOf(rect) == 0 || heightOf(rect) == 0;
}

template <class Store>
ScaledAdd naiveScaled(PositionFormat format, Store store) {
    return [format, store](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        if (format.isSigned ? !lacksExtent(srcRect) : !isEmpty(srcRect))
            naiveNearest(dst, src, dstRect, srcRect, format, unclipped, store);
    };
}

ScaledAdd naiveFiltered(PositionFormat format, int scaleRed, int scaleGreen, int scaleBlue) {
    return [=](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        if (isEmpty(srcRect))
            return;
        visitScaled(dstRect, srcRect, format, unclipped, [&](int x, int y, SourcePosition column, SourcePosition row) {
            addSums(dst.at(x, y), naiveTapsInside(src, srcRect, column, row), scaleRed, scaleGreen, scaleBlue);
        });
    };
}

/// The plain form's terms are the sums divided by 256, as if scaled by 256.
ScaledAdd naiveFiltered() {
    return naiveFiltered(signed17_15, 256, 256, 256);
}

ScaledAdd naiveFiltered(Scales scales) {
    return naiveFiltered(unsigned17_15, scales.red, scales.green, scales.blue);
}

void naiveSafeKeyAdd(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    if (!lacksExtent(srcRect))
        naiveNearest(dst, src, dstRect, srcRect, signed16_16, dst.rect(), clampAllUnlessZero);
}

ScaledAdd sameSize(const PlacedAdd &add) {
    return [add](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        add(dst, static_cast<int>(dstRect.left), static_cast<int>(dstRect.top), src, srcRect);
    };
}

// ---------------------------------------------------------------------------------------------------------------------

/// All 65,536 pairs of a channel's values in each channel, the other channels and the top byte being random.
void compareAllPairs(const ScaledAdd &add, const std::function<void(q_ulong &, q_ulong)> &expected) {
    for (int shift = 0; shift < 24; shift += 8) {
        test::Random random(static_cast<std::uint64_t>(shift));
        Surface dst = Surface::randomOfSize(random, 256, 256);
        Surface src = Surface::randomOfSize(random, 256, 256);
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) {
                const auto in = [shift](q_ulong &pixel, int value) {
                    pixel = (pixel & ~(q_ulong{0xFF} << shift)) | static_cast<q_ulong>(value) << shift;
                };
                in(dst.at(x, y), x);
                in(src.at(x, y), y);
            }
        Surface result = dst;
        add(result, dst.rect(), src, src.rect());
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x)
                expected(dst.at(x, y), src.at(x, y));
        ASSERT_EQ(result.differenceFrom(dst), "") << "in the channel at bit " << shift;
    }
}

/// Random places, compared with a naive add.
void comparePlaced(Case &c, const PlacedAdd &add, const PlacedAdd &naive) {
    Surface dst = Surface::random(c.random);
    Surface src = Surface::random(c.random);
    const tagRECT rect =
        c.random.rectInsideOrEmpty(std::min(src.width(), dst.width()), std::min(src.height(), dst.height()));
    const int dstX = c.random.between(0, dst.width() - std::max(1, widthOf(rect)));
    const int dstY = c.random.between(0, dst.height() - std::max(1, heightOf(rect)));
    Surface expected = dst;
    naive(expected, dstX, dstY, src, rect);
    add(dst, dstX, dstY, src, rect);
    c.expectEqual(dst, expected);
}

/// Random scalings, compared with a naive add.
void compareScaled(Case &c, const ScaledAdd &add, const ScaledAdd &naive) {
    Surface dst = Surface::random(c.random);
    Surface src = Surface::random(c.random);
    const tagRECT dstRect = c.random.rectInsideOrEmpty(dst.width(), dst.height());
    const tagRECT srcRect = c.random.rectInsideOrEmpty(src.width(), src.height());
    Surface expected = dst;
    naive(expected, dstRect, src, srcRect);
    add(dst, dstRect, src, srcRect);
    c.expectEqual(dst, expected);
}

/// A surface added to itself in every place around the source.
void comparePlacedOverlaps(const PlacedAdd &add, const PlacedAdd &naive) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX) {
            test::Random random(1);
            Surface surface = Surface::randomOfSize(random, 24, 12);
            Surface expected = surface;
            const tagRECT rect = {6, 4, 18, 9};
            naive(expected, 6 + offsetX, 4 + offsetY, expected, rect);
            add(surface, 6 + offsetX, 4 + offsetY, surface, rect);
            ASSERT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
        }
}

/// A surface scaled onto itself in every place around the source.
void compareScaledOverlaps(const ScaledAdd &add, const ScaledAdd &naive) {
    const tagRECT srcRect = {6, 4, 14, 9};
    for (const auto &[width, height] : {std::pair{8, 5}, {12, 7}, {5, 3}, {16, 5}})
        for (int offsetY = -3; offsetY <= 3; ++offsetY)
            for (int offsetX = -4; offsetX <= 4; ++offsetX) {
                test::Random random(1);
                Surface surface = Surface::randomOfSize(random, 28, 16);
                Surface expected = surface;
                const tagRECT dstRect = {6 + offsetX, 4 + offsetY, 6 + offsetX + width, 4 + offsetY + height};
                naive(expected, dstRect, expected, srcRect);
                add(surface, dstRect, surface, srcRect);
                ASSERT_EQ(surface.differenceFrom(expected), "")
                    << width << " x " << height << " moved by " << offsetX << ", " << offsetY;
            }
}

/// Long lines, in either direction: over 1999 pixels scaled to 1009, positions of 15, 16, 17 and 20 fraction bits stand
/// on different pixels here and there.
void compareLongLines(const ScaledAdd &add, const ScaledAdd &naive) {
    for (const bool upright : {false, true}) {
        test::Random random(upright);
        Surface src = upright ? Surface::randomOfSize(random, 1, 1999) : Surface::randomOfSize(random, 1999, 1);
        Surface dst = upright ? Surface(1, 1009) : Surface(1009, 1);
        Surface expected = dst;
        naive(expected, dst.rect(), src, src.rect());
        add(dst, dst.rect(), src, src.rect());
        ASSERT_EQ(dst.differenceFrom(expected), "");
    }
}

q_ulong addedTo(q_ulong d, q_ulong s, const ScaledAdd &add) {
    Surface dst(1, 1, d);
    Surface src(1, 1, s);
    add(dst, dst.rect(), src, src.rect());
    return dst.at(0, 0);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltFast32_Add, caps_200_on_100_at_255_in_every_channel) {
    for (int shift = 0; shift < 24; shift += 8)
        EXPECT_EQ(addedTo(q_ulong{100} << shift, q_ulong{200} << shift, sameSize(fastAdd)), q_ulong{255} << shift);
    EXPECT_EQ(addedTo(0xFF000000, 0xFF000000, sameSize(fastAdd)), 0u);
}

TEST(iBltFast32_Add, all_channel_pairs) {
    compareAllPairs(sameSize(fastAdd), clampAll);
}

TEST(iBltFast32_Add, negative_coordinates_and_pitches_pass_as_unsigned_numbers) {
    Surface dst(4, 4, 0x010101);
    Surface src(2, 2, 0x020202);
    src.at(0, 1) = 0x050505;
    tagRECT rect = src.rect();
    iBltFast32_Add(&dst.at(2, 3), &src.at(0, 1), static_cast<q_ulong>(-2), 0, &rect, static_cast<q_ulong>(-dst.pitch()),
                   static_cast<q_ulong>(-src.pitch()));
    EXPECT_EQ(dst.at(0, 3), 0x060606u);
    EXPECT_EQ(dst.at(0, 2), 0x030303u);
    EXPECT_EQ(dst.at(1, 2), 0x030303u);
    EXPECT_EQ(dst.at(2, 3), 0x010101u);
}

TEST(iBltFast32_Add, overlapping_adds_run_in_row_and_column_order) {
    comparePlacedOverlaps(fastAdd, naivePlaced(clampAll));
}

TEST(iBltFast32_Add, agrees_with_a_naive_add) {
    forEachCase("iBltFast32_Add", [](Case &c) { comparePlaced(c, fastAdd, naivePlaced(clampAll)); });
}

TEST(iBltFast32_Add_scaled, red_and_green_wrap_and_blue_is_capped) {
    const ScaledAdd add = sameSize(fastAddScaled({255, 255, 255}));
    EXPECT_EQ(addedTo(0x640000, 0xC80000, add), 0x2B0000u); // 200 becomes 199, and 299 wraps to 43
    EXPECT_EQ(addedTo(0x006400, 0x00C800, add), 0x002B00u);
    EXPECT_EQ(addedTo(0x000064, 0x0000C8, add), 0x0000FFu);
}

TEST(iBltFast32_Add_scaled, a_scale_of_255_leaves_a_channel_slightly_below_its_value) {
    const ScaledAdd add = sameSize(fastAddScaled({255, 255, 255}));
    EXPECT_EQ(addedTo(0, 0xFF01FF, add), 0xFE00FEu);
    EXPECT_EQ(addedTo(0, 0xFFFFFF, sameSize(fastAddScaled({0, 0, 0}))), 0u);
}

TEST(iBltFast32_Add_scaled, all_channel_pairs_under_several_scales) {
    for (const Scales scales : severalScales)
        compareAllPairs(sameSize(fastAddScaled(scales)), wrapScaled(scales));
}

TEST(iBltFast32_Add_scaled, every_value_under_every_scale_is_the_truncated_product) {
    for (int scale = 0; scale < 256; ++scale) {
        const auto byte = static_cast<unsigned char>(scale);
        Surface dst(256, 1);
        Surface src(256, 1);
        for (int x = 0; x < 256; ++x)
            src.at(x, 0) = static_cast<q_ulong>(x * 0x10101);
        fastAddScaled({byte, byte, byte})(dst, 0, 0, src, src.rect());
        for (int x = 0; x < 256; ++x)
            ASSERT_EQ(dst.at(x, 0), static_cast<q_ulong>(x * scale / 256 * 0x10101));
    }
}

TEST(iBltFast32_Add_scaled, overlapping_adds_run_in_row_and_column_order) {
    constexpr Scales scales = {255, 130, 77};
    comparePlacedOverlaps(fastAddScaled(scales), naivePlaced(wrapScaled(scales)));
}

TEST(iBltFast32_Add_scaled, agrees_with_a_naive_add) {
    forEachCase("iBltFast32_Add scaled", [](Case &c) {
        const Scales scales = randomScales(c.random);
        comparePlaced(c, fastAddScaled(scales), naivePlaced(wrapScaled(scales)));
    });
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltNear32_Add, a_carry_of_blue_sets_the_lowest_bit_of_green) {
    EXPECT_EQ(addedTo(0x000064, 0x0000C8, nearAdd), 0x00012Cu); // 300 is 256 + 44
    EXPECT_EQ(addedTo(0x000164, 0x0000C8, nearAdd), 0x00012Cu); // or-ed, not added
    EXPECT_EQ(addedTo(0x00FE64, 0x0000C8, nearAdd), 0x00FF2Cu);
    EXPECT_EQ(addedTo(0xC8C8FF, 0xC8C8FF, nearAdd), 0xFFFFFEu); // 510 is the largest sum
}

TEST(iBltNear32_Add, all_channel_pairs) {
    compareAllPairs(nearAdd, spillBlue);
}

TEST(iBltNear32_Add, overlapping_adds_run_in_row_and_column_order) {
    compareScaledOverlaps(nearAdd, naiveScaled(signed17_15, spillBlue));
}

TEST(iBltNear32_Add, positions_have_15_fraction_bits) {
    compareLongLines(nearAdd, naiveScaled(signed17_15, spillBlue));
}

TEST(iBltNear32_Add, sources_of_more_than_4096_columns_fit_the_format) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 60000, 1);
    Surface dst(3, 1);
    nearAdd(dst, dst.rect(), src, src.rect());
    EXPECT_EQ(dst.at(2, 0), src.at(40000, 0) & 0xFFFFFF);
}

TEST(iBltNear32_Add, agrees_with_a_naive_add) {
    forEachCase("iBltNear32_Add", [](Case &c) { compareScaled(c, nearAdd, naiveScaled(signed17_15, spillBlue)); });
}

TEST(iBltNear32_Add_scaled, red_and_green_wrap_and_blue_is_capped) {
    EXPECT_EQ(addedTo(0x646464, 0xC8C8C8, nearAddScaled({255, 255, 255})), 0x2B2BFFu);
}

TEST(iBltNear32_Add_scaled, all_channel_pairs_under_several_scales) {
    for (const Scales scales : severalScales)
        compareAllPairs(nearAddScaled(scales), wrapScaled(scales));
}

TEST(iBltNear32_Add_scaled, positions_have_15_fraction_bits) {
    compareLongLines(nearAddScaled({255, 128, 77}), naiveScaled(unsigned17_15, wrapScaled({255, 128, 77})));
}

TEST(iBltNear32_Add_scaled, unsigned_positions_reach_twice_as_far_as_signed_ones) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 100000, 1);
    Surface dst(4, 1);
    nearAddScaled({255, 255, 255})(dst, dst.rect(), src, src.rect());
    Surface expected(4, 1);
    wrapScaled({255, 255, 255})(expected.at(3, 0), src.at(75000, 0));
    EXPECT_EQ(dst.at(3, 0), expected.at(3, 0));
}

TEST(iBltNear32_Add_scaled, overlapping_adds_run_in_row_and_column_order) {
    constexpr Scales scales = {255, 130, 77};
    compareScaledOverlaps(nearAddScaled(scales), naiveScaled(unsigned17_15, wrapScaled(scales)));
}

TEST(iBltNear32_Add_scaled, agrees_with_a_naive_add) {
    forEachCase("iBltNear32_Add scaled", [](Case &c) {
        const Scales scales = randomScales(c.random);
        compareScaled(c, nearAddScaled(scales), naiveScaled(unsigned17_15, wrapScaled(scales)));
    });
}

// ---------------------------------------------------------------------------------------------------------------------

/// Every value of every tap under all 256 pairs of fractions. The source is two by two pixels and enlarged by 16, so
/// that its upper left quarter has both fractions.
void compareAllWeights(const ScaledAdd &add, int scaleRed, int scaleGreen, int scaleBlue) {
    for (int tap = 0; tap < 4; ++tap)
        for (int value = 0; value < 256; ++value) {
            Surface src(2, 2);
            src.at(tap % 2, tap / 2) = pixelOf(value, 255 - value, value) | 0x77000000;
            Surface dst(32, 32, 0x99000000);
            add(dst, dst.rect(), src, src.rect());
            for (int y = 0; y < 16; ++y)
                for (int x = 0; x < 16; ++x) {
                    const int weight = (tap % 2 ? x : 16 - x) * (tap / 2 ? y : 16 - y);
                    ASSERT_EQ(dst.at(x, y),
                              pixelOf(value * weight * scaleRed / 65536, (255 - value) * weight * scaleGreen / 65536,
                                      value * weight * scaleBlue / 65536))
                        << x << ", " << y << " of tap " << tap << " with value " << value;
                }
        }
}

TEST(iBltBilinear32_Add, every_value_under_every_weight_of_each_tap_is_the_truncated_product) {
    compareAllWeights(bilinearAdd, 256, 256, 256);
}

TEST(iBltBilinear32_Add, all_channel_pairs) {
    compareAllPairs(bilinearAdd, clampAll);
}

/// What lies around the source makes no difference, and no memory behind it is read.
void expectNothingReadOutside(
    const std::function<void(q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong)> &add) {
    for (int height = 1; height <= 4; ++height)
        for (int width = 1; width <= 4; ++width)
            for (const auto &[dstWidth, dstHeight] :
                 {std::pair{1, 1}, {width, height}, {2 * width, 3 * height}, {7, 5}, {33, 19}}) {
                const auto count = static_cast<std::size_t>(width * height);
                test::Random random(count);
                test::PageEndPixels tight(count);
                Surface inside(width, height, 0xFFFFFFFF);
                Surface insideOther(width, height, 0x00123456);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        tight.data()[y * width + x] = inside.at(x, y) = insideOther.at(x, y) = random.pixel();
                const Surface before = Surface::randomOfSize(random, dstWidth, dstHeight);
                tagRECT dstRect = before.rect();
                tagRECT srcRect = {0, 0, width, height};
                Surface expected = before;
                add(expected.pixels(), tight.data(), &dstRect, &srcRect, unsignedPitch(expected),
                    static_cast<q_ulong>(width));
                for (Surface *src : {&inside, &insideOther}) {
                    Surface dst = before;
                    add(dst.pixels(), src->pixels(), &dstRect, &srcRect, unsignedPitch(dst), unsignedPitch(*src));
                    ASSERT_EQ(dst.differenceFrom(expected), "") << width << " x " << height;
                }
            }
}

TEST(iBltBilinear32_Add, reads_nothing_outside_the_source) {
    expectNothingReadOutside(
        [](q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch, q_ulong srcPitch) {
            iBltBilinear32_Add(dst, src, dstRect, srcRect, dstPitch, srcPitch);
        });
}

TEST(iBltBilinear32_Add, the_last_column_and_row_stand_in_for_what_lies_behind_them) {
    Surface src(2, 2);
    src.at(0, 0) = 0x000010;
    src.at(1, 0) = 0x000020;
    src.at(0, 1) = 0x000030;
    src.at(1, 1) = 0x000040;
    Surface dst(4, 4);
    bilinearAdd(dst, dst.rect(), src, src.rect());
    const q_ulong expected[4][4] = {
        {0x10, 0x18, 0x20, 0x20}, {0x20, 0x28, 0x30, 0x30}, {0x30, 0x38, 0x40, 0x40}, {0x30, 0x38, 0x40, 0x40}};
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(dst.at(x, y), expected[y][x]) << x << ", " << y;
}

TEST(iBltBilinear32_Add, positions_have_15_fraction_bits) {
    compareLongLines(bilinearAdd, naiveFiltered());
    compareLongLines(bilinearAddScaled({255, 128, 77}), naiveFiltered({255, 128, 77}));
}

TEST(iBltBilinear32_Add, overlapping_adds_run_in_row_and_column_order) {
    compareScaledOverlaps(bilinearAdd, naiveFiltered());
}

TEST(iBltBilinear32_Add, agrees_with_a_naive_add) {
    forEachCase("iBltBilinear32_Add", [](Case &c) { compareScaled(c, bilinearAdd, naiveFiltered()); });
}

TEST(iBltBilinear32_Add_scaled, every_value_under_every_weight_of_each_tap_is_the_truncated_product) {
    for (const Scales scales : {Scales{255, 255, 255}, {128, 1, 77}, {0, 254, 3}})
        compareAllWeights(bilinearAddScaled(scales), scales.red, scales.green, scales.blue);
}

TEST(iBltBilinear32_Add_scaled, all_channels_are_capped) {
    EXPECT_EQ(addedTo(0x646464, 0xC8C8C8, bilinearAddScaled({255, 255, 255})), 0xFFFFFFu);
    EXPECT_EQ(addedTo(0x010101, 0xFFFFFF, bilinearAddScaled({255, 255, 255})), 0xFFFFFFu); // 254 + 1
}

TEST(iBltBilinear32_Add_scaled, all_channel_pairs_under_several_scales) {
    for (const Scales scales : severalScales)
        compareAllPairs(bilinearAddScaled(scales), [scales](q_ulong &d, q_ulong s) {
            const Channels c = channelsOf(s);
            addSums(d, {c.blue * 256, c.green * 256, c.red * 256}, scales.red, scales.green, scales.blue);
        });
}

TEST(iBltBilinear32_Add_scaled, unsigned_positions_reach_twice_as_far_as_signed_ones) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 100000, 1);
    Surface dst(4, 1);
    Surface expected(4, 1);
    bilinearAddScaled({255, 255, 255})(dst, dst.rect(), src, src.rect());
    naiveFiltered({255, 255, 255})(expected, dst.rect(), src, src.rect());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltBilinear32_Add_scaled, reads_nothing_outside_the_source) {
    expectNothingReadOutside(
        [](q_ulong *dst, q_ulong *src, tagRECT *dstRect, tagRECT *srcRect, q_ulong dstPitch, q_ulong srcPitch) {
            iBltBilinear32_Add(dst, src, dstRect, srcRect, dstPitch, srcPitch, 255, 128, 250);
        });
}

TEST(iBltBilinear32_Add_scaled, overlapping_adds_run_in_row_and_column_order) {
    constexpr Scales scales = {255, 130, 77};
    compareScaledOverlaps(bilinearAddScaled(scales), naiveFiltered(scales));
}

TEST(iBltBilinear32_Add_scaled, agrees_with_a_naive_add) {
    forEachCase("iBltBilinear32_Add scaled", [](Case &c) {
        const Scales scales = randomScales(c.random);
        compareScaled(c, bilinearAddScaled(scales), naiveFiltered(scales));
    });
}

TEST(ScaledAdds, an_empty_source_or_destination_writes_nothing) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 8, 8);
    const Surface untouched = Surface::randomOfSize(random, 8, 8);
    const tagRECT withoutExtent[] = {{3, 2, 3, 5}, {3, 2, 5, 2}, {5, 2, 5, 1}, {5, 2, 3, 2}, {4, 4, 4, 4}};
    const tagRECT insideOut[] = {{5, 2, 3, 5}, {3, 5, 5, 2}, {5, 5, 3, 2}};
    const auto writesNothing = [&](const ScaledAdd &add, const tagRECT &dstRect, const tagRECT &srcRect) {
        Surface dst = untouched;
        add(dst, dstRect, src, srcRect);
        EXPECT_EQ(dst.differenceFrom(untouched), "");
    };
    const tagRECT drawn = {1, 1, 6, 7};
    for (const ScaledAdd &add : {ScaledAdd(nearAdd), nearAddScaled({255, 255, 255}), ScaledAdd(bilinearAdd),
                                 bilinearAddScaled({255, 255, 255}), ScaledAdd(safeKeyAdd)}) {
        for (const tagRECT &empty : withoutExtent) {
            writesNothing(add, drawn, empty);
            writesNothing(add, empty, drawn);
        }
        for (const tagRECT &empty : insideOut)
            writesNothing(add, empty, drawn);
    }
    for (const ScaledAdd &add :
         {nearAddScaled({255, 255, 255}), ScaledAdd(bilinearAdd), bilinearAddScaled({255, 255, 255})})
        for (const tagRECT &empty : insideOut)
            writesNothing(add, drawn, empty);
}

/// A row of 1 to 6, and its turned-inside-out rectangles.
void walksASourceTurnedInsideOutToTheLeft(const ScaledAdd &add) {
    Surface src(6, 1);
    for (int x = 0; x < 6; ++x)
        src.at(x, 0) = static_cast<q_ulong>(x + 1);
    src.at(-1, 0) = 0x70;
    const auto drawn = [&](int width, tagRECT srcRect) {
        Surface dst(width, 1);
        add(dst, dst.rect(), src, srcRect);
        std::vector<q_ulong> pixels;
        for (int x = 0; x < width; ++x)
            pixels.push_back(dst.at(x, 0));
        return pixels;
    };
    // A step of -4 / 4: from column 5, the sixth pixel, to the left.
    EXPECT_EQ(drawn(4, {5, 0, 1, 1}), (std::vector<q_ulong>{6, 5, 4, 3}));
    // A step of -4 / 2.
    EXPECT_EQ(drawn(2, {5, 0, 1, 1}), (std::vector<q_ulong>{6, 4}));
    // A step of -2 / 4: the positions -1/2 and -3/2 are rounded down, to -1 and -2.
    EXPECT_EQ(drawn(4, {5, 0, 3, 1}), (std::vector<q_ulong>{6, 5, 5, 4}));
    // A step of -2 / 3, which the division truncates toward 0: -0.67 and -1.33.
    EXPECT_EQ(drawn(3, {5, 0, 3, 1}), (std::vector<q_ulong>{6, 5, 4}));
    // The column where the rectangle ends is reached where the last position is rounded down to it.
    EXPECT_EQ(drawn(4, {0, 0, -1, 1}), (std::vector<q_ulong>{1, 0x70, 0x70, 0x70}));
}

void walksASourceTurnedInsideOutUp(const ScaledAdd &add) {
    Surface src(2, 6);
    for (int y = 0; y < 6; ++y) {
        src.at(0, y) = static_cast<q_ulong>(y + 1);
        src.at(1, y) = static_cast<q_ulong>(y + 1) << 8;
    }
    Surface dst(2, 4);
    add(dst, dst.rect(), src, {0, 5, 2, 3});
    const q_ulong expected[] = {6, 5, 5, 4};
    for (int y = 0; y < 4; ++y) {
        EXPECT_EQ(dst.at(0, y), expected[y]);
        EXPECT_EQ(dst.at(1, y), expected[y] << 8);
    }
    // Left and up at once.
    Surface both(2, 2);
    add(both, both.rect(), src, {1, 5, -1, 3});
    EXPECT_EQ(both.at(0, 0), 0x600u);
    EXPECT_EQ(both.at(1, 0), 6u);
    EXPECT_EQ(both.at(0, 1), 0x500u);
    EXPECT_EQ(both.at(1, 1), 5u);
}

TEST(iBltNear32_Add, a_source_turned_inside_out_is_walked_to_the_left_or_up) {
    walksASourceTurnedInsideOutToTheLeft(nearAdd);
    walksASourceTurnedInsideOutUp(nearAdd);
}

TEST(iBltNear32SafeKeySrcAdd, a_source_turned_inside_out_is_walked_to_the_left_or_up) {
    walksASourceTurnedInsideOutToTheLeft(safeKeyAdd);
    walksASourceTurnedInsideOutUp(safeKeyAdd);
}

TEST(iBltNear32SafeKeySrcAdd, a_source_turned_inside_out_is_clipped_as_any_other) {
    // The destination begins two columns before the surface: its third pixel shows the third source pixel to the left.
    Surface src(6, 1);
    for (int x = 0; x < 6; ++x)
        src.at(x, 0) = static_cast<q_ulong>(x + 1);
    Surface dst(3, 1);
    safeKeyAdd(dst, {-2, 0, 4, 1}, src, {5, 0, -1, 1});
    EXPECT_EQ(dst.at(0, 0), 4u);
    EXPECT_EQ(dst.at(1, 0), 3u);
    EXPECT_EQ(dst.at(2, 0), 2u);
    EXPECT_EQ(dst.at(3, 0), 0u);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltFast32_KeySrc_Add, leaves_out_exactly_the_pixels_that_are_0_whatever_the_key) {
    for (const q_ulong key : {0u, 0x112233u, 0xFF00FFu, 0xFFFFFFFFu}) {
        Surface dst(4, 1, 0xAA010203);
        Surface src(4, 1);
        src.at(1, 0) = 0x112233;
        src.at(2, 0) = 0xFF000000;
        src.at(3, 0) = 0xFF00FF;
        fastKeyAdd(key)(dst, 0, 0, src, src.rect());
        EXPECT_EQ(dst.at(0, 0), 0xAA010203u);
        EXPECT_EQ(dst.at(1, 0), 0x00122436u);
        EXPECT_EQ(dst.at(2, 0), 0x00010203u); // black with a top byte is no 0: the destination's top byte goes
        EXPECT_EQ(dst.at(3, 0), 0x00FF02FFu);
    }
}

TEST(iBltFast32_KeySrc_Add, all_channel_pairs) {
    compareAllPairs(sameSize(fastKeyAdd(0)), clampAllUnlessZero);
}

TEST(iBltFast32_KeySrc_Add, overlapping_adds_run_in_row_and_column_order) {
    comparePlacedOverlaps(fastKeyAdd(0), naivePlaced(clampAllUnlessZero));
}

TEST(iBltFast32_KeySrc_Add, agrees_with_a_naive_add) {
    forEachCase("iBltFast32_KeySrc_Add",
                [](Case &c) { comparePlaced(c, fastKeyAdd(c.random.pixel()), naivePlaced(clampAllUnlessZero)); });
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltNear32SafeKeySrcAdd, leaves_out_exactly_the_pixels_that_are_0) {
    EXPECT_EQ(addedTo(0xAA010203, 0, safeKeyAdd), 0xAA010203u);
    EXPECT_EQ(addedTo(0xAA010203, 0x01000000, safeKeyAdd), 0x00010203u);
    EXPECT_EQ(addedTo(0xAA646464, 0x00C8C800, safeKeyAdd), 0x00FFFF64u);
}

TEST(iBltNear32SafeKeySrcAdd, all_channel_pairs) {
    compareAllPairs(safeKeyAdd, clampAllUnlessZero);
}

TEST(iBltNear32SafeKeySrcAdd, every_position_and_size_over_a_small_surface_stays_inside) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 3, 4);
    const Surface before = Surface::randomOfSize(random, 4, 3);
    for (int top = -6; top <= 5; ++top)
        for (int left = -7; left <= 6; ++left)
            for (int height = -2; height <= 8; ++height)
                for (int width = -2; width <= 9; ++width) {
                    Surface dst = before;
                    Surface expected = before;
                    const tagRECT dstRect = {left, top, left + width, top + height};
                    naiveSafeKeyAdd(expected, dstRect, src, src.rect());
                    safeKeyAdd(dst, dstRect, src, src.rect());
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << width << " x " << height << " at " << left << ", " << top;
                }
}

TEST(iBltNear32SafeKeySrcAdd, positions_have_16_fraction_bits) {
    compareLongLines(safeKeyAdd, naiveSafeKeyAdd);
}

TEST(iBltNear32SafeKeySrcAdd, reads_nothing_that_the_clip_leaves_out) {
    test::PageEndPixels src(4 * 3);
    for (int i = 0; i < 12; ++i)
        src.data()[i] = static_cast<q_ulong>(i);
    Surface dst(4, 5);
    tagRECT dstRect = {0, 0, 8, 10};
    tagRECT srcRect = {0, 0, 8, 6}; // twice what there is
    iBltNear32SafeKeySrcAdd(dst.pixels(), src.data(), &dstRect, &srcRect, dst.pitch(), 4, 4, 5);
    EXPECT_EQ(dst.at(3, 4), 11u);
}

TEST(iBltNear32SafeKeySrcAdd, coordinates_at_the_end_of_the_numbers_write_nothing_outside_the_clip) {
    Surface src(4, 4, 0x55555555);
    const Surface untouched(4, 4, 0xAAAAAAAA);
    const int ends[] = {least, least + 1, least + 5, largest - 5, largest - 1, largest};
    for (const int left : ends)
        for (const int right : ends)
            for (const tagRECT dstRect :
                 {tagRECT{left, 0, right, 4}, {0, left, 4, right}, {left, left, right, right}}) {
                Surface dst = untouched;
                safeKeyAdd(dst, dstRect, src, src.rect());
                ASSERT_EQ(dst.differenceFrom(untouched), "") << left << " to " << right;
            }
    Surface dst(4, 4);
    tagRECT wide = {-(1 << 30), -(1 << 30), (1 << 30) - 1, (1 << 30) - 1};
    tagRECT srcRect = src.rect();
    iBltNear32SafeKeySrcAdd(dst.pixels(), src.pixels(), &wide, &srcRect, 1 << 20, src.pitch(), 4, 1);
    EXPECT_EQ(dst.at(3, 0), 0x555555u);
    EXPECT_EQ(dst.at(4, 0), 0u);
}

TEST(iBltNear32SafeKeySrcAdd, agrees_with_a_naive_add) {
    forEachCase("iBltNear32SafeKeySrcAdd", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT dstRect = {c.random.between(-20, 20), c.random.between(-20, 20), 0, 0};
        dstRect.right = dstRect.left + c.random.between(-2, 40);
        dstRect.bottom = dstRect.top + c.random.between(-2, 40);
        tagRECT srcRect = c.random.rectInsideOrEmpty(src.width(), src.height());
        const int clipWidth = c.random.between(-1, dst.width());
        const int clipHeight = c.random.between(-1, dst.height());
        Surface expected = dst;
        if (!lacksExtent(srcRect))
            naiveNearest(expected, src, dstRect, srcRect, signed16_16, {0, 0, clipWidth, clipHeight},
                         clampAllUnlessZero);
        iBltNear32SafeKeySrcAdd(dst.pixels(), src.pixels(), &dstRect, &srcRect, dst.pitch(), src.pitch(), clipWidth,
                                clipHeight);
        c.expectEqual(dst, expected);
    });
}

// ---------------------------------------------------------------------------------------------------------------------

void centredAdd(Surface &dst, Surface &src, tagRECT clip, tagRECT srcRect, int centreX, int centreY) {
    iBltNear32_Add_KeySrc(dst.pixels(), dst.pitch(), src.pixels(), src.pitch(), &clip, &srcRect, centreX, centreY);
}

void naiveCentredAdd(Surface &dst, Surface &src, tagRECT clip, tagRECT srcRect, int centreX, int centreY) {
    const int squares = widthOf(srcRect) * widthOf(srcRect) + heightOf(srcRect) * heightOf(srcRect);
    int radius = 0; // the largest number that is not above half the diagonal
    while (4 * (radius + 1) * (radius + 1) <= squares)
        ++radius;
    const int middleX = static_cast<int>(srcRect.left + srcRect.right) / 2;
    const int middleY = static_cast<int>(srcRect.top + srcRect.bottom) / 2;
    for (int y = centreY - radius; y < centreY + radius; ++y)
        for (int x = centreX - radius; x < centreX + radius; ++x) {
            const int srcX = x + middleX - centreX;
            const int srcY = y + middleY - centreY;
            if (test::isInside(clip, x, y) && test::isInside(srcRect, srcX, srcY))
                clampAllUnlessZero(dst.at(x, y), src.at(srcX, srcY));
        }
}

TEST(iBltNear32_Add_KeySrc, puts_the_middle_of_the_source_on_the_centre) {
    Surface src(4, 4);
    src.at(2, 2) = 0x010203;
    Surface dst(9, 9);
    centredAdd(dst, src, dst.rect(), src.rect(), 5, 6);
    Surface expected(9, 9);
    expected.at(5, 6) = 0x010203;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_Add_KeySrc, draws_a_squarish_source_whole) {
    for (const auto &[width, height] : {std::pair{4, 4}, {5, 5}, {5, 4}, {4, 5}, {3, 3}}) {
        Surface src(width, height, 0x010101);
        Surface dst(16, 16);
        centredAdd(dst, src, dst.rect(), src.rect(), 8, 8);
        Surface expected(16, 16);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                expected.at(8 - width / 2 + x, 8 - height / 2 + y) = 0x010101;
        EXPECT_EQ(dst.differenceFrom(expected), "") << width << " x " << height;
    }
}

TEST(iBltNear32_Add_KeySrc, half_a_truncated_diagonal_cuts_thin_and_tiny_sources) {
    Surface one(1, 1, 0x010101); // half of the root of 2 is no whole pixel
    Surface dst(16, 16);
    centredAdd(dst, one, dst.rect(), one.rect(), 8, 8);
    EXPECT_EQ(dst.differenceFrom(Surface(16, 16)), "");

    Surface thin(7, 1, 0x010101); // half of the root of 50 is 3 and a half: columns 5 to 10 of 5 to 11
    centredAdd(dst, thin, dst.rect(), thin.rect(), 8, 8);
    Surface expected(16, 16);
    for (int x = 5; x <= 10; ++x)
        expected.at(x, 8) = 0x010101;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_Add_KeySrc, leaves_out_exactly_the_pixels_that_are_0) {
    Surface dst(4, 4, 0xAA010203);
    Surface src(4, 4);
    src.at(1, 1) = 0xFF000000;
    src.at(2, 1) = 0x00FFFFFF;
    centredAdd(dst, src, dst.rect(), src.rect(), 2, 2);
    Surface expected(4, 4, 0xAA010203);
    expected.at(1, 1) = 0x00010203;
    expected.at(2, 1) = 0x00FFFFFF;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_Add_KeySrc, all_channel_pairs) {
    compareAllPairs([](Surface &dst, tagRECT dstRect, Surface &src,
                       tagRECT srcRect) { centredAdd(dst, src, dstRect, srcRect, 128, 128); },
                    clampAllUnlessZero);
}

TEST(iBltNear32_Add_KeySrc, every_position_and_size_over_a_small_surface_stays_inside) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 6, 6);
    const Surface before = Surface::randomOfSize(random, 4, 4);
    for (int height = -2; height <= 6; ++height)
        for (int width = -2; width <= 6; ++width)
            for (int centreY = -6; centreY <= 9; ++centreY)
                for (int centreX = -6; centreX <= 9; ++centreX) {
                    Surface dst = before;
                    Surface expected = before;
                    const tagRECT srcRect = {0, 0, width, height};
                    naiveCentredAdd(expected, src, dst.rect(), srcRect, centreX, centreY);
                    centredAdd(dst, src, dst.rect(), srcRect, centreX, centreY);
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << width << " x " << height << " around " << centreX << ", " << centreY;
                }
}

TEST(iBltNear32_Add_KeySrc, coordinates_at_the_end_of_the_numbers_write_nothing) {
    Surface src(6, 6, 0x55555555);
    const Surface untouched(4, 4, 0xAAAAAAAA);
    for (const int distant : {least, least + 1, least + 3, largest - 3, largest - 1, largest})
        for (int extent = -6; extent <= 6; ++extent) {
            Surface dst = untouched;
            centredAdd(dst, src, dst.rect(), {0, 0, extent, 6}, distant, 2);
            centredAdd(dst, src, dst.rect(), {0, 0, 6, extent}, 2, distant);
            centredAdd(dst, src, dst.rect(), {0, 0, extent, extent}, distant, distant);
            ASSERT_EQ(dst.differenceFrom(untouched), "") << extent << " around " << distant;
        }
}

TEST(iBltNear32_Add_KeySrc, reads_nothing_that_the_clip_leaves_out) {
    test::PageEndPixels src(6 * 3);
    for (int i = 0; i < 18; ++i)
        src.data()[i] = 0x010101;
    Surface dst(6, 6);
    tagRECT clip = {0, 0, 6, 3};
    tagRECT srcRect = {0, 0, 6, 6}; // of which three rows exist
    iBltNear32_Add_KeySrc(dst.pixels(), dst.pitch(), src.data(), 6, &clip, &srcRect, 3, 3);
    EXPECT_EQ(dst.at(5, 2), 0x010101u);
}

TEST(iBltNear32_Add_KeySrc, agrees_with_a_naive_add) {
    forEachCase("iBltNear32_Add_KeySrc", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        const tagRECT clip = c.random.rectInsideOrEmpty(dst.width(), dst.height());
        const tagRECT srcRect = c.random.rectInsideOrEmpty(src.width(), src.height());
        const int centreX = c.random.between(-12, 28);
        const int centreY = c.random.between(-12, 28);
        Surface expected = dst;
        naiveCentredAdd(expected, src, clip, srcRect, centreX, centreY);
        centredAdd(dst, src, clip, srcRect, centreX, centreY);
        c.expectEqual(dst, expected);
    });
}

#if Q_MUR_TESTS_X87
TEST(iBltNear32_Add_KeySrc, measures_the_diagonal_at_full_precision_and_leaves_the_unit_as_it_was) {
    // The diagonal of 5101 by 101 pixels is the root of 5102 * 5102 - 2: with 24 bits it would round up to 5102, and
    // the last column, 2550 right of the centre, would be drawn.
    std::vector<q_ulong> row(5101, 0x010101);
    tagRECT srcRect = {0, 0, 5101, 101};
    for (const unsigned short word : {test::precision24Bits, test::precision53Bits, test::precision64Bits}) {
        Surface dst(4, 1);
        tagRECT clip = dst.rect();
        const test::X87ControlWord host(word);
        iBltNear32_Add_KeySrc(dst.pixels(), dst.pitch(), row.data(), 0, &clip, &srcRect, 2 - 2550, 0);
        EXPECT_EQ(test::X87ControlWord::current(), word);
        EXPECT_EQ(dst.at(1, 0), 0x010101u);
        EXPECT_EQ(dst.at(2, 0), 0u);
    }
}
#endif

} // namespace
