#include "base/doubled.h"
#include "base/scratch.h"
#include "base/vector.h"
#include "base/wide.h"
#include "distance_field.h"
#include "q_Mur/filter.h"

#include <algorithm>
#include <cmath>

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
          first(elements ? elements.data() + shape.pitch + 3 : nullptr) {}

    explicit operator bool() const { return static_cast<bool>(elements); }
    float &operator[](Distance index) const { return first[index]; }

private:
    Scratch<float> elements;
    float *first;
};

/// Whether sums of as many heights are exact in double: none has a bit below 2^-27 or is so large that they reach 2^26.
class PlainHeights {
public:
    void take(float height) {
        if (!(height >= 0.0625F && height <= 0x1p20F) && height != 0)
            arePlain = false;
        largest = height > largest ? height : largest;
    }
    bool allowSumsOf(double count) const { return arePlain && largest * count < 0x1p26; }

private:
    bool arePlain = true;
    float largest = 0;
};

/// The ring numbers of the shape's pixels; see findRings().
class Rings {
public:
    explicit Rings(const Shape &shape)
        : block(shape.block()), elements(Scratch<int>::zeroed(shape.wordCount() + 2 * ringMargin(shape.pitch))),
          numbers(elements ? elements.data() + ringMargin(shape.pitch) : nullptr) {
        if (!elements)
            return;
        // A block that starts inside a row ends inside the row behind the rectangle, which need not exist: it is read
        // only if a search would have come there.
        block.count -= shape.left > 0 ? shape.left : 0;
        if (block.count < 1)
            block.count = shape.wordCount();
        isFound = find(shape);
        if (block.count < shape.wordCount() && searchesReach(shape, block.count)) {
            block = shape.block();
            isFound = find(shape);
        }
        found = largestOf(shape);
        isFound = isFound && found <= shape.wordCount();
    }

    /// False if there is no memory, or no black word from which a ring could be counted.
    explicit operator bool() const { return elements && isFound; }
    int operator[](Distance index) const { return numbers[index]; }
    /// The words that any search comes to.
    const LinearBlock &searched() const { return block; }

    /// The largest of them.
    int largest() const { return found; }

private:
    /// Finds the rings and goes on where black lies in none but corners of a ring that are too far to count. A pixel
    /// for which nothing counts at all stays with the first ring. False without memory.
    bool find(const Shape &shape) {
        constexpr int firstWithFarCorners = 708; // 708 * 708 * 2 is more than noDistance
        constexpr int firstOutOfReach = 1000;
        findRings(block, numbers);
        std::fill(numbers + block.count, numbers + shape.wordCount(), 0);
        if (largestOf(shape) < firstWithFarCorners)
            return true;
        const NearestOnRings nearest(block);
        if (!nearest)
            return false;
        shape.forEachPixel([&](Distance index) {
            int ring = numbers[index];
            while (ring >= firstWithFarCorners && ring < firstOutOfReach &&
                   nearest.squaredDistance(index, ring) == noDistance)
                ++ring;
            if (ring < firstOutOfReach)
                numbers[index] = ring;
        });
        return true;
    }

    /// Those of black words are 0.
    int largestOf(const Shape &shape) const {
        int largest = 0;
        for (int y = 0; y < shape.height; ++y)
            for (int x = 0; x < shape.width; ++x)
                largest = larger(largest, numbers[y * shape.pitch + x]);
        return largest;
    }

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

