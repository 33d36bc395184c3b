#include "proofs.h"

#include <algorithm>

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
        row.call.library(after)();
        for (std::size_t i = 0; i < after.size(); ++i) {
            const Plane *plane = after[i].surface();
            if (!plane)
                continue;
            const Argument &argument = row.arguments[i];
            const auto was = before[i].surface()->bytes();
            const auto is = plane->bytes();
            for (auto at = std::mismatch(is.begin(), is.end(), was.begin()); at.first != is.end();
                 at = std::mismatch(at.first + 1, is.end(), at.second + 1)) {
                const tagPOINT place = plane->placeOf(static_cast<std::size_t>(at.first - is.begin()));
                ASSERT_TRUE(isInside(areas, argument.name, place))
                    << argument.name << " (" << place.x << ", " << place.y << ")\n"
                    << described(before);
            }
        }
    }
}

} // namespace

const Proof writesNothingOutside = {"writes_nothing_outside_its_region", reason, prove};

} // namespace proofs
