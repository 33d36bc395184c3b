#include "plane.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#elif !defined(__wasm__)
#include <sys/mman.h>
#include <unistd.h>
#endif
#if !defined(__wasm__)
#include <mutex>
#endif

namespace catalogue {
#if defined(__wasm__)

// One memory, every page of which can be read.

Memory::Memory(std::size_t bytes, Fence fence)
    : length(bytes), fencedAt(fence), first(static_cast<std::byte *>(::operator new(bytes))) {}

Memory::~Memory() {
    if (isOwn)
        ::operator delete(first);
}

#else

namespace {

#if defined(_WIN32)

std::size_t pageSize() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

std::byte *mapped(std::size_t bytes) {
    void *memory = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (!memory)
        throw std::bad_alloc();
    return static_cast<std::byte *>(memory);
}

void forbid(void *page, std::size_t bytes) {
    DWORD before;
    if (!VirtualProtect(page, bytes, PAGE_NOACCESS, &before))
        throw std::bad_alloc();
}

#else

std::size_t pageSize() {
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::byte *mapped(std::size_t bytes) {
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    return static_cast<std::byte *>(memory);
}

void forbid(void *page, std::size_t bytes) {
    if (mprotect(page, bytes, PROT_NONE) != 0)
        throw std::bad_alloc();
}

#endif

/// Pages with a fence that are not in use, kept since it takes the system long to make them.
struct FencedPages {
    std::mutex guard;
    std::map<std::pair<std::size_t, Fence>, std::vector<std::byte *>> kept;
};
FencedPages &fencedPages() {
    static auto *all = new FencedPages; // outlives whatever is given back late
    return *all;
}

std::byte *taken(std::size_t bytes, Fence fence) {
    const std::lock_guard<std::mutex> lock(fencedPages().guard);
    std::vector<std::byte *> &kept = fencedPages().kept[{bytes, fence}];
    if (kept.empty())
        return nullptr;
    std::byte *last = kept.back();
    kept.pop_back();
    return last;
}

} // namespace

Memory::Memory(std::size_t bytes, Fence fence) : length(bytes), fencedAt(fence), first(nullptr) {
    if (fence == Fence::none) {
        first = static_cast<std::byte *>(::operator new(bytes));
        tell(bytes);
        return;
    }
    const std::size_t page = pageSize();
    const std::size_t used = (bytes + page - 1) / page * page;
    mappedBytes = used + page;
    auto *pages = taken(mappedBytes, fence);
    if (!pages) {
        pages = mapped(mappedBytes);
        forbid(fence == Fence::before ? pages : pages + used, page);
    }
    mapping = pages;
    first = fence == Fence::before ? pages + page : pages + used - bytes;
    tell(bytes);
}

Memory::~Memory() {
    if (!isOwn)
        return;
    tell(0);
    if (!mapping) {
        ::operator delete(first);
        return;
    }
    const std::lock_guard<std::mutex> lock(fencedPages().guard);
    fencedPages().kept[{mappedBytes, fencedAt}].push_back(static_cast<std::byte *>(mapping));
}

#endif

void Memory::tell(std::size_t bytes) const {
    if (tellOfMemory)
        tellOfMemory(first, bytes);
}

Plane::Plane(int bytesOfElement, int width, int height, int margin, int extraPitch)
    : bytesEach(bytesOfElement), columns(width), rows(height), stride(width + 2 * margin + extraPitch) {
    const auto count = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height + 2 * margin);
    memory = std::make_shared<Memory>(count * static_cast<std::size_t>(bytesEach));
    std::memset(memory->data(), 0, memory->size());
    start = memory->data() + (static_cast<std::ptrdiff_t>(margin) * stride + margin) * bytesEach;
}

Plane Plane::surface(int width, int height, q_ulong colour, int extraPitch) {
    Plane plane(4, width, height, usualMargin, extraPitch);
    auto *pixels = static_cast<q_ulong *>(static_cast<void *>(plane.memory->data()));
    std::fill_n(pixels, plane.memory->size() / 4, colour);
    return plane;
}

Plane Plane::randomSurface(Random &random, int width, int height) {
    Plane plane = surface(width, height, 0, random.between(0, 3));
    auto *pixels = static_cast<q_ulong *>(static_cast<void *>(plane.memory->data()));
    random.inBulk(
        [&](Random &drawn) { std::generate_n(pixels, plane.memory->size() / 4, [&drawn] { return drawn.pixel(); }); });
    return plane;
}

Plane Plane::ofBytes(std::span<const std::byte> bytes) {
    Plane plane(4, static_cast<int>(bytes.size() / 4), 1);
    std::memcpy(plane.memory->data(), bytes.data(), bytes.size());
    return plane;
}

Plane Plane::over(void *origin, int bytesOfElement, int pitch, std::shared_ptr<Memory> known) {
    Plane plane;
    plane.memory = std::move(known);
    plane.start = static_cast<std::byte *>(origin);
    plane.bytesEach = bytesOfElement;
    plane.columns = std::abs(std::max(pitch, -std::numeric_limits<int>::max()));
    plane.rows = 1;
    plane.stride = pitch;
    return plane;
}

Plane Plane::copy(Copies &copies) const {
    Plane plane = *this;
    if (!memory)
        return plane;
    std::shared_ptr<Memory> &own = copies[memory.get()];
    if (!own) {
        own = std::make_shared<Memory>(memory->size(), memory->fence());
        std::memcpy(own->data(), memory->data(), memory->size());
    }
    plane.memory = own;
    plane.start = own->data() + (start - memory->data());
    return plane;
}

Plane Plane::turnedOver(Copies &copies) const {
    Plane plane = copy(copies);
    const std::ptrdiff_t rowBytes = static_cast<std::ptrdiff_t>(std::abs(stride)) * bytesEach;
    if (!memory || rowBytes == 0)
        return plane;
    const std::ptrdiff_t lastRow = static_cast<std::ptrdiff_t>(memory->size()) / rowBytes - 1;
    for (std::ptrdiff_t row = 0; row <= lastRow; ++row)
        std::memcpy(plane.memory->data() + (lastRow - row) * rowBytes, memory->data() + row * rowBytes,
                    static_cast<std::size_t>(rowBytes));
    const std::ptrdiff_t before = start - memory->data();
    plane.start = plane.memory->data() + (lastRow - before / rowBytes) * rowBytes + before % rowBytes;
    plane.stride = -stride;
    return plane;
}

void Plane::restore(const Plane &earlier) {
    if (memory)
        std::memcpy(memory->data(), earlier.memory->data(), memory->size());
}

Plane Plane::movedBy(int x, int y) const {
    Plane plane = *this;
    plane.start += (static_cast<std::ptrdiff_t>(y) * stride + x) * bytesEach;
    return plane;
}

Plane Plane::cutTo(const Box &part, Fence fence) const {
    Plane plane = *this;
    const bool empty = part.isEmpty();
    const std::int64_t first = empty ? 0 : (part.top * stride + part.left) * bytesEach;
    const std::int64_t end = empty ? 0 : ((part.bottom - 1) * stride + part.right) * bytesEach;
    plane.memory = std::make_shared<Memory>(static_cast<std::size_t>(end - first), fence);
    std::memcpy(plane.memory->data(), start + first, static_cast<std::size_t>(end - first));
    plane.start = plane.memory->data() - first;
    return plane;
}

bool Plane::isFar(const Box &part) const {
    constexpr std::int64_t beyond = std::int64_t{1} << 40; // elements that no memory has
    return part.left < -beyond || part.right > beyond ||
           (stride != 0 && (std::max(-part.top, part.bottom - 1) > beyond / std::abs(std::int64_t{stride})));
}

bool Plane::holds(const Box &part) const {
    if (part.isEmpty())
        return true;
    if (!memory)
        return !isNull();
    if (isFar(part))
        return false;
    const std::int64_t lastRow = part.bottom - 1;
    const auto [lowest, highest] = std::minmax({part.top * stride, lastRow * stride}); // bottom-up the last is lowest
    const std::int64_t first = (lowest + part.left) * bytesEach;
    const std::int64_t end = (highest + part.right) * bytesEach;
    const std::ptrdiff_t before = start - memory->data();
    return first >= -before && end <= static_cast<std::ptrdiff_t>(memory->size()) - before;
}

bool Plane::meets(const Box &part, const Plane &other, const Box &otherPart) const {
    constexpr std::int64_t mostRows = 65536;
    if (isNull() || other.isNull() || part.isEmpty() || otherPart.isEmpty() || isFar(part) || other.isFar(otherPart) ||
        part.height() > mostRows)
        return false;
    const auto addressOf = [](const std::byte *at) {
        return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(at));
    };
    const std::int64_t distance = addressOf(other.start) - addressOf(start);
    const std::int64_t rowBytes = std::int64_t{stride} * bytesEach;
    const std::int64_t otherRowBytes = std::int64_t{other.stride} * other.bytesEach;
    for (std::int64_t y = part.top; y < part.bottom; ++y) {
        // Of the other's rows those meet this one that begin before its end and end behind its beginning.
        std::int64_t low = y * rowBytes + part.left * bytesEach - distance - otherPart.right * other.bytesEach;
        std::int64_t high = y * rowBytes + part.right * bytesEach - distance - otherPart.left * other.bytesEach;
        std::int64_t step = otherRowBytes;
        if (step < 0) {
            std::swap(low, high);
            low = -low;
            high = -high;
            step = -step;
        }
        const auto below = [step](std::int64_t place) { // how many whole steps there are up to a place, rounded down
            return place / step - (place % step < 0);
        };
        const bool isMet =
            step == 0 ? low < 0 && high > 0
                      : std::max(below(low) + 1, otherPart.top) <= std::min(below(high - 1), otherPart.bottom - 1);
        if (isMet)
            return true;
    }
    return false;
}