    LinearBlock block;
    Scratch<int> elements;
    int *numbers;
    int found = 0;
    bool isFound = false;
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
bool raiseByRings(const Shape &shape, const HeightPlane &heights, PlainHeights &plain, HeightOf heightOf) {
    const Rings rings(shape);
    if (!rings)
        return false;
    const Scratch<float> heightOfRing(rings.largest() + 1LL);
    if (!heightOfRing)
        return false;
    float *const raised = heightOfRing.data();
    raised[0] = 0;
    for (int ring = 1; ring <= rings.largest(); ++ring)
        plain.take(raised[ring] = heightOf(wrapMultiply(ring, ring)));
    for (Distance y = 0; y < shape.height; ++y) {
        float *const row = &heights[y * shape.pitch];
        for (int x = 0; x < shape.width; ++x)
            row[x] = raised[rings[y * shape.pitch + x]];
    }
    return true;
}

/// roundedHeight(), in double where that is known to come out the same.
float quickRoundedHeight(int distanceSquare, int half) {
    if (half < 1 || distanceSquare < 1 || distanceSquare >= wrapMultiply(half, half))
        return roundedHeight(distanceSquare, half);
    const double distance = std::sqrt(static_cast<double>(distanceSquare));
    const Doubled height(std::sqrt((2.0 * half - distance) * distance));
    return height.isSettled() ? height.nearest() : roundedHeight(distanceSquare, half);
}

/// Sets the height of every pixel of the shape by the true distance on the first ring that is not empty. A limit that a
/// search can report ends it at the first ring; above, the ring is known beforehand. False if rings cannot be counted.
bool raiseByLimitedSearch(const Shape &shape, const HeightPlane &heights, PlainHeights &plain, int half, int limit) {
    if (limit < noDistance) {
        const auto heightOf = [=](int best) { return roundedHeight(smaller(best, limit), half); };
        const float beside = heightOf(1);
        const float acrossCorner = heightOf(2);
        const float inside = heightOf(noDistance);
        for (const float height : {beside, acrossCorner, inside})
            plain.take(height);
        const LinearBlock block = shape.block();
        shape.forEachPixel([&](Distance index) {
            const auto anyBlack = [&](Distance first, Distance second) {
                return block.isBlack(index - first) || block.isBlack(index + first) || block.isBlack(index - second) ||
                       block.isBlack(index + second);
            };
            heights[index] = anyBlack(1, block.pitch)                     ? beside
                             : anyBlack(block.pitch - 1, block.pitch + 1) ? acrossCorner
                                                                          : inside;
        });
        return true;
    }
    const Rings rings(shape);
    if (!rings)
        return false;
    const auto raise = [&](Distance index, int distanceSquare) {
        plain.take(heights[index] = quickRoundedHeight(distanceSquare, half));
    };
    const NearestOnRings nearest(rings.searched());
    if (nearest) {
        shape.forEachPixel([&](Distance index) { raise(index, nearest.squaredDistance(index, rings[index])); });
        return true;
    }
    shape.forEachPixel([&](Distance index) {
        int distanceSquare;
        FindNearBlackDistanceSquare(shape.words, static_cast<int>(shape.wordCount()), static_cast<int>(index),
                                    static_cast<int>(shape.pitch), rings[index], &distanceSquare, limit);
        raise(index, distanceSquare);
    });
    return true;
}

/// The sum times a factor as full width rounds it to a float, for a sum that is exact.
float scaledSum(Wide sum, Wide factor) {
    return static_cast<float>(sum * factor);
}
float scaledSum(double sum, double factor) {
    const Doubled product(sum * factor);
    return product.isSettled() ? product.nearest() : scaledSum(static_cast<Wide>(sum), static_cast<Wide>(factor));
}

/// Replaces each height of the shape by the mean over the 5 by 5 square around it, wherever that lies in the block.
/// Where sums are exact in double, those of columns serve neighbours as well. Always succeeds.
bool smoothBlock(const Shape &shape, const HeightPlane &heights, const PlainHeights &plain,
                 const HeightPlane &smoothed) {
    constexpr int reach = 2;
    const Distance count = shape.wordCount();
    const Scratch<double> columns(shape.width + 2 * reach);
    if (columns && plain.allowSumsOf(25)) {
        for (Distance y = 0; y < shape.height; ++y) {
            double *const sums = columns.data() + reach;
            for (int x = -reach; x < shape.width + reach; ++x)
                sums[x] = 0;
            for (Distance dy = -reach; dy <= reach; ++dy) {
                const Distance row = (y + dy) * shape.pitch;
                const Distance begin = row < reach ? -row : -reach;
                const Distance end = count - row < shape.width + reach ? count - row : shape.width + reach;
                for (Distance x = begin; x < end; ++x)
                    sums[x] += heights[row + x];
            }
            const Distance row = y * shape.pitch;
            for (Distance x = 0; x < shape.width; ++x)
                if (shape.words[row + x] != 0)
                    smoothed[row + x] =
                        scaledSum(sums[x - 2] + sums[x - 1] + sums[x] + sums[x + 1] + sums[x + 2], 0.04);
        }
        return true;
    }
    shape.forEachPixel([&](Distance index) {
        Wide sum = 0;
        for (Distance dy = -reach; dy <= reach; ++dy)
            for (Distance dx = -reach; dx <= reach; ++dx) {
                const Distance neighbour = index + dy * shape.pitch + dx;
                if (neighbour >= 0 && neighbour < count)
                    sum += heights[neighbour];
            }
        smoothed[index] = scaledSum(sum, static_cast<Wide>(0.04));
    });
    return true;
}

/// The same over a square of 2 `reach` + 1 on a side, with running sums, which are exact: heights are floats of 1 and
/// above or halves, and sums of as many as a surface holds fit the wide format's mantissa. False without memory.
template <class Sum>
bool smoothSource(const Shape &shape, const HeightPlane &heights, const HeightPlane &smoothed, int reach) {
    const Distance count = shape.wordCount();
    const Distance rowSumCount = count + 2 * static_cast<Distance>(reach);
    const Scratch<Sum> rowSums(rowSumCount);
    const auto columnSums = Scratch<Sum>::zeroed(shape.pitch);
    if (!rowSums || !columnSums)
        return false;
    const int side = wrapAdd(wrapMultiply(2, reach), 1);
    const auto scale = static_cast<float>(static_cast<Wide>(1) / wrapMultiply(side, side));

    const auto heightAt = [&](Distance index) -> Sum { return index >= 0 && index < count ? heights[index] : 0; };
    Sum running = 0;
    for (Distance i = 0; i < rowSumCount; ++i) { // the sum around index i - reach
        running += heightAt(i) - heightAt(i - 2 * static_cast<Distance>(reach) - 1);
        rowSums[i] = running;
    }
    const auto addRow = [&](Distance y, Sum sign) {
        const Distance first = y * shape.pitch + reach;
        const Distance begin = first < 0 ? -first : 0;
        const Distance end = rowSumCount - first < shape.pitch ? rowSumCount - first : shape.pitch;
        Sum *const sums = columnSums.data();
        const Sum *const all = rowSums.data();
        for (Distance x = begin; x < end; ++x)
            sums[x] += sign * all[first + x];
    };
    // Rows above the block reach into it with their windows as well.
    for (Distance y = -static_cast<Distance>(reach); y < reach; ++y)
        addRow(y, 1);
    for (Distance y = 0; y < shape.height; ++y) {
        addRow(y + reach, 1);
        for (Distance x = 0; x < shape.width; ++x)
            if (shape.words[y * shape.pitch + x] != 0)
                smoothed[y * shape.pitch + x] = scaledSum(columnSums[x], static_cast<Sum>(scale));
        addRow(y - reach, -1);
    }
    return true;
}

bool smoothSource(const Shape &shape, const HeightPlane &heights, const PlainHeights &plain,
                  const HeightPlane &smoothed, int reach) {
    if (reach < 0)
        return true; // a square without pixels
    const double side = 2.0 * reach + 1;
    return plain.allowSumsOf(side * side) ? smoothSource<double>(shape, heights, smoothed, reach)
                                          : smoothSource<Wide>(shape, heights, smoothed, reach);
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

/// The same light in double.
class DoubledLight {
public:
    explicit DoubledLight(const Light &light)
        : direction(light.direction), half(light.half), brightness(static_cast<double>(light.brightness)) {}

    /// Returns 0 if it is clear what full width truncates to. Products of floats are exact; what sums and powers lose,
    /// and full width with them, is far below the doubt.
    int find(float x, float y, float z, int &diffuse, int &specular) const {
        constexpr double doubt = 0x1p-32;
        const auto dot = [=](const _POINT3DFLOAT &to) {
            return static_cast<double>(to.z) * z + static_cast<double>(to.y) * y + static_cast<double>(to.x) * x;
        };
        const double fallen = 256 * dot(direction);
        double shine = dot(half);
        shine = 0.5 * (shine + std::fabs(shine)); // 0 instead of what is negative
        shine *= shine;
        shine *= shine;
        shine *= shine;
        shine *= shine;
        shine *= shine;
        shine *= brightness;
        const int least = static_cast<int>(fallen - doubt);
        const int leastShine = static_cast<int>(shine - doubt);
        diffuse = least > 0 ? least : 0;
        specular = leastShine;
        return (least ^ static_cast<int>(fallen + doubt)) | (leastShine ^ static_cast<int>(shine + doubt));
    }

private:
    _POINT3DFLOAT direction;
    _POINT3DFLOAT half;
    double brightness;
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
        return word(normal.x, normal.y, light.specular(normal), light.diffuse(normal));
    }
    static q_ulong word(float, float, int specular, int diffuse) {
        return static_cast<q_ulong>(specular) << 16 | static_cast<q_ulong>(diffuse + 100);
    }
};

/// The light of the source form, and its word: slopes, highlight and diffuse light, a byte each. Meant: the sign of a
/// negative slope in y covers the slope in x.
struct SourceForm {
    static Light light() { return {1, 1, -1, 512}; }

