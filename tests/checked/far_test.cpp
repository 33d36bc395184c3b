/// \file
/// Numbers as nobody passes them: rectangles that are inverted, places and extents that are far away or beside where
/// formats of positions end, scales and angles of any size. Whatever a row's functions make of them, the checked
/// library names the call, or it keeps to memory that has nothing beside it.
#include "catalogue/row.h"
#include "fuzz/input.h"
#include "proofs/regions.h"
#include "q_Mur/checked.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace catalogue;

/// Where to go on when a call is left before it returns.
sigjmp_buf leftCall;

/// Memory in the middle of addresses that nobody may touch. At one of its ends it reaches as far as its pages do.
class Alone {
public:
    /// The distance to other memory, either way: as far as a row may lie away whose number is any, where there is room.
    static constexpr std::size_t around = sizeof(void *) == 8 ? std::size_t{1} << 40 : std::size_t{1} << 26;

    Alone(const Plane &content, bool isAtBegin) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t bytes = content.bytes().size();
        const std::size_t told = (bytes + 3) / 4 * 4; // in whole words
        const std::size_t used = (told + page - 1) / page * page;
        length = 2 * around + used;
        void *const all = mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (all == MAP_FAILED)
            std::abort();
        mapping = static_cast<std::byte *>(all);
        std::byte *const pages = mapping + around;
        if (used > 0 && mprotect(pages, used, PROT_READ | PROT_WRITE) != 0)
            std::abort();
        first = isAtBegin ? pages : pages + used - told;
        if (bytes > 0)
            std::memcpy(first, content.bytes().data(), bytes);
        q_Mur_checked_surface(first, static_cast<int>(told / 4), told > 0 ? 1 : 0);
        const std::ptrdiff_t before = static_cast<std::byte *>(content.origin()) - content.bytes().data();
        plane = Plane::over(first + before, content.elementBytes(), content.pitch(),
                            std::make_shared<Memory>(first, bytes));
    }
    Alone(const Alone &) = delete;
    Alone &operator=(const Alone &) = delete;
    ~Alone() {
        q_Mur_checked_surface(first, 1, 0);
        munmap(mapping, length);
    }

    Plane plane;

private:
    std::byte *mapping;
    std::byte *first;
    std::size_t length;
};

// Rows

bool isWaived(const Row &row, std::initializer_list<std::string_view> proofs) {
    return std::any_of(row.waived.begin(), row.waived.end(), [proofs](const Waiver &waiver) {
        return std::find(proofs.begin(), proofs.end(), waiver.proof) != proofs.end();
    });
}

/// Whether a call may go round for ever.
bool mayNeverEnd(const Row &row) {
    return std::any_of(row.rules.begin(), row.rules.end(), [](const Rule &rule) { return rule.takesATrial; });
}

/// Whether each step of a way counts, also far away, which takes too long.
bool walksFar(const Row &row) {
    return isWaived(
        row, {"clips_hold_at_the_ends_of_numbers", "empty_clips_at_the_ends_of_numbers", "numbers_at_their_ends"});
}

/// Whether an argument carries a place, an extent or something else to work places out from.
bool isMoved(const Row &row, const Argument &argument) {
    switch (argument.kind) {
    case Kind::rectangle:
    case Kind::clip:
        return !mayNeverEnd(row);
    case Kind::point:
    case Kind::privateBlock:
        return true;
    case Kind::points:
        return !mayNeverEnd(row);
    case Kind::colour:
    case Kind::key:
    case Kind::weight:
    case Kind::unused:
        return false;
    default:
        return (isNumber(argument.kind) || argument.kind == Kind::pitch) && !mayNeverEnd(row);
    }
}

/// Rows that have something to move.
std::vector<const Row *> rowsThatAreMoved() {
    std::vector<const Row *> rows;
    forEachRow([&rows](const Row &row) {
        if (!isWaived(row, {"every proof"}) &&
            std::any_of(row.arguments.begin(), row.arguments.end(),
                        [&row](const Argument &argument) { return isMoved(row, argument); }))
            rows.push_back(&row);
    });
    return rows;
}

// Far numbers

