/// \file
/// What is wrong with a call: first what its arguments say by themselves, then what is known of the memory behind them.
#include "blocks.h"
#include "catalogue/areas.h"
#include "given.h"
#include "memory.h"
#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace checked {
namespace {

using namespace catalogue;

std::string textOf(double number) {
    char text[40];
    const bool isWhole = number == std::floor(number) && std::fabs(number) < 1e15;
    std::snprintf(text, sizeof text, isWhole ? "%.0f" : "%.9g", number);
    return text;
}
std::string textOf(std::int64_t number) {
    return std::to_string(number);
}

// The call as the rows know it.

/// A number as its row counts it: 32 bits have a sign unless they may be larger than what has one.
double counted(const Argument &argument, double number) {
    const bool isWord = number >= anyInt.low && number <= anyWord.high && number == std::floor(number);
    if (!isWord || !(argument.contract.high <= anyWord.high))
        return number;
    const auto word = static_cast<std::uint32_t>(static_cast<std::int64_t>(number));
    return argument.kind == Kind::colour || argument.contract.high > anyInt.high
               ? static_cast<double>(word)
               : static_cast<double>(static_cast<std::int32_t>(word));
}

bool isPitchOf(const Argument &pitch, std::string_view surface) {
    return pitch.kind == Kind::pitch && pitch.of == surface;
}

/// The pitch argument of a surface: its own, that of the surface like which it is, or the first one.
const Argument *pitchOf(const Row &row, std::string_view surface) {
    const Argument *first = nullptr;
    if (const Argument *named = row.argument(surface); isSurface(named->kind) && !named->of.empty())
        return pitchOf(row, named->of);
    for (const Argument &argument : row.arguments) {
        if (isPitchOf(argument, surface))
            return &argument;
        if (argument.kind == Kind::pitch && !first)
            first = &argument;
    }
    return first;
}

std::shared_ptr<Memory> knownAt(const void *pointer, int argument) {
    const std::optional<Piece> piece = pieceAt(pointer, argument);
    return piece ? std::make_shared<Memory>(piece->begin, piece->bytes) : nullptr;
}

Plane planeOver(void *pointer, int elementBytes, int pitch, int argument = Lent::noArgument) {
    return pointer ? Plane::over(pointer, elementBytes, pitch, knownAt(pointer, argument)) : Plane();
}

int indexOf(const Row &row, const Argument &argument) {
    return static_cast<int>(&argument - row.arguments.data());
}

template <class Block, class Record>
Block drawingBlock(Record &data, int pitch) {
    Block block;
    block.data = data;
    block.vertexArray0 = planeOver(data.vertexArray0, 4, data.vertexArrayEntries);
    block.vertexArray1 = planeOver(data.vertexArray1, 4, data.vertexArrayEntries);
    block.depths = planeOver(data.zBuffer, 2, pitch);
    return block;
}

/// The pieces that a fill works on. Its row 0 and the columns beside its limits belong to them.
RegionBlock regionBlock(const _PRIVATE_QMGP_DATA &data) {
    RegionBlock block;
    block.data = data;
    if (data.planeRect) {
        block.planeRect = *data.planeRect;
        block.plane = planeOver(data.plane, 1, data.planePitch, Lent::kept[2]);
    }
    block.destSurface = planeOver(data.destSurface, 4, data.destPitch, Lent::kept[0]);
    block.testSurface = planeOver(data.testSurface, 4, data.testPitch, Lent::kept[1]);
    return block;
}

Value valueOf(const Given &given, const Row &row, const Argument &argument, int pitch) {
    if (!given.pointer)
        return given.target == Target::nothing
                   ? given.value.is<double>() ? counted(argument, given.value.number()) : given.value
               : given.target == Target::elements || given.target == Target::hostRecord ? Value(Plane())
                                                                                        : Value();
    switch (given.target) {
    case Target::rect:
        return *static_cast<const tagRECT *>(given.pointer);
    case Target::point:
        return *static_cast<const tagPOINT *>(given.pointer);
    case Target::hostRecord:
        return Plane::over(given.pointer, 4, sizeof(_TRANSFERDATA) / 4, nullptr);
    case Target::pipelineBlock: {
        auto &data = *static_cast<_PRIVATE_QMGL_DATA *>(given.pointer);
        auto block = drawingBlock<PipelineBlock>(data, pitch);
        block.data.spanMapper = mapperInside(data.spanMapper);
        block.modelStack = planeOver(data.modelStack, 4, 16);
        block.viewStack = planeOver(data.viewStack, 4, 16);
        return block;
    }
    case Target::texturedBlock:
        return drawingBlock<TexturedBlock>(*static_cast<_PRIVATE_QM3D_DATA *>(given.pointer), pitch);
    case Target::regionBlock:
        return regionBlock(*static_cast<const _PRIVATE_QMGP_DATA *>(given.pointer));
    case Target::phaseBlock:
        return PhaseBlock{.data = *static_cast<const _PRIVATE_LUT_DATA *>(given.pointer)};
    default:
        break;
    }
    if (argument.kind == Kind::text)
        return Plane::over(given.pointer, 1,
                           static_cast<int>(std::strlen(static_cast<const char *>(given.pointer))) + 1, nullptr);
    return planeOver(given.pointer, given.elementBytes, pitch, indexOf(row, argument));
}

/// Numbers first, since the shapes of surfaces are among them.
Call callOf(const Row &row, std::span<const Given> given) {
    Call call(row);
    for (std::size_t i = 0; i < given.size(); ++i)
        if (given[i].target == Target::nothing)
            call[i] = valueOf(given[i], row, row.arguments[i], 0);
    for (std::size_t i = 0; i < given.size(); ++i) {
        const Argument &argument = row.arguments[i];
        if (given[i].target == Target::nothing)
            continue;
        Given pointer = given[i];
        if (isSurface(argument.kind)) // rows count pixels, also where these are handed over as bytes
            pointer.elementBytes = 4;
        const bool isDepths = argument.kind == Kind::privateBlock && !argument.of.empty();
        const Argument *pitch = pitchOf(row, isDepths ? argument.of : argument.name);
        int elements = pitch ? call[pitch->name].whole() : 0;
        if (pitch && pitch->unit == "bytes") {
            if (elements % pointer.elementBytes != 0) // rows need not begin at whole pixels
                pointer.elementBytes = 1;
            elements /= pointer.elementBytes;
        }
        call[i] = valueOf(pointer, row, argument, elements);
    }
    return call;
}

// Single arguments

/// What leads to pixels matters where there are some: then an area says so, unless the row has none. Some functions do
/// nothing.
std::string nullFault(const Row &row, std::span<const Given> given) {
    for (std::size_t i = 0; i < given.size(); ++i) {
        const Argument &argument = row.arguments[i];
        const bool isNull = given[i].target != Target::nothing && !given[i].pointer;
        const bool hasAreas = row.writes || row.topByte == TopByte::noPixels;
        const bool doesNothing = !row.writes && !row.reads && row.rules.empty() && given[i].target == Target::rect;
        if (isNull && !argument.mayBeNull && argument.kind != Kind::unused && !doesNothing &&
            !(isSurface(argument.kind) && hasAreas))
            return std::string(argument.name) + " is null";
    }
    return {};
}

std::string outside(std::string_view name, double number, const Range &range) {
    const std::string text = std::string(name) + " " + textOf(number);
    if (number < range.low)
        return text + " is below " + textOf(range.low);
    return number > range.high ? text + " exceeds " + textOf(range.high) : text + " is no number";
}

std::string numberFault(const Call &call, Range Argument::*range) {
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const bool isRanged = isNumber(argument.kind) && argument.kind != Kind::unused && call[i].is<double>();
        const bool isAny = std::isinf((argument.*range).low) && std::isinf((argument.*range).high);
        if (!isRanged || isAny || (argument.*range).allows(call[i].number()))
            continue;
        if (range != &Argument::contract || !argument.idle.contains(call[i].number()))
            return outside(argument.name, call[i].number(), argument.*range);
    }
    return {};
}