    static q_ulong word(const Light &light, const _POINT3DFLOAT &normal) {
        return word(normal.x, normal.y, light.specular(normal), light.diffuse(normal));
    }
    static q_ulong word(float normalX, float normalY, int specular, int diffuse) {
        int word = truncateToInt(64 * normalX);
        word = word << 8 | truncateToInt(64 * normalY);
        word = word << 8 | smaller(specular, 255);
        word = word << 8 | smaller(diffuse + 100, 255);
        return static_cast<q_ulong>(word);
    }
};

/// The light on a row, a stretch of pixels at a time, in floats and doubles. Where the doubles leave open what full
/// width rounds or truncates to, and beside the shape, the word is not known.
class QuickLight {
public:
    static constexpr int length = 32;

    QuickLight(const HeightPlane &plane, Distance planePitch, int verticalScale)
        : heights(plane), pitch(planePitch), heightScale(static_cast<float>(verticalScale)) {}

    /// Whether scale and positions are floats, so that products and differences are exact but for their rounding.
    static bool serves(const Shape &shape, int verticalScale) {
        constexpr int limit = 1 << 24;
        return verticalScale >= -limit && verticalScale <= limit && shape.width < limit && shape.height < limit;
    }

    struct Normals {
        float x[length], y[length], z[length];
        float doubt[length]; ///< 0 where they are known
    };