template <class Number = q_long>
Number inWord(std::int64_t number) {
    constexpr auto limits = std::numeric_limits<std::int32_t>();
    return static_cast<Number>(std::clamp<std::int64_t>(number, limits.min(), limits.max()));
}

/// What the arguments of a call are moved to. Some of them meet far away.
class FarNumbers {
public:
    explicit FarNumbers(Random &from) : random(from), meeting(farPlace()) {}

    /// A place beside where formats of positions end, beside the ends of numbers, or beside where it was.
    template <class Number>
    Number place(Number where, bool isNear = false) {
        if (isNear || random.oneIn(3))
            return inWord<Number>(std::int64_t{where} + random.between(-30, 30));
        return inWord<Number>((random.oneIn(3) ? meeting : farPlace()) + random.between(-20, 20));
    }

    /// The same of a number that need not be whole.
    double real(double number) {
        const int kind = random.between(0, 11);
        if (kind < 4)
            return number + random.between(-512, 512) / 64.0;
        if (kind < 6)
            return number * std::ldexp(random.between(-300, 300), -8);
        if (kind == 6)
            return std::numeric_limits<double>::quiet_NaN();
        if (kind == 7)
            return (random.oneIn(2) ? 1 : -1) * std::numeric_limits<double>::infinity();
        const int mantissa = random.between(-256, 256);
        return std::ldexp(mantissa, kind == 8 ? random.between(-140, 119) : random.between(-30, 30));
    }

    Random &random;

private:
    std::int64_t farPlace() {
        const std::int64_t end = std::int64_t{1} << random.between(8, 31);
        const int times = random.oneIn(3) ? random.between(1, 40) : 1;
        return (random.oneIn(2) ? end : -end) * times;
    }

    std::int64_t meeting;
};

/// A number beside the ends of what is allowed, or any. Nobody waits for what the contract knows no end of, and what is
/// idle holds the others to no memory.
double anyNumber(const Row &row, const Argument &argument, double number, bool isReal, FarNumbers &far) {
    constexpr double farthest = 65536;
    Random &random = far.random;
    const Range &range = argument.contract;
    const double end = random.oneIn(2) ? range.low : range.high;
    if (random.oneIn(4) && std::isfinite(end))
        number = end + random.between(-2, 2);
    else
        number = isReal ? far.real(number) : far.place(inWord<int>(static_cast<std::int64_t>(number)));
    if (range.isASample)
        return std::clamp(number, range.low - farthest, range.high + farthest);
    const bool mayBeIdle = argument.idle.contains(argument.idle.low);
    return walksFar(row) || mayBeIdle ? std::clamp(number, -farthest, farthest) : number;
}

void moveSides(tagRECT &rect, bool isNear, FarNumbers &far) {
    Random &random = far.random;
    q_long *const ends[2][2] = {{&rect.left, &rect.right}, {&rect.top, &rect.bottom}};
    for (const auto &[begin, end] : ends) {
        switch (random.between(0, 4)) {
        case 0:
            *begin = far.place(*begin, isNear);
            break;
        case 1:
            *end = far.place(*end, isNear);
            break;
        case 2: // moved as a whole
            *begin = far.place(*begin, isNear);
            *end = inWord(std::int64_t{*begin} + random.between(-9, 9));
            break;
        case 3:
            std::swap(*begin, *end);
            break;
        default:
            break;
        }
    }
}

template <class Words>
void moveOneOf(const Words &words, FarNumbers &far) {
    int &word = *words[static_cast<std::size_t>(far.random.between(0, static_cast<int>(std::size(words)) - 1))];
    word = far.place(word);
}

void moveBlock(Value &value, FarNumbers &far) {
    if (value.is<PipelineBlock>()) {
        _PRIVATE_QMGL_DATA &data = value.get<PipelineBlock>().data;
        int *const words[] = {&data.modelDepth,    &data.viewDepth,   &data.matrixMode,        &data.viewportLeft,
                              &data.viewportRight, &data.viewportTop, &data.viewportBottom,    &data.nearLimit,
                              &data.farLimit,      &data.focalLength, &data.vertexArrayEntries};
        moveOneOf(words, far);
    } else if (value.is<TexturedBlock>()) {
        int *const words[] = {&value.get<TexturedBlock>().data.vertexArrayEntries};
        moveOneOf(words, far);
    }
}

