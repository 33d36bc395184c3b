#include "call.h"

#include "row.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace catalogue {
namespace {

/// Folds bytes in, eight at a time in the manner of FNV-1a, and turns what is multiplied into the lower bits.
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

template <class Field>
void addField(std::uint64_t &checksum, const Field &field) {
    static_assert(std::has_unique_object_representations_v<Field> || std::is_same_v<Field, _I3DMATRIX> ||
                  std::is_same_v<Field, _I3DVECTOR>);
    addBytes(checksum, &field, sizeof field);
}

void add(std::uint64_t &checksum, const PipelineBlock &block) {
    addField(checksum, block.data.workMatrix);
    addField(checksum, block.data.workAxis);
    for (const int field : {block.data.modelDepth, block.data.viewDepth, block.data.matrixMode, block.data.viewportLeft,
                            block.data.viewportRight, block.data.viewportTop, block.data.viewportBottom,
                            block.data.nearLimit, block.data.farLimit, block.data.focalLength})
        addField(checksum, field);
    for (const Plane *plane :
         {&block.modelStack, &block.viewStack, &block.vertexArray0, &block.vertexArray1, &block.depths})
        add(checksum, *plane);
}

void add(std::uint64_t &checksum, const TexturedBlock &block) {
    for (const Plane *plane : {&block.vertexArray0, &block.vertexArray1, &block.depths})
        add(checksum, *plane);
}

void add(std::uint64_t &checksum, const RegionBlock &block) {
    for (const int pitch : {block.data.planePitch, block.data.destPitch, block.data.testPitch})
        addField(checksum, pitch);
    for (const Plane *plane : {&block.plane, &block.destSurface, &block.testSurface})
        add(checksum, *plane);
}

void add(std::uint64_t &checksum, const PhaseBlock &block) {
    addField(checksum, block.data.phase);
}

std::string numberDifference(double result, double expected) {
    return result == expected || (result != result && expected != expected) ? "" : "a number differs";
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
            if constexpr (requires { held.fitTo(destination); })
                held.fitTo(destination);
        },
        content);
}

Value Value::copy(Copies &copies) const {
    return std::visit(
        [&](const auto &held) -> Value {
            if constexpr (requires { held.copy(copies); })
                return held.copy(copies);
            else
                return *this;
        },
        content);
}

void Value::restore(const Value &earlier) {
    std::visit(
        [&](auto &held) {
            const auto &other = std::get<std::decay_t<decltype(held)>>(earlier.content);
            if constexpr (requires { held.restore(other); })
                held.restore(other);
            else
                held = other;
        },
        content);
}

std::string Value::differenceFrom(const Value &expected) const {
    if (content.index() != expected.content.index())
        return "values of different kinds";
    return std::visit(
        [&](const auto &held) -> std::string {
            using Held = std::decay_t<decltype(held)>;
            const auto &other = [&]() -> const auto & {
                return std::get<Held>(expected.content);
            }
            ();
            if constexpr (requires { held.differenceFrom(other); })
                return held.differenceFrom(other);
            else if constexpr (std::is_same_v<Held, double>)
                return numberDifference(held, other);
            else if constexpr (std::is_same_v<Held, std::monostate>)
                return {};
            else
                return std::memcmp(&held, &other, sizeof held) == 0 ? "" : "a record differs";
        },
        content);
}

void Value::addTo(std::uint64_t &checksum) const {
    std::visit(
        [&](const auto &held) {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (requires { add(checksum, held); })
                add(checksum, held);
            else if constexpr (std::is_same_v<Held, tagRECT> || std::is_same_v<Held, tagPOINT>)
                addField(checksum, held);
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

Call Call::sharingMemory() const {
    Call call(*description);
    call.values = values;
    return call;
}

void Call::restore(const Call &earlier) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Kind kind = description->arguments[i].kind;
        if (kind != Kind::destination && kind != Kind::source && kind != Kind::scratch)
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
