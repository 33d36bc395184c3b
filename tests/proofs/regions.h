/// \file
/// What calls do beside their result: what they touch, what they leave alone, and memory that ends where a row says
/// that they need no more.
#ifndef Q_MUR_TESTS_REGIONS_H
#define Q_MUR_TESTS_REGIONS_H

#include "catalogue/row.h"

#include <functional>
#include <string>
#include <string_view>

namespace proofs {

using catalogue::Area;
using catalogue::Areas;
using catalogue::Argument;
using catalogue::Box;
using catalogue::Call;
using catalogue::Copies;
using catalogue::Fence;
using catalogue::isNumber;
using catalogue::isSurface;
using catalogue::Kind;
using catalogue::Overlap;
using catalogue::Plane;
using catalogue::Random;
using catalogue::Row;
using catalogue::Value;

/// Runs a function on a call of its row, from a seed where it draws random numbers.
void runSeeded(const std::function<catalogue::Run(Call &)> &function, Call &call, unsigned seed);

/// The arguments of a call in one line.
std::string described(const Call &call);

/// Whether one of the areas has the element at a place of an argument's memory.
bool isInside(const Areas &areas, std::string_view argument, const tagPOINT &place);

/// The first place of an argument's memory that has changed though none of the areas has it, in words; empty if none
/// has.
std::string writtenOutside(const Plane &before, const Plane &after, const Areas &areas, std::string_view argument);

/// All that a call reads and writes.
Areas touched(const Call &call);

/// The plane of an argument that fences can stand around; null where there is none. A record of the host's stands at an
/// address of its own alignment, which no fence gives it.
const Plane *fencedPlane(const Call &call, std::size_t index);

/// Whether two arguments lead to the same memory, which no fence can part.
bool sharesMemory(const Call &call);

/// A copy whose memory ends where that which is touched ends, or begins where it begins.
Call cutTo(const Call &call, const Areas &areas, Fence fence);

} // namespace proofs

#endif
