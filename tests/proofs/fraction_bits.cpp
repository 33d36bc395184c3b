#include "levels.h"

#include <algorithm>
#include <set>

namespace proofs {
namespace {

using catalogue::FixedPoint;
using catalogue::Lookup;

std::string_view reasonAgainstLookup(const Row &row) {
    if (const std::string_view against = reasonAgainstLevels(row); !against.empty())
        return against;
    return row.lookup == Lookup::none ? "samples no source" : "";
}

/// Stripes of two levels on all sources, black everywhere else, without light: between the two levels there are as many
/// others as weights have steps.
void proveLookup(const Row &row) {
    constexpr int steps = 1 << catalogue::tapBits;
    constexpr q_ulong bright = steps * 15 % 256 * 0x10101;
    std::set<q_ulong> levels;
    for (int number = 0; number < 1000; ++number) {
        Call call = plainCall(row, number);
        setPixels(call, [](q_ulong) { return 0; });
        for (std::size_t i = 0; i < call.size(); ++i) {
            const Argument &argument = row.arguments[i];
            if (argument.kind == Kind::source && call[i].is<Plane>()) {
                Plane &plane = call[i].plane();
                const std::span<q_ulong> words = wordsOf(plane);
                for (std::size_t k = 0; k < words.size(); ++k)
                    words[k] = 0xFF000000 | (plane.placeOf(4 * k).x % 2 == 0 ? 0 : bright);
            }
            if (argument.kind == Kind::alpha)
                call[i] = 1;
            if (argument.kind == Kind::weight)
                call[i] = 255;
            if (argument.kind == Kind::number && argument.unit == "1/256")
                call[i] = 256;
            if (argument.name == "light")
                call[i] = Plane::of(_POINT3DFLOAT{0, 0, 0, 0});
            if (argument.name == "ambientColor")
                call[i] = Plane::of(_POINT3D{256, 0, 0, 0});
        }
        if (!catalogue::keepsToContract(call))
            continue;
        for (const q_ulong pixel : pixelsOf(ran(std::move(call))))
            levels.insert(pixel & 0xFF);
    }
    EXPECT_EQ(static_cast<int>(levels.size()), row.lookup == Lookup::filtered ? steps + 1 : 2);
}

/// The argument that counts in steps.
const Argument *steppedOf(const Row &row) {
    for (const Argument &argument : row.arguments)
        if (argument.fractionBits >= 0)
            return &argument;
    return nullptr;
}

std::string_view reasonAgainstSteps(const Row &row) {
    return steppedOf(row) ? "" : "no number counts in steps";
}

/// Numbers within a step do the same, those of two steps do not.
void proveSteps(const Row &row) {
    const Argument &argument = *steppedOf(row);
    const int steps = 1 << argument.fractionBits;
    std::set<int> told;
    for (int number = 0; number < 200; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call call = catalogue::randomCall(row, random);
        const int pair = random.between(1, steps / 2 - 1);
        const auto drawn = [&](int step, double part) {
            Call at = call;
            at[argument.name] = (step + part) / steps;
            return pixelsOf(ran(std::move(at)));
        };
        for (const int step : {2 * pair, 2 * pair + 1})
            ASSERT_EQ(drawn(step, 0), drawn(step, 0.984375)) << argument.name << " " << step << "\n" << described(call);
        if (drawn(2 * pair, 0) != drawn(2 * pair + 1, 0))
            told.insert(pair);
    }
    EXPECT_GT(told.size(), 20u) << "so few pairs of steps can be told apart";
}

std::string_view reasonAgainstPositions(const Row &row) {
    return row.positions ? "" : "says nothing of positions";
}

/// Colours that no neighbour shares.
q_ulong colourAt(std::int64_t x) {
    return Random(static_cast<std::uint64_t>(x + 1000000)).word() & 0xFFFFFF;
}

/// What a row of `length` pixels shows of a source of `sourceLength`, from a call of the function. Where the source has
/// no pixels, there are others like them.
std::vector<q_ulong> scaledRow(const Row &row, int sourceLength, int length) {
    constexpr int sourceRows = 3;
    Random random(0);
    Call call = catalogue::randomCall(row, random);
    const int unit = row.name == "iBltPerfect32" ? 16 : 1;
    const Plane source(4, 3 * sourceLength + 4, sourceRows + 3);
    source.fill({0, 0, source.width(), source.height()},
                [sourceLength](int x, int) { return 0xFF000000 | colourAt(x - sourceLength - 1); });
    call.set({{"src", source.movedBy(sourceLength + 1, 1)}, {"dst", Plane(4, length + 2, 3)}});
    call.set({{"srcRect", tagRECT{0, 0, sourceLength * unit, sourceRows * unit}},
              {"dstRect", tagRECT{0, 0, length * unit, unit}}});
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = row.arguments[i];
        if (argument.kind == Kind::clip)
            call[i] = tagRECT{0, 0, length, 1};
        if (argument.kind == Kind::extent)
            call[i] = argument.name == "clipWidth" ? length : 1;
        if (argument.kind == Kind::alpha)
            call[i] = 1;
        if (argument.kind == Kind::weight)
            call[i] = 255;
        if (argument.kind == Kind::key)
            call[i] = 0xFFC8A1E3;
    }
    call.settle();
    const Call after = ran(std::move(call));
    std::vector<q_ulong> pixels;
    for (int x = 0; x < length; ++x)
        pixels.push_back(after["dst"].plane().at(x, 0));
    return pixels;
}

/// The same, worked out from the format of positions in numbers that do not wrap.
std::vector<q_ulong> expectedRow(const FixedPoint &format, bool isFiltered, int sourceLength, int length) {
    const std::int64_t one = std::int64_t{1} << format.fractionBits;
    const std::int64_t step = sourceLength * one / length;
    std::vector<q_ulong> pixels;
    for (int x = 0; x < length; ++x) {
        const std::int64_t pixel = x * step / one;
        const std::int64_t part = isFiltered ? x * step % one * 16 / one : 0;
        // the last column may stand in for the next
        const q_ulong colour = colourAt(pixel);
        const q_ulong next = colourAt(pixel + 1);
        q_ulong mixed = 0;
        for (const int channel : {0, 8, 16}) {
            const std::int64_t sum = (colour >> channel & 0xFF) * (16 - part) + (next >> channel & 0xFF) * part;
            mixed |= static_cast<q_ulong>(sum / 16) << channel;
        }
        pixels.push_back(mixed);
    }
    return pixels;
}

/// Whether two rows are the same but for a level here and there, up to the last source pixel. A scale of 255 / 256
/// takes up to a level away.
bool areAlike(const std::vector<q_ulong> &drawn, const std::vector<q_ulong> &expected, int sourceLength) {
    const auto length = static_cast<std::int64_t>(drawn.size());
    for (std::int64_t i = 0; i < length; ++i)
        for (const int channel : {0, 8, 16}) {
            const std::int64_t is = drawn[static_cast<std::size_t>(i)] >> channel & 0xFF;
            const std::int64_t should = expected[static_cast<std::size_t>(i)] >> channel & 0xFF;
            if (i * sourceLength / length + 2 < sourceLength && (is > should || is + 1 < should))
                return false;
        }
    return true;
}

/// Whether a picture that is neither turned nor scaled lies where it should: a slope of levels, as wide as a row.
bool liesInPlace(const Row &row, int length) {
    Random random(0);
    Call call = catalogue::randomCall(row, random);
    constexpr int rows = 8;
    const auto levelAt = [length](int x) { return static_cast<q_ulong>(1 + std::clamp(x, 0, length) * 250 / length); };
    const Plane source = Plane::surface(length, rows);
    source.fill(source.rect(), [&levelAt](int x, int) { return 0xFF000000 | levelAt(x); });
    call.set({{"src", source}, {"dst", Plane::surface(length, rows)}});
    call.set({{"srcRect", source.rect()}, {"clipRect", source.rect()}});
    call.set({{"centreX", length / 2}, {"centreY", rows / 2}, {"angle", 0}, {"scale", 1}});
    if (row.argument("alpha"))
        call["alpha"] = 1;
    call.settle();
    const Call after = ran(std::move(call));
    for (int x = 2; x < length - 2; ++x) {
        const q_ulong level = after["dst"].plane().at(x, rows / 2 - 1) & 0xFF;
        if (level + 2 < levelAt(x) || level > levelAt(x) + 2)
            return false;
    }
    return true;
}

/// A row of a turned picture spans as many source pixels as the row says, and not a few more.
void proveSpan(const Row &row) {
    const auto end = static_cast<int>(row.positions->end());
    for (const int length : {end / 2 - 4, end / 2 + 4, end - 4}) {
        EXPECT_TRUE(liesInPlace(row, length)) << length;
    }
    EXPECT_FALSE(liesInPlace(row, end + 4));
}

/// Positions have the fraction bits that the row says, and sources up to the end of their format are drawn whole.
void provePositions(const Row &row) {
    const FixedPoint format = *row.positions;
    EXPECT_EQ(format.wholeBits + format.fractionBits, 32);
    if (row.argument("scale"))
        return proveSpan(row);
    // A source three times as high as the destination is not enlarged enough to be filtered there.
    const bool isFiltered = row.lookup == Lookup::filtered && row.name != "iBltAdaptive32";
    const auto isDrawn = [&](int sourceLength, int length) {
        return areAlike(scaledRow(row, sourceLength, length), expectedRow(format, isFiltered, sourceLength, length),
                        sourceLength);
    };
    const auto end = static_cast<int>(format.end());
    const int largest = row.name == "iBltPerfect32" ? end / 16 - 1 : end - 1;
    for (int number = 0; number < 60; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const int sourceLength = random.between(500, std::min(largest, 4000));
        const int length = random.between(700, 2000);
        ASSERT_TRUE(isDrawn(sourceLength, length)) << sourceLength << " pixels on " << length;
    }
    EXPECT_TRUE(isDrawn(largest, 100)) << "the largest source";
    EXPECT_FALSE(isDrawn(largest + 1, 100)) << "a source beyond the format";
}

} // namespace

const Proof lookup = {"sources_are_looked_up_as_the_row_says", reasonAgainstLookup, proveLookup, true};
const Proof steps = {"numbers_count_in_steps_as_the_row_says", reasonAgainstSteps, proveSteps, true};
const Proof positions = {"positions_have_the_bits_that_the_row_says", reasonAgainstPositions, provePositions, true};

} // namespace proofs
