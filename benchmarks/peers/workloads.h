/// \file
/// What is drawn: the same sizes, pictures and figures, in the same places of memory, for every library.
#ifndef Q_MUR_PEERS_WORKLOADS_H
#define Q_MUR_PEERS_WORKLOADS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace peers {

using Pixel = std::uint32_t; ///< 0xAARRGGBB

/// A picture whose rows follow each other without a gap.
struct Surface {
    Pixel *pixels;
    int width;
    int height;

    std::uint8_t *bytes() const { return reinterpret_cast<std::uint8_t *>(pixels); }
    int pitch() const { return width * 4; } ///< in bytes
    std::size_t size() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
};

struct Workload {
    std::string kind;
    std::string size; ///< tells workloads of a kind apart
    int dstWidth, dstHeight;
    int srcWidth, srcHeight;
    double amount;    ///< radius, standard deviation, pixels of a triangle
    std::string unit; ///< what `count` counts
    int count;
    double tolerance; ///< how far the mean of a channel may be off, in levels, for the same work

    std::string name() const { return kind + ", " + size; }
};

/// All of them, in the order in which they are shown.
const std::vector<Workload> &workloads();

/// Where a workload is done.
struct Stage {
    Surface dst;
    Surface src;
    Surface scratch; ///< of the size of the larger
    double amount;
};

/// The stage of a workload, its pictures painted anew. A process has one at a time.
Stage setStage(const Workload &workload);

/// Colours multiplied by their alpha, for libraries that want them so.
void premultiply(const Surface &surface);

constexpr Pixel fillColour = 0xFF336699;
constexpr Pixel keyColour = 0xFFFF00FF; ///< left out by colour-key copies
constexpr int fadeFactor = 200;         ///< in 1/256
constexpr int constantAlpha = 96;       ///< in 1/256
constexpr double rotationAngle = 0.5;   ///< in radians; the right side goes down
constexpr double rotationScale = 1.8;

struct Line {
    int x1, y1, x2, y2;
    Pixel colour;
};
const std::vector<Line> &lines();

struct Circle {
    int x, y, radius;
    Pixel colour;
};
const std::vector<Circle> &circles();

struct Vertex {
    float x, y, z; ///< in pixels, z from 1 to 32000, smaller nearer
    Pixel colour;
};
/// Three vertices for each triangle, in random places: four layers deep on the average.
std::vector<Vertex> triangles(int pixels);

/// A sheet that bulges toward the viewer, row after row, over all but the margin of the picture.
struct Mesh {
    static constexpr int rows = 33, columns = 49;
    static constexpr float light[3] = {0.48F, 0.48F, 0.734F}; ///< the direction in which it shines
    static constexpr float ambient = 0.25F, specular = 0.25F;
    static constexpr int shininess = 4; ///< how often the highlight is squared

    std::vector<Vertex> points; ///< without colours
};
Mesh mesh(const Surface &dst);

} // namespace peers

#endif
