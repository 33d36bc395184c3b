#include "base/scratch.h"
#include "base/vector.h"
#include "base/wide.h"
#include "distance_field.h"
#include "q_Mur/filter.h"

namespace {

using namespace qmur;

/// A rectangle of a surface that is turned into a relief: what is not 0 is the shape.
struct Shape {
    q_ulong *words;
    int width;
    int height;
    Distance pitch;
    Distance left; ///< of the rectangle within the surface's rows

    Shape(q_ulong *surface, const tagRECT &rect, int surfacePitch)
        : words(pixelAt(surface, surfacePitch, rect.left, rect.top)), width(widthOf(rect)), height(heightOf(rect)),
          pitch(surfacePitch), left(rect.left) {}

    /// Nothing is to be drawn. A rectangle wider than the pitch would leave the planes.
    bool empty() const { return width < 1 || height < 1 || width > pitch; }
    Distance wordCount() const { return height * pitch; }
    LinearBlock block() const { return {words, wordCount(), pitch}; }

    /// Calls `treat(index)` for every pixel of the shape, row by row.
    template <class Treat>
    void forEachPixel(Treat treat) const {
        for (int y = 0; y < height; ++y)
            for (Distance index = y * pitch; index < y * pitch + width; ++index)
                if (words[index] != 0)
                    treat(index);
    }
};

/// A height for each word of the shape's block, with a margin of zeros: one row and a few elements all around.
class HeightPlane {
public:
    explicit HeightPlane(const Shape &shape)
        : elements(Scratch<float>::zeroed((shape.height + 2) * (shape.pitch + 2))),
          first(elements.data() + shape.pitch + 3) {}

    explicit operator bool() const { return static_cast<bool>(elements); }
    float &operator[](Distance index) const { return first[index]; }

private:
    Scratch<float> elements;
    float *first;
};

/// The ring numbers of the shape's pixels; see findRings().
class Rings {
public:
    explicit Rings(const Shape &shape) : numbers(Scratch<int>::zeroed(shape.wordCount())) {
        if (!numbers)
            return;
        // A block that starts inside a row ends inside the row behind the rectangle, which need not exist: it is read
        // only if a search would have come there.
        LinearBlock block = shape.block();
        block.count -= shape.left > 0 ? shape.left : 0;
        if (block.count < 1)
            block.count = shape.wordCount();
        findRings(block, numbers.data());
        if (block.count < shape.wordCount() && searchesReach(shape, block.count))
            findRings(shape.block(), numbers.data());
        found = largestOf(shape) <= shape.wordCount();
    }

    /// False if there is no memory, or no black word from which a ring could be counted.
    explicit operator bool() const { return numbers && found; }
    int operator[](Distance index) const { return numbers[index]; }

    int largestOf(const Shape &shape) const {
        int largest = 0;
        shape.forEachPixel([&](Distance index) { largest = larger(largest, numbers[index]); });
        return largest;
    }

private:
    /// True if the square of any search touches a word of the block from `first` on.
    bool searchesReach(const Shape &shape, Distance first) const {
        bool reached = false;
        shape.forEachPixel([&](Distance index) {
            const Distance ring = numbers[index];
            // The topmost row of the square that reaches as far as `first`.
            const Distance missing = first - (index + ring);
            Distance dy = missing > 0 ? (missing + shape.pitch - 1) / shape.pitch : missing / shape.pitch;
            if (dy < -ring)
                dy = -ring;
            reached |= dy <= ring && index + dy * shape.pitch - ring < shape.wordCount();
        });
        return reached;
    }

