/// \file
/// The catalogue's seeded cases for programs in other languages: what a call is handed, what it has to leave behind,
/// and whether it did. One case is open at a time.
#include "catalogue/row.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace catalogue;

std::vector<const Row *> rows;
std::optional<Call> given;
std::optional<Call> expected;
std::string text;

template <std::size_t bytes>
struct Bytes {
    std::array<unsigned char, bytes> all;
};

template <class Element>
void copyIn(Element *to, const Plane &from) {
    if (!from.isNull())
        std::memcpy(to, from.bytes().data(), from.bytes().size());
}
template <class Element>
void copyOut(const Element *from, Plane &to) {
    if (!to.isNull())
        std::memcpy(to.bytes().data(), from, to.bytes().size());
}

/// The record `from` with the pointers of `own`.
template <class Data>
Data withPointersOf(const Data &own, Data from) {
    from.vertexArray0 = own.vertexArray0;
    from.vertexArray1 = own.vertexArray1;
    from.zPlane = own.zPlane;
    from.zBuffer = own.zBuffer;
    if constexpr (requires { from.modelStack; }) {
        from.modelStack = own.modelStack;
        from.viewStack = own.viewStack;
    }
    return from;
}

template <class Block>
void fillDrawing(Block &block, typename Block::Data &own) {
    own = withPointersOf(own, block.data);
    copyIn(own.vertexArray0, block.vertexArray0);
    copyIn(own.vertexArray1, block.vertexArray1);
    copyIn(own.zPlane, block.depths);
    if (block.depths.isNull())
        own.zPlane = own.zBuffer = nullptr;
    if constexpr (requires { block.modelStack; }) {
        copyIn(own.modelStack, block.modelStack);
        copyIn(own.viewStack, block.viewStack);
    }
}

/// Mappers have other addresses in another library: one that the call has set counts as the one that it sets here.
template <class Block>
void takeDrawing(Block &block, const Block &wanted, const typename Block::Data &own) {
    const auto mapper = own.spanMapper == block.data.spanMapper ? own.spanMapper : wanted.data.spanMapper;
    block.data = withPointersOf(block.data, own);
    block.data.spanMapper = mapper;
    copyOut(own.vertexArray0, block.vertexArray0);
    copyOut(own.vertexArray1, block.vertexArray1);
    copyOut(own.zPlane, block.depths);
    if constexpr (requires { block.modelStack; }) {
        copyOut(own.modelStack, block.modelStack);
        copyOut(own.viewStack, block.viewStack);
    }
}

template <class Block>
void shapeOf(const Block &block, int *shape) {
    shape[0] = block.depths.isNull() ? 0 : static_cast<int>(block.depths.bytes().size() / sizeof(short));
    shape[1] = block.depths.isNull() ? 0
                                     : static_cast<int>(block.depths.template as<const short>() -
                                                        reinterpret_cast<const short *>(block.depths.bytes().data()));
    shape[2] = static_cast<int>(block.vertexArray0.bytes().size() / sizeof(int));
    if constexpr (requires { block.modelStack; })
        shape[3] = static_cast<int>(block.modelStack.bytes().size() / sizeof(_I3DMATRIX));
}

} // namespace

// Kinds of values.
enum { nothing, number, rect, point, plane, pipeline, textured, region, phase };

struct PlaneInfo {
    void *memory;
    std::size_t bytes;
    std::ptrdiff_t origin; ///< the byte of element (0, 0)
    int elementBytes;
    int pitch;
};