/// A coordinate of a point in an array.
void movePoints(const Row &row, std::size_t index, Plane &plane, FarNumbers &far) {
    const std::size_t words = plane.bytes().size() / 4;
    if (words == 0 || plane.elementBytes() != 4)
        return;
    const auto word = static_cast<std::size_t>(far.random.between(0, static_cast<int>(words) - 1));
    if (row.functions.types[index] == Type::reals) {
        float &number = plane.as<float>()[word];
        number = static_cast<float>(std::clamp(far.real(static_cast<double>(number)), -1e38, 1e38));
    } else {
        int &number = plane.as<int>()[word];
        number = far.place(number);
    }
}

void move(Call &call, std::size_t index, FarNumbers &far) {
    const Row &row = call.row();
    Value &value = call[index];
    if (value.is<tagRECT>())
        moveSides(value.rect(), walksFar(row), far);
    else if (value.is<tagPOINT>() && far.random.oneIn(2))
        value.point().x = far.place(value.point().x);
    else if (value.is<tagPOINT>())
        value.point().y = far.place(value.point().y);
    else if (value.is<double>())
        value = anyNumber(row, row.arguments[index], value.number(), row.isReal(index), far);
    else if (value.is<Plane>())
        movePoints(row, index, value.plane(), far);
    else
        moveBlock(value, far);
}

/// Moves up to three arguments, or one several times.
void moveSome(Call &call, Random &random) {
    FarNumbers far(random);
    std::vector<std::size_t> all;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (isMoved(call.row(), call.row().arguments[i]))
            all.push_back(i);
    for (int times = random.between(1, 3); times > 0; --times) {
        const std::size_t index = all[static_cast<std::size_t>(random.between(0, static_cast<int>(all.size()) - 1))];
        move(call, index, far);
    }
}

// Calls

/// Whether numbers are in their ranges and rules hold, so that what a row says of a call is worked out at all.
bool keepsToRules(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        if (isNumber(argument.kind) && argument.kind != Kind::unused && call[i].is<double>() &&
            !argument.contract.allows(call[i].number()))
            return false;
    }
    return std::all_of(call.row().rules.begin(), call.row().rules.end(),
                       [&call](const Rule &rule) { return rule.takesATrial || rule.holds(call); });
}

/// Whether all pitches are those of their surfaces: areas of others lie elsewhere than a row says of the call.
bool keepsPitches(const Call &call) {
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Argument &argument = call.row().arguments[i];
        const Plane *plane = argument.kind == Kind::pitch ? call[argument.of].surface() : nullptr;
        const int unit = plane && argument.unit == "bytes" ? plane->elementBytes() : 1;
        if (plane && call[i].whole() != plane->pitch() * unit)
            return false;
    }
    return true;
}

/// What outlines say is not held against memory, so that calls which leave an outline are not tried, unless a rule
/// names them.
bool leavesOutlines(const Call &call, const Areas &areas) {
    return std::any_of(areas.begin(), areas.end(), [&call](const Area &area) {
        const Plane *plane = call[area.argument].surface();
        return area.isAtMost && plane && (!plane->holds(area.part) || !keepsPitches(call));
    });
}

/// What a call needs of a plane: as much as there is where there is no more than an outline of it, or it is not there.
Box needed(const Areas &areas, std::string_view argument, const Plane &plane) {
    Box all;
    for (const Area &area : areas) {
        if (area.argument != argument || area.part.isEmpty())
            continue;
        if (area.isAtMost || !plane.holds(area.part))
            return plane.rect();
        all = all.isEmpty() ? area.part
                            : Box{std::min(all.left, area.part.left), std::min(all.top, area.part.top),
                                  std::max(all.right, area.part.right), std::max(all.bottom, area.part.bottom)};
    }
    return plane.holds(all) ? all : plane.rect();
}

enum class End { returns, touchesOtherMemory, takesTooLong };

void endIn(int milliseconds) {
    const itimerval time = {{0, 0}, {0, milliseconds * 1000}};
    setitimer(ITIMER_VIRTUAL, &time, nullptr);
}

