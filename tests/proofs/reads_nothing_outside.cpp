#include "proofs.h"

#include <algorithm>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    if (!row.reads && !row.writes)
        return "reads no surface";
    const bool onlyRecords = std::all_of(row.arguments.begin(), row.arguments.end(), [](const Argument &argument) {
        return argument.kind == Kind::hostRecord || isNumber(argument.kind);
    });
    return onlyRecords ? "a record of the host's" : "";
}

/// With memory that ends where the row says that reading and writing end, and with memory that begins where they begin,
/// the call runs and draws what it draws in `expected`.
void proveFenced(const Call &call, const Call &expected, const Areas &areas) {
    for (const Fence fence : {Fence::before, Fence::behind}) {
        Call fenced = cutTo(call, areas, fence);
        const Call wanted = cutTo(expected, areas, Fence::none);
        call.row().functions.library(fenced)();
        ASSERT_EQ(fenced.differenceFrom(wanted), "") << described(call);
    }
}

/// Whatever stands in the elements that the row does not name, between the rows of a region too, the call draws the
/// same.
void proveWithOtherSurroundings(const Call &call, const Call &expected, const Areas &areas, Random &random) {
    Call other = call;
    const auto forEachElementOutside = [&call, &areas](auto visit) {
        for (std::size_t i = 0; i < call.size(); ++i)
            if (const Plane *plane = fencedPlane(call, i)) {
                const auto bytes = static_cast<std::size_t>(plane->elementBytes());
                for (std::size_t at = 0; at + bytes <= plane->bytes().size(); at += bytes) {
                    const tagPOINT place = plane->placeOf(at);
                    if (!isInside(areas, call.row().arguments[i].name, place))
                        visit(i, at, bytes);
                }
            }
    };
    forEachElementOutside([&](std::size_t argument, std::size_t at, std::size_t bytes) {
        for (std::size_t byte = 0; byte < bytes; ++byte)
            other[argument].surface()->bytes()[at + byte] = static_cast<std::byte>(random.word());
    });
    call.row().functions.library(other)();
    forEachElementOutside([&](std::size_t argument, std::size_t at, std::size_t bytes) {
        const auto from = expected[argument].surface()->bytes().subspan(at, bytes);
        std::copy(from.begin(), from.end(), other[argument].surface()->bytes().begin() + static_cast<long>(at));
    });
    ASSERT_EQ(other.differenceFrom(expected), "") << "with other surroundings: " << described(call);
}

void prove(const Row &row) {
    int tried = 0;
    for (int number = 0; number < 300; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call call = catalogue::randomCall(row, random);
        if (sharesMemory(call))
            continue;
        ++tried;
        const Areas areas = touched(call);
        Call expected = call;
        row.functions.library(expected)();
        proveFenced(call, expected, areas);
        if (number < 60)
            proveWithOtherSurroundings(call, expected, areas, random);
        if (testing::Test::HasFatalFailure())
            return;
    }
    EXPECT_GT(tried, 0) << "all calls share memory";
}

} // namespace

const Proof readsNothingOutside = {"reads_nothing_outside_its_region", reason, prove};

} // namespace proofs
