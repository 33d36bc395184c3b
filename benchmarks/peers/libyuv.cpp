#include "worker.h"

#include <libyuv.h>

#include <cmath>

namespace peers {
namespace {

Run fill(const Stage &stage) {
    return [dst = stage.dst] { libyuv::ARGBRect(dst.bytes(), dst.pitch(), 0, 0, dst.width, dst.height, fillColour); };
}

Run copy(const Stage &stage) {
    return [dst = stage.dst, src = stage.src] {
        libyuv::ARGBCopy(src.bytes(), src.pitch(), dst.bytes(), dst.pitch(), dst.width, dst.height);
    };
}

Run add(const Stage &stage) {
    return [dst = stage.dst, src = stage.src] {
        libyuv::ARGBAdd(src.bytes(), src.pitch(), dst.bytes(), dst.pitch(), dst.bytes(), dst.pitch(), dst.width,
                        dst.height);
    };
}

Run fade(const Stage &stage) {
    return [dst = stage.dst] {
        libyuv::ARGBShade(dst.bytes(), dst.pitch(), dst.bytes(), dst.pitch(), dst.width, dst.height,
                          0xFF000000U | fadeFactor * 0x010101U);
    };
}

Run blendConstant(const Stage &stage) {
    return [dst = stage.dst, src = stage.src] {
        libyuv::ARGBInterpolate(dst.bytes(), dst.pitch(), src.bytes(), src.pitch(), dst.bytes(), dst.pitch(), dst.width,
                                dst.height, constantAlpha);
    };
}

Run blend(const Stage &stage) {
    premultiply(stage.src);
    return [dst = stage.dst, src = stage.src] {
        libyuv::ARGBBlend(src.bytes(), src.pitch(), dst.bytes(), dst.pitch(), dst.bytes(), dst.pitch(), dst.width,
                          dst.height);
    };
}

template <libyuv::FilterMode filter>
Run scale(const Stage &stage) {
    return [dst = stage.dst, src = stage.src] {
        libyuv::ARGBScale(src.bytes(), src.pitch(), src.width, src.height, dst.bytes(), dst.pitch(), dst.width,
                          dst.height, filter);
    };
}

/// Its box blur `times` times, with the memory that it asks for.
Run blur(const Stage &stage, int radius, int times) {
    std::vector<std::int32_t> sums(stage.dst.size() * 4 + static_cast<std::size_t>(stage.dst.width) * 64);
    return [stage, sums, radius, times]() mutable {
        const Surface &dst = stage.dst;
        for (int i = 0; i < times; ++i)
            libyuv::ARGBBlur(i == 0 ? stage.src.bytes() : dst.bytes(), dst.pitch(), dst.bytes(), dst.pitch(),
                             sums.data(), dst.width * 4, dst.width, dst.height, radius);
    };
}

Run boxBlur(const Stage &stage) {
    return blur(stage, static_cast<int>(stage.amount), 1);
}

/// Three boxes of the variance of the Gaussian together.
Run threeBoxes(const Stage &stage) {
    const double width = std::sqrt(4 * stage.amount * stage.amount + 1);
    return blur(stage, static_cast<int>(std::lround((width - 1) / 2)), 3);
}

} // namespace

Peer peer(const std::string &) {
    return {"libyuv " + std::to_string(LIBYUV_VERSION),
            {{"fill", "ARGBRect", fill},
             {"copy", "ARGBCopy", copy},
             {"add", "ARGBAdd", add},
             {"fade", "ARGBShade", fade},
             {"constant alpha", "ARGBInterpolate", blendConstant},
             {"pixel alpha", "ARGBBlend", blend, "premultiplied"},
             {"nearest", "ARGBScale, kFilterNone", scale<libyuv::kFilterNone>},
             {"bilinear", "ARGBScale, kFilterBilinear", scale<libyuv::kFilterBilinear>},
             {"box blur", "ARGBBlur", boxBlur},
             {"Gaussian blur", "ARGBBlur three times", threeBoxes, "approximates"}}};
}

} // namespace peers