/// Rectangles are counted in 32 bits: one that is inverted by as much as they hold becomes a large one. Clips are only
/// compared, and beyond them nothing is drawn.
std::string rectangleFault(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const bool isClipped =
            std::any_of(call.row().arguments.begin(), call.row().arguments.end(), [&argument](const Argument &other) {
                return other.kind == Kind::clip && other.of == argument.of;
            });
        if (argument.kind != Kind::rectangle || isClipped || !call[i].is<tagRECT>())
            continue;
        const Box rect = call[i].rect();
        const std::string name(argument.name);
        if (rect.width() != widthOf(call[i].rect()))
            return name + ".right " + textOf(rect.right) + " is too far from " + name + ".left " + textOf(rect.left);
        if (rect.height() != heightOf(call[i].rect()))
            return name + ".bottom " + textOf(rect.bottom) + " is too far from " + name + ".top " + textOf(rect.top);
    }
    return {};
}

/// Whether a number says that nothing is written, whatever the others are.
bool isIdle(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call[i].is<double>() && call.row().arguments[i].idle.contains(call[i].number()))
            return true;
    return false;
}

std::string tablesFault(const Row &row) {
    constexpr int quarter = 2048;
    return row.readsTables && iSin[quarter] == 0 ? "the tables are empty, which Init_qMur_GlobalData fills" : "";
}

