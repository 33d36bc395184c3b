#include "workloads.h"

#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <new>

namespace peers {
namespace {

/// The largest picture, with room for what filters read behind it.
constexpr std::size_t planeBytes = std::size_t{16} << 20;

/// The planes of every process, on large pages, so that nobody is lucky with the ones that he gets, and a little apart
/// from each other in the caches.
Pixel *plane(std::size_t number) {
    constexpr std::size_t bytes = 3 * planeBytes + (std::size_t{4} << 20);
    static std::uint8_t *const memory = [] {
        void *all = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (all == MAP_FAILED)
            throw std::bad_alloc();
        madvise(all, bytes, MADV_HUGEPAGE);
        const auto largePage = std::uintptr_t{2} << 20;
        return reinterpret_cast<std::uint8_t *>((reinterpret_cast<std::uintptr_t>(all) + largePage - 1) &
                                                ~(largePage - 1));
    }();
    return reinterpret_cast<Pixel *>(memory + number * (planeBytes + 1088));
}

/// The same numbers everywhere.
class Random {
public:
    int below(int end) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<int>((state >> 33) % static_cast<std::uint64_t>(end));
    }
    Pixel colour() { return 0xFF000000 | static_cast<Pixel>(below(0x1000000)); }

private:
    std::uint64_t state = 1;
};

/// A wave along one side of a picture.
std::vector<double> wave(int length, double step, double phase) {
    std::vector<double> values;
    for (int i = 0; i < length; ++i)
        values.push_back(std::sin(i * step + phase));
    return values;
}

/// Soft hills of colour under a grain. The alpha of a source has clear, solid and soft areas.
void paint(const Surface &surface, int number, bool isOpaque) {
    Random random;
    const double scale = 1.0 / surface.width;
    std::vector<double> across[4], down[4];
    for (int i = 0; i < 4; ++i) { // three colours and the alpha
        across[i] = wave(surface.width, (i < 3 ? 9 : 11) * scale, number + 2 * i);
        down[i] = wave(surface.height, (i < 3 ? 13 : 9) * scale, 1 - number - 2 * i);
    }
    Pixel *pixel = surface.pixels;
    for (std::size_t y = 0; y < down[0].size(); ++y) {
        for (std::size_t x = 0; x < across[0].size(); ++x) {
            const int grain = random.below(24);
            const auto channel = [&](int i) {
                return static_cast<Pixel>(120 + 50 * across[i][x] + 45 * down[i][y] + grain);
            };
            const double depth = isOpaque ? 1 : std::clamp(0.5 + across[3][x] * down[3][y], 0.0, 1.0);
            *pixel++ = static_cast<Pixel>(depth * 255) << 24 | channel(0) << 16 | channel(1) << 8 | channel(2);
        }
    }
}

void addPictures(std::vector<Workload> &list, const std::string &kind, double tolerance) {
    list.push_back({kind, "1920 x 1080", 1920, 1080, 1920, 1080, 0, "pixel", 1920 * 1080, tolerance});
    list.push_back({kind, "640 x 480", 640, 480, 640, 480, 0, "pixel", 640 * 480, tolerance});
}

std::vector<Workload> allWorkloads() {
    std::vector<Workload> list;
    addPictures(list, "fill", 0);
    addPictures(list, "copy", 0);
    addPictures(list, "add", 0);
    list.push_back({"fade", "1920 x 1080", 1920, 1080, 1, 1, 0, "pixel", 1920 * 1080, 1});
    addPictures(list, "constant alpha", 1);
    addPictures(list, "pixel alpha", 1);
    addPictures(list, "colour key", 0);
    // Where a pixel stands is counted from its corner by some and from its middle by others: half a pixel of grain.
    for (const char *kind : {"nearest", "bilinear"}) {
        const auto add = [&](const char *size, int srcWidth, int srcHeight, int width, int height) {
            list.push_back({kind, size, width, height, srcWidth, srcHeight, 0, "pixel", width * height, 9});
        };
        add("enlarged 1.5 x", 1280, 720, 1920, 1080);
        add("enlarged 2 x", 960, 540, 1920, 1080);
        add("reduced 1.5 : 1", 1920, 1080, 1280, 720);
        add("reduced 2 : 1", 1920, 1080, 960, 540);
        add("reduced 3 : 1", 1920, 1080, 640, 360);
    }
    for (const char *kind : {"rotation, nearest", "rotation, bilinear"})
        list.push_back({kind, "1.8 x", 1920, 1080, 960, 540, 0, "pixel", 1920 * 1080, 9});
    for (const int radius : {3, 15, 60})
        list.push_back({"box blur", "radius " + std::to_string(radius), 1280, 720, 1280, 720,
                        static_cast<double>(radius), "pixel", 1280 * 720, 2});
    for (const int sigma : {2, 8, 20})
        list.push_back({"Gaussian blur", "sigma " + std::to_string(sigma), 1280, 720, 1280, 720,
                        static_cast<double>(sigma), "pixel", 1280 * 720, 2});
    list.push_back({"lines", "smooth", 1280, 720, 1, 1, 0, "line", static_cast<int>(lines().size()), 4});
    list.push_back({"circles", "filled", 1280, 720, 1, 1, 0, "circle", static_cast<int>(circles().size()), 2});
    // A pixel is a tenth of a small triangle's way from one colour to another.
    for (const int pixels : {50, 5000})
        list.push_back({"shaded triangles with depth", std::to_string(pixels) + " pixels", 1280, 720, 1, 1,
                        static_cast<double>(pixels), "triangle", static_cast<int>(triangles(pixels).size() / 3),
                        pixels == 50 ? 10.0 : 2.0});
    list.push_back({"lit textured mesh with depth", "1280 x 720", 1280, 720, 512, 512, 0, "pixel", 1280 * 720, 8});
    return list;
}

} // namespace

