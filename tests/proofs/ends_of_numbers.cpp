#include "proofs.h"

#include <algorithm>
#include <limits>

namespace proofs {
namespace {

/// The numbers around the ends of what an argument may be; those that it may not are left out by the contract.
std::vector<double> ends(const Row &row, std::size_t index) {
    const catalogue::Range &range = row.arguments[index].contract;
    if (row.isReal(index))
        return {range.low, -1e30, -1, -1e-30, 0, 1e-30, 1, 1e30, range.high};
    return {range.low, range.low + 1, -65536, -1, 0, 1, 65535, range.high - 1, range.high};
}

std::vector<std::size_t> numbersOf(const Row &row) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
        if (isNumber(row.arguments[i].kind))
            found.push_back(i);
    }
    return found;
}

std::string_view reason(const Row &row) {
    if (!row.functions.twin)
        return "no twin";
    return numbersOf(row).empty() ? "no numbers" : "";
}

/// Each number of a call, and each two of them, or a part where there are many, at the ends of what they may be:
/// wherever the call still keeps to the contract, it gives what the twin gives.
void prove(const Row &row) {
    constexpr double most = 8000;
    const std::vector<std::size_t> numbers = numbersOf(row);
    double combinations = 0;
    for (const std::size_t first : numbers)
        for (const std::size_t second : numbers)
            combinations += static_cast<double>(ends(row, first).size() * ends(row, second).size());
    const int oneOf = std::max(1, static_cast<int>(4 * combinations / most));
    int tried = 0;
    for (int number = 0; number < 4; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call before = catalogue::randomCall(row, random);
        for (const std::size_t first : numbers)
            for (const std::size_t second : numbers)
                for (const double a : ends(row, first))
                    for (const double b : ends(row, second)) {
                        if (!random.oneIn(oneOf))
                            continue;
                        Call call = before;
                        call[first] = a;
                        call[second] = b;
                        if (!catalogue::keepsToContract(call))
                            continue;
                        ++tried;
                        if (!agree(call, "at the ends of numbers"))
                            return;
                    }
    }
    EXPECT_GT(tried, 0) << "no call kept to the contract";
}

} // namespace

const Proof endsOfNumbers = {"numbers_at_their_ends", reason, prove};

} // namespace proofs
