/// \file
/// A fuzz target: whatever bytes choose, calls inside the contract draw what their plain twins draw, write nothing but
/// what their rows name, and draw the same in memory that ends where a row says that they need no more.
#include "input.h"

#include "proofs/regions.h"
#include "records.h"
#include "support/precision.h"

#include <optional>
#include <utility>

namespace {

using namespace catalogue;

using fuzz::fail;

bool waives(const Row &row, std::string_view proof) {
    return std::any_of(row.waived.begin(), row.waived.end(), [proof](const Waiver &waiver) {
        return waiver.proof == proof || waiver.proof == "every proof";
    });
}

/// A call's variations. Each may lead out of the contract; then the call is not made.
struct Variations {
    bool numbersAnywhere;
    bool surfacesOverlap;
    bool isBottomUp;    ///< unless a number may have become the pitch of a source
    bool goesOnDrawing; ///< on the pixels that the call before has left
    bool isAt53Bits;    ///< of the floating unit's precision

    explicit Variations(Random &random)
        : numbersAnywhere(random.oneIn(3)), surfacesOverlap(random.oneIn(8)),
          isBottomUp(!numbersAnywhere && random.oneIn(8)), goesOnDrawing(random.oneIn(2)), isAt53Bits(random.oneIn(2)) {
    }
};

/// Whether a number asks for letters thousands of pixels high that fonts still have. They take seconds to make them.
bool makesGiantLetters(const Argument &argument, double number) {
    return argument.name == "fontHeight" && std::abs(number) > 2000 && std::abs(number) < 0x10000;
}

/// Some numbers anywhere in what they may be.
void scatterNumbers(Call &call, Random &random) {
    if (waives(call.row(), "numbers_at_their_ends"))
        return;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        if (!isNumber(argument.kind) || !call[i].is<double>() || !random.oneIn(3))
            continue;
        const double number = fuzz::chosenNumber(argument.contract, call.row().isReal(i), random);
        if (argument.contract.contains(number) && !makesGiantLetters(argument, number))
            call[i] = number;
    }
}

/// Sources and destination in one surface, up to three pixels apart.
void layOver(Call &call, Random &random) {
    if (call.row().overlap != Overlap::rowOrder)
        return;
    Plane shared;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if ((kind != Kind::destination && kind != Kind::source) || !call[i].is<Plane>() || call[i].plane().isNull())
            continue;
        if (shared.isNull())
            shared = call[i].plane();
        else
            call[i] = shared.movedBy(random.between(-3, 3), random.between(-3, 3));
    }
    call.settle();
}

/// The pixels of an earlier surface in place of a surface's own.
void paint(Plane &surface, const Plane &earlier) {
    const auto pixels = surface.bytes();
    const auto from = earlier.bytes();
    for (std::size_t at = 0; at < pixels.size() && !from.empty(); at += from.size())
        std::copy_n(from.begin(), std::min(from.size(), pixels.size() - at),
                    pixels.begin() + static_cast<std::ptrdiff_t>(at));
}
void paint(Call &call, const Plane &earlier) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (isSurface(call.row().arguments[i].kind) && call[i].is<Plane>() && call[i].plane().elementBytes() == 4)
            paint(call[i].plane(), earlier);
}

/// Whether nothing is touched beyond the rows that it belongs to, in the memory of other ones, where the order of
/// pixels may matter.
bool keepsToRows(const Call &call, const Areas &areas) {
    return std::all_of(areas.begin(), areas.end(), [&call](const Area &area) {
        const Plane *plane = call[area.argument].surface();
        const std::int64_t first = plane ? plane->placeOf(0).x : 0;
        return !plane || (area.part.left >= first && area.part.right <= first + plane->pitch());
    });
}

