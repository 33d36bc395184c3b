/// \file
/// The span mappers once more: each pixel is computed from the ends of both edges alone.
#ifndef Q_MUR_TESTS_PLAIN_SPAN_MAPPERS_H
#define Q_MUR_TESTS_PLAIN_SPAN_MAPPERS_H

#include "bands.h"

namespace plain {

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

/// The mean of four texels by sixteenths.
inline Number filteredChannel(const q_ulong (&texels)[4], Number fu, Number fv, Number (*channelOf)(q_ulong)) {
    const Number weights[4] = {(16 - fv) * (16 - fu), (16 - fv) * fu, fv * (16 - fu), fv * fu};
    Number sum = 0;
    for (int i = 0; i < 4; ++i)
        sum += channelOf(texels[i]) * weights[i];
    return sum / 256;
}

inline q_ulong litFiltered(const q_ulong (&texels)[4], Number fu, Number fv, Number mul, Number add) {
    const auto lit = [&](Number (*channelOf)(q_ulong)) {
        return signed32((signed32(filteredChannel(texels, fu, fv, channelOf) * mul) >> 8) + add);
    };
    return cappedPixel(lit(redOf), lit(greenOf), lit(blueOf));
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
            const q_ulong texels[4] = {tex.at(column, row), tex.at(column + 1, row), tex.at(column, row + 1),
                                       tex.at(column + 1, row + 1)};
            if (kind.isKeyed && (texels[0] | texels[1] | texels[2] | texels[3]) == 0)
                return;
            dst.at(x, y) = litFiltered(texels, u & 15, v & 15, mul, add);
        } else {
            const q_ulong texel = tex.at(u, v);
            dst.at(x, y) = kind.light == MappedLight::none ? texel : litNearest(texel, kind.redIsUpperHalf, mul, add);
        }
        if (kind.testsDepth)
            depths.at(x, y) = static_cast<short>(z);
    });
}

template <const MapperKind &kind, class Block>
void mapSpans(Block *data, q_ulong *dst, q_ulong *tex, tagRECT *clip, q_ulong dstPitch, q_ulong texPitch, int uL0,
              int uL1, int uR0, int uR1, int vL0, int vL1, int vR0, int vR1, int xL0, int xL1, int xR0, int xR1,
              int yL0, int yL1, int yR0, int yR1, int addL0, int addL1, int addR0, int addR1, int mulL0, int mulL1,
              int mulR0, int mulR1, int zL0, int zL1, int zR0, int zR1) {
    drawTexturedBand(kind, *data, {dst, signed32(dstPitch)}, {tex, signed32(texPitch)}, *clip,
                     {{uL0, uL1, uR0, uR1},
                      {vL0, vL1, vR0, vR1},
                      {xL0, xL1, xR0, xR1},
                      {yL0, yL1, yR0, yR1},
                      {addL0, addL1, addR0, addR1},
                      {mulL0, mulL1, mulR0, mulR1},
                      {zL0, zL1, zR0, zR1}});
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