/// What stands for a name in the words of a rule.
std::string named(const Call &call, const std::string &name) {
    const Value &value = call[name];
    if (!value.is<tagRECT>())
        return name + " " + textOf(value.number());
    const Box rect = value.rect();
    return name + " of " + textOf(rect.width()) + " x " + textOf(rect.height());
}

/// The words of the first rule that does not hold.
std::string ruleFault(const Call &call, const std::vector<Rule> &rules) {
    for (const Rule &rule : rules) {
        if (rule.takesATrial || rule.holds(call))
            continue;
        std::string text(rule.broken);
        for (std::size_t open = text.find('{'); open != std::string::npos; open = text.find('{', open)) {
            const std::size_t close = text.find('}', open);
            const std::string name = text.substr(open + 1, close - open - 1);
            const std::string said = named(call, name);
            text.replace(open, close - open + 1, said);
            open += said.size();
        }
        return text;
    }
    return {};
}

// Areas

/// How far a surface reaches from its first pixel, as far as that is known.
struct Extent {
    static constexpr std::int64_t unknown = std::int64_t{1} << 40;

    std::int64_t left = -unknown;
    std::int64_t top = -unknown;
    std::int64_t right = unknown;
    std::int64_t bottom = unknown;
    std::string widthName;

    bool contains(const Box &part) const {
        return part.left >= left && part.top >= top && part.right <= right && part.bottom <= bottom;
    }
};

/// The pitch argument of an area, unless it is a stretch of words.
const Argument *pitchOf(const Call &call, const Area &area) {
    const Argument *pitch = pitchOf(call.row(), area.argument);
    const bool isStretch = area.part.top == 0 && area.part.bottom == 1;
    return pitch && (isPitchOf(*pitch, area.argument) || !isStretch) ? pitch : nullptr;
}

Extent extentOf(const Call &call, const Area &area, const Plane &plane, const std::optional<Piece> &piece) {
    Extent extent;
    const Argument &surface = *call.row().argument(area.argument);
    const Argument *pitch = pitchOf(call, area);
    const auto *origin = static_cast<const std::byte *>(plane.origin());
    if (piece ? origin == piece->begin : surface.kind != Kind::privateBlock)
        extent.left = extent.top = 0;
    const bool isInBytes = isSurface(surface.kind) && plane.elementBytes() == 1;
    if (!pitch || plane.pitch() == 0 || surface.kind == Kind::privateBlock || isInBytes)
        return extent;
    const std::int64_t width = std::abs(std::int64_t{plane.pitch()});
    extent.right = width;
    extent.widthName = std::string(pitch->name) + " " + textOf(call[pitch->name].number());
    if (!piece)
        return extent;
    const std::int64_t before = (origin - piece->begin) / plane.elementBytes();
    const std::int64_t rowBytes = width * plane.elementBytes();
    const std::int64_t rows = (static_cast<std::int64_t>(piece->bytes) + rowBytes - 1) / rowBytes;
    if (piece->pitch > 0) {
        extent.left = -(before % width);
        extent.right = width + extent.left;
        if (piece->width > 0 && piece->width < piece->pitch) {
            extent.right = piece->width + extent.left;
            extent.widthName = "the " + textOf(extent.right) + " columns of " + std::string(surface.name);
        }
        extent.top = plane.pitch() > 0 ? -(before / width) : before / width - rows + 1;
        extent.bottom = rows + extent.top;
    } else if (extent.top == 0 && plane.pitch() > 0) {
        extent.bottom = (static_cast<std::int64_t>(piece->bytes) / plane.elementBytes() + width - 1) / width;
    } else {
        extent.right = Extent::unknown;
    }
    return extent;
}

std::string nameOf(const Argument &surface) {
    return (surface.kind == Kind::privateBlock ? "the Z plane of " : "") + std::string(surface.name);
}

/// Whether a number lies along y. A name ends in X or Y, or begins so.
bool isDown(std::string_view name) {
    return name.find_first_of("yY") != std::string_view::npos;
}

/// Whether there are bounds on a surface, so that places may lie anywhere.
bool isBounded(const Row &row, std::string_view surface) {
    return std::any_of(row.arguments.begin(), row.arguments.end(), [surface](const Argument &argument) {
        return (argument.kind == Kind::clip || argument.kind == Kind::extent) && argument.of == surface;
    });
}

