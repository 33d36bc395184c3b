#include "memory.h"

#include "q_Mur/checked.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <string_view>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#include <sys/mman.h>
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

/// The piece kept in mind that a pointer leads into; the end if there is none.
std::map<Address, Piece>::iterator holderOf(const void *pointer) {
    auto &all = pieces().byBegin;
    auto behind = all.upper_bound(addressOf(pointer));
    if (behind == all.begin())
        return all.end();
    --behind;
    return addressOf(pointer) < addressOf(behind->second.end()) ? behind : all.end();
}

#if defined(__GLIBC__) && defined(__LP64__)

// The heap may be asked for the size of its own blocks alone, and of a pointer it cannot be asked whether it is one. So
// the two words before it are looked at, which are the heap's if it is: the size of a block with flags in its lowest
// bits, and of a block that stands alone the bytes before it.

constexpr Address flagInUse = 1;
constexpr Address flagAlone = 2;
constexpr Address flags = 7;
constexpr Address leastBlock = 32;

/// Where the heap begins that grows behind the program.
Address heapBegin() {
    static const Address begin = [] {
        unsigned long long found = 0;
        if (std::FILE *maps = std::fopen("/proc/self/maps", "r")) {
            char line[512];
            while (std::fgets(line, sizeof line, maps)) {
                unsigned long long first = 0;
                char name[16] = "";
                if (std::sscanf(line, "%llx-%*s %*s %*s %*s %*s %15s", &first, name) == 2 &&
                    std::string_view(name) == "[heap]")
                    found = first;
            }
            std::fclose(maps);
        }
        return static_cast<Address>(found);
    }();
    return begin;
}

bool isMapped(Address begin, std::size_t bytes) {
    const auto page = static_cast<Address>(sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> states(bytes / page + 2);
    return begin % page == 0 && mincore(reinterpret_cast<void *>(begin), bytes, states.data()) == 0;
}

const Address *headOf(Address block) {
    return reinterpret_cast<const Address *>(block);
}

bool isBlockOfHeap(Address pointer) {
    constexpr Address headBytes = 2 * sizeof(Address);
    if (pointer % headBytes != 0 || pointer % 4096 == 0)
        return false;
    const Address block = pointer - headBytes;
    const Address bytes = headOf(block)[1] & ~flags;
    if (bytes < leastBlock || bytes % headBytes != 0)
        return false;
    if (headOf(block)[1] & flagAlone)
        return headOf(block)[0] == 0 && bytes % 4096 == 0 && isMapped(block, bytes);
    const auto end = addressOf(sbrk(0));
    if (heapBegin() == 0 || block < heapBegin() || block >= end)
        return false;
    Address next = block;
    for (int i = 0; i < 2; ++i) { // the blocks behind it are blocks, too
        const Address size = headOf(next)[1] & ~flags;
        if (size < leastBlock || size % headBytes != 0 || size > end - next)
            return false;
        next += size;
        if (next + headBytes >= end)
            return true;
        if (i == 0 && !(headOf(next)[1] & flagInUse))
            return false;
    }
    return true;
}

std::optional<Piece> blockOfHeap(const void *pointer) {
    if (!pointer || !isBlockOfHeap(addressOf(pointer)))
        return {};
    void *const begin = const_cast<void *>(pointer);
    return Piece{static_cast<std::byte *>(begin), malloc_usable_size(begin)};
}

#else

std::optional<Piece> blockOfHeap(const void *) {
    return {};
}

#endif

} // namespace

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

void forgetAt(const void *pointer) {
    const std::unique_lock<std::shared_mutex> lock(pieces().guard);
    const auto found = holderOf(pointer);
    if (found != pieces().byBegin.end())
        pieces().byBegin.erase(found);
}

std::optional<Piece> pieceAt(const void *pointer) {
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
        checked::forgetAt(pixels);
        return;
    }
    constexpr std::ptrdiff_t pixelBytes = 4;
    auto *begin = static_cast<std::byte *>(const_cast<void *>(pixels));
    if (pitch < 0)
        begin += pixelBytes * pitch * (height - 1);
    const auto bytes = static_cast<std::size_t>(pixelBytes * std::abs(pitch) * height);
    checked::remember({begin, bytes, height > 1 ? std::abs(pitch) : 0});
}
