/// \file
/// One call of an exported function: a value for each argument and what came back.
#ifndef Q_MUR_CATALOGUE_CALL_H
#define Q_MUR_CATALOGUE_CALL_H

#include "blocks.h"
#include "plane.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace catalogue {

struct Row;

/// What an argument is in a call. Numbers of all kinds are doubles, which hold each of them exactly.
class Value {
public:
    Value() = default;
    Value(double number) : content(number) {}
    Value(const tagRECT &rect) : content(rect) {}
    Value(const tagPOINT &point) : content(point) {}
    Value(Plane plane) : content(std::move(plane)) {}
    Value(PipelineBlock block) : content(std::move(block)) {}
    Value(TexturedBlock block) : content(std::move(block)) {}
    Value(RegionBlock block) : content(std::move(block)) {}
    Value(PhaseBlock block) : content(block) {}

    double number() const { return get<double>(); }
    int whole() const { return static_cast<int>(static_cast<unsigned>(static_cast<std::int64_t>(number()))); }
    q_ulong word() const { return static_cast<q_ulong>(static_cast<std::int64_t>(number())); }
    tagRECT &rect() { return get<tagRECT>(); }
    const tagRECT &rect() const { return get<tagRECT>(); }
    tagPOINT &point() { return get<tagPOINT>(); }
    const tagPOINT &point() const { return get<tagPOINT>(); }
    Plane &plane() { return get<Plane>(); }
    const Plane &plane() const { return get<Plane>(); }

    /// The memory that areas of this argument are parts of: the plane itself, or the Z plane of a private block. Null
    /// where there is none.
    const Plane *surface() const;
    Plane *surface() { return const_cast<Plane *>(std::as_const(*this).surface()); }

    /// Gives a private block a Z plane of the shape of its destination.
    void fitTo(const Plane &destination);

    template <class Content>
    bool is() const {
        return std::holds_alternative<Content>(content);
    }
    template <class Content>
    Content &get() {
        return std::get<Content>(content);
    }
    template <class Content>
    const Content &get() const {
        return std::get<Content>(content);
    }

    Value copy(Copies &copies) const;
    Value turnedOver(Copies &copies) const;
    std::string differenceFrom(const Value &expected) const;

    /// Takes over the content of a value of the same shape, in place.
    void restore(const Value &earlier);

    /// Adds the bytes of the content to a checksum: those of planes whole, margins included.
    void addTo(std::uint64_t &checksum) const;

private:
    /// A copy with `own(plane)` in place of each plane.
    template <class Own>
    Value copyWith(Own own) const;

    std::variant<std::monostate, double, tagRECT, tagPOINT, Plane, PipelineBlock, TexturedBlock, RegionBlock,
                 PhaseBlock>
        content;
};

class Call {
public:
    explicit Call(const Row &described);
    Call(const Call &other);
    Call(Call &&) = default;
    Call &operator=(Call &&) = default;

    /// A call whose planes are the very same memory.
    Call sharingMemory() const;

    /// A copy whose planes are stored bottom-up, or top-down where they are that now, with pitches to match.
    Call turnedOver() const;

    /// Puts the content of everything but surfaces back to what it is in a copy of this call made earlier.
    void restore(const Call &earlier);

    const Row &row() const { return *description; }

    /// The value of the argument of that name.
    Value &operator[](std::string_view name) { return values[indexOf(name)]; }
    const Value &operator[](std::string_view name) const { return values[indexOf(name)]; }
    Value &operator[](std::size_t index) { return values[index]; }
    const Value &operator[](std::size_t index) const { return values[index]; }
    std::size_t size() const { return values.size(); }

    /// Gives values to several arguments.
    void set(std::initializer_list<std::pair<std::string_view, Value>> named) {
        for (const auto &[name, value] : named)
            (*this)[name] = value;
    }

    /// Sets every pitch from the plane that it belongs to, and fits Z planes to their destinations.
    void settle();

    /// Keeps what a function returned. The fourth word of a returned point means nothing.
    template <class Result>
    void keep(Result returned) {
        if constexpr (requires { returned.w; })
            returned.w = 0;
        result.resize(sizeof(Result));
        std::memcpy(result.data(), &returned, sizeof(Result));
    }
    template <class Result>
    Result returned() const {
        Result value;
        std::memcpy(&value, result.data(), sizeof(Result));
        return value;
    }

    /// What differs first from the outcome of another call of the same function, in words; empty if nothing does.
    std::string differenceFrom(const Call &expected) const;

    /// Adds the outcome to a checksum.
    void addTo(std::uint64_t &checksum) const;

private:
    std::size_t indexOf(std::string_view name) const;

    const Row *description;
    std::vector<Value> values;
    std::vector<unsigned char> result;
};

} // namespace catalogue

#endif
