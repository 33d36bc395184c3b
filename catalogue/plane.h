/// \file
/// Memory that a call reads and writes: surfaces, planes and arrays of elements.
#ifndef Q_MUR_CATALOGUE_PLANE_H
#define Q_MUR_CATALOGUE_PLANE_H

#include "random.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>

namespace catalogue {

/// Whether a page that may not be touched stands right beside a block of memory.
enum class Fence { none, before, behind };

/// A rectangle of elements. Unlike a `tagRECT` it holds whatever places and sizes of 32 bits add up to.
struct Box {
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t right = 0;
    std::int64_t bottom = 0;

    constexpr Box() = default;
    constexpr Box(std::int64_t l, std::int64_t t, std::int64_t r, std::int64_t b)
        : left(l), top(t), right(r), bottom(b) {}
    constexpr Box(const tagRECT &rect) : left(rect.left), top(rect.top), right(rect.right), bottom(rect.bottom) {}

    constexpr bool isEmpty() const { return left >= right || top >= bottom; }
    constexpr std::int64_t width() const { return right - left; }
    constexpr std::int64_t height() const { return bottom - top; }
    constexpr bool contains(const tagPOINT &place) const {
        return place.x >= left && place.x < right && place.y >= top && place.y < bottom;
    }
};

/// Is told of all memory that is made, and of 0 bytes where it goes; null where nobody wants to know.
inline void (*tellOfMemory)(const void *memory, std::size_t bytes) = nullptr;

/// A block of memory.
class Memory {
public:
    explicit Memory(std::size_t bytes, Fence fence = Fence::none);

    /// Memory of others, which stays theirs.
    Memory(std::byte *theirs, std::size_t bytes) : length(bytes), fencedAt(Fence::none), first(theirs), isOwn(false) {}
    ~Memory();
    Memory(const Memory &) = delete;
    Memory &operator=(const Memory &) = delete;

    std::byte *data() { return first; }
    std::size_t size() const { return length; }
    Fence fence() const { return fencedAt; }

private:
    void tell(std::size_t bytes) const;

    std::size_t length;
    Fence fencedAt;
    std::byte *first;
    bool isOwn = true;
    [[maybe_unused]] void *mapping = nullptr;
    [[maybe_unused]] std::size_t mappedBytes = 0;
};

/// Copies of blocks by their originals, so that planes which share a block still share one when they are copied.
using Copies = std::map<const Memory *, std::shared_ptr<Memory>>;

/// Rows of elements of 1, 2 or 4 bytes, with a margin around them. An array is a plane of one row.
class Plane {
public:
    /// A null pointer.
    Plane() = default;

    Plane(int bytesOfElement, int columns, int rows, int marginAround = 0, int extraPitch = 0);

    /// A surface of pixels in one colour with the usual margin.
    static Plane surface(int width, int height, q_ulong colour = 0, int extraPitch = 0);

    /// A surface of random pixels, margin included, with a random pitch.
    static Plane randomSurface(Random &random, int width, int height);

    /// A surface of the same shape in one colour.
    Plane alike(q_ulong colour = 0) const { return surface(columns, rows, colour, extraPitch()); }

    /// Numbers of 32 bits or records of them that `make(index)` makes one after the other.
    template <class Record, class Make>
    static Plane array(int count, Make make) {
        Plane plane(4, static_cast<int>(sizeof(Record) / 4) * count, 1);
        for (int i = 0; i < count; ++i)
            plane.as<Record>()[i] = make(i);
        return plane;
    }

    /// An array of records of 32-bit words: points, colours, matrices, numbers.
    template <class Record, std::size_t count>
    static Plane of(const Record (&records)[count]) {
        return ofBytes(std::as_bytes(std::span(records)));
    }
    template <class Record>
    static Plane of(const Record &record) {
        return ofBytes(std::as_bytes(std::span(&record, 1)));
    }
    template <class Record>
    static Plane of(std::span<const Record> records) {
        return ofBytes(std::as_bytes(records));
    }

    /// What others hand over: an element (0, 0), a pitch, and the memory that it is known to lie in; null where nothing
    /// is known.
    static Plane over(void *origin, int bytesOfElement, int pitch, std::shared_ptr<Memory> known);

    bool isNull() const { return !start; }
    int width() const { return columns; }
    int height() const { return rows; }
    int pitch() const { return stride; }
    int extraPitch() const { return stride - columns - 2 * usualMargin; }
    int elementBytes() const { return bytesEach; }
    tagRECT rect() const { return {0, 0, columns, rows}; }

    /// The element (0, 0), as the library gets it.
    void *origin() const { return start; }
    template <class Element>
    Element *as() const {
        return static_cast<Element *>(static_cast<void *>(start));
    }

    /// A pixel of a surface or its margin.
    q_ulong &at(int x, int y) const { return as<q_ulong>()[static_cast<std::ptrdiff_t>(y) * stride + x]; }

    /// Sets the elements of a part row after row to what `make(x, y)` gives.
    template <class Element = q_ulong, class Make>
    const Plane &fill(const Box &part, Make make) const {
        for (std::int64_t y = part.top; y < part.bottom; ++y)
            for (std::int64_t x = part.left; x < part.right; ++x)
                as<Element>()[y * stride + x] = static_cast<Element>(make(static_cast<int>(x), static_cast<int>(y)));
        return *this;
    }

    /// A plane of its own with the same content; one block is copied once.
    Plane copy(Copies &copies) const;

    /// Such a copy whose rows stand in memory in the other order, so that its pitch has the other sign.
    Plane turnedOver(Copies &copies) const;

    /// Takes over the content of a plane of the same shape, in place.
    void restore(const Plane &earlier);

    /// The same elements seen from (x, y) on.
    Plane movedBy(int x, int y) const;

    /// A copy whose memory reaches from the first to behind the last element of `part` and no further.
    Plane cutTo(const Box &part, Fence fence) const;

    /// Whether the memory of the elements of `part` belongs to this plane, as far as its memory is known.
    bool holds(const Box &part) const;

    /// Whether elements of a part and of a part of another plane lie in the same memory; of more than 65536 rows nobody
    /// asks.
    bool meets(const Box &part, const Plane &other, const Box &otherPart) const;

    /// All of the memory, and the column and row of the element at a byte of it.
    std::span<const std::byte> bytes() const;
    std::span<std::byte> bytes();
    tagPOINT placeOf(std::size_t byte) const;

    /// What differs first from a plane of the same shape, in words; empty if nothing does.
    std::string differenceFrom(const Plane &expected) const;

    static constexpr int usualMargin = 8;

private:
    static Plane ofBytes(std::span<const std::byte> bytes);

    /// Whether a part lies so far away that no memory has its elements.
    bool isFar(const Box &part) const;

    std::shared_ptr<Memory> memory;
    std::byte *start = nullptr;
    int bytesEach = 0;
    int columns = 0;
    int rows = 0;
    int stride = 0;
};

} // namespace catalogue

#endif
