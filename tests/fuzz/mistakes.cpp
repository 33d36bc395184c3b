/// \file
/// A fuzz target: whatever bytes break of a call, the checked library names it and leaves the call out, or the call
/// does no harm. What no argument shows, and so is not named, is left whole: what stands in memory.
#include "input.h"

#include "proofs/regions.h"
#include "q_Mur/checked.h"

#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>

namespace {

using namespace catalogue;

using fuzz::fail;

/// What the checked library has said of a call.
std::vector<std::string> messages;

constexpr std::size_t leastTold = 4;

void tell(const void *memory, std::size_t bytes) {
    const auto words = static_cast<int>(bytes / 4);
    q_Mur_checked_surface(memory, words, words > 0 ? 1 : 0);
}

/// Says of half of all surfaces how long their rows are.
void tellOfRows(Call &call, Random &random) {
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (!isSurface(call.row().arguments[i].kind) || !call[i].is<Plane>() || call[i].plane().isNull())
            continue;
        const Plane &plane = call[i].plane();
        const auto words = static_cast<int>(plane.bytes().size() / 4);
        if (plane.elementBytes() == 4 && plane.pitch() > 0 && words >= plane.pitch() && random.oneIn(2))
            q_Mur_checked_surface(plane.bytes().data(), plane.pitch(), words / plane.pitch());
    }
}

// Mistakes

/// Whether each step of a way counts, also far beyond a clip, or to one that is far away.
bool walksFar(const Row &row) {
    return std::any_of(row.waived.begin(), row.waived.end(), [](const Waiver &waiver) {
        return waiver.proof == "numbers_at_their_ends" || waiver.proof == "empty_clips_at_the_ends_of_numbers";
    });
}

double anyNumber(const Row &row, const Argument &argument, bool isReal, Random &random) {
    if (isReal && random.oneIn(8))
        return std::numeric_limits<double>::quiet_NaN();
    double number = fuzz::chosenNumber(isReal ? anyReal : anyInt, isReal, random);
    if (random.oneIn(2)) // beside what is allowed
        number = fuzz::chosenNumber(argument.contract, isReal, random) + random.between(-2, 2);
    // Nobody waits for what the contract knows no end of.
    constexpr double far = 65536;
    if (argument.contract.isASample)
        return std::clamp(number, argument.contract.low - far, argument.contract.high + far);
    const bool mayBeIdle = argument.idle.low <= argument.idle.high; // where others are held to no memory
    return walksFar(row) || mayBeIdle ? std::clamp(number, -far, far) : number;
}

/// Another number, near or far.
void breakWord(int &word, Random &random) {
    const int distance = random.between(-20, 20);
    word = random.oneIn(2) ? static_cast<int>(static_cast<unsigned>(word) + static_cast<unsigned>(distance))
                           : fuzz::chosenWord(anyInt, random);
}

void breakSide(tagRECT &rect, Random &random) {
    q_long *const sides[] = {&rect.left, &rect.top, &rect.right, &rect.bottom};
    q_long &side = *sides[random.between(0, 3)];
    breakWord(side, random);
}

/// Less memory than there was.
void cutPlane(Plane &plane, Random &random) {
    if (plane.isNull() || plane.width() < 1 || plane.height() < 1)
        return;
    const Box part(0, 0, random.between(1, plane.width()), random.between(1, plane.height()));
    if (plane.holds(part))
        plane = plane.cutTo(part, Fence::none);
}

/// Less memory than there was, or none.
void breakPlane(Plane &plane, Random &random) {
    if (random.oneIn(4))
        plane = Plane();
    else
        cutPlane(plane, random);
}

template <class Block>
void breakDrawingBlock(Block &block, Random &random) {
    Plane *const planes[] = {&block.vertexArray0, &block.vertexArray1, &block.depths};
    if (random.oneIn(4))
        breakWord(block.data.vertexArrayEntries, random);
    else
        breakPlane(*planes[random.between(0, 2)], random);
}

