#include "levels.h"

#include <algorithm>
#include <cstdlib>

namespace proofs {

std::string_view reasonAgainstLevels(const Row &row) {
    if (row.topByte == catalogue::TopByte::noPixels)
        return "draws no pixels";
    const bool drawsOnAnArgument =
        std::any_of(row.arguments.begin(), row.arguments.end(),
                    [](const Argument &argument) { return argument.kind == Kind::destination; });
    return drawsOnAnArgument ? "" : "draws on what a private block names";
}

Call plainCall(const Row &row, int number) {
    Random random(static_cast<std::uint64_t>(number));
    Call call = catalogue::randomCall(row, random);
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = row.arguments[i];
        if (argument.kind == Kind::key)
            call[i] = 0xFFC8A1E3;
        else if (argument.kind == Kind::colour)
            call[i] = call[i].word() & 0xFFFFFF;
        else if (argument.unit == "levels" || argument.name == "specular")
            call[i] = 0;
        else if (argument.kind == Kind::alpha || argument.kind == Kind::weight)
            call[i] = std::clamp(call[i].number(), argument.meant.low, argument.meant.high);
        else if (argument.kind == Kind::number && argument.unit == "1/256")
            call[i] = std::clamp(call[i].number(), 0.0, 256.0);
    }
    return call;
}

Call ran(Call call) {
    std::srand(1);
    call.row().functions.library(call)();
    return call;
}

std::span<q_ulong> wordsOf(Plane &plane) {
    const std::span<std::byte> bytes = plane.bytes();
    return {static_cast<q_ulong *>(static_cast<void *>(bytes.data())), bytes.size() / 4};
}

std::vector<q_ulong> pixelsOf(const Call &call) {
    std::vector<q_ulong> all;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].kind == Kind::destination && call[i].is<Plane>()) {
            Plane plane = call[i].plane();
            const std::span<q_ulong> words = wordsOf(plane);
            all.insert(all.end(), words.begin(), words.end());
        }
    return all;
}

} // namespace proofs
