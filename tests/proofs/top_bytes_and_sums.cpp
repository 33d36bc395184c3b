#include "levels.h"

#include <algorithm>

namespace proofs {
namespace {

using catalogue::Sum;
using catalogue::Sums;
using catalogue::TopByte;

bool has(const Row &row, std::initializer_list<Kind> kinds) {
    return std::any_of(row.arguments.begin(), row.arguments.end(), [kinds](const Argument &argument) {
        return std::find(kinds.begin(), kinds.end(), argument.kind) != kinds.end();
    });
}

bool readsItsDestination(const Row &row) {
    Random random(0);
    const Areas read = row.reads ? row.reads(catalogue::randomCall(row, random)) : Areas();
    return std::any_of(read.begin(), read.end(),
                       [&row](const Area &area) { return row.argument(area.argument)->kind == Kind::destination; });
}

/// The pixel that an argument's pixel becomes.
using Change = q_ulong (*)(Kind kind, q_ulong pixel);

/// Changes all pixels and colours that a call gets. The levels of single channels go through as if they were grey.
void change(Call &call, Change changed) {
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        switch (argument.kind) {
        case Kind::destination:
        case Kind::source:
        case Kind::scratch:
        case Kind::colours:
            if (call[i].is<Plane>())
                for (q_ulong &word : wordsOf(call[i].plane()))
                    word = changed(argument.kind, word);
            break;
        case Kind::plane:
            for (std::byte &byte : call[i].plane().bytes())
                byte = static_cast<std::byte>(changed(argument.kind, static_cast<q_ulong>(byte)));
            break;
        case Kind::colour:
        case Kind::key:
            call[i] = changed(argument.kind, call[i].word()) & static_cast<q_ulong>(argument.contract.high);
            break;
        default:
            // Levels beyond a channel take away from others and reach the top byte, too.
            if (argument.unit == "levels" && call.row().topByte != TopByte::clearedByLight)
                call[i] = std::clamp(call[i].number(), 0.0, 255.0);
            if (argument.unit == "1/255")
                call[i] = changed(argument.kind, call[i].word() & 0xFF) & 0xFF;
        }
    }
}

/// A seeded call whose pixels and colours have been changed.
Call changedCall(const Row &row, int number, Change changed) {
    Random random(static_cast<std::uint64_t>(number));
    Call call = catalogue::randomCall(row, random);
    change(call, changed);
    return call;
}

/// Runs a call and passes on the pixels that it changes.
template <class Visit>
void forDrawn(const Call &before, Visit visit) {
    const std::vector<q_ulong> was = pixelsOf(before);
    const std::vector<q_ulong> is = pixelsOf(ran(before));
    for (std::size_t i = 0; i < is.size(); ++i)
        if (is[i] != was[i])
            visit(is[i]);
}

constexpr int cases = 400;

/// Whether `shows` of some pixel that some case draws.
template <class Shows>
bool isShown(const Row &row, Change changed, Shows shows) {
    bool found = false;
    for (int number = 0; number < row.cases && !found; ++number)
        forDrawn(changedCall(row, number, changed), [&](q_ulong pixel) { found = found || shows(pixel); });
    return found;
}

/// Expects `holds` of every pixel that is drawn, and that one call in twenty draws any.
template <class Holds>
void expectOfAll(const Row &row, Change changed, const char *what, Holds holds) {
    int drawn = 0;
    for (int number = 0; number < cases; ++number) {
        const Call call = changedCall(row, number, changed);
        bool stays = true;
        bool draws = false;
        q_ulong last = 0;
        forDrawn(call, [&](q_ulong pixel) {
            draws = true;
            if (stays)
                last = pixel;
            stays = stays && holds(pixel);
        });
        ASSERT_TRUE(stays) << what << ", case " << number << ": " << std::hex << last << "\n" << described(call);
        drawn += draws;
    }
    if (canDraw(row)) {
        EXPECT_GE(20 * drawn, cases) << what << ": of " << cases << " calls " << drawn << " draw anything";
    }
}

/// Whether the top bytes of what a call gets ever make a difference to red.
bool topBytesDisturbRed(const Row &row) {
    const auto reds = [&row](int number, Change changed) {
        std::vector<q_ulong> all = pixelsOf(ran(changedCall(row, number, changed)));
        for (q_ulong &pixel : all)
            pixel &= 0xFF0000;
        return all;
    };
    for (int number = 0; number < row.cases; ++number)
        if (reds(number, [](Kind, q_ulong pixel) { return pixel; }) !=
            reds(number, [](Kind, q_ulong pixel) { return pixel & 0xFFFFFF; }))
            return true;
    return false;
}

// Top bytes that tell where they come from.

constexpr q_ulong ofDestination = 0x5A;
constexpr q_ulong ofSource = 0xA5;
constexpr q_ulong ofColour = 0x3C;

q_ulong marked(Kind kind, q_ulong pixel) {
    const q_ulong mark = kind == Kind::destination                       ? ofDestination
                         : kind == Kind::source || kind == Kind::scratch ? ofSource
                                                                         : ofColour;
    return mark << 24 | (pixel & 0xFFFFFF);
}

/// Sources of two marks.
q_ulong markedByBlue(Kind kind, q_ulong pixel) {
    return marked(kind == Kind::source && pixel % 2 == 1 ? Kind::colour : kind, pixel);
}

void proveTopByte(const Row &row) {
    const auto isFrom = [](q_ulong origin) { return [origin](q_ulong pixel) { return pixel >> 24 == origin; }; };
    switch (row.topByte) {
    case TopByte::cleared:
        expectOfAll(row, marked, "the top byte is not cleared", isFrom(0));
        break;
    case TopByte::clearedByLight:
        expectOfAll(row, marked, "the top byte is neither cleared nor full nor copied",
                    [](q_ulong pixel) { return pixel >> 24 == 0 || pixel >> 24 == 0xFF || pixel >> 24 == ofSource; });
        EXPECT_TRUE(isShown(row, marked, isFrom(0)));
        break;
    case TopByte::copied:
        expectOfAll(row, marked, "the top byte is not copied", [](q_ulong pixel) {
            return pixel >> 24 == ofSource || pixel >> 24 == ofColour || pixel >> 24 == 0;
        });
        EXPECT_TRUE(isShown(row, marked, isFrom(ofSource)));
        break;
    case TopByte::blended:
        // Means are truncated. Those of two top bytes lie between them.
        expectOfAll(row, marked, "the top byte is not the mean of like ones",
                    [](q_ulong pixel) { return pixel >> 24 >= ofSource - 3 && pixel >> 24 <= ofSource; });
        expectOfAll(row, markedByBlue, "the top byte is not a mean",
                    [](q_ulong pixel) { return pixel >> 24 >= ofColour - 3 && pixel >> 24 <= ofSource; });
        EXPECT_TRUE(isShown(row, markedByBlue, [](q_ulong pixel) {
            return pixel >> 24 > ofColour + 8 && pixel >> 24 < ofSource - 8;
        })) << "no top byte lies between two others";
        break;
    case TopByte::setByColour:
        expectOfAll(row, marked, "the top byte is not the colour's",
                    [](q_ulong pixel) { return pixel >> 24 == ofColour || pixel >> 24 == 0; });
        EXPECT_TRUE(isShown(row, marked, isFrom(ofColour)));
        break;
    case TopByte::disturbsRed:
        EXPECT_TRUE(topBytesDisturbRed(row)) << "the top byte does not disturb red";
        break;
    case TopByte::noPixels:
        break;
    }
}

// Channels that a sum keeps to, or leaves.

/// Below 64, and so is whatever is mixed of such.
q_ulong dark(Kind kind, q_ulong pixel) {
    return pixel & (kind == Kind::plane ? 0x3F : 0xFF3F3F3F);
}
q_ulong darkWithoutTopByte(Kind, q_ulong pixel) {
    return pixel & 0x3F3F3F;
}
/// From 240 to 254, so that only a sum is 255.
q_ulong bright(Kind, q_ulong pixel) {
    return (pixel | 0xF0F0F0) & 0xFFFEFEFE;
}
q_ulong brightWithoutTopByte(Kind, q_ulong pixel) {
    return (pixel | 0xF0F0F0) & 0xFEFEFE;
}
/// Opacities beyond 256, where they are allowed.
void strengthen(Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].kind == Kind::number && call.row().arguments[i].unit == "1/256")
            call[i] = std::min(400.0, call.row().arguments[i].contract.high);
}