void breakBlock(Value &value, Random &random) {
    if (value.is<PipelineBlock>() && random.oneIn(2)) {
        auto &block = value.get<PipelineBlock>();
        auto &data = block.data;
        int *const words[] = {&data.modelDepth,    &data.viewDepth,   &data.matrixMode,     &data.viewportLeft,
                              &data.viewportRight, &data.viewportTop, &data.viewportBottom, &data.nearLimit,
                              &data.farLimit,      &data.focalLength};
        if (random.oneIn(3))
            breakPlane(random.oneIn(2) ? block.modelStack : block.viewStack, random);
        else
            breakWord(*words[random.between(0, 9)], random);
    } else if (value.is<PipelineBlock>()) {
        breakDrawingBlock(value.get<PipelineBlock>(), random);
    } else if (value.is<TexturedBlock>()) {
        breakDrawingBlock(value.get<TexturedBlock>(), random);
    } else if (value.is<RegionBlock>()) {
        auto &block = value.get<RegionBlock>();
        Plane *const planes[] = {&block.plane, &block.destSurface, &block.testSurface};
        *planes[random.between(0, 2)] = Plane();
    } else if (value.is<PhaseBlock>()) {
        breakWord(value.get<PhaseBlock>().data.phase, random);
    }
}

/// Whether a call may go round for ever, which nobody sees but who makes it.
bool mayNeverEnd(const Row &row) {
    return std::any_of(row.rules.begin(), row.rules.end(), [](const Rule &rule) { return rule.takesATrial; });
}

void breakArgument(Call &call, std::size_t index, Random &random) {
    const Argument &argument = call.row().arguments[index];
    Value &value = call[index];
    if (value.is<double>()) {
        if (!mayNeverEnd(call.row()))
            value = anyNumber(call.row(), argument, call.row().isReal(index), random);
    } else if (value.is<tagRECT>() || value.is<tagPOINT>()) {
        if (random.oneIn(6) && call.row().functions.isPointer[index])
            value = Value();
        else if (value.is<tagRECT>() && !mayNeverEnd(call.row()) && !walksFar(call.row()))
            breakSide(value.rect(), random);
        else if (value.is<tagPOINT>())
            breakWord(random.oneIn(2) ? value.point().x : value.point().y, random);
    } else if (value.is<Plane>()) {
        if (argument.kind != Kind::hostRecord && argument.kind != Kind::text)
            cutPlane(value.plane(), random);
    } else {
        breakBlock(value, random);
    }
}

/// Whether a call that may draw draws nothing. Then it reads no pixels either, whatever its row says of them.
bool drawsNothing(const Call &call) {
    if (!call.row().writes)
        return false;
    const Areas written = call.row().writes(call);
    return std::all_of(written.begin(), written.end(), [](const Area &area) { return area.part.isEmpty(); });
}

/// Makes a pointer null that the call needs, and nothing else of it wrong. \return whether there is one
bool breakPointer(Call &call, Random &random) {
    const Areas areas = proofs::touched(call);
    const auto index = static_cast<std::size_t>(random.between(0, static_cast<int>(call.size()) - 1));
    const Argument &argument = call.row().arguments[index];
    const bool isTouched = std::any_of(areas.begin(), areas.end(),
                                       [&argument](const Area &area) { return area.argument == argument.name; });
    if (!call[index].is<Plane>() || argument.mayBeNull || argument.kind == Kind::unused || !isTouched ||
        !call.row().functions.isPointer[index] || (isSurface(argument.kind) && drawsNothing(call)))
        return false;
    call[index] = Plane();
    return true;
}

/// Whether calls of a row may read no more than an outline says, which is not held against memory: they may leave a
/// part of it alone.
bool hasOutlines(const Row &row) {
    static std::map<const Row *, bool> known;
    const auto [found, isNew] = known.try_emplace(&row, false);
    for (std::uint64_t seed = 0; isNew && row.reads && seed < 20 && !found->second; ++seed) {
        Random random(seed);
        const Areas areas = row.reads(randomCall(row, random));
        found->second = std::any_of(areas.begin(), areas.end(), [](const Area &area) { return area.isAtMost; });
    }
    return found->second;
}