extern "C" {

int rowCount() {
    if (rows.empty()) {
        Init_qMur_GlobalData(nullptr, nullptr);
        forEachRow([](const Row &row) { rows.push_back(&row); });
    }
    return static_cast<int>(rows.size());
}

const char *rowName(int row) {
    text = rows[static_cast<std::size_t>(row)]->fullName();
    return text.c_str();
}

int rowCases(int row) {
    return rows[static_cast<std::size_t>(row)]->cases;
}

/// Draws the arguments of a case, and makes the call on a copy of them.
void openCase(int row, int seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const Row &described = *rows[static_cast<std::size_t>(row)];
    given.reset();
    expected.reset();
    given.emplace(randomCall(described, random));
    expected.emplace(*given);
    std::srand(static_cast<unsigned>(seed));
    described.functions.library (*expected)();
    std::srand(static_cast<unsigned>(seed));
}

int valueKind(int index) {
    const Value &value = (*given)[static_cast<std::size_t>(index)];
    return value.is<double>()                                  ? number
           : value.is<tagRECT>()                               ? rect
           : value.is<tagPOINT>()                              ? point
           : value.is<Plane>() && !value.get<Plane>().isNull() ? plane
           : value.is<PipelineBlock>()                         ? pipeline
           : value.is<TexturedBlock>()                         ? textured
           : value.is<RegionBlock>()                           ? region
           : value.is<PhaseBlock>()                            ? phase
                                                               : nothing;
}

double valueNumber(int index) {
    return (*given)[static_cast<std::size_t>(index)].number();
}

void valueWords(int index, int *words) {
    const Value &value = (*given)[static_cast<std::size_t>(index)];
    if (value.is<tagRECT>())
        std::memcpy(words, &value.rect(), sizeof(tagRECT));
    else
        std::memcpy(words, &value.point(), sizeof(tagPOINT));
}

PlaneInfo valuePlane(int index) {
    Plane &held = (*given)[static_cast<std::size_t>(index)].plane();
    std::byte *const begin = held.bytes().data();
    return {begin, held.bytes().size(), static_cast<std::byte *>(held.origin()) - begin, held.elementBytes(),
            held.pitch()};
}

/// Elements of the Z plane, where its first pixel is among them, entries of a vertex array, depth of the stacks.
void blockShape(int index, int *shape) {
    const Value &value = (*given)[static_cast<std::size_t>(index)];
    if (value.is<PipelineBlock>())
        shapeOf(value.get<PipelineBlock>(), shape);
    else if (value.is<TexturedBlock>())
        shapeOf(value.get<TexturedBlock>(), shape);
}

/// Gives a block that was allocated elsewhere the content of the case's.
void fillBlock(int index, void *block) {
    Value &value = (*given)[static_cast<std::size_t>(index)];
    if (value.is<PipelineBlock>())
        fillDrawing(value.get<PipelineBlock>(), *static_cast<_PRIVATE_QMGL_DATA *>(block));
    else if (value.is<TexturedBlock>())
        fillDrawing(value.get<TexturedBlock>(), *static_cast<_PRIVATE_QM3D_DATA *>(block));
    else if (value.is<RegionBlock>())
        *static_cast<_PRIVATE_QMGP_DATA *>(block) = *value.get<RegionBlock>().settled();
    else
        *static_cast<_PRIVATE_LUT_DATA *>(block) = value.get<PhaseBlock>().data;
}

/// Takes over what the call has left in it.
void takeBlock(int index, const void *block) {
    const Value &wanted = (*expected)[static_cast<std::size_t>(index)];
    Value &value = (*given)[static_cast<std::size_t>(index)];
    if (value.is<PipelineBlock>()) {
        takeDrawing(value.get<PipelineBlock>(), wanted.get<PipelineBlock>(),
                    *static_cast<const _PRIVATE_QMGL_DATA *>(block));
    } else if (value.is<TexturedBlock>()) {
        takeDrawing(value.get<TexturedBlock>(), wanted.get<TexturedBlock>(),
                    *static_cast<const _PRIVATE_QM3D_DATA *>(block));
    } else if (value.is<RegionBlock>()) {
        auto &data = value.get<RegionBlock>().data;
        const auto &left = *static_cast<const _PRIVATE_QMGP_DATA *>(block);
        data.planePitch = left.planePitch;
        data.destPitch = left.destPitch;
        data.testPitch = left.testPitch;
    } else {
        value.get<PhaseBlock>().data = *static_cast<const _PRIVATE_LUT_DATA *>(block);
    }
}

/// The bytes that the function has returned. The call is made to have returned the same: who asks compares them.
int returnedBytes(unsigned char *bytes) {
    const std::size_t count = given->row().functions.resultBytes;
    const auto take = [bytes]<std::size_t size>(Bytes<size> result) {
        std::memcpy(bytes, result.all.data(), size);
        given->keep(result);
    };
    if (count == 1)
        take(expected->returned<Bytes<1>>());
    else if (count == 4)
        take(expected->returned<Bytes<4>>());
    else if (count == 8)
        take(expected->returned<Bytes<8>>());
    else if (count == 16)
        take(expected->returned<Bytes<16>>());
    return static_cast<int>(count);
}

/// What differs, in words; empty if nothing does.
const char *difference() {
    text = given->differenceFrom(*expected);
    return text.c_str();
}
}
