#include "proofs.h"

#include <algorithm>
#include <array>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    return row.functions.twin ? "" : "no twin";
}

/// The tables, empty for as long as this lives.
class EmptyTables {
public:
    EmptyTables() {
        for (std::size_t i = 0; i < tables.size(); ++i)
            std::swap_ranges(tables[i], tables[i] + kept[i].size(), kept[i].begin());
    }
    ~EmptyTables() {
        for (std::size_t i = 0; i < tables.size(); ++i)
            std::copy(kept[i].begin(), kept[i].end(), tables[i]);
    }
    EmptyTables(const EmptyTables &) = delete;
    EmptyTables &operator=(const EmptyTables &) = delete;

private:
    std::array<int *, 3> tables = {iSin, iCos, iSqrt};
    std::array<std::array<int, 8192>, 3> kept = {};
};

/// Where the tables are empty, a call writes something else if its row says that it reads them, and the same if not.
void prove(const Row &row) {
    std::string difference;
    for (int number = 0; number < 100 && difference.empty(); ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call call = catalogue::randomCall(row, random);
        Call filled = call;
        Call empty = call;
        runSeeded(row.functions.library, filled, 1);
        {
            const EmptyTables tables;
            runSeeded(row.functions.library, empty, 1);
        }
        difference = empty.differenceFrom(filled);
    }
    EXPECT_EQ(!difference.empty(), row.readsTables) << difference;
}

} // namespace

const Proof readsTables = {"reads_the_tables_if_it_says_so", reason, prove, true};

} // namespace proofs
