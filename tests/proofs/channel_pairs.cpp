#include "proofs.h"

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    return row.pixelOnPixel ? "" : "not pixel on pixel";
}

/// All pairs of bytes in each channel: what stands in the destination changes by row, what comes from sources by
/// column.
Plane allBytes(bool byRow, q_ulong topByte) {
    Plane plane = Plane::surface(256, 256);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            const auto byte = static_cast<q_ulong>(byRow ? y : x);
            plane.at(x, y) = topByte << 24 | byte << 16 | (255 - byte) << 8 | (byte ^ 0x55);
        }
    return plane;
}

/// Every pair of channel values, under several values of the other arguments, gives what the twin gives.
void prove(const Row &row) {
    for (int number = 0; number < 16; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        Call call = catalogue::randomCall(row, random);
        for (std::size_t i = 0; i < call.size(); ++i) {
            const Kind kind = row.arguments[i].kind;
            if (kind == Kind::destination || kind == Kind::source)
                call[i] = allBytes(kind == Kind::destination, random.word() >> 24);
        }
        row.pixelOnPixel(call);
        call.settle();
        ASSERT_TRUE(catalogue::keepsToContract(call)) << described(call);
        if (!agree(call, "all pairs of bytes"))
            return;
    }
}

} // namespace

const Proof channelPairs = {"all_pairs_of_channel_values", reason, prove};

} // namespace proofs