    Scratch<int> numbers;
    bool found = false;
};

/// A quarter circle of radius `half` that rises from the edge of the shape; flat where the distance reaches it.
float roundedHeight(int distanceSquare, int half) {
    if (distanceSquare >= wrapMultiply(half, half))
        return static_cast<float>(half);
    const Wide distance = squareRoot(distanceSquare);
    return static_cast<float>(squareRoot((wrapMultiply(2, half) - distance) * distance));
}

/// Sets the height of every pixel of the shape to `heightOf(squared ring number)`. False if rings cannot be counted.
template <class HeightOf>
bool raiseByRings(const Shape &shape, const HeightPlane &heights, HeightOf heightOf) {
    const Rings rings(shape);
    if (!rings)
        return false;
    const int largest = rings.largestOf(shape);
    const Scratch<float> heightOfRing(largest + 1);
    if (!heightOfRing)
        return false;
    for (int ring = 1; ring <= largest; ++ring)
        heightOfRing[ring] = heightOf(wrapMultiply(ring, ring));
    shape.forEachPixel([&](Distance index) { heights[index] = heightOfRing[rings[index]]; });
    return true;
}

/// Sets the height of every pixel of the shape by the true distance on the first ring that is not empty. A limit that a
/// search can report ends it at the first ring; above, the ring is known beforehand. False if rings cannot be counted.
bool raiseByLimitedSearch(const Shape &shape, const HeightPlane &heights, int half, int limit) {
    const auto raise = [&](Distance index, int ring) {
        int distanceSquare;
        FindNearBlackDistanceSquare(shape.words, static_cast<int>(shape.wordCount()), static_cast<int>(index),
                                    static_cast<int>(shape.pitch), ring, &distanceSquare, limit);
        heights[index] = roundedHeight(distanceSquare, half);
    };
    if (limit < noDistance) {
        shape.forEachPixel([&](Distance index) { raise(index, 1); });
        return true;
    }
    const Rings rings(shape);
    if (!rings)
        return false;
    shape.forEachPixel([&](Distance index) { raise(index, rings[index]); });
    return true;
}

/// Replaces each height of the shape by the mean over the 5 by 5 square around it, wherever that lies in the block.
/// Always succeeds.
bool smoothBlock(const Shape &shape, const HeightPlane &heights, const HeightPlane &smoothed) {
    const Distance count = shape.wordCount();
    shape.forEachPixel([&](Distance index) {
        Wide sum = 0;
        for (Distance dy = -2; dy <= 2; ++dy)
            for (Distance dx = -2; dx <= 2; ++dx) {
                const Distance neighbour = index + dy * shape.pitch + dx;
                if (neighbour >= 0 && neighbour < count)
                    sum += heights[neighbour];
            }
        smoothed[index] = static_cast<float>(sum * 0.04);
    });
    return true;
}

/// The same over a square of 2 `reach` + 1 on a side, with running sums, which are exact: heights are floats of 1 and
/// above or halves, and sums of as many as a surface holds fit the wide format's mantissa.
bool smoothSource(const Shape &shape, const HeightPlane &heights, const HeightPlane &smoothed, int reach) {
    if (reach < 0)
        return true; // a square without pixels
    const Distance count = shape.wordCount();
    const Distance rowSumCount = count + 2 * static_cast<Distance>(reach);
    const Scratch<Wide> rowSums(rowSumCount);
    const auto columnSums = Scratch<Wide>::zeroed(shape.pitch);
    if (!rowSums || !columnSums)
        return false;
    const int side = wrapAdd(wrapMultiply(2, reach), 1);
    const auto scale = static_cast<float>(static_cast<Wide>(1) / wrapMultiply(side, side));

    const auto heightAt = [&](Distance index) -> Wide { return index >= 0 && index < count ? heights[index] : 0; };
    Wide running = 0;
    for (Distance i = 0; i < rowSumCount; ++i) { // the sum around index i - reach
        running += heightAt(i);
        rowSums[i] = running;
        running -= heightAt(i - 2 * static_cast<Distance>(reach));
    }
    const auto addRow = [&](Distance y, Wide sign) {
        for (Distance x = 0; x < shape.pitch; ++x) {
            const Distance i = y * shape.pitch + x + reach;
            if (i >= 0 && i < rowSumCount)
                columnSums[x] += sign * rowSums[i];
        }
    };
    // Rows above the block reach into it with their windows as well.
    for (Distance y = -static_cast<Distance>(reach); y < reach; ++y)
        addRow(y, 1);
    for (Distance y = 0; y < shape.height; ++y) {
        addRow(y + reach, 1);
        for (Distance x = 0; x < shape.width; ++x)
            if (shape.words[y * shape.pitch + x] != 0)
                smoothed[y * shape.pitch + x] = static_cast<float>(columnSums[x] * scale);
        addRow(y - reach, -1);
    }
    return true;
}

/// A point of the relief, and the light that falls there.
class Relief {
public:
    Relief(const Shape &shape, const HeightPlane &plane, int verticalScale)
        : heights(plane), pitch(shape.pitch), heightScale(verticalScale) {}

    _POINT3DFLOAT at(Distance x, Distance y) const {
        return {static_cast<float>(x), static_cast<float>(y),
                static_cast<float>(static_cast<Wide>(heightScale) * heights[y * pitch + x]), 0};
    }

    /// The mean of two faces, above left and below right, between a pixel and its four neighbours.
    _POINT3DFLOAT edgeNormal(Distance x, Distance y) const {
        const _POINT3DFLOAT centre = at(x, y);
        return meanOf(faceNormal(at(x, y - 1), at(x - 1, y), centre), faceNormal(at(x, y + 1), at(x + 1, y), centre));
    }

    /// The mean of the two halves of the square of a pixel's diagonal neighbours.
    _POINT3DFLOAT diagonalNormal(Distance x, Distance y) const {
        const _POINT3DFLOAT lowerLeft = at(x - 1, y + 1);
        const _POINT3DFLOAT upperRight = at(x + 1, y - 1);
        return meanOf(faceNormal(at(x - 1, y - 1), lowerLeft, upperRight),
                      faceNormal(upperRight, lowerLeft, at(x + 1, y + 1)));
    }

private:
    const HeightPlane &heights;
    Distance pitch;
    int heightScale;
};

/// A light and its half vector toward a viewer along -Z.
struct Light {
    _POINT3DFLOAT direction;
    _POINT3DFLOAT half;
    Wide brightness; ///< of the highlight

