#include "sprites.h"

#include "../../picture.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace show::winter {

int lengthOf(double value, int least) {
    return std::max(rounded(value), least);
}

Canvas loadFigure(LoadSprite load, int width, int height) {
    Canvas canvas(width, height);
    const Surface sprite = canvas.surface();
    load(sprite.pixels, width, height, sprite.pitch);

    std::vector<int> figures(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const auto figureAt = [&](int x, int y) -> int & {
        return figures[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    };
    int count = 0;
    int largest = 0;
    std::size_t largestSize = 0;
    std::vector<tagPOINT> reached;
    const auto reach = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= width || y >= height || *sprite.at(x, y) == 0 || figureAt(x, y) != 0)
            return;
        figureAt(x, y) = count;
        reached.push_back({x, y});
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            if (*sprite.at(x, y) == 0 || figureAt(x, y) != 0)
                continue;
            ++count;
            reached.clear();
            reach(x, y);
            for (std::size_t next = 0; next < reached.size(); ++next) {
                const int column = static_cast<int>(reached[next].x);
                const int row = static_cast<int>(reached[next].y);
                reach(column - 1, row);
                reach(column + 1, row);
                reach(column, row - 1);
                reach(column, row + 1);
            }
            if (reached.size() > largestSize) {
                largestSize = reached.size();
                largest = count;
            }
        }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (figureAt(x, y) != largest)
                *sprite.at(x, y) = 0;
    return canvas;
}

Canvas tinted(const Canvas &picture, double red, double green, double blue) {
    Canvas result(picture.width(), picture.height());
    add(result, picture, red, green, blue);
    return result;
}

Canvas mirrored(const Canvas &picture) {
    Canvas result(picture.width(), picture.height());
    const Surface from = picture.surface();
    const Surface to = result.surface();
    for (int x = 0; x < from.width; ++x)
        copy(to, from.width - 1 - x, 0, from, {x, 0, x + 1, from.height});
    return result;
}

Canvas turned(const Canvas &picture, double angle) {
    const int side = picture.width() + picture.height();
    Canvas result(side, side);
    const Surface from = picture.surface();
    const Surface to = result.surface();
    tagRECT clip = to.rect();
    tagRECT all = from.rect();
    iBltLinear32_Z_Roto(to.pixels, to.pitch, from.pixels, from.pitch, &clip, &all, side / 2, side / 2,
                        static_cast<float>(angle), 1);
    return result;
}

Canvas cutOut(const Canvas &figure, int width, int height) {
    const Canvas shape(figure.width(), figure.height());
    for (int y = 0; y < figure.height(); ++y)
        for (int x = 0; x < figure.width(); ++x)
            *shape.surface().at(x, y) = *figure.surface().at(x, y) == 0 ? 0 : 0xFFFFFF;
    const Canvas coverage = reduced(shape.surface(), width, height);
    Canvas result = reduced(figure.surface(), width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const q_ulong covered = *coverage.surface().at(x, y) & 0xFF;
            q_ulong &pixel = *result.surface().at(x, y);
            // The black around the figure has been mixed in, by as much as is not covered.
            const auto pure = [&](q_ulong channel) {
                return covered == 0 ? 0 : std::min<q_ulong>(channel * 255 / covered, 255);
            };
            pixel = covered << 24 | pure(pixel >> 16 & 0xFF) << 16 | pure(pixel >> 8 & 0xFF) << 8 | pure(pixel & 0xFF);
        }
    return result;
}

void layFaded(Stage &stage, const Surface &out, const Surface &sprite, double x, double y, double opacity) {
    const auto share = static_cast<q_ulong>(clampUnit(opacity) * 256);
    const Stage::Plane plane = stage.plane();
    const Surface faded = plane->cropped(std::min(sprite.width, out.width), std::min(sprite.height, out.height));
    for (int row = 0; row < faded.height; ++row)
        for (int column = 0; column < faded.width; ++column) {
            const q_ulong pixel = *sprite.at(column, row);
            *faded.at(column, row) = (pixel & 0xFFFFFF) | (pixel >> 24) * share >> 8 << 24;
        }
    lay(out, faded, rounded(x) - faded.width / 2, rounded(y) - faded.height / 2, out.rect());
}

