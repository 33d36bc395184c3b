#include "memory.h"

#include "q_Mur/checked.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <string_view>

#if defined(_WIN32)
#include <windows.h>
#elif defined(__GLIBC__)
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>
#endif

namespace checked {
namespace {

using Address = std::uintptr_t;

struct Pieces {
    std::shared_mutex guard;
    std::map<Address, Piece> byBegin;
};
Pieces &pieces() {
    static auto *all = new Pieces; // outlives what calls at the very end
    return *all;
}

Address addressOf(const void *pointer) {
    return reinterpret_cast<Address>(pointer);
}

void forgetWithin(std::map<Address, Piece> &all, Address begin, std::size_t bytes) {
    all.erase(all.lower_bound(begin), all.lower_bound(begin + bytes));
}

/// The innermost piece kept in mind that a pointer leads into; the end if there is none.
std::map<Address, Piece>::iterator holderOf(const void *pointer) {
    auto &all = pieces().byBegin;
    auto behind = all.upper_bound(addressOf(pointer));
    while (behind != all.begin()) { // a surface may lie within another
        --behind;
        if (addressOf(pointer) < addressOf(behind->second.end()))
            return behind;
    }
    return all.end();
}

#if defined(__GLIBC__)

// What a pointer leads to may hold any bytes, those of a heap's block, too. So blocks are counted off from where the
// heap has put its first one: each begins with the size of the one before it and its own size, which has flags in its
// lowest bits. No host writes there. The bytes are asked of the system, which knows whether they can be read.

constexpr Address flagAlone = 2; // the block lies in pages of its own
constexpr Address flags = 7;
constexpr Address headBytes = 2 * sizeof(Address);
constexpr Address alignment = 16;               // of what a host is given
constexpr Address lead = alignment - headBytes; // before the head of the first block on a page
constexpr Address leastBlock = 2 * headBytes;
constexpr Address leastAlone = 128 * 1024; // unless a host asks for less
constexpr Address pageBytes = 4096;
constexpr int mostSteps = 4096;

struct Head {
    Address before;
    Address size;

    Address bytes() const { return size & ~flags; }
    bool isAlone() const { return (size & flags) == flagAlone && before == lead && (bytes() + lead) % pageBytes == 0; }
};

/// Pages of memory that follow each other.
struct Pages {
    Address begin = 0;
    Address end = 0;
};

/// Reads heads, a page's at a time.
class Heads {
public:
    std::optional<Head> at(Address block) {
        if (block % alignment != lead)
            return {};
        if (const Address wanted = block - block % pageBytes; wanted != page) {
            iovec here = {words.data(), pageBytes};
            iovec there = {reinterpret_cast<void *>(wanted), pageBytes};
            page = process_vm_readv(getpid(), &here, 1, &there, 1, 0) == ssize_t{pageBytes} ? wanted : nowhere;
            if (page == nowhere)
                return {};
        }
        const std::size_t word = block % pageBytes / sizeof(Address);
        return Head{words[word], words[word + 1]};
    }

private:
    static constexpr Address nowhere = 1;