/// Rows further away than addresses reach: no function may count how far, even where it draws nothing.
std::string addressFault(const Call &call) {
    constexpr std::int64_t beyond = std::int64_t{1} << 44; // pixels
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const Argument *pitch = argument.of.empty() ? nullptr : pitchOf(call.row(), argument.of);
        if (!pitch || isBounded(call.row(), argument.of))
            continue;
        const std::string name(argument.name);
        const auto fault = [&](const std::string &place, std::int64_t row) {
            return std::abs(row) * std::abs(std::int64_t{call[pitch->name].whole()}) <= beyond
                       ? std::string()
                       : place + " " + textOf(row) + " is beyond all memory with " + std::string(pitch->name) + " " +
                             textOf(call[pitch->name].number());
        };
        std::string found;
        if (call[i].is<tagRECT>()) {
            found = fault(name + ".top", call[i].rect().top);
            if (found.empty())
                found = fault(name + ".bottom", call[i].rect().bottom);
        } else if (argument.kind == Kind::position && isDown(name)) {
            found = fault(name, call[i].whole());
        }
        if (!found.empty())
            return found;
    }
    return {};
}

/// The argument that leads outside, where one does by itself.
std::string culprit(const Call &call, const Argument &surface, const Box &part, const Extent &extent) {
    const auto below = [](const std::string &name, std::int64_t number, std::int64_t low) {
        return name + " " + textOf(number) + " is below " + textOf(low);
    };
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const std::string name(argument.name);
        if (argument.of != surface.name)
            continue;
        if (call[i].is<tagRECT>()) {
            const tagRECT &rect = call[i].rect();
            if (rect.left < extent.left && part.left < extent.left)
                return below(name + ".left", rect.left, extent.left);
            if (rect.top < extent.top && part.top < extent.top)
                return below(name + ".top", rect.top, extent.top);
            if (rect.right > extent.right && part.right > extent.right)
                return name + ".right " + textOf(std::int64_t{rect.right}) + " exceeds " + extent.widthName;
            if (rect.bottom > extent.bottom && part.bottom > extent.bottom)
                return name + ".bottom " + textOf(std::int64_t{rect.bottom}) + " exceeds the " + textOf(extent.bottom) +
                       " rows of " + std::string(surface.name);
        } else if (argument.kind == Kind::position) {
            const std::int64_t place = call[i].whole();
            const std::int64_t low = isDown(name) ? extent.top : extent.left;
            if (place < low && (isDown(name) ? part.top : part.left) < low)
                return below(name, place, low);
        }
    }
    return {};
}

std::string areaFault(const Call &call, const Area &area, bool isWritten) {
    const Argument &surface = *call.row().argument(area.argument);
    const Value &value = call[area.argument];
    const Plane *plane = value.surface();
    const Box &part = area.part;
    if (part.isEmpty())
        return {};
    if (!plane)
        return surface.mayBeNull ? std::string() : nameOf(surface) + " is null";
    const std::optional<Piece> piece = pieceAt(plane->origin(), indexOf(call.row(), surface));
    if (isWritten && piece && piece->isReadOnly)
        return nameOf(surface) + " is read-only";
    if (area.isAtMost)
        return {};
    const Argument *pitch = pitchOf(call, area);
    if (pitch && isSurface(surface.kind) && piece && piece->pitch > 0 && part.height() > 1 &&
        std::abs(std::int64_t{plane->pitch()}) != piece->pitch)
        return std::string(pitch->name) + " " + textOf(call[pitch->name].number()) + " is not " +
               textOf(std::int64_t{piece->pitch}) + ", the pitch of " + std::string(surface.name);
    const std::string verb = isWritten ? " is written" : " is read";
    if (!pitch && piece && piece->width > 0 && piece->width < piece->pitch) {
        const auto *origin = static_cast<const std::byte *>(plane->origin());
        const std::int64_t before = (origin - piece->begin) / plane->elementBytes() % piece->pitch;
        if (before + part.width() > piece->width)
            return nameOf(surface) + verb + " without a gap, but has one behind each " +
                   textOf(std::int64_t{piece->width}) + " columns";
    }
    const Extent extent = extentOf(call, area, *plane, piece);
    if (!extent.contains(part))
        if (std::string found = culprit(call, surface, part, extent); !found.empty())
            return found;
    const std::string name = nameOf(surface);
    if (part.left < extent.left)
        return name + verb + " from column " + textOf(part.left) + " on, before its first";
    if (part.top < extent.top)
        return name + verb + " from row " + textOf(part.top) + " on, before its first";
    if (isWritten && part.right > extent.right)
        return name + verb + " up to column " + textOf(part.right - 1) + ", beyond " + extent.widthName;
    if (!plane->holds(part)) {
        if (part.height() == 1 && part.left == 0)
            return name + " holds " +
                   textOf((piece->end() - static_cast<std::byte *>(plane->origin())) /
                          std::int64_t{plane->elementBytes()}) +
                   " elements, of which " + textOf(part.right) + (isWritten ? " are written" : " are read");
        return name + verb + " up to column " + textOf(part.right - 1) + " of row " + textOf(part.bottom - 1) +
               ", which leaves its memory";
    }
    return {};
}