const std::vector<Workload> &workloads() {
    static const std::vector<Workload> list = allWorkloads();
    return list;
}

Stage setStage(const Workload &workload) {
    const Surface dst = {plane(0), workload.dstWidth, workload.dstHeight};
    const Surface src = {plane(1), workload.srcWidth, workload.srcHeight};
    const Surface scratch = {plane(2), std::max(dst.width, src.width), std::max(dst.height, src.height)};
    paint(dst, 0, true);
    paint(src, workload.kind == "box blur" ? 0 : 1, workload.kind != "pixel alpha"); // which some do in place
    // The last row once more, for filters that read behind it.
    std::copy_n(src.pixels + src.size() - src.width, src.width, src.pixels + src.size());
    if (workload.kind == "colour key") {
        const std::vector<double> across = wave(src.width, 0.02, 0), down = wave(src.height, 0.03, 1);
        for (std::size_t i = 0; i < src.size(); ++i)
            if (across[i % across.size()] * down[i / across.size()] < -0.1)
                src.pixels[i] = keyColour;
    }
    return {dst, src, scratch, workload.amount};
}

void premultiply(const Surface &surface) {
    for (std::size_t i = 0; i < surface.size(); ++i) {
        const Pixel pixel = surface.pixels[i], alpha = pixel >> 24;
        const auto channel = [&](int shift) { return ((pixel >> shift & 0xFF) * alpha + 127) / 255 << shift; };
        surface.pixels[i] = alpha << 24 | channel(16) | channel(8) | channel(0);
    }
}

const std::vector<Line> &lines() {
    static const std::vector<Line> list = [] {
        std::vector<Line> made;
        Random random;
        for (int i = 0; i < 1000; ++i) {
            const int x = 320 + random.below(640), y = 180 + random.below(360);
            made.push_back({x, y, x + random.below(301) - 150, y + random.below(301) - 150, random.colour()});
        }
        return made;
    }();
    return list;
}

const std::vector<Circle> &circles() {
    static const std::vector<Circle> list = [] {
        std::vector<Circle> made;
        Random random;
        for (int i = 0; i < 1000; ++i) {
            const int radius = 2 + random.below(60);
            made.push_back({100 + random.below(1080), 100 + random.below(520), radius, random.colour()});
        }
        return made;
    }();
    return list;
}

std::vector<Vertex> triangles(int pixels) {
    constexpr int layers = 4, width = 1280, height = 720;
    std::vector<Vertex> made;
    Random random;
    const int side = static_cast<int>(std::sqrt(2 * pixels));
    for (int i = 0; i < layers * width * height / pixels; ++i) {
        // Two sides at right angles, turned and sheared a little.
        const int x = random.below(width - 2 * side) + side / 2, y = random.below(height - 2 * side) + side / 2;
        const int lean = random.below(side / 2);
        const int z = 1 + random.below(30000);
        const auto vertex = [&](int dx, int dy) {
            made.push_back({static_cast<float>(x + dx), static_cast<float>(y + dy),
                            static_cast<float>(z + random.below(2000)), random.colour()});
        };
        vertex(0, 0), vertex(side, 0), vertex(lean, side);
    }
    return made;
}

Mesh mesh(const Surface &dst) {
    constexpr float margin = 40;
    Mesh made;
    for (int row = 0; row < Mesh::rows; ++row) {
        for (int column = 0; column < Mesh::columns; ++column) {
            const float u = static_cast<float>(column) / (Mesh::columns - 1);
            const float v = static_cast<float>(row) / (Mesh::rows - 1);
            const float z = 1000 + 60 * std::sin(12 * u) * std::cos(9 * v);
            made.points.push_back({std::floor(margin + u * (static_cast<float>(dst.width) - 2 * margin)),
                                   std::floor(margin + v * (static_cast<float>(dst.height) - 2 * margin)),
                                   std::floor(z), 0});
        }
    }
    return made;
}

} // namespace peers
