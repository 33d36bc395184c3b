/// \file
/// Light maps, stage by stage, searched ring by ring.
#ifndef Q_MUR_TESTS_FILTER_NAIVE_LIGHT_MAP_H
#define Q_MUR_TESTS_FILTER_NAIVE_LIGHT_MAP_H

#include "base/wide.h"
#include "naive_rings.h"

#include <cmath>
#include <vector>

namespace naive::lightMap {

using test::Found;

using Real = long double;

enum class Form { blockWithLimit, block, source };

struct Settings {
    Form form;
    int heightScale;
    int bevelSize;
    int limitOrProfile;
};

inline void convert(q_ulong *surface, tagRECT rect, int pitch, const Settings &settings) {
    switch (settings.form) {
    case Form::blockWithLimit:
        ConvertBlock2LightInfom(surface, &rect, pitch, settings.heightScale, settings.bevelSize, 99,
                                settings.limitOrProfile);
        break;
    case Form::block:
        ConvertBlock2LightInfom(surface, &rect, pitch, settings.heightScale, settings.bevelSize, 99);
        break;
    case Form::source:
        ConvertSrc2LightInfom(surface, &rect, pitch, settings.heightScale, settings.bevelSize, settings.limitOrProfile);
    }
}

/// Toward zero; what is no number is 0.
inline int truncated(Real value) {
    return std::isnan(value) ? 0 : static_cast<int>(static_cast<std::int64_t>(value));
}

/// A light map computed stage by stage, ring by ring and neighbour by neighbour.
class NaiveMap {
public:
    NaiveMap(q_ulong *surface, const tagRECT &rect, int surfacePitch, const Settings &with)
        : block(surface + rect.top * surfacePitch + rect.left), width(static_cast<int>(rect.right - rect.left)),
          height(static_cast<int>(rect.bottom - rect.top)), pitch(surfacePitch), settings(with) {}

    void draw() {
        if (width < 1 || height < 1)
            return;
        qmur::atFullWidth([this] {
            raise();
            smooth();
            light();
        });
    }

private:
    int blockWords() const { return height * pitch; }
    float &heightOf(std::vector<float> &plane, int index) {
        return plane.at(static_cast<std::size_t>(pitch + 3 + index));
    }

    template <class Treat>
    void forEachPixel(Treat treat) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (block[y * pitch + x] != 0)
                    treat(x, y, y * pitch + x);
    }

    int distanceSquareOf(int index) const {
        for (int ring = settings.form == Form::source ? 0 : 1;; ++ring) {
            const Found found =
                settings.form == Form::blockWithLimit
                    ? test::findNearBlack(block, blockWords(), index, pitch, ring, settings.limitOrProfile)
                    : test::findNearBlack(block, blockWords(), index, pitch, ring);
            if (found.goesOn == 0)
                return found.distanceSquare;
        }
    }

    Real profileAt(int d2) const {
        const int half = settings.bevelSize >> 1;
        const Real f = std::sqrt(static_cast<Real>(d2));
        if (settings.form != Form::source)
            return d2 < half * half ? std::sqrt((2 * half - f) * f) : half;
        switch (settings.limitOrProfile) {
        case 0:
            return f + f;
        case 1:
            return d2 * 0.5;
        case 2:
            return f < 2 * half ? std::sqrt((2 * half - f) * f) : half;
        default:
            return 0;
        }
    }

    void raise() {
        heights.assign(static_cast<std::size_t>((height + 2) * (pitch + 2)), 0);
        forEachPixel([this](int, int, int index) {
            heightOf(heights, index) = static_cast<float>(profileAt(distanceSquareOf(index)));
        });
    }

    void smooth() {
        const bool source = settings.form == Form::source;
        const int reach = source ? settings.bevelSize / 8 : 2;
        const Real scale =
            source ? static_cast<float>(static_cast<Real>(1) / ((2 * reach + 1) * (2 * reach + 1))) : 0.04;
        std::vector<float> smoothed(heights.size(), 0);
        forEachPixel([&](int, int, int index) {
            Real sum = 0;
            for (int dy = -reach; dy <= reach; ++dy)
                for (int dx = -reach; dx <= reach; ++dx) {
                    const int neighbour = index + dy * pitch + dx;
                    if (neighbour >= 0 && neighbour < blockWords())
                        sum += heightOf(heights, neighbour);
                }
            heightOf(smoothed, index) = static_cast<float>(sum * scale);
        });
        heights = smoothed;
    }