/// A host may reset no more than what it draws in.
bool wasNeverReset(const Plane &depths, const Box &part) {
    for (std::int64_t y = part.top; y < part.bottom; ++y) {
        const short *row = depths.as<short>() + y * depths.pitch();
        if (std::any_of(row + part.left, row + part.right, [](short depth) { return depth != neverReset; }))
            return false;
    }
    return true;
}

/// Where a call may draw and draws nothing, no pixels are read either, whatever its row allows.
std::string areasFault(const Call &call) {
    bool drawsNothing = bool(call.row().writes);
    for (const bool isWritten : {true, false}) {
        const Region &region = isWritten ? call.row().writes : call.row().reads;
        if (!region)
            continue;
        for (const Area &area : region(call)) {
            if (isWritten)
                drawsNothing = drawsNothing && area.part.isEmpty();
            else if (drawsNothing && isSurface(call.row().argument(area.argument)->kind))
                continue;
            if (std::string found = areaFault(call, area, isWritten); !found.empty())
                return found;
            const Value &value = call[area.argument];
            const bool isDepths = call.row().argument(area.argument)->kind == Kind::privateBlock;
            if (isDepths && !isWritten && !area.part.isEmpty() && value.surface() &&
                pieceAt(value.surface()->origin()) && wasNeverReset(*value.surface(), area.part))
                return "the Z plane of " + std::string(area.argument) + " has never been reset";
        }
    }
    return {};
}

std::string blocksFault(const Row &row, std::span<const Given> given) {
    for (std::size_t i = 0; i < given.size(); ++i)
        if (row.arguments[i].kind == Kind::privateBlock)
            if (std::string found = faultOfBlock(row.arguments[i].name, given[i].pointer); !found.empty())
                return found;
    return faultOfRecord(row, given);
}

/// What breaks the contract; the order is that of what can be looked at without harm.
std::string faultOf(const Row &row, std::span<const Given> given, std::optional<Call> &call) {
    for (const std::string &found : {nullFault(row, given), tablesFault(row), blocksFault(row, given)})
        if (!found.empty())
            return found;
    call.emplace(callOf(row, given));
    if (std::string found = numberFault(*call, &Argument::contract); !found.empty())
        return found;
    if (isIdle(*call))
        return {};
    if (std::string found = rectangleFault(*call); !found.empty())
        return found;
    if (std::string found = addressFault(*call); !found.empty())
        return found;
    if (std::string found = ruleFault(*call, row.rules); !found.empty())
        return found;
    return areasFault(*call);
}

} // namespace

const Row &rowOf(std::string_view name, const std::type_index &signature) {
    const Row *found = nullptr;
    forEachRow([&](const Row &row) {
        const auto &aliases = row.aliases;
        const bool isNamed = row.name == name || std::find(aliases.begin(), aliases.end(), name) != aliases.end();
        if (isNamed && row.functions.signature == signature)
            found = &row;
    });
    if (!found) {
        std::fprintf(stderr, "%s has no row\n", std::string(name).c_str());
        std::abort();
    }
    return *found;
}

Verdict judge(const Row &row, std::span<const Given> given) {
    std::optional<Call> call;
    std::string fault = faultOf(row, given, call);
    if (!fault.empty())
        return {.fault = std::move(fault), .doubt = {}};
    std::string doubt = numberFault(*call, &Argument::meant);
    if (doubt.empty() && !isIdle(*call))
        doubt = ruleFault(*call, row.meant);
    return {.fault = {}, .doubt = std::move(doubt)};
}

bool mayBeMade(std::string_view name, const Row &row, std::span<const Given> given) {
    const Verdict verdict = judge(row, given);
    if (!verdict.fault.empty()) {
        report(std::string(name) + ": " + verdict.fault);
        return false;
    }
    if (!verdict.doubt.empty() && areDoubtsNamed())
        report(std::string(name) + ": " + verdict.doubt);
    noteBefore(row, given);
    return true;
}

void notice(const Row &row, std::span<const Given> given, const void *allocated) {
    noteAfter(row, given, allocated);
}

} // namespace checked