    /// Relief::edgeNormal() of the pixels from `index` on. Differences of floats, and their products with 1, are the
    /// same rounded from any wider format.
    void findEdgeNormals(Distance index, int count, Normals &normals) const {
        const float *const row = &heights[index];
        const float *const above = row - pitch;
        const float *const below = row + pitch;
        for (int i = 0; i < count; ++i) {
            const float up = heightScale * above[i];
            const float left = heightScale * row[i - 1];
            const float centre = heightScale * row[i];
            const float right = heightScale * row[i + 1];
            const float down = heightScale * below[i];
            setMean(normals, i, {(up - left) - (up - centre), -(up - centre)},
                    {(down - centre) - (down - right), down - centre}, 1);
        }
    }

    /// Relief::diagonalNormal() of them.
    void findDiagonalNormals(Distance index, int count, Normals &normals) const {
        const float *const above = &heights[index] - pitch;
        const float *const below = &heights[index] + pitch;
        for (int i = 0; i < count; ++i) {
            const float upperLeft = heightScale * above[i - 1];
            const float upperRight = heightScale * above[i + 1];
            const float lowerLeft = heightScale * below[i - 1];
            const float lowerRight = heightScale * below[i + 1];
            setMean(normals, i, {-2 * (upperLeft - upperRight), -2 * (upperLeft - lowerLeft)},
                    {2 * ((upperRight - lowerLeft) - (upperRight - lowerRight)), -2 * (upperRight - lowerRight)}, 4);
        }
    }

private:
    /// A normal's x and y, its z being that of all.
    struct Slope {
        float x, y;
    };