    _POINT3DFLOAT pointAt(int x, int y) {
        return {static_cast<float>(x), static_cast<float>(y),
                static_cast<float>(static_cast<Real>(settings.heightScale) * heightOf(heights, y * pitch + x)), 0};
    }

    _POINT3DFLOAT normalAt(int x, int y) {
        _POINT3DFLOAT a = {};
        _POINT3DFLOAT b = {};
        if (settings.form == Form::block) {
            _POINT3DFLOAT corners[4] = {pointAt(x - 1, y - 1), pointAt(x - 1, y + 1), pointAt(x + 1, y - 1),
                                        pointAt(x + 1, y + 1)};
            fBubSun(&a, &corners[0], &corners[1], &corners[2]);
            fBubSun(&b, &corners[2], &corners[1], &corners[3]);
        } else {
            _POINT3DFLOAT centre = pointAt(x, y);
            _POINT3DFLOAT up = pointAt(x, y - 1);
            _POINT3DFLOAT left = pointAt(x - 1, y);
            _POINT3DFLOAT right = pointAt(x + 1, y);
            _POINT3DFLOAT down = pointAt(x, y + 1);
            fBubSun(&a, &up, &left, &centre);
            fBubSun(&b, &down, &right, &centre);
        }
        return fMean2Vector(&a, &b);
    }

    static Real dot(const float (&a)[3], const _POINT3DFLOAT &b) {
        return static_cast<Real>(a[2]) * b.z + static_cast<Real>(a[1]) * b.y + static_cast<Real>(a[0]) * b.x;
    }

    q_ulong wordOf(const _POINT3DFLOAT &n) const {
        const bool source = settings.form == Form::source;
        const float l = source ? 1 : 0.7F;
        const Real length = source ? std::sqrt(static_cast<Real>(6)) : std::sqrt(static_cast<Real>(3.869999926090241));
        const float light[3] = {l, l, -l};
        const float half[3] = {static_cast<float>(l / length), static_cast<float>(l / length),
                               static_cast<float>((-static_cast<Real>(l) - 1) / length)};
        int diffuse = truncated(256 * dot(light, n));
        if (diffuse < 0)
            diffuse = 0;
        const Real s = dot(half, n);
        int specular = 0;
        if (s > 0) {
            const Real s2 = s * s;
            const Real s4 = s2 * s2;
            const Real s8 = s4 * s4;
            const Real s16 = s8 * s8;
            specular = truncated((source ? 512 : 256) * (s16 * s16));
        }
        if (!source)
            return static_cast<q_ulong>(specular * 65536 + diffuse + 100);
        const auto x = static_cast<std::uint32_t>(truncated(64 * static_cast<Real>(n.x)));
        const auto y = static_cast<std::uint32_t>(truncated(64 * static_cast<Real>(n.y)));
        const std::uint32_t below = static_cast<std::uint32_t>(specular < 255 ? specular : 255) << 8 |
                                    static_cast<std::uint32_t>(diffuse + 100 < 255 ? diffuse + 100 : 255);
        return x << 24 | y << 16 | below;
    }

    void light() {
        // The words are the mask as well, so all of them are known before the first is written.
        std::vector<q_ulong> words;
        forEachPixel([&](int x, int y, int) { words.push_back(wordOf(normalAt(x, y))); });
        std::size_t next = 0;
        forEachPixel([&](int, int, int index) { block[index] = words[next++]; });
    }

    q_ulong *block;
    int width;
    int height;
    int pitch;
    Settings settings;
    std::vector<float> heights;
};

inline void naiveMap(q_ulong *surface, const tagRECT &rect, int pitch, const Settings &settings) {
    NaiveMap(surface, rect, pitch, settings).draw();
}

} // namespace naive::lightMap

#endif