/// Whether a call keeps to its outlines: where a row has some, whether it keeps to the whole of its contract.
bool keepsToOutlines(const Call &call) {
    if (!hasOutlines(call.row()))
        return true;
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (call[i].is<std::monostate>())
            return false;
        const Argument &argument = call.row().arguments[i];
        const Plane *plane = argument.kind == Kind::pitch ? call[argument.of].surface() : nullptr;
        if (argument.kind == Kind::pitch && (!plane || call[i].whole() != plane->pitch()))
            return false;
    }
    return keepsToContract(call);
}

/// Whether all memory is as large as a word: of less nobody can be told.
bool canBeTold(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i)
        if (const Plane *plane = call[i].surface(); plane && plane->bytes().size() < leastTold)
            return false;
    return true;
}

/// Whether a call may draw so many rows, all in the same place, that nobody waits for it, though it does no harm.
bool repeatsOneRowForLong(const Call &call) {
    const auto isMuch = [](double number) { return std::abs(number) > 1 << 20; };
    bool hasOneRow = false, isFar = false;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        if (call[i].is<tagRECT>())
            isFar = isFar || isMuch(call[i].rect().top) || isMuch(call[i].rect().bottom);
        else if (call[i].is<double>() && argument.kind == Kind::pitch)
            hasOneRow = hasOneRow || call[i].number() == 0;
        else if (call[i].is<double>() && argument.kind == Kind::extent)
            isFar = isFar || isMuch(call[i].number());
    }
    return hasOneRow && isFar;
}

// What becomes of them

bool isZero(const Call &call) {
    switch (call.row().functions.resultBytes) {
    case 0:
        return true;
    case 1:
        return call.returned<unsigned char>() == 0;
    case 4:
        return call.returned<std::uint32_t>() == 0;
    case 8:
        return call.returned<std::uint64_t>() == 0;
    default:
        return call.returned<std::array<std::uint64_t, 2>>() == std::array<std::uint64_t, 2>{};
    }
}

/// A call that is named is left out.
void demandNothingHasChanged(const Call &before, const Call &after) {
    for (std::size_t i = 0; i < after.size(); ++i)
        if (!after[i].differenceFrom(before[i]).empty())
            fail(before.row(), "is made though it is named: " + messages.front());
    if (!isZero(after))
        fail(before.row(), "answers though it is named: " + messages.front());
}

/// Another call leaves sources alone, unless its row says that it writes there.
void demandSourcesAreWhole(const Call &before, const Call &after) {
    if (!before.row().writes || proofs::sharesMemory(before))
        return;
    Random random(0);
    const Areas written = before.row().writes(randomCall(before.row(), random));
    for (std::size_t i = 0; i < after.size(); ++i) {
        const Argument &argument = before.row().arguments[i];
        const bool isWritten = std::any_of(written.begin(), written.end(),
                                           [&argument](const Area &area) { return area.argument == argument.name; });
        if (argument.kind == Kind::source && after[i].is<Plane>() && !isWritten &&
            !after[i].differenceFrom(before[i]).empty())
            fail(before.row(), "writes " + std::string(argument.name) + ": " + proofs::described(before));
    }
}

void tryCall(const Row &row, Random &random) {
    const tagPOINT size = fuzz::chosenSize(random);
    Call call = randomCall(row, random, size);
    const bool isNullPassed = call.size() > 0 && random.oneIn(6) && breakPointer(call, random);
    for (int mistakes = random.between(0, 3); mistakes > 0 && call.size() > 0 && !isNullPassed; --mistakes)
        breakArgument(call, static_cast<std::size_t>(random.between(0, static_cast<int>(call.size()) - 1)), random);
    if (!keepsToOutlines(call) || !canBeTold(call) || repeatsOneRowForLong(call))
        return;
    Call result = call;
    tellOfRows(result, random);
    if (fuzz::tellsCalls())
        std::fprintf(stderr, "%s: %s\n", row.fullName().c_str(), proofs::described(call).c_str());
    messages.clear();
    const Run run = row.functions.library(result); // which sets what blocks point to
    const Call before = result;
    run();
    if (fuzz::tellsCalls() && !messages.empty())
        std::fprintf(stderr, "%s\n", messages.front().c_str());
    if (isNullPassed && messages.empty())
        fail(row, "a null pointer is not named: " + proofs::described(call));
    if (messages.empty())
        demandSourcesAreWhole(before, result);
    else
        demandNothingHasChanged(before, result);
}

