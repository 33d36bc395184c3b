/// \file
/// Calls whose results follow from the levels of pictures and colours alone, for proofs of what happens to these.
#ifndef Q_MUR_TESTS_PROOFS_LEVELS_H
#define Q_MUR_TESTS_PROOFS_LEVELS_H

#include "proofs.h"

namespace proofs {

/// Why there are no levels to look at; empty if there are.
std::string_view reasonAgainstLevels(const Row &row);

/// A seeded call with opacities and factors that make sense, keys that no pixel equals and no light of its own.
Call plainCall(const Row &row, int number);

/// The call after it has been run, random directions always the same.
Call ran(Call call);

/// All words of a plane's memory.
std::span<q_ulong> wordsOf(Plane &plane);

/// All pixels of a call's destinations.
std::vector<q_ulong> pixelsOf(const Call &call);

/// Replaces the colours of all pictures and of all colours that are passed. Top bytes stay, but where they disturb red.
/// The maps in a bubble's resource are no colours.
template <class Make>
void setPixels(Call &call, Make make) {
    const q_ulong kept = call.row().topByte == catalogue::TopByte::disturbsRed ? 0 : 0xFF000000;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if (kind == Kind::colour)
            call[i] = (call[i].word() & kept) | (make(call[i].word() | 0x01000000) & 0xFFFFFF);
        if ((!isSurface(kind) && kind != Kind::colours) || !call[i].is<Plane>() ||
            call.row().arguments[i].name == "resource")
            continue;
        for (q_ulong &word : wordsOf(call[i].plane()))
            word = (word & kept) | make(word);
    }
}

} // namespace proofs

#endif
