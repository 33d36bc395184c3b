#include "plain/frame.h"

#include "areas.h"
#include "arguments.h"

#include <cstddef>
#include <limits>

namespace catalogue {
namespace {

// The block manager. The rows hold the record without blocks against its twins; the blocks themselves are the heap's.

const Argument record = hostRecord("data", "record");
const Argument slot = number("slot", "slots", {0, 14}, {0, 0});

constexpr Box wordsOf(std::size_t offset, std::size_t bytes) {
    return {static_cast<std::int64_t>(offset / 4), 0, static_cast<std::int64_t>((offset + bytes) / 4), 1};
}
constexpr Box usedFlag = wordsOf(offsetof(_TRANSFERDATA, memoryUsedFlag), 4);
constexpr Box blockCount = wordsOf(offsetof(_TRANSFERDATA, blockCount), 4);
constexpr Box firstSlot = wordsOf(offsetof(_TRANSFERDATA, blocks), sizeof(void *));

const Region usedFlagOf = always({{"data", usedFlag}});

/// Words of a record that is there, and of one that nobody gave notice for.
Region present(const Box &part) {
    return on("data", [part](const Call &call) { return call["data"].plane().isNull() ? Box() : part; });
}
Region unnoticed(const Box &part) {
    return on("data", [part](const Call &call) {
        return call["data"].plane().as<_TRANSFERDATA>()->memoryUsedFlag == 0 ? part : Box();
    });
}

/// A record of random words, its first slot empty.
void arrangeRecord(Call &call, Random &random) {
    call["data"] = Plane::array<std::uint32_t>(sizeof(_TRANSFERDATA) / 4, [&random](int) { return random.word(); });
    auto *data = call["data"].plane().as<_TRANSFERDATA>();
    data->memoryUsedFlag = random.between(-1, 1);
    data->blocks[0] = nullptr;
}
void arrangeRecordOrNull(Call &call, Random &random) {
    arrangeRecord(call, random);
    if (random.oneIn(16))
        call["data"] = Plane();
}

void setRecord(Call &call, const Stage &) {
    call["data"] = Plane::of(_TRANSFERDATA{});
}
/// A record with a block as large as a picture.
void setRecordWithBlock(Call &call, const Stage &stage) {
    setRecord(call, stage);
    FindNotUsedMemory(call["data"].plane().as<_TRANSFERDATA>(), 0, stage.width * stage.height * 4);
}
const std::vector<Scene> emptyRecord = {{.set = setRecord}};

const std::vector<Waiver> onTheHeap = {{"every proof", "blocks of the heap"}};
const std::vector<Waiver> globalTables = {{"two_threads_on_separate_surfaces", "fills what all threads read"}};

// Random numbers

Argument bound(std::string_view name, Range contract, double inScene) {
    return number(name, "", contract, {inScene, inScene});
}
/// More draws are allowed, but nobody waits for them. No draw at all divides by zero.
const Argument draws = count("count", "draws", {1, 1000, true}, {8, 8});

template <class Real>
constexpr Range finite = {-std::numeric_limits<Real>::max(), std::numeric_limits<Real>::max()};

bool differ(const Call &call) {
    return call["low"].whole() != call["high"].whole();
}
/// Spans of all sizes, at times beyond what can be covered or with the bounds exchanged.
void arrangeInts(Call &call, Random &random) {
    const int low = random.oneIn(10) ? random.between(-2147483647, 2147483647) : random.between(-40000, 40000);
    const int extent = random.between(1, 1 << random.between(0, 16));
    const std::int64_t high = std::int64_t{low} + (random.oneIn(10) ? -extent : extent);
    call.set({{"low", low}, {"high", static_cast<int>(static_cast<std::uint32_t>(high))}});
}
void arrangeIntGauss(Call &call, Random &random) {
    call["low"] = random.between(-1000, 1000);
    call["high"] = random.oneIn(5) ? random.between(-2147483647, 2147483647) : random.between(-5000, 5000);
    call["count"] = random.between(1, 12);
}
/// Bounds with all bits of a double, which a float rounds, and few draws.
void arrangeReals(Call &call, Random &random) {
    for (const char *name : {"low", "high"})
        call[name] = static_cast<double>(random.real(20)) + static_cast<double>(random.real(20)) / (1 << 26);
    if (call.row().argument("count"))
        call["count"] = random.between(1, 12);
}

} // namespace

std::vector<Row> frameRows() {
    return {
        {Q_MUR_FUNCTION_WITHOUT_TWIN(PrepareSinTable), .sentence = "Fills the tables of sines, cosines and roots.",
         .waived = globalTables, .figure = Figure::tables},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(Init_qMur_GlobalData), .sentence = "Fills the tables.",
         .arguments = {unused("module"), unused("path")}, .waived = globalTables, .figure = Figure::tables},
        {Q_MUR_FUNCTION(BeginMemoryManager), .sentence = "Starts a frame in which nobody has given notice yet.",
         .arguments = {record}, .writes = usedFlagOf, .arrange = arrangeRecord, .scenes = emptyRecord,
         .figure = Figure::record},
        {Q_MUR_FUNCTION(NoticeMemUsed), .sentence = "Gives notice that blocks are used.", .arguments = {record},
         .writes = usedFlagOf, .arrange = arrangeRecord, .scenes = emptyRecord, .figure = Figure::record},
        {Q_MUR_FUNCTION(EndMemoryManager), .sentence = "Frees all blocks if nobody gave notice.", .arguments = {record},
         .writes = unnoticed(blockCount), .reads = usedFlagOf + unnoticed(firstSlot), .arrange = arrangeRecord,
         .scenes = emptyRecord, .blocks = Blocks::freedUnlessUsed, .figure = Figure::record,
         .looksLike = "Without notice it frees what `DeleteMemoryBlocks()` frees."},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(FindNotUsedMemory), .sentence = "Allocates the block of a slot.",
         .arguments = {record, slot, number("size", "bytes", {-3, anyInt.high}, {65536, 65536})}, .scenes = emptyRecord,
         .waived = onTheHeap, .blocks = Blocks::allocated, .figure = Figure::record},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(ClearMemory), .sentence = "Zeroes the block of a slot.",
         .arguments = {record, slot}, .scenes = {{.set = setRecordWithBlock}}, .waived = onTheHeap,
         .figure = Figure::record},
        {Q_MUR_FUNCTION(FreeMemoryBlocks), .sentence = "Frees all blocks.", .arguments = {orNull(record)},
         .writes = present(blockCount), .reads = present(firstSlot), .arrange = arrangeRecordOrNull,
         .scenes = emptyRecord, .blocks = Blocks::freed, .figure = Figure::record,
         .looksLike = "The same as `DeleteMemoryBlocks()`."},
        {Q_MUR_FUNCTION(DeleteMemoryBlocks), .sentence = "Frees all blocks up to the first empty slot.",
         .arguments = {orNull(record)}, .writes = present(blockCount), .reads = present(firstSlot),
         .arrange = arrangeRecordOrNull, .scenes = emptyRecord, .blocks = Blocks::freed, .figure = Figure::record},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(GetPrivate_QMGP_Data), .sentence = "Allocates the private block of region fills.",
         .arguments = {record, slot}, .scenes = emptyRecord, .waived = onTheHeap, .blocks = Blocks::allocated,
         .figure = Figure::record},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(GetPrivate_LUT_Data), .sentence = "Allocates the private block of the cross blur.",
         .arguments = {record, slot}, .scenes = emptyRecord, .waived = onTheHeap, .blocks = Blocks::allocated,
         .figure = Figure::record},
        {Q_MUR_FUNCTION_WITHOUT_TWIN(GaussRand), .sentence = "Gives the next of 16 small numbers.",
         .waived = {{"two_threads_on_separate_surfaces", "one counter"}}, .figure = Figure::distribution},
        {Q_MUR_FUNCTION(randInt), .sentence = "Draws a whole number below a bound.",
         .arguments = {bound("low", anyInt, 0), bound("high", anyInt, 100)}, .rules = {{"{low} equals {high}", differ}},
         .drawsRandomNumbers = true, .arrange = arrangeInts,
         .waived = {{"numbers_at_their_ends", "equal bounds never return"}}, .figure = Figure::distribution},
        {Q_MUR_FUNCTION(randFloat), .sentence = "Draws a number between two others.",
         .arguments = {bound("low", finite<float>, 0), bound("high", finite<float>, 1)}, .drawsRandomNumbers = true,
         .arrange = arrangeReals, .figure = Figure::distribution},
        {Q_MUR_FUNCTION(randDouble), .sentence = "Draws a number between two others.",
         .arguments = {bound("low", finite<double>, 0), bound("high", finite<double>, 1)}, .drawsRandomNumbers = true,
         .arrange = arrangeReals, .figure = Figure::distribution},
        {Q_MUR_FUNCTION(randIntGauss), .sentence = "Draws a whole number near the middle of two others.",
         .arguments = {bound("low", anyInt, 0), bound("high", anyInt, 100), draws}, .drawsRandomNumbers = true,
         .arrange = arrangeIntGauss, .figure = Figure::distribution},
        {Q_MUR_FUNCTION(randFloatGauss), .sentence = "Draws a number near the middle of two others.",
         .arguments = {bound("low", finite<float>, 0), bound("high", finite<float>, 1), draws},
         .drawsRandomNumbers = true, .arrange = arrangeReals, .figure = Figure::distribution},
        {Q_MUR_FUNCTION(randDoubleGauss), .sentence = "Draws a number near the middle of two others.",
         .arguments = {bound("low", finite<double>, 0), bound("high", finite<double>, 1), draws},
         .drawsRandomNumbers = true, .arrange = arrangeReals, .figure = Figure::distribution},
        {Q_MUR_FUNCTION(randColor), .sentence = "Draws a colour.", .drawsRandomNumbers = true,
         .figure = Figure::colours},
        {Q_MUR_FUNCTION(randRainbowColor), .sentence = "Draws a saturated colour of a random hue.", .readsTables = true,
         .drawsRandomNumbers = true, .figure = Figure::colours},
    };
}

} // namespace catalogue
