#include "levels.h"

#include <algorithm>

namespace proofs {
namespace {

using catalogue::Fractions;
using catalogue::Uniform;

constexpr int cases = 400;

/// Levels from 1 to 30, so that nothing leaves a channel when they are doubled; pixels that are 0, as keys are, stay 0.
q_ulong smallLevels(q_ulong pixel, Random &random) {
    q_ulong levels = 0;
    for (int channel = 0; channel < 3; ++channel)
        levels = levels << 8 | static_cast<q_ulong>(random.between(1, 30));
    return (pixel & 0xFFFFFF) == 0 && pixel >> 24 == 0 ? 0 : levels;
}

/// The same call with small levels, or with twice these.
Call withLevels(const Call &from, std::uint64_t seed, q_ulong factor) {
    Random random(seed);
    Call call = from;
    setPixels(call, [&](q_ulong pixel) { return factor * smallLevels(pixel, random); });
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].unit == "1/255")
            call[i] = static_cast<double>(factor) * random.between(0, 30);
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].kind == Kind::plane)
            for (std::byte &byte : call[i].plane().bytes())
                byte = static_cast<std::byte>(factor * (static_cast<q_ulong>(byte) & 0x1F));
    return call;
}

std::string_view reasonAgainstFractions(const Row &row) {
    if (const std::string_view against = reasonAgainstLevels(row); !against.empty())
        return against;
    return row.fractions == Fractions::notCounted ? "levels of its own" : "";
}

/// Twice the levels give twice the result where nothing is cut off, and more than that, or less, where something is.
void proveFractions(const Row &row) {
    int more = 0;
    int less = 0;
    Tally tally;
    for (int number = 0; number < cases; ++number) {
        const Call call = plainCall(row, number);
        const auto seed = static_cast<std::uint64_t>(number + cases);
        const Call before = withLevels(call, seed, 1);
        const Call result = ran(before);
        tally.add(before, result);
        const std::vector<q_ulong> once = pixelsOf(result);
        const std::vector<q_ulong> twice = pixelsOf(ran(withLevels(call, seed, 2)));
        for (std::size_t i = 0; i < once.size(); ++i)
            for (const int channel : {0, 8, 16}) {
                const q_ulong level = twice[i] >> channel & 0xFF;
                const q_ulong doubled = 2 * (once[i] >> channel & 0xFF);
                more += level > doubled;
                less += level < doubled && level != 255; // 255 may be a sum that is cut
            }
        ASSERT_TRUE(more == 0 || row.fractions == Fractions::cutOff) << "a fraction is cut off, case " << number << "\n"
                                                                     << described(before);
        ASSERT_TRUE(less == 0 || row.fractions == Fractions::roundedUp)
            << "a fraction is not cut off, case " << number << "\n"
            << described(before);
    }
    tally.expectDrawn(row, "small levels");
    if (row.fractions != Fractions::none) {
        EXPECT_GT(more + less, 0) << "no fraction is ever left";
    }
}

std::string_view reasonAgainstUniform(const Row &row) {
    if (const std::string_view against = reasonAgainstLevels(row); !against.empty())
        return against;
    return row.uniform == Uniform::none ? "mixes nothing" : "";
}

/// Pictures and colours that are all one colour.
void proveUniform(const Row &row) {
    bool isDarker = false;
    for (int number = 0; number < cases; ++number) {
        Call call = plainCall(row, number);
        const q_ulong colour = (Random(static_cast<std::uint64_t>(number)).word() & 0xFFFFFF) | 0x010101;
        setPixels(call, [colour](q_ulong) { return colour; });
        for (const q_ulong pixel : pixelsOf(ran(call)))
            for (const int channel : {0, 8, 16}) {
                const q_ulong level = pixel >> channel & 0xFF;
                const q_ulong given = colour >> channel & 0xFF;
                ASSERT_LE(level, given) << "one colour becomes brighter, case " << number << "\n" << described(call);
                isDarker = isDarker || level < given;
            }
        ASSERT_FALSE(isDarker && row.uniform == Uniform::stays) << "one colour becomes darker, case " << number << "\n"
                                                                << described(call);
    }
    EXPECT_EQ(isDarker, row.uniform == Uniform::darkens);
}

} // namespace

const Proof fractions = {"fractions_are_as_the_row_says", reasonAgainstFractions, proveFractions, true};
const Proof uniform = {"one_colour_is_as_the_row_says", reasonAgainstUniform, proveUniform, true};

} // namespace proofs
