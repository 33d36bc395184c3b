#include "proofs.h"

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    return row.writes ? "" : "writes no surface";
}

/// No byte changes but in the region that the row works out from the arguments.
void prove(const Row &row) {
    for (int number = 0; number < 2000; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call before = catalogue::randomCall(row, random);
        const Areas areas = row.writes(before);
        Call after = before;
        row.functions.library(after)();
        for (std::size_t i = 0; i < after.size(); ++i) {
            if (const Plane *plane = after[i].surface()) {
                const Plane &was = *before[i].surface();
                ASSERT_EQ(writtenOutside(was, *plane, areas, row.arguments[i].name), "") << described(before);
            }
        }
    }
}

} // namespace

const Proof writesNothingOutside = {"writes_nothing_outside_its_region", reason, prove};

} // namespace proofs