/// Whether what a call draws follows from pixels, colours or levels that it gets.
bool drawsByPixels(const Row &row) {
    if (has(row, {Kind::source, Kind::colour, Kind::colours, Kind::plane}) || row.argument("bA0"))
        return true;
    return readsItsDestination(row);
}

/// Whether nothing makes what is there darker.
bool onlyAdds(const Row &row) {
    return row.topByte != TopByte::clearedByLight && !row.argument("light") && !row.argument("brightnessAdd") &&
           readsItsDestination(row);
}

/// A channel, what becomes of its sums, and the beginning of the names of its levels.
struct Channel {
    std::string_view name;
    int shift;
    Sum Sums::*sum;

    q_ulong of(q_ulong pixel) const { return pixel >> shift & 0xFF; }
    q_ulong bits() const { return q_ulong{0xFF} << shift; }
};
constexpr Channel channels[] = {{"red", 16, &Sums::red}, {"green", 8, &Sums::green}, {"blue", 0, &Sums::blue}};

/// Brings every level of a channel in a call to one value, in pixels, colours and numbers. Pixels that are 0, as keys
/// are, stay 0, and no other becomes 0.
void setChannel(Call &call, const Channel &channel, q_ulong level) {
    const q_ulong another = channel.shift == 0 ? 0x010000 : 1;
    setPixels(call, [&](q_ulong pixel) {
        const q_ulong colour = ((pixel & 0xFFFFFF) | another) & ~channel.bits();
        return pixel == 0 ? 0 : colour | level << channel.shift;
    });
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].unit == "levels" && call.row().arguments[i].name.front() == channel.name.front())
            call[i] = level == 0 ? 0 : 300;
}

