#include "row.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <tuple>

namespace bench {
namespace {

struct Size {
    int width;
    int height;
};

constexpr Size sizes[] = {{1920, 1080}, {640, 480}};

/// Scenes are shared by all rows of one shape, so that every row meets the same memory.
Scene &sceneOf(Size size, int extraPitch) {
    static std::map<std::tuple<int, int, int>, std::unique_ptr<Scene>> scenes;
    std::unique_ptr<Scene> &scene = scenes[{size.width, size.height, extraPitch}];
    if (!scene)
        scene = std::make_unique<Scene>(size.width, size.height, extraPitch);
    return *scene;
}

int bytesPerPixel(Traffic traffic) {
    switch (traffic) {
    case Traffic::writes:
        return 4;
    case Traffic::readsDst:
    case Traffic::readsSrc:
        return 8;
    default:
        return 12;
    }
}

/// Draws once and compares: every pixel around the picture, all of its border, and every thirteenth pixel inside.
/// Returns what is wrong, or nothing.
std::string whatIsWrong(const PixelRow &row, Scene &scene) {
    scene.before.words() = scene.dst.words();
    row.draw(scene);
    for (std::size_t i = 0; i < scene.dst.words().size(); ++i) {
        if (!scene.dst.contains(i) && scene.dst.words()[i] != scene.before.words()[i])
            return "writes beside the picture";
    }
    for (int y = 0; y < scene.height; ++y) {
        const bool wholeRow = y == 0 || y == scene.height - 1;
        int x = wholeRow ? 0 : y % 13;
        while (x < scene.width) {
            const q_ulong expected = row.expected(scene, x, y);
            if (scene.dst.at(x, y) != expected) {
                char text[120];
                std::snprintf(text, sizeof text, "(%d, %d) is 0x%08X instead of 0x%08X", x, y,
                              static_cast<unsigned>(scene.dst.at(x, y)), static_cast<unsigned>(expected));
                return text;
            }
            const int next = x + (wholeRow ? 1 : 13);
            x = x < scene.width - 1 ? std::min(next, scene.width - 1) : next;
        }
    }
    return {};
}

void measure(benchmark::State &state, const PixelRow &row, Size size) {
    Scene &scene = sceneOf(size, row.extraPitch);
    const std::string wrong = whatIsWrong(row, scene);
    if (!wrong.empty()) {
        state.SkipWithError(wrong.c_str());
        return;
    }
    for (auto iteration : state) {
        static_cast<void>(iteration);
        row.draw(scene);
        benchmark::ClobberMemory();
    }
    const auto pixels = static_cast<double>(row.pixelCount(scene));
    using benchmark::Counter;
    state.counters["ns_per_pixel"] = Counter(pixels * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["bytes_per_second"] =
        Counter(pixels * bytesPerPixel(row.traffic), Counter::kIsIterationInvariantRate);
    state.SetLabel(row.traffic == Traffic::writes || row.traffic == Traffic::readsDst ? "fill" : "memcpy");
}

} // namespace

void addRows(const std::vector<PixelRow> &rows) {
    for (const PixelRow &row : rows) {
        for (const Size size : sizes) {
            const std::string name = row.name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height);
            benchmark::RegisterBenchmark(name.c_str(), measure, row, size)->Unit(benchmark::kMicrosecond);
        }
    }
}

void addBaselines() {
    static constexpr q_ulong colour = 0x00336699;
    addRows({
        {"memcpy", Traffic::readsSrc,
         [](Scene &scene) {
             std::memcpy(scene.dst.pixels(), scene.picture.pixels(),
                         static_cast<std::size_t>(scene.pixelCount()) * sizeof(q_ulong));
         },
         [](const Scene &scene, int x, int y) { return scene.picture.at(x, y); }},
        {"fill", Traffic::writes, [](Scene &scene) { std::fill_n(scene.dst.pixels(), scene.pixelCount(), colour); },
         [](const Scene &, int, int) { return colour; }},
    });
}

} // namespace bench