/// Makes a call, and leaves it where it touches other memory or counts for longer than anybody waits.
End endOf(const catalogue::Run &run) {
    const int signal = sigsetjmp(leftCall, 1);
    if (signal == 0) {
        endIn(50);
        run();
    }
    endIn(0);
    return signal == 0 ? End::returns : signal == SIGSEGV ? End::touchesOtherMemory : End::takesTooLong;
}

std::uint64_t numberFrom(const char *name, std::uint64_t otherwise) {
    const char *const text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

class Far : public testing::TestWithParam<const Row *> {};

TEST_P(Far, numbers_are_named_or_harmless) {
    const Row &row = *GetParam();
    std::vector<std::string> messages;
    q_Mur_checked_doubts(0);
    q_Mur_checked_handle(
        [](const char *message, void *all) { static_cast<std::vector<std::string> *>(all)->push_back(message); },
        &messages);
    int made = 0;
    const std::uint64_t first = numberFrom("Q_MUR_FAR_FIRST", 0);
    const std::uint64_t count = numberFrom("Q_MUR_FAR_CASES", 200);
    for (std::uint64_t number = first; number < first + count; ++number) {
        Random random(number);
        Call call = randomCall(row, random, fuzz::chosenSize(random));
        moveSome(call, random);
        const std::string text = "case " + std::to_string(number) + " of " + row.fullName() + ": ";
        if (fuzz::tellsCalls())
            std::fprintf(stderr, "%s%s\n", text.c_str(), proofs::described(call).c_str());
        if (proofs::sharesMemory(call))
            continue;
        const bool isHeld = keepsToRules(call);
        const bool isKnown = isHeld && keepsPitches(call);
        const bool isFitted = isKnown && random.oneIn(2);
        const Areas areas = isKnown ? proofs::touched(call) : Areas();
        const Areas written = isKnown && row.writes ? row.writes(call) : Areas();
        std::vector<std::unique_ptr<Alone>> surfaces;
        for (std::size_t i = 0; i < call.size(); ++i) {
            if (!proofs::fencedPlane(call, i))
                continue;
            Plane &plane = *call[i].surface();
            const Box part = isFitted ? needed(areas, row.arguments[i].name, plane) : Box(plane.rect());
            const Plane content = plane.holds(part) ? plane.cutTo(part, Fence::none) : plane;
            surfaces.push_back(std::make_unique<Alone>(content, random.oneIn(2)));
            plane = surfaces.back()->plane;
        }
        if (isHeld && leavesOutlines(call, proofs::touched(call)))
            continue;
        const Call before = call;
        messages.clear();
        const End end = endOf(row.functions.library(call));
        made += messages.empty();
        if (end == End::takesTooLong && fuzz::tellsCalls())
            std::fprintf(stderr, "%stakes too long\n", text.c_str());
        if (end == End::touchesOtherMemory)
            ADD_FAILURE() << text << "touches other memory" << (isFitted ? " than it needs: " : ": ")
                          << proofs::described(call);
        for (std::size_t i = 0; i < call.size() && isKnown && messages.empty() && end == End::returns; ++i) {
            const std::string_view name = row.arguments[i].name;
            if (!proofs::fencedPlane(call, i))
                continue;
            const std::string outside = proofs::writtenOutside(*before[i].surface(), *call[i].surface(), written, name);
            EXPECT_TRUE(outside.empty()) << text << "writes outside of its region: " << outside << ": "
                                         << proofs::described(call);
        }
    }
    q_Mur_checked_handle(nullptr, nullptr);
    EXPECT_GT(made, 0);
}

INSTANTIATE_TEST_SUITE_P(rows, Far, testing::ValuesIn(rowsThatAreMoved()), [](const auto &test) {
    std::string name = test.param->fullName();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == ' ' || c == '-'; }, '_');
    return name;
});

} // namespace

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    Init_qMur_GlobalData(nullptr, nullptr);
    tellOfMemory = [](const void *memory, std::size_t bytes) {
        const auto words = static_cast<int>(bytes / 4);
        q_Mur_checked_surface(memory, words, words > 0 ? 1 : 0);
    };
    for (const int signal : {SIGSEGV, SIGVTALRM})
        std::signal(signal, [](int which) { siglongjmp(leftCall, which); });
    return RUN_ALL_TESTS();
}