/// A host's record with mistakes in it.
class BrokenRecord {
public:
    BrokenRecord() { clear(); }
    BrokenRecord(const BrokenRecord &) = delete;
    BrokenRecord &operator=(const BrokenRecord &) = delete;
    ~BrokenRecord() { // a block that has gone is named
        for (MemoryBlock *block : allocated) {
            clear();
            record.blocks[0] = block;
            DeleteMemoryBlocks(&record);
        }
    }

    static bool concerns(const Row &row) {
        return std::any_of(row.arguments.begin(), row.arguments.end(),
                           [](const Argument &argument) { return argument.kind == Kind::hostRecord; });
    }

    void tryCall(const Row &row, Random &random) {
        breakSomething(random);
        Call call(row);
        const auto memory = std::make_shared<Memory>(reinterpret_cast<std::byte *>(&record), sizeof record);
        int slot = 0;
        for (std::size_t i = 0; i < call.size(); ++i) {
            const Argument &argument = row.arguments[i];
            if (argument.kind == Kind::hostRecord)
                call[i] = random.oneIn(16) ? Plane() : Plane::over(&record, 4, sizeof record / 4, memory);
            else if (argument.name == "slot")
                call[i] = slot = random.oneIn(8) ? fuzz::chosenWord(anyInt, random) : random.between(-1, 16);
            else
                call[i] = random.oneIn(4) ? random.between(-100, -1) : random.between(-3, 0xFFF);
        }
        if (fuzz::tellsCalls())
            std::fprintf(stderr, "%s: %s\n", row.fullName().c_str(), proofs::described(call).c_str());
        messages.clear();
        row.functions.library(call)();
        if (row.blocks == Blocks::allocated && messages.empty() && !isZero(call))
            allocated.push_back(record.blocks[slot]);
    }

private:
    void clear() {
        record = {};
        record.frameGeometry = &geometry;
        record.limits3D = &limits;
    }

    void breakSomething(Random &random) {
        switch (random.between(0, 15)) {
        case 0:
            std::memset(static_cast<void *>(&record.blocks), random.between(0, 255), sizeof record.blocks);
            break;
        case 1:
            kept = record;
            break;
        case 2:
            record = kept;
            break;
        case 3:
            record.limits3D = random.oneIn(2) ? nullptr : &limits;
            break;
        case 4:
            record.frameGeometry = random.oneIn(2) ? nullptr : &geometry;
            break;
        case 5:
            geometry.planeElements = random.between(-100, 1000);
            break;
        case 6:
            limits.vertexArrayEntries = random.between(-10, 100);
            break;
        case 7:
            limits.matrixStackDepth = random.between(-2, 4);
            break;
        case 8:
            clear();
            break;
        default:
            break;
        }
    }

    TransferFrameGeometry geometry = {{}, 100, 0};
    TransferLimits3D limits = {0, 0, 16, 2};
    _TRANSFERDATA record = {};
    _TRANSFERDATA kept = {};
    std::vector<MemoryBlock *> allocated;
};

bool isLeftOut(const Row &row) {
    return std::any_of(row.waived.begin(), row.waived.end(),
                       [](const Waiver &waiver) { return waiver.proof == "every proof"; });
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    Init_qMur_GlobalData(nullptr, nullptr);
    tellOfMemory = tell;
    q_Mur_checked_doubts(0); // they keep to the contract
    q_Mur_checked_handle([](const char *message, void *) { messages.emplace_back(message); }, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, std::size_t count) {
    BrokenRecord record;
    fuzz::forEachPiece({bytes, count}, [&](fuzz::Bytes piece) {
        Random random(piece);
        const Row &row = fuzz::chosenRow(random);
        if (BrokenRecord::concerns(row) && (isLeftOut(row) || random.oneIn(2)))
            record.tryCall(row, random);
        else if (!isLeftOut(row)) // files are another target's
            tryCall(row, random);
    });
    return 0;
}
