#include "call.h"

#include "row.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace catalogue {
namespace {

/// Folds bytes in, eight at a time in the manner of FNV-1a, and brings a product's upper bits down, which a
/// multiplication never does.
void addBytes(std::uint64_t &checksum, const void *bytes, std::size_t count) {
    const auto *byte = static_cast<const unsigned char *>(bytes);
    while (count > 0) {
        const std::size_t taken = std::min<std::size_t>(count, 8);
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < taken; ++i)
            word |= std::uint64_t{byte[i]} << 8 * i;
        checksum = (checksum ^ word) * 0x100000001B3u;
        checksum ^= checksum >> 29;
        byte += taken;
        count -= taken;
    }
}

void add(std::uint64_t &checksum, const Plane &plane) {
    addBytes(checksum, plane.bytes().data(), plane.bytes().size());
}

template <class Part>
void add(std::uint64_t &checksum, const Part &part) {
    static_assert(std::has_unique_object_representations_v<Part> || std::is_same_v<Part, _I3DMATRIX> ||
                  std::is_same_v<Part, _I3DVECTOR>);
    addBytes(checksum, &part, sizeof part);
}

/// Calls `visit(name, part, other part)` for all parts of two blocks side by side.
template <class Block, class Visit>
void eachPair(Block &block, const std::remove_const_t<Block> &other, Visit visit) {
    std::vector<const void *> others;
    const auto note = [&others](const char *, const auto &part) { others.push_back(&part); };
    Block::eachKept(other, note);
    Block::eachPart(other, note);
    auto next = others.begin();
    const auto pass = [&]<class Part>(const char *name, Part &part) {
        visit(name, part, *static_cast<const Part *>(*next++));
    };
    Block::eachKept(block, pass);
    Block::eachPart(block, pass);
}

template <class Block>
std::string differenceBetween(const Block &result, const Block &expected) {
    std::string found;
    eachPair(result, expected, [&found]<class Part>(const char *name, const Part &part, const Part &other) {
        std::string difference;
        if constexpr (std::is_same_v<Part, Plane>)
            difference = part.differenceFrom(other);
        else if (std::memcmp(&part, &other, sizeof part) != 0)
            difference = "differs";
        if (found.empty() && !difference.empty())
            found = name + (": " + difference);
    });
    // The mappers of the older module have no names: a twin can say no more than whether there is one.
    if constexpr (std::is_same_v<Block, TexturedBlock>)
        if (found.empty() && !result.data.spanMapper != !expected.data.spanMapper)
            found = "spanMapper differs";
    return found;
}

} // namespace

const Plane *Value::surface() const {
    const Plane *plane = std::visit(
        [](const auto &held) -> const Plane * {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, Plane>)
                return &held;
            else if constexpr (requires { held.depths; })
                return &held.depths;
            else
                return nullptr;
        },
        content);
    return plane && !plane->isNull() ? plane : nullptr;
}

void Value::fitTo(const Plane &destination) {
    std::visit(
        [&](auto &held) {
            if constexpr (requires { held.depths; })
                fitDepths(held.depths, destination);
        },
        content);
}

template <class Own>
Value Value::copyWith(Own own) const {
    Value copied = *this;
    const auto pass = [&own](const char *, auto &part) {
        if constexpr (std::is_same_v<std::decay_t<decltype(part)>, Plane>)
            part = own(part);
    };
    std::visit(
        [&]<class Held>(Held &held) {
            if constexpr (IsBlock<Held>)
                Held::eachPart(held, pass);
            else
                pass("", held);
        },
        copied.content);
    return copied;
}

Value Value::copy(Copies &copies) const {
    return copyWith([&copies](const Plane &plane) { return plane.copy(copies); });
}

Value Value::turnedOver(Copies &copies) const {
    Value turned = copyWith([&copies](const Plane &plane) { return plane.turnedOver(copies); });
    std::visit(
        []<class Held>(Held &held) {
            if constexpr (IsBlock<Held>)
                held.settled();
        },
        turned.content);
    return turned;
}