Canvas softDot(int size, q_ulong colour) {
    Canvas result(size, size);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double dx = (x + 0.5) * 2 / size - 1;
            const double dy = (y + 0.5) * 2 / size - 1;
            const double covered = clampUnit(1.5 * (1 - dx * dx - dy * dy));
            *result.surface().at(x, y) = opacityOf(250 * covered) | colour;
        }
    return result;
}

Canvas softGlow(int width, int height, q_ulong colour, double opacity) {
    Canvas result(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double dx = (x + 0.5) * 2 / width - 1;
            const double dy = (y + 0.5) * 2 / height - 1;
            const double covered = clampUnit(1 - dx * dx - dy * dy);
            *result.surface().at(x, y) = opacityOf(255 * opacity * covered * covered) | colour;
        }
    return result;
}

void dot(const Surface &out, Point at, double radius, q_ulong colour, double opacity) {
    const int left = static_cast<int>(std::floor(at.x - radius));
    const int top = static_cast<int>(std::floor(at.y - radius));
    const int side = static_cast<int>(2 * radius) + 3;
    for (int y = std::max(top, 0); y < std::min(top + side, out.height); ++y)
        for (int x = std::max(left, 0); x < std::min(left + side, out.width); ++x) {
            const double dx = x + 0.5 - at.x;
            const double dy = y + 0.5 - at.y;
            const double covered = clampUnit(radius + 0.5 - std::sqrt(dx * dx + dy * dy)) * clampUnit(opacity);
            *out.at(x, y) = mixColours(*out.at(x, y), colour, covered);
        }
}

void disc(const Surface &out, double x, double y, double radius, q_ulong colour) {
    tagRECT clip = out.rect();
    iFill_Circle_Safe(out.pixels, &clip, out.pitch, rounded(x), rounded(y), rounded(radius), colour);
}

void lightAround(const Surface &out, Point at, double radius, q_ulong colour, double intensity) {
    light(out, rounded(at.x), rounded(at.y), lengthOf(radius, 4), colour, intensity);
}

void drawLamp(const Surface &out, Point at, double radius, q_ulong colour, double brightness, double unit) {
    lightAround(out, at, 4.2 * radius * unit, dimmed(colour, brightness), 26);
    lightAround(out, at, 1.9 * radius * unit, dimmed(colour, brightness), 60);
    const q_ulong core = mixColours(colour, 0xFFFFFF, 0.55 * brightness);
    dot(out, at, 0.62 * radius * unit, dimmed(core, 0.3 + 0.7 * brightness), 1);
}

Glow::Glow() : round(size, size) {
    lightAround(round, {size / 2.0, size / 2.0}, size / 2.0, 0xFFFFFF, 127);
}

void Glow::shine(const Surface &out, double x, double y, double reachX, double reachY, q_ulong colour,
                 double brightness) const {
    tagRECT from = {0, 0, size, size};
    const auto cut = [](double middle, double reach, int extent, q_long &low, q_long &high, q_long &dstLow,
                        q_long &dstHigh) {
        dstLow = std::max(rounded(middle - reach), 0);
        dstHigh = std::min(rounded(middle + reach), extent);
        low = rounded((dstLow - (middle - reach)) * size / (2 * reach));
        high = size - rounded((middle + reach - dstHigh) * size / (2 * reach));
        low = std::clamp<q_long>(low, 0, size);
        high = std::clamp<q_long>(high, 0, size);
    };
    tagRECT to = {};
    cut(x, reachX, out.width, from.left, from.right, to.left, to.right);
    cut(y, reachY, out.height, from.top, from.bottom, to.top, to.bottom);
    if (to.left >= to.right || to.top >= to.bottom || from.left >= from.right || from.top >= from.bottom)
        return;
    const auto share = [&](int shift) { return channelOf(dimmed(colour, brightness), shift) / 255.0; };
    addStretched(out, to, round, from, share(16), share(8), share(0));
}

} // namespace show::winter
