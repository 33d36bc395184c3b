/// \file
/// The span mappers once more: each pixel is computed from the ends of both edges alone.
#ifndef Q_MUR_TESTS_PLAIN_SPAN_MAPPERS_H
#define Q_MUR_TESTS_PLAIN_SPAN_MAPPERS_H

#include "bands.h"
#include "sampling.h"

namespace plain {

// The modes of the polygons that draw with span mappers; further bits of their flags are ignored.

constexpr q_ulong litMode = 0x200;
constexpr q_ulong keyedMode = 0x10100;
constexpr q_ulong unlitMode = 0x1010;
constexpr q_ulong flatMode = 0x2210;
constexpr q_ulong modeOf(q_ulong flags) {
    return flags & 0xFFFF0;
}

enum class MappedLight { none, flat, interpolated };

/// What sets one mapper apart from the others.
struct MapperKind {
    int fractionBits;
    bool isFiltered;
    MappedLight light = MappedLight::interpolated;
    bool testsDepth = true;
    bool testsNearLimit = false;
    bool isKeyed = false;
    bool redIsUpperHalf = false;
};

/// The numbers of a textured band; `a` is the left edge and `b` the right one.
struct TexturedBand {
    Ends u;
    Ends v;
    Ends x;
    Ends y;
    Ends add;
    Ends mul;
    Ends z;
};

/// No channel is held above 0: a negative one fills those above it.
inline q_ulong cappedPixel(Number red, Number green, Number blue) {
    const auto capped = [](Number channel) { return word(std::min<Number>(channel, 255)); };
    return capped(red) << 16 | capped(green) << 8 | capped(blue);
}

inline q_ulong litFiltered(const Sums &sums, Number mul, Number add) {
    const auto lit = [=](Number sum) { return signed32((signed32(sum / 256 * mul) >> 8) + add); };
    return cappedPixel(lit(sums.red), lit(sums.green), lit(sums.blue));
}

/// Multiplied without a sign, green in its place.
inline q_ulong litNearest(q_ulong texel, bool redIsUpperHalf, Number mul, Number add) {
    const auto lit = [=](Number channel, int shift) {
        return signed32((unsigned32(channel * unsigned32(mul)) >> shift) + add);
    };
    const Number red = redIsUpperHalf ? Number{texel} / 65536 : redOf(texel);
    return cappedPixel(lit(red, 8), lit(greenOf(texel) * 256, 16), lit(blueOf(texel), 8));
}

template <class Block>
void drawTexturedBand(const MapperKind &kind, const Block &block, Pixels dst, Pixels tex, const tagRECT &clip,
                      const TexturedBand &band) {
    const View<short> depths = {block.zBuffer, dst.pitch};
    forBand(clip, band.x, band.y, kind.fractionBits, [&](Number x, Number y, auto fractional) {
        const auto at = [&](const Ends &ends) { return fractional(ends) >> kind.fractionBits; };
        const Number z = kind.testsDepth ? at(band.z) : 0;
        if constexpr (requires { block.nearLimit; })
            if (kind.testsNearLimit && z <= block.nearLimit)
                return;
        if (kind.testsDepth && z >= depths.at(x, y))
            return;
        const bool isFlat = kind.light == MappedLight::flat;
        const Number mul = isFlat ? band.mul.a0 : at(band.mul);
        const Number add = isFlat ? band.add.a0 : at(band.add);
        const Number u = at(band.u);
        const Number v = at(band.v);
        if (kind.isFiltered) {
            const Number column = u >> 4;
            const Number row = v >> 4;
            if (kind.isKeyed && (tex.at(column, row) | tex.at(column + 1, row) | tex.at(column, row + 1) |
                                 tex.at(column + 1, row + 1)) == 0)
                return;
            dst.at(x, y) = litFiltered(fourTaps(tex, column, row, u & 15, v & 15), mul, add);
        } else {
            const q_ulong texel = tex.at(u, v);
            dst.at(x, y) = kind.light == MappedLight::none ? texel : litNearest(texel, kind.redIsUpperHalf, mul, add);
        }
        if (kind.testsDepth)
            depths.at(x, y) = static_cast<short>(z);
    });
}

/// Behind the pitches stand the 28 numbers of a band.
template <const MapperKind &kind, class Block, class... Numbers>
void mapSpans(Block *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, q_ulong dstPitch, q_ulong texPitch,
              Numbers... numbers) {
    const int n[] = {numbers...};
    drawTexturedBand(kind, *data, {dst, signed32(dstPitch)}, {tex, signed32(texPitch)}, *clip,
                     bandOf<TexturedBand>(n, std::make_index_sequence<7>()));
}

inline constexpr MapperKind linearHPE = {.fractionBits = 16, .isFiltered = true};
inline constexpr MapperKind linearHPEKeySrc = {.fractionBits = 16, .isFiltered = true, .isKeyed = true};
inline constexpr MapperKind nearHPE = {.fractionBits = 18, .isFiltered = false};
inline constexpr MapperKind linearNoHPE = {
    .fractionBits = 18, .isFiltered = true, .light = MappedLight::flat, .testsDepth = false};
inline constexpr MapperKind nearNoHPE = {
    .fractionBits = 18, .isFiltered = false, .light = MappedLight::flat, .testsDepth = false};
inline constexpr MapperKind nearNoLightNoHPE = {
    .fractionBits = 18, .isFiltered = false, .light = MappedLight::none, .testsDepth = false};
inline constexpr MapperKind pipelineLinearHPE = {.fractionBits = 14, .isFiltered = true, .testsNearLimit = true};
inline constexpr MapperKind pipelineNearHPE = {
    .fractionBits = 12, .isFiltered = false, .testsNearLimit = true, .redIsUpperHalf = true};

// The mappers of the older module, which the library does not export.
inline constexpr QM3DSpanMapper i3D_Mapping_Linear_HPE = mapSpans<linearHPE>;
inline constexpr QM3DSpanMapper i3D_Mapping_Linear_HPE_KeySrc = mapSpans<linearHPEKeySrc>;
inline constexpr QM3DSpanMapper i3D_Mapping_Near_HPE = mapSpans<nearHPE>;
inline constexpr QM3DSpanMapper i3D_Mapping_Linear_NoHPE = mapSpans<linearNoHPE>;
inline constexpr QM3DSpanMapper i3D_Mapping_Near_NoHPE = mapSpans<nearNoHPE>;
inline constexpr QM3DSpanMapper i3D_Mapping_Near_NoLight_NoHPE = mapSpans<nearNoLightNoHPE>;

inline constexpr QMGLSpanMapper VKD_i3D_Mapping_Linear_HPE = mapSpans<pipelineLinearHPE>;
inline constexpr QMGLSpanMapper VKD_i3D_Mapping_Linear_HPE_KeySrc = mapSpans<linearHPEKeySrc>;
inline constexpr QMGLSpanMapper VKD_i3D_Mapping_Near_HPE = mapSpans<pipelineNearHPE>;

} // namespace plain

#endif