void Value::restore(const Value &earlier) {
    std::visit(
        [&]<class Held>(Held &held) {
            const auto &other = std::get<Held>(earlier.content);
            if constexpr (IsBlock<Held>) {
                held.data = other.data;
                eachPair(held, other, []<class Part>(const char *, Part &part, const Part &was) {
                    if constexpr (std::is_same_v<Part, Plane>)
                        part.restore(was);
                    else
                        part = was;
                });
                held.settled();
            } else if constexpr (std::is_same_v<Held, Plane>) {
                held.restore(other);
            } else {
                held = other;
            }
        },
        content);
}

std::string Value::differenceFrom(const Value &expected) const {
    if (content.index() != expected.content.index())
        return "values of different kinds";
    return std::visit(
        [&]<class Held>(const Held &held) -> std::string {
            const auto &other = std::get<Held>(expected.content);
            if constexpr (IsBlock<Held>)
                return differenceBetween(held, other);
            else if constexpr (std::is_same_v<Held, Plane>)
                return held.differenceFrom(other);
            else if constexpr (std::is_same_v<Held, double>)
                return held == other || (held != held && other != other) ? "" : "a number differs";
            else if constexpr (std::is_same_v<Held, std::monostate>)
                return {};
            else
                return std::memcmp(&held, &other, sizeof held) == 0 ? "" : "a record differs";
        },
        content);
}

void Value::addTo(std::uint64_t &checksum) const {
    std::visit(
        [&]<class Held>(const Held &held) {
            if constexpr (IsBlock<Held>)
                Held::eachPart(held, [&checksum](const char *, const auto &part) { add(checksum, part); });
            else if constexpr (!std::is_same_v<Held, double> && !std::is_same_v<Held, std::monostate>)
                add(checksum, held);
        },
        content);
}

Call::Call(const Row &described) : description(&described), values(described.arguments.size()) {}

Call::Call(const Call &other) : description(other.description), result(other.result) {
    Copies copies;
    values.reserve(other.values.size());
    for (const Value &value : other.values)
        values.push_back(value.copy(copies));
}

Call Call::turnedOver() const {
    Call call(*description);
    call.result = result;
    Copies copies;
    for (std::size_t i = 0; i < values.size(); ++i)
        call.values[i] = values[i].turnedOver(copies);
    call.settle();
    return call;
}

Call Call::sharingMemory() const {
    Call call(*description);
    call.values = values;
    return call;
}

void Call::restore(const Call &earlier) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!isSurface(description->arguments[i].kind))
            values[i].restore(earlier.values[i]);
    }
}

void Call::settle() {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Argument &argument = description->arguments[i];
        if (argument.kind == Kind::privateBlock && !argument.of.empty())
            values[i].fitTo((*this)[argument.of].plane());
        if (argument.kind != Kind::pitch)
            continue;
        const Plane &plane = (*this)[argument.of].plane();
        values[i] = argument.unit == "bytes" ? plane.pitch() * plane.elementBytes() : plane.pitch();
    }
}

std::string Call::differenceFrom(const Call &expected) const {
    if (result != expected.result)
        return "the result differs";
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string difference = values[i].differenceFrom(expected.values[i]);
        if (!difference.empty())
            return std::string(description->arguments[i].name) + ": " + difference;
    }
    return {};
}

void Call::addTo(std::uint64_t &checksum) const {
    addBytes(checksum, result.data(), result.size());
    for (const Value &value : values)
        value.addTo(checksum);
}

std::size_t Call::indexOf(std::string_view name) const {
    for (std::size_t i = 0; i < description->arguments.size(); ++i)
        if (description->arguments[i].name == name)
            return i;
    std::fprintf(stderr, "%s has no argument %s\n", description->fullName().c_str(), std::string(name).c_str());
    std::abort();
}

} // namespace catalogue
