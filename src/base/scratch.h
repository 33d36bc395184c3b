/// \file
/// Memory that a call needs only while it runs.
#ifndef Q_MUR_BASE_SCRATCH_H
#define Q_MUR_BASE_SCRATCH_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace qmur {

/// Elements from the heap, uninitialised, from the start of a cache line on. There are none if the heap has no room for
/// them, or if fewer than one were asked for.
template <class Element>
class Scratch {
public:
    Scratch() = default;
    explicit Scratch(long long count)
        : elements(canBeHad(count) ? std::malloc(static_cast<std::size_t>(count) * sizeof(Element) + slack) : nullptr) {
    }

    /// The same, all zero.
    static Scratch zeroed(long long count) {
        Scratch scratch;
        if (canBeHad(count))
            scratch.elements.reset(std::calloc(static_cast<std::size_t>(count) * sizeof(Element) + slack, 1));
        return scratch;
    }

    explicit operator bool() const { return elements != nullptr; }
    Element *data() const {
        const auto address = reinterpret_cast<std::uintptr_t>(elements.get());
        return reinterpret_cast<Element *>((address + slack) & ~static_cast<std::uintptr_t>(slack));
    }
    Element &operator[](long long index) const { return data()[index]; }

private:
    struct Free {
        void operator()(void *memory) const { std::free(memory); }
    };

    static constexpr std::size_t cacheLine = 64;
    static_assert(alignof(Element) <= cacheLine);
    /// What the heap's own alignment may leave missing.
    static constexpr std::size_t slack = cacheLine - 1;

    static constexpr bool canBeHad(long long count) {
        return count > 0 &&
               count <= (PTRDIFF_MAX - static_cast<long long>(slack)) / static_cast<long long>(sizeof(Element));
    }

    std::unique_ptr<void, Free> elements;
};

} // namespace qmur

#endif
