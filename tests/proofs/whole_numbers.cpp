#include "proofs.h"

namespace proofs {
namespace {

/// What a call leaves in the memory of an argument, or returns.
std::vector<q_ulong> resultOf(Call call) {
    call.row().functions.library(call)();
    if (const Argument *out = call.row().argument("out")) {
        const auto *words = call[out->name].plane().as<q_ulong>();
        return {words, words + 3};
    }
    return {static_cast<q_ulong>(call.returned<int>())};
}

std::string_view reason(const Row &row) {
    if (row.topByte != catalogue::TopByte::noPixels)
        return "draws pixels";
    return row.sums.areAll(catalogue::Sum::none) ? "no sums of whole numbers" : "";
}

int &numberOf(Call &call, std::string_view name) {
    return *call[name].plane().as<int>();
}

/// What products and sums of 32 bits keep, whatever is lost at their upper end. Twice a vector gives twice the product.
/// Where products are compared, the half of all numbers added to one factor makes no difference if the other is even.
void prove(const Row &row) {
    ASSERT_TRUE(row.sums.areAll(catalogue::Sum::wrap)) << "whole numbers know nothing else";
    int wrapped = 0;
    for (int number = 0; number < 2000; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = catalogue::randomCall(row, random);
        Call changed = Call(call);
        if (row.argument("px")) {
            numberOf(call, "bx") = static_cast<int>(static_cast<q_ulong>(numberOf(call, "ax")) + 2 * random.word());
            changed = Call(call);
            numberOf(changed, "py") = static_cast<int>(static_cast<q_ulong>(numberOf(call, "py")) + 0x80000000);
            ASSERT_EQ(resultOf(call), resultOf(changed)) << "case " << number;
            wrapped += resultOf(call).front() != 0;
            continue;
        }
        for (const std::string_view vector : {"a", "b"})
            for (int i = 0; i < 3; ++i)
                call[vector].plane().as<q_ulong>()[i] = random.word();
        changed = Call(call);
        for (int i = 0; i < 3; ++i)
            changed["a"].plane().as<q_ulong>()[i] *= 2;
        const std::vector<q_ulong> once = resultOf(call);
        const std::vector<q_ulong> twice = resultOf(changed);
        for (std::size_t i = 0; i < once.size(); ++i)
            ASSERT_EQ(twice[i], 2 * once[i]) << "case " << number;
        wrapped += once.front() > 0x80000000;
    }
    EXPECT_GT(wrapped, 200);
}

} // namespace

const Proof wholeNumbers = {"whole_numbers_wrap_as_the_row_says", reason, prove, true};

} // namespace proofs
