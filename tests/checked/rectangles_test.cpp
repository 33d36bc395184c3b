/// \file
/// Rectangles that are inverted, far away or so large that positions wrap: whatever a row's functions make of them, the
/// checked library names the call, or it keeps to memory that has nothing beside it.
#include "catalogue/row.h"
#include "proofs/regions.h"
#include "q_Mur/checked.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
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

/// The call that is being made, for whoever reads of its end.
std::string current;

/// A surface in the middle of addresses that nobody may touch. At one of its ends it reaches as far as its pages do.
class Alone {
public:
    /// The distance to other memory, either way.
    static constexpr std::size_t around = sizeof(void *) == 8 ? std::size_t{1} << 34 : std::size_t{1} << 26;

    Alone(const Plane &content, bool isAtBegin) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t bytes = content.bytes().size();
        const std::size_t used = (bytes + page - 1) / page * page;
        length = 2 * around + used;
        void *const all = mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (all == MAP_FAILED)
            std::abort();
        mapping = static_cast<std::byte *>(all);
        std::byte *const pages = mapping + around;
        if (mprotect(pages, used, PROT_READ | PROT_WRITE) != 0)
            std::abort();
        first = isAtBegin ? pages : pages + used - bytes;
        std::memcpy(first, content.bytes().data(), bytes);
        q_Mur_checked_surface(first, static_cast<int>(bytes / 4), 1);
        plane = Plane::over(first, content.elementBytes(), content.pitch(), std::make_shared<Memory>(first, bytes));
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

bool isRectangle(const Argument &argument) {
    return argument.kind == Kind::rectangle || argument.kind == Kind::clip;
}

bool isWaived(const Row &row, std::initializer_list<std::string_view> proofs) {
    return std::any_of(row.waived.begin(), row.waived.end(), [proofs](const Waiver &waiver) {
        return std::find(proofs.begin(), proofs.end(), waiver.proof) != proofs.end();
    });
}

/// Rows that have rectangles, unless what they do may never end.
std::vector<const Row *> rowsWithRectangles() {
    std::vector<const Row *> rows;
    forEachRow([&rows](const Row &row) {
        const bool takesATrial =
            std::any_of(row.rules.begin(), row.rules.end(), [](const Rule &rule) { return rule.takesATrial; });
        if (!isWaived(row, {"every proof"}) && !takesATrial &&
            std::any_of(row.arguments.begin(), row.arguments.end(), isRectangle))
            rows.push_back(&row);
    });
    return rows;
}

/// Whether each step of a way counts, also far away, which takes too long.
bool walksFar(const Row &row) {
    return isWaived(
        row, {"clips_hold_at_the_ends_of_numbers", "empty_clips_at_the_ends_of_numbers", "numbers_at_their_ends"});
}

q_long inWord(std::int64_t number) {
    constexpr auto limits = std::numeric_limits<std::int32_t>();
    return static_cast<q_long>(std::clamp<std::int64_t>(number, limits.min(), limits.max()));
}

/// A side beside where formats of positions end, beside the ends of numbers, or beside where it was.
q_long anySide(q_long side, bool isNear, Random &random) {
    if (isNear || random.oneIn(3))
        return inWord(std::int64_t{side} + random.between(-30, 30));
    const std::int64_t end = std::int64_t{1} << random.between(8, 31);
    const int times = random.oneIn(3) ? random.between(1, 40) : 1;
    return inWord((random.oneIn(2) ? end : -end) * times + random.between(-20, 20));
}

void moveSides(Call &call, Random &random) {
    std::vector<tagRECT *> rectangles;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (isRectangle(call.row().arguments[i]) && call[i].is<tagRECT>())
            rectangles.push_back(&call[i].rect());
    if (rectangles.empty())
        return;
    tagRECT &rect = *rectangles[static_cast<std::size_t>(random.between(0, static_cast<int>(rectangles.size()) - 1))];
    const bool isNear = walksFar(call.row());
    q_long *const ends[2][2] = {{&rect.left, &rect.right}, {&rect.top, &rect.bottom}};
    for (const auto &[begin, end] : ends) {
        switch (random.between(0, 4)) {
        case 0:
            *begin = anySide(*begin, isNear, random);
            break;
        case 1:
            *end = anySide(*end, isNear, random);
            break;
        case 2: // moved as a whole
            *begin = anySide(*begin, isNear, random);
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

/// What outlines say is not held against memory, so that calls which leave an outline are not tried, unless a rule
/// names them.
bool leavesOutlines(const Call &call) {
    if (!std::all_of(call.row().rules.begin(), call.row().rules.end(),
                     [&call](const Rule &rule) { return rule.holds(call); }))
        return false;
    const Areas areas = proofs::touched(call);
    return std::any_of(areas.begin(), areas.end(), [&call](const Area &area) {
        const Plane *plane = call[area.argument].surface();
        return area.isAtMost && plane && !plane->holds(area.part);
    });
}

class Rectangles : public testing::TestWithParam<const Row *> {};

TEST_P(Rectangles, are_named_or_harmless) {
    const Row &row = *GetParam();
    std::vector<std::string> messages;
    q_Mur_checked_doubts(0);
    q_Mur_checked_handle(
        [](const char *message, void *all) { static_cast<std::vector<std::string> *>(all)->push_back(message); },
        &messages);
    int made = 0;
    int named = 0;
    for (std::uint64_t number = 0; number < 400; ++number) {
        Random random(number);
        Call call = randomCall(row, random);
        moveSides(call, random);
        if (proofs::sharesMemory(call))
            continue;
        std::vector<std::unique_ptr<Alone>> surfaces;
        for (std::size_t i = 0; i < call.size(); ++i) {
            if (!isSurface(row.arguments[i].kind) || !call[i].is<Plane>() || call[i].plane().isNull())
                continue;
            const Plane &plane = call[i].plane();
            const Box whole = plane.rect();
            surfaces.push_back(std::make_unique<Alone>(plane.cutTo(whole, Fence::none), random.oneIn(2)));
            call[i] = surfaces.back()->plane;
        }
        if (leavesOutlines(call))
            continue;
        current = row.fullName() + ": " + proofs::described(call);
        messages.clear();
        row.functions.library(call)();
        ++(messages.empty() ? made : named);
    }
    q_Mur_checked_handle(nullptr, nullptr);
    EXPECT_GT(made, 0);
    const bool hasClipsAlone = std::none_of(row.arguments.begin(), row.arguments.end(),
                                            [](const Argument &argument) { return argument.kind == Kind::rectangle; });
    EXPECT_TRUE(named > 0 || hasClipsAlone);
}

INSTANTIATE_TEST_SUITE_P(rows, Rectangles, testing::ValuesIn(rowsWithRectangles()), [](const auto &test) {
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
    std::signal(SIGSEGV, [](int) {
        std::fprintf(stderr, "touches other memory: %s\n", current.c_str());
        std::_Exit(1);
    });
    return RUN_ALL_TESTS();
}