std::span<const std::byte> Plane::bytes() const {
    return memory ? std::span<const std::byte>(memory->data(), memory->size()) : std::span<const std::byte>();
}

std::span<std::byte> Plane::bytes() {
    return memory ? std::span<std::byte>(memory->data(), memory->size()) : std::span<std::byte>();
}

tagPOINT Plane::placeOf(std::size_t byte) const {
    const std::ptrdiff_t before = (start - memory->data()) / bytesEach;
    const std::ptrdiff_t left = before % stride;
    const std::ptrdiff_t element = static_cast<std::ptrdiff_t>(byte) / bytesEach;
    return {static_cast<q_long>(element % stride - left), static_cast<q_long>(element / stride - before / stride)};
}

std::string Plane::differenceFrom(const Plane &expected) const {
    if (isNull() || expected.isNull())
        return isNull() == expected.isNull() ? "" : "one is null";
    if (memory->size() != expected.memory->size() || stride != expected.stride)
        return "the planes have different shapes";
    const std::byte *own = memory->data();
    const std::byte *other = expected.memory->data();
    const std::size_t size = memory->size();
    const auto byte = static_cast<std::size_t>(std::mismatch(own, own + size, other).first - own);
    if (byte == size)
        return {};
    const auto each = static_cast<std::size_t>(bytesEach);
    const auto wordAt = [each](const std::byte *at) {
        unsigned word = 0;
        std::memcpy(&word, at, each);
        return word;
    };
    const std::size_t element = byte / each * each;
    const tagPOINT place = placeOf(byte);
    char text[160];
    std::snprintf(text, sizeof text, "(%d, %d) of %d x %d is 0x%0*X instead of 0x%0*X", static_cast<int>(place.x),
                  static_cast<int>(place.y), columns, rows, bytesEach * 2, wordAt(own + element), bytesEach * 2,
                  wordAt(other + element));
    return text;
}

} // namespace catalogue