    Address page = nowhere;
    std::array<Address, pageBytes / sizeof(Address)> words = {};
};

/// The heap that grows behind the program.
Pages heapPages() {
    static const Address begin = [] {
        constexpr int fieldsBefore = 44; // between the state and where the heap begins
        unsigned long long found = 0;
        if (std::FILE *stat = std::fopen("/proc/self/stat", "re")) {
            char line[1024];
            const char *rest = std::fgets(line, sizeof line, stat) ? std::strrchr(line, ')') : nullptr;
            for (int field = 0; rest && field <= fieldsBefore; ++field)
                rest = std::strchr(rest + 1, ' ');
            if (rest)
                found = std::strtoull(rest, nullptr, 10);
            std::fclose(stat);
        }
        return static_cast<Address>(found);
    }();
    return {begin, begin ? addressOf(sbrk(0)) : 0};
}

/// The pages of no file that hold an address; none where their beginning may have been cut off from others.
Pages pagesOfNoFile(Address address) {
    Pages found;
    if (std::FILE *maps = std::fopen("/proc/self/maps", "re")) {
        char line[512];
        Address endBefore = 0;
        while (std::fgets(line, sizeof line, maps)) {
            unsigned long long begin = 0;
            unsigned long long end = 0;
            char rights[8] = "";
            char name[16] = "";
            const int read = std::sscanf(line, "%llx-%llx %7s %*s %*s %*s %15s", &begin, &end, rights, name);
            if (read == 3 && address >= begin && address < end && begin != endBefore &&
                std::string_view(rights) == "rw-p")
                found = {static_cast<Address>(begin), static_cast<Address>(end)};
            if (address < end)
                break;
            endBefore = read == 3 ? static_cast<Address>(end) : 0;
        }
        std::fclose(maps);
    }
    return found;
}

/// Counts blocks off from the first one of some pages. \return whether one of them begins at an address
bool isReached(Address block, const Pages &pages, Heads &heads, bool isAlone) {
    Address next = pages.begin + lead;
    for (int step = 0; step < mostSteps && next < block; ++step) {
        const std::optional<Head> head = heads.at(next);
        if (!head || head->bytes() < (isAlone ? leastAlone : leastBlock) || head->bytes() > pages.end - next ||
            isAlone != head->isAlone())
            return false;
        next += head->bytes() + (isAlone ? lead : 0);
    }
    return next == block;
}

std::optional<Piece> blockOfHeap(const void *pointer) {
    const Address begin = addressOf(pointer);
    if (begin < pageBytes || begin % alignment != 0)
        return {};
    const Address block = begin - headBytes;
    Heads heads;
    const std::optional<Head> head = heads.at(block);
    const bool isAlone = head && head->isAlone() && block % pageBytes == lead;
    if (!head || head->bytes() < (isAlone ? leastAlone : leastBlock))
        return {};
    const Pages pages = isAlone ? pagesOfNoFile(block) : heapPages();
    if (block < pages.begin || block >= pages.end || head->bytes() > pages.end - block ||
        !isReached(block, pages, heads, isAlone))
        return {};
    // A block that has none of its own pages also has the first word of the next one.
    const Address bytes = head->bytes() - headBytes + (isAlone ? 0 : sizeof(Address));
    return Piece{static_cast<std::byte *>(const_cast<void *>(pointer)), bytes};
}

#elif defined(_WIN32)

/// Asks each heap whether a block of its own begins there, which it tells of any address.
std::optional<Piece> blockOfHeap(const void *pointer) {
    std::array<HANDLE, 64> heaps = {};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    for (DWORD i = 0; i < count && i < heaps.size(); ++i)
        if (HeapValidate(heaps[i], 0, pointer))
            return Piece{static_cast<std::byte *>(const_cast<void *>(pointer)), HeapSize(heaps[i], 0, pointer)};
    return {};
}

#else

std::optional<Piece> blockOfHeap(const void *) {
    return {};
}

#endif

thread_local constinit std::span<const Lent> lent = {};

} // namespace

Lending::Lending(std::span<const Lent> pieces) {
    lent = pieces;
}

Lending::~Lending() {
    lent = {};
}

void remember(const Piece &piece) {
    const std::unique_lock<std::shared_mutex> lock(pieces().guard);
    forgetWithin(pieces().byBegin, addressOf(piece.begin), piece.bytes);
    if (piece.bytes > 0)
        pieces().byBegin[addressOf(piece.begin)] = piece;
}

void forget(const void *begin, std::size_t bytes) {
    const std::unique_lock<std::shared_mutex> lock(pieces().guard);
    forgetWithin(pieces().byBegin, addressOf(begin), bytes);
}

void forgetTold(const void *first) {
    const std::unique_lock<std::shared_mutex> lock(pieces().guard);
    std::erase_if(pieces().byBegin, [first](const auto &each) { return first && each.second.first == first; });
}

std::optional<Piece> pieceAt(const void *pointer, int argument) {
    const Lent *known = nullptr;
    for (const Lent &each : lent)
        if (each.pointer == pointer && (!known || (each.argument == argument && known->argument != argument)))
            known = &each;
    if (known)
        return known->piece;
    {
        const std::shared_lock<std::shared_mutex> lock(pieces().guard);
        const auto found = holderOf(pointer);
        if (found != pieces().byBegin.end())
            return found->second;
    }
    return blockOfHeap(pointer);
}

} // namespace checked

void q_Mur_checked_surface(const void *pixels, int pitch, int height) {
    if (height <= 0) {
        checked::forgetTold(pixels);
        return;
    }
    constexpr std::ptrdiff_t pixelBytes = 4;
    auto *begin = static_cast<std::byte *>(const_cast<void *>(pixels));
    if (pitch < 0)
        begin += pixelBytes * pitch * (height - 1);
    const auto bytes = static_cast<std::size_t>(pixelBytes * std::abs(pitch) * height);
    checked::remember({.begin = begin, .bytes = bytes, .first = pixels, .pitch = height > 1 ? std::abs(pitch) : 0});
}