/// Whether a channel's levels ever change anything but this channel.
bool reachesOthers(const Row &row, const Channel &channel, bool beyondWhatIsMeant, int calls) {
    for (int number = 0; number < calls; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = beyondWhatIsMeant ? catalogue::randomCall(row, random) : plainCall(row, number);
        if (beyondWhatIsMeant)
            strengthen(call);
        const auto others = [&](q_ulong level) {
            Call changed = call;
            setChannel(changed, channel, level);
            std::vector<q_ulong> after = pixelsOf(ran(std::move(changed)));
            for (q_ulong &pixel : after)
                pixel &= ~channel.bits();
            return after;
        };
        if (others(0) != others(0xFF))
            return true;
    }
    return false;
}

/// Whether twice the levels ever draw less of a channel, as they only can where a sum loses its upper bits.
bool wraps(const Row &row, const Channel &channel) {
    for (int number = 0; number < row.cases; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = catalogue::randomCall(row, random);
        strengthen(call);
        const auto times = [&](q_ulong factor) {
            Call scaled = call;
            setPixels(scaled, [factor](q_ulong pixel) { return factor * (pixel & 0x7F7F7F); });
            return pixelsOf(ran(std::move(scaled)));
        };
        const std::vector<q_ulong> once = times(1);
        const std::vector<q_ulong> twice = times(2);
        for (std::size_t i = 0; i < once.size(); ++i)
            if (channel.of(twice[i]) < channel.of(once[i]))
                return true;
    }
    return false;
}

void proveChannel(const Row &row, const Channel &channel) {
    const bool isDisturbed = row.topByte == TopByte::disturbsRed;
    const Sum sum = row.sums.*channel.sum;
    switch (sum) {
    case Sum::stayInside:
        expectOfAll(row, isDisturbed ? darkWithoutTopByte : dark, "a sum leaves its channel",
                    [&channel](q_ulong pixel) { return channel.of(pixel) < 64; });
        break;
    case Sum::saturate:
        EXPECT_TRUE(isShown(row, bright, [&channel](q_ulong pixel) { return channel.of(pixel) == 255; }))
            << "no sum is cut at 255";
        if (onlyAdds(row))
            expectOfAll(row, isDisturbed ? brightWithoutTopByte : bright, "a sum of bright channels is dark",
                        [&channel](q_ulong pixel) { return channel.of(pixel) >= 240; });
        break;
    case Sum::wrap:
        EXPECT_TRUE(wraps(row, channel)) << "no sum wraps";
        break;
    case Sum::carryOver:
        EXPECT_TRUE(reachesOthers(row, channel, true, row.cases)) << "no carry comes into another channel";
        return;
    case Sum::none:
        return;
    }
    EXPECT_FALSE(reachesOthers(row, channel, sum == Sum::wrap, cases / 4)) << "another channel is changed";
}

void proveSums(const Row &row) {
    for (const Channel &channel : channels) {
        SCOPED_TRACE(channel.name);
        proveChannel(row, channel);
    }
}

std::string_view reasonAgainstSums(const Row &row) {
    if (const std::string_view against = reasonAgainstLevels(row); !against.empty())
        return against;
    if (row.sums.areAll(Sum::none))
        return "adds nothing";
    return drawsByPixels(row) ? "" : "draws pixels of its own";
}

} // namespace

const Proof topBytes = {"top_bytes_are_as_the_row_says", reasonAgainstLevels, proveTopByte, true};
const Proof sums = {"sums_are_as_the_row_says", reasonAgainstSums, proveSums, true};

} // namespace proofs