/// A call inside the contract, with as many of its variations as leave it there.
Call chosenCall(const Row &row, const Variations &variations, const Plane &earlier, Random &random) {
    const tagPOINT size = fuzz::chosenSize(random);
    Call call = randomCall(row, random, size);
    if (!keepsToContract(call)) {
        if (size.x == 0)
            fail(row, "the call was arranged outside of the contract: " + proofs::described(call));
        call = randomCall(row, random); // what does not grow along
    }
    const auto vary = [&call](bool isWanted, auto change) {
        if (!isWanted)
            return;
        Call varied = call;
        change(varied);
        if (keepsToContract(varied) && keepsToRows(varied, proofs::touched(varied)))
            call = std::move(varied);
    };
    vary(variations.numbersAnywhere, [&random](Call &varied) { scatterNumbers(varied, random); });
    vary(variations.surfacesOverlap, [&random](Call &varied) { layOver(varied, random); });
    vary(variations.goesOnDrawing && !earlier.isNull(), [&earlier](Call &varied) { paint(varied, earlier); });
    return call;
}

void run(const std::function<Run(Call &)> &function, Call &call, const Variations &variations) {
    std::optional<test::ReducedPrecision> precision;
    if (variations.isAt53Bits)
        precision.emplace();
    proofs::runSeeded(function, call, 1);
}

void demandNothingIsWrittenOutside(const Call &before, const Call &after) {
    const Areas areas = before.row().writes(before);
    for (std::size_t i = 0; i < after.size(); ++i)
        if (const Plane *plane = after[i].surface()) {
            const std::string place =
                proofs::writtenOutside(*before[i].surface(), *plane, areas, before.row().arguments[i].name);
            if (!place.empty())
                fail(before.row(), "writes outside of its region, " + place + ": " + proofs::described(before));
        }
}

void demandSame(const Call &result, const Call &expected, const char *where, const Call &before) {
    const std::string difference = result.differenceFrom(expected);
    if (!difference.empty())
        fail(before.row(), std::string(where) + ": " + difference + ": " + proofs::described(before));
}

/// Whether a call can be made again and give the same, in memory of another shape.
bool isRepeatable(const Row &row) {
    return !waives(row, "reads_nothing_outside_its_region");
}

/// \return a surface that it has drawn on, if there is one
Plane tryCall(const Row &row, const Plane &earlier, Random &random) {
    const Variations variations(random);
    const Fence fence = random.oneIn(2) ? Fence::before : Fence::behind;
    const Call call = chosenCall(row, variations, earlier, random);
    if (fuzz::tellsCalls())
        std::fprintf(stderr, "%s: %s\n", row.fullName().c_str(), proofs::described(call).c_str());
    Call result = call;
    run(row.functions.library, result, variations);
    const bool sharesMemory = proofs::sharesMemory(call);
    if (row.writes && !sharesMemory)
        demandNothingIsWrittenOutside(call, result);
    const Areas areas = proofs::touched(call);
    if (!areas.empty() && isRepeatable(row) && !sharesMemory) {
        Call fenced = proofs::cutTo(call, areas, fence);
        run(row.functions.library, fenced, variations);
        demandSame(fenced, proofs::cutTo(result, areas, Fence::none), "between fences", call);
    }
    if (row.functions.twin) {
        Call expected = call;
        proofs::runSeeded(row.functions.twin, expected, 1);
        demandSame(result, expected, "beside its twin", call);
    }
    if (variations.isBottomUp && !areas.empty() && keepsToRows(call, areas) && isRepeatable(row) &&
        !waives(row, "pictures_stored_bottom_up")) {
        Call turned = call.turnedOver();
        run(row.functions.library, turned, variations);
        demandSame(turned.turnedOver(), result, "stored bottom-up", call);
    }
    for (std::size_t i = 0; i < result.size(); ++i)
        if (row.arguments[i].kind == Kind::destination && result[i].is<Plane>())
            return result[i].plane();
    return {};
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    Init_qMur_GlobalData(nullptr, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, std::size_t count) {
    Plane earlier;
    fuzz::Record record;
    fuzz::forEachPiece({bytes, count}, [&](fuzz::Bytes piece) {
        Random random(piece);
        const Row &row = fuzz::chosenRow(random);
        const bool isLeftOut = waives(row, "every proof");
        if (fuzz::Record::concerns(row) && (isLeftOut || random.oneIn(2)))
            record.tryCall(row, random);
        else if (!isLeftOut) // files are another target's
            earlier = tryCall(row, earlier, random);
    });
    return 0;
}