    Light(float x, float y, float z, Wide highlight) : direction{x, y, z, 0}, half(), brightness(highlight) {
        const Wide viewZ = static_cast<Wide>(z) - 1;
        const Wide length = squareRoot(static_cast<Wide>(x) * x + static_cast<Wide>(y) * y + viewZ * viewZ);
        half = {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(viewZ / length), 0};
    }

    int diffuse(const _POINT3DFLOAT &normal) const {
        return larger(truncateToInt(256 * dotProduct(direction, normal)), 0);
    }

    /// The highlight, by the 32nd power of the cosine.
    int specular(const _POINT3DFLOAT &normal) const {
        Wide shine = dotProduct(half, normal);
        if (!(shine > 0))
            return 0;
        for (int squaring = 0; squaring < 5; ++squaring)
            shine *= shine;
        return truncateToInt(brightness * shine);
    }
};

/// Overwrites the shape with `wordOf(x, y)`.
template <class WordOf>
void storeLight(const Shape &shape, WordOf wordOf) {
    for (Distance y = 0; y < shape.height; ++y)
        for (Distance x = 0; x < shape.width; ++x) {
            q_ulong &word = shape.words[y * shape.pitch + x];
            if (word != 0)
                word = wordOf(x, y);
        }
}

/// The light of the block forms, and their word: the highlight above, the diffuse light below, neither limited.
struct BlockForm {
    static Light light() { return {0.7F, 0.7F, -0.7F, 256}; }

    static q_ulong word(const Light &light, const _POINT3DFLOAT &normal) {
        return static_cast<q_ulong>(light.specular(normal)) << 16 | static_cast<q_ulong>(light.diffuse(normal) + 100);
    }
};

/// The light of the source form, and its word: slopes, highlight and diffuse light, a byte each. Meant: the sign of a
/// negative slope in y covers the slope in x.
struct SourceForm {
    static Light light() { return {1, 1, -1, 512}; }

    static q_ulong word(const Light &light, const _POINT3DFLOAT &normal) {
        int word = truncateToInt(64 * static_cast<Wide>(normal.x));
        word = word << 8 | truncateToInt(64 * static_cast<Wide>(normal.y));
        word = word << 8 | smaller(light.specular(normal), 255);
        word = word << 8 | smaller(light.diffuse(normal) + 100, 255);
        return static_cast<q_ulong>(word);
    }
};

/// Turns the shape in a rectangle into light. `raise(shape, heights)` sets its heights and `smooth(shape, heights,
/// smoothed)` takes their means; either may say that it could not, and the picture stays as it is.
template <class Form, auto normalAt, class Raise, class Smooth>
void convert(q_ulong *surface, const tagRECT &rect, int pitch, int heightScale, Raise raise, Smooth smooth) {
    const Shape shape(surface, rect, pitch);
    if (shape.empty())
        return;
    const HeightPlane heights(shape);
    const HeightPlane smoothed(shape);
    if (!heights || !smoothed)
        return;
    atFullWidth([&] {
        if (!raise(shape, heights) || !smooth(shape, heights, smoothed))
            return;
        const Relief relief(shape, smoothed, heightScale);
        const Light light = Form::light();
        storeLight(shape, [&](Distance x, Distance y) { return Form::word(light, (relief.*normalAt)(x, y)); });
    });
}

/// The height of the source form over a squared ring number.
float profileHeight(int distanceSquare, int profile, int half) {
    const Wide distance = squareRoot(distanceSquare);
    switch (profile) {
    case 0:
        return static_cast<float>(distance + distance);
    case 1:
        return static_cast<float>(distanceSquare * 0.5L);
    case 2: {
        const auto full = static_cast<float>(wrapMultiply(2, half));
        return static_cast<float>(distance < full ? squareRoot((full - distance) * distance) : half);
    }
    default:
        return 0;
    }
}

} // namespace

void ConvertBlock2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize, int,
                             int limit) {
    const int half = bevelSize >> 1;
    convert<BlockForm, &Relief::edgeNormal>(
        surface, *rect, pitch, heightScale,
        [=](const Shape &shape, const HeightPlane &heights) {
            return raiseByLimitedSearch(shape, heights, half, limit);
        },
        smoothBlock);
}

void ConvertBlock2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize, int) {
    const int half = bevelSize >> 1;
    convert<BlockForm, &Relief::diagonalNormal>(
        surface, *rect, pitch, heightScale,
        [=](const Shape &shape, const HeightPlane &heights) {
            return raiseByRings(shape, heights, [half](int square) { return roundedHeight(square, half); });
        },
        smoothBlock);
}

void ConvertSrc2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize, int profile) {
    const int half = bevelSize >> 1;
    const int reach = bevelSize / 8;
    convert<SourceForm, &Relief::edgeNormal>(
        surface, *rect, pitch, heightScale,
        [=](const Shape &shape, const HeightPlane &heights) {
            return raiseByRings(shape, heights, [=](int square) { return profileHeight(square, profile, half); });
        },
        [reach](const Shape &shape, const HeightPlane &heights, const HeightPlane &smoothed) {
            return smoothSource(shape, heights, smoothed, reach);
        });
}
