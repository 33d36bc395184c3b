#include "proofs.h"

#include <algorithm>

namespace proofs {
namespace {

std::string_view reason(const Row &row) {
    return row.reads || row.writes ? "" : "reads no surface";
}

/// What a call needs of a plane: the smallest rectangle around all that it reads and writes there.
Box needed(const Call &call, std::string_view argument) {
    Box all;
    for (const auto &areas : {call.row().writes, call.row().reads}) {
        if (!areas)
            continue;
        for (const Area &area : areas(call)) {
            if (area.argument != argument || area.part.isEmpty())
                continue;
            if (all.isEmpty())
                all = area.part;
            all = {std::min(all.left, area.part.left), std::min(all.top, area.part.top),
                   std::max(all.right, area.part.right), std::max(all.bottom, area.part.bottom)};
        }
    }
    return all;
}

/// Whether two arguments lead to the same memory, which no fence can part.
bool sharesMemory(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (call[i].is<Plane>() && call[j].is<Plane>() && !call[i].plane().isNull() &&
                call[i].plane().bytes().data() == call[j].plane().bytes().data())
                return true;
    return false;
}

/// With memory that ends where the row says that reading and writing end, and with memory that begins where they begin,
/// the call runs and draws the same.
void prove(const Row &row) {
    for (int number = 0; number < 300; ++number) {
        Random random(static_cast<std::uint64_t>(number));
        const Call call = catalogue::randomCall(row, random);
        if (sharesMemory(call))
            continue;
        Call expected = call;
        row.call.library(expected)();
        for (const Fence fence : {Fence::before, Fence::behind}) {
            Call fenced = call;
            Call wanted = expected;
            for (std::size_t i = 0; i < call.size(); ++i)
                // A record of the host's stands at an address of its own alignment.
                if (const Plane *plane = call[i].surface(); plane && row.arguments[i].kind != Kind::hostRecord) {
                    const Box part = needed(call, row.arguments[i].name);
                    *fenced[i].surface() = plane->cutTo(part, fence);
                    *wanted[i].surface() = expected[i].surface()->cutTo(part, Fence::none);
                }
            row.call.library(fenced)();
            ASSERT_EQ(fenced.differenceFrom(wanted), "") << described(call);
        }
    }
}

} // namespace

const Proof readsNothingOutside = {"reads_nothing_outside_its_region", reason, prove};

} // namespace proofs
