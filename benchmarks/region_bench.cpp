#include "region/plane.h"
#include "support/job.h"
#include "support/row.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace bench {
namespace {

using test::Plane;
using test::Surface;

constexpr q_ulong border = 1;
constexpr int width = 641;
constexpr int height = 481;

/// An empty plane in a frame of boundary.
Surface openPlane() {
    Surface plane(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (x == 0 || y == 0 || x == width - 1 || y == height - 1)
                plane.at(x, y) = border;
    return plane;
}

/// A maze of corridors three pixels wide. Walls fall in any order, but only between parts that are not joined yet: so
/// one way leads from each place to each, and there are no islands.
Surface maze() {
    constexpr int cell = 4;
    constexpr int columns = width / cell;
    constexpr int rows = height / cell;
    Surface plane(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (x % cell == 0 || y % cell == 0)
                plane.at(x, y) = border;
    std::vector<std::size_t> parts(columns * rows); // each names another of its part, but for one
    std::iota(parts.begin(), parts.end(), std::size_t{0});
    const auto partOf = [&parts](int column, int row) {
        std::size_t at = static_cast<std::size_t>(row * columns + column);
        while (parts[at] != at)
            at = parts[at] = parts[parts[at]];
        return at;
    };
    test::Random random(1);
    for (int joined = 1; joined < columns * rows;) {
        const int column = random.between(0, columns - 1);
        const int row = random.between(0, rows - 1);
        const bool toTheRight = random.oneIn(2);
        if (toTheRight ? column == columns - 1 : row == rows - 1)
            continue;
        const std::size_t here = partOf(column, row);
        const std::size_t there = toTheRight ? partOf(column + 1, row) : partOf(column, row + 1);
        if (here == there)
            continue;
        parts[here] = there;
        ++joined;
        for (int i = 1; i < cell; ++i)
            plane.at(column * cell + (toTheRight ? cell : i), row * cell + (toTheRight ? i : cell)) = 0;
    }
    return plane;
}

constexpr int seedX = 2;
constexpr int seedY = 2;

/// Calls `paint(x, y)` for each pixel that can be reached from the seed, pixel by pixel. Boundary is all around.
template <class Paint>
void flood(Surface plane, Paint paint) {
    std::vector<std::pair<int, int>> open = {{seedX, seedY}};
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        if (plane.at(x, y) == border)
            continue;
        plane.at(x, y) = border;
        paint(x, y);
        for (const auto &[nextX, nextY] : {std::pair{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}})
            open.emplace_back(nextX, nextY);
    }
}

Job colourFill(const Surface &boundaries) {
    return drawing(
        noise(width, height),
        [test = boundaries](Surface &dst) mutable {
            _PRIVATE_QMGP_DATA data = {};
            tagRECT rect = dst.rect();
            SetRegionFill(&data, dst.pixels(), dst.pitch(), test.pixels(), test.pitch());
            Region_Fill(&data, seedX, seedY, 0xFF336699, border, 0, 0, 0, &rect);
        },
        [boundaries](Surface &dst) { flood(boundaries, [&dst](int x, int y) { dst.at(x, y) = 0xFF336699; }); }, 1);
}

Job sourceFill(const Surface &boundaries) {
    const Surface picture = noise(width, height, 2);
    return drawing(
        noise(width, height),
        [src = picture, plane = Plane(boundaries)](Surface &dst) mutable {
            _PRIVATE_QMGP_DATA data = {};
            tagRECT rect = dst.rect();
            SetRegionSrcFill(&data, dst.pixels(), dst.pitch(), src.pixels(), src.pitch(), plane.pixels(), &rect,
                             plane.pitch());
            Region_Src_Fill(&data, seedX, seedY, static_cast<unsigned char>(border), 0, 0, 0);
        },
        [boundaries, picture](Surface &dst) {
            flood(boundaries, [&](int x, int y) { dst.at(x, y) = picture.at(x, y); });
        },
        1);
}

/// On a copy of the plane, which is timed along: what is painted is boundary.
Job planeFill(const Surface &boundaries) {
    Plane fresh(boundaries);
    auto plane = std::make_shared<Plane>(fresh);
    auto run = [plane, fresh]() mutable {
        std::copy_n(fresh.pixels(), fresh.pitch() * (height - 1) + width, plane->pixels());
        _PRIVATE_QMGP_DATA data = {};
        tagRECT rect = {0, 0, width, height};
        bSetRegionFill(&data, plane->pixels(), &rect, plane->pitch());
        bRegion_Fill(&data, seedX, seedY, static_cast<unsigned char>(border), 0, 0, 0);
    };
    auto check = [=]() mutable {
        Surface expected = boundaries;
        flood(boundaries, [&expected](int x, int y) { expected.at(x, y) = border; });
        run();
        return compared(plane->words(), expected, boundaries);
    };
    return {run, check, 1};
}

} // namespace

void addRegionRows() {
    struct Fill {
        const char *name;
        Job (*start)(const test::Surface &boundaries);
    };
    std::vector<JobRow> rows;
    for (const Fill &fill :
         {Fill{"Region_Fill", colourFill}, {"bRegion_Fill", planeFill}, {"Region_Src_Fill", sourceFill}}) {
        rows.push_back({fill.name, "open plane of 641 x 481", "fills", [fill] { return fill.start(openPlane()); }});
        rows.push_back({fill.name, "maze of 160 x 120 on 641 x 481", "fills", [fill] { return fill.start(maze()); }});
    }
    addJobs(rows);
}

} // namespace bench
