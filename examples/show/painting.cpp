#include "painting.h"

#include <algorithm>

namespace show {

namespace {

/// What lights are clipped by: the first column and row of a clip stay dark, so they lie in the margin.
tagRECT clipOfLights(const Surface &out) {
    return {-1, -1, out.width, out.height};
}

} // namespace

void fill(const Surface &out, q_ulong colour) {
    fill(out, out.rect(), colour);
}

void fill(const Surface &out, tagRECT area, q_ulong colour) {
    area = {std::max<q_long>(area.left, 0), std::max<q_long>(area.top, 0), std::min<q_long>(area.right, out.width),
            std::min<q_long>(area.bottom, out.height)};
    iFillRect(out.pixels, &area, out.pitch, colour);
}

void copy(const Surface &out, const Surface &from) {
    copy(out, 0, 0, from, out.rect());
}

void copy(const Surface &out, const Surface &from, tagRECT area) {
    copy(out, static_cast<int>(area.left), static_cast<int>(area.top), from, area);
}

void copy(const Surface &out, int x, int y, const Surface &from, tagRECT part) {
    iBltFast32(out.pixels, from.pixels, static_cast<q_ulong>(x), static_cast<q_ulong>(y), &part, out.pitch, from.pitch);
}

void copyWithin(const Surface &out, const Surface &from, std::span<const Point> corners) {
    for (int y = 0; y < out.height; ++y) {
        const double middle = y + 0.5;
        double left = out.width;
        double right = 0;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Point a = corners[i];
            const Point b = corners[(i + 1) % corners.size()];
            if ((a.y < middle) == (b.y < middle))
                continue;
            const double x = mix(a.x, b.x, (middle - a.y) / (b.y - a.y));
            left = std::min(left, x);
            right = std::max(right, x);
        }
        const int first = std::max(rounded(left), 0);
        const int end = std::min(rounded(right), out.width);
        if (first < end)
            copy(out, from, {first, y, end, y + 1});
    }
}

void blend(const Surface &out, const Surface &from, double share) {
    blend(out, from, out.rect(), share);
}

void blend(const Surface &out, const Surface &from, tagRECT area, double share) {
    if (share > 0)
        iBltFast32Alpha(out.pixels, from.pixels, 0, 0, &area, out.pitch, from.pitch, static_cast<float>(share));
}

void dim(const Surface &out, double brightness) {
    dim(out, out.rect(), brightness);
}

void dim(const Surface &out, tagRECT area, double brightness) {
    // A factor below 1/256 would leave the picture standing: it asks for a gentle step, not for black.
    if (brightness * 256 >= 1)
        iFadeOut32(out.pixels, &area, out.pitch, static_cast<float>(brightness));
    else
        fill(out, area, 0);
}

void lay(const Surface &out, const Surface &sprite, int x, int y) {
    lay(out, sprite, x, y, out.rect());
}

void lay(const Surface &out, const Surface &sprite, int x, int y, tagRECT clip) {
    // The blit reads from where its source begins and takes the size alone from the rectangle.
    tagRECT whole = sprite.rect();
    iBltFast32AlphaChannelSafe(out.pixels, sprite.pixels, x, y, &whole, &clip, out.pitch, sprite.pitch);
}

void add(const Surface &out, const Surface &from) {
    tagRECT area = out.rect();
    iBltFast32_Add(out.pixels, from.pixels, 0, 0, &area, out.unsignedPitch(), from.unsignedPitch());
}

void add(const Surface &out, const Surface &from, double red, double green, double blue) {
    add(out, from, out.rect(), red, green, blue);
}

void add(const Surface &out, const Surface &from, tagRECT area, double red, double green, double blue) {
    iBltFast32_Add(out.pixels, from.pixels, static_cast<q_ulong>(area.left), static_cast<q_ulong>(area.top), &area,
                   out.unsignedPitch(), from.unsignedPitch(), brightnessOf(red), brightnessOf(green),
                   brightnessOf(blue));
}

void addStretched(const Surface &out, tagRECT area, const Surface &from, tagRECT part) {
    iBltBilinear32_Add(out.pixels, from.pixels, &area, &part, out.unsignedPitch(), from.unsignedPitch());
}

void addStretched(const Surface &out, tagRECT area, const Surface &from, tagRECT part, double red, double green,
                  double blue) {
    iBltBilinear32_Add(out.pixels, from.pixels, &area, &part, out.unsignedPitch(), from.unsignedPitch(),
                       brightnessOf(red), brightnessOf(green), brightnessOf(blue));
}

void blur(const Surface &out, int radius, int times) {
    constexpr int largest = 128;
    tagRECT area = out.rect();
    const int possible = std::min({radius, out.width / 2, out.height / 2, largest});
    for (int i = 0; i < times; ++i)
        Blur_Rect(out.pixels, &area, out.pitch, possible);
}

void blurWithOpacity(const Surface &out, const Surface &scratch, int size, int times) {
    constexpr int largest = 255;
    const int possible = std::min({size, out.width - 1, out.height - 1, largest});
    for (int i = 0; i < times; ++i) {
        Hor_Blur32(scratch.pixels, out.pixels, possible, out.width, out.height, out.pitch);
        Ver_Blur32(out.pixels, scratch.pixels, possible, out.width, out.height, out.pitch);
    }
}

void clearOpacity(const Surface &out) {
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x)
            *out.at(x, y) &= 0xFFFFFF;
}

void light(const Surface &out, int x, int y, int radius, q_ulong colour, double intensity) {
    tagRECT clip = clipOfLights(out);
    Draw_Light_Safe(out.pixels, out.pitch, &clip, x, y, radius, colour, static_cast<q_ulong>(intensity));
}

void star(const Surface &out, int x, int y, int radius, q_ulong colour, double intensity) {
    tagRECT clip = clipOfLights(out);
    Draw_Star_Type1_Safe(out.pixels, out.pitch, &clip, x, y, radius, colour, static_cast<q_ulong>(intensity));
}

} // namespace show