    static void setMean(Normals &normals, int i, Slope a, Slope b, double depth) {
        const auto lengthOf = [depth](Slope slope) {
            const double x = slope.x;
            const double y = slope.y;
            return std::sqrt(depth * depth + y * y + x * x);
        };
        const double aLength = lengthOf(a);
        const double bLength = lengthOf(b);
        const double reciprocal = 1 / (aLength * bLength); // a second division would take longer
        const double aFactor = bLength * reciprocal;
        const double bFactor = aLength * reciprocal;
        const Doubled ax(a.x * aFactor), ay(a.y * aFactor), az(-depth * aFactor);
        const Doubled bx(b.x * bFactor), by(b.y * bFactor), bz(-depth * bFactor);
        normals.x[i] = (ax.nearest() + bx.nearest()) * 0.5F;
        normals.y[i] = (ay.nearest() + by.nearest()) * 0.5F;
        normals.z[i] = (az.nearest() + bz.nearest()) * 0.5F;
        normals.doubt[i] = ax.doubt() + ay.doubt() + az.doubt() + bx.doubt() + by.doubt() + bz.doubt();
    }

    const HeightPlane &heights;
    Distance pitch;
    float heightScale;
};

/// How a relief's normals are found: at full width, and quickly.
struct EdgeNormals {
    static _POINT3DFLOAT at(const Relief &relief, Distance x, Distance y) { return relief.edgeNormal(x, y); }
    static void find(const QuickLight &light, Distance index, int count, QuickLight::Normals &normals) {
        light.findEdgeNormals(index, count, normals);
    }
};
struct DiagonalNormals {
    static _POINT3DFLOAT at(const Relief &relief, Distance x, Distance y) { return relief.diagonalNormal(x, y); }
    static void find(const QuickLight &light, Distance index, int count, QuickLight::Normals &normals) {
        light.findDiagonalNormals(index, count, normals);
    }
};

/// storeLight() a stretch at a time. Words that stay open are found at full width; that of a flat spot, once.
template <class Form, class NormalsAre>
void storeLightQuickly(const Shape &shape, const HeightPlane &heights, int heightScale, const Relief &relief,
                       const Light &light) {
    constexpr int length = QuickLight::length;
    const QuickLight quick(heights, shape.pitch, heightScale);
    const q_ulong flat = Form::word(light, {0, 0, -1, 0});
    QuickLight::Normals normals;
    int diffuse[length];
    int specular[length];
    int open[length];
    const DoubledLight lit(light);
    for (Distance y = 0; y < shape.height; ++y)
        for (int start = 0, count; start < shape.width; start += count) {
            q_ulong *const words = shape.words + y * shape.pitch + start;
            count = 0;
            if (*words == 0) {
                while (start + ++count < shape.width && words[count] == 0) {
                }
                continue;
            }
            // A run of the shape, and what follows up to a whole number of lanes.
            const int most = smaller(shape.width - start, length);
            while (count < most && words[count] != 0)
                ++count;
            count = smaller((count + 7) & ~7, most);
            NormalsAre::find(quick, y * shape.pitch + start, count, normals);
            for (int i = 0; i < count; ++i)
                open[i] = lit.find(normals.x[i], normals.y[i], normals.z[i], diffuse[i], specular[i]);
            for (int i = 0; i < count; ++i) {
                if (words[i] == 0)
                    continue;
                if (normals.x[i] == 0 && normals.y[i] == 0 && normals.z[i] == -1 && normals.doubt[i] == 0)
                    words[i] = flat;
                else if (open[i] == 0 && normals.doubt[i] == 0)
                    words[i] = Form::word(normals.x[i], normals.y[i], specular[i], diffuse[i]);
                else
                    words[i] = Form::word(light, NormalsAre::at(relief, start + i, y));
            }
        }
}

/// Turns the shape in a rectangle into light. `raise(shape, heights, plain)` sets its heights and `smooth(shape,
/// heights, plain, smoothed)` takes their means; either may say that it could not, and the picture stays as it is.
template <class Form, class NormalsAre, class Raise, class Smooth>
void convert(q_ulong *surface, const tagRECT &rect, int pitch, int heightScale, Raise raise, Smooth smooth) {
    const Shape shape(surface, rect, pitch);
    if (shape.empty())
        return;
    const HeightPlane heights(shape);
    const HeightPlane smoothed(shape);
    if (!heights || !smoothed)
        return;
    atFullWidth([&] {
        PlainHeights plain;
        if (!raise(shape, heights, plain) || !smooth(shape, heights, plain, smoothed))
            return;
        const Relief relief(shape, smoothed, heightScale);
        const Light light = Form::light();
        if (plain.allowSumsOf(1) && QuickLight::serves(shape, heightScale))
            storeLightQuickly<Form, NormalsAre>(shape, smoothed, heightScale, relief, light);
        else
            storeLight(shape, [&](Distance x, Distance y) { return Form::word(light, NormalsAre::at(relief, x, y)); });
    });
}

/// The height of the source form over a squared ring number.
float profileHeight(int distanceSquare, int profile, int half) {
    const Wide distance = squareRoot(distanceSquare);
    switch (profile) {
    case 0:
        return static_cast<float>(distance + distance);
    case 1:
        return static_cast<float>(distanceSquare * static_cast<Wide>(0.5));
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
    convert<BlockForm, EdgeNormals>(
        surface, *rect, pitch, heightScale,
        [=](const Shape &shape, const HeightPlane &heights, PlainHeights &plain) {
            return raiseByLimitedSearch(shape, heights, plain, half, limit);
        },
        smoothBlock);
}

void ConvertBlock2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize, int) {
    const int half = bevelSize >> 1;
    convert<BlockForm, DiagonalNormals>(
        surface, *rect, pitch, heightScale,
        [=](const Shape &shape, const HeightPlane &heights, PlainHeights &plain) {
            return raiseByRings(shape, heights, plain, [half](int square) { return roundedHeight(square, half); });
        },
        smoothBlock);
}

void ConvertSrc2LightInfom(q_ulong *surface, tagRECT *rect, int pitch, int heightScale, int bevelSize, int profile) {
    const int half = bevelSize >> 1;
    const int reach = bevelSize / 8;
    convert<SourceForm, EdgeNormals>(
        surface, *rect, pitch, heightScale,
        [=](const Shape &shape, const HeightPlane &heights, PlainHeights &plain) {
            return raiseByRings(shape, heights, plain,
                                [=](int square) { return profileHeight(square, profile, half); });
        },
        [reach](const Shape &shape, const HeightPlane &heights, const PlainHeights &plain,
                const HeightPlane &smoothed) { return smoothSource(shape, heights, plain, smoothed, reach); });
}
