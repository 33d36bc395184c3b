// A soft wipe between two photographs: the second one opens out of a point of the first in a circle without a hard
// edge.
//
//     qmur-wipe FIRST.jpg SECOND.jpg      writes six stages, the first and the last whole, into wipe.png
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <q_Mur.h>
#include <vector>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image.h>
#include <stb_image_write.h>

namespace {

constexpr int width = 400, height = 260, columns = 3, rows = 2, gap = 8;
using Pixels = std::vector<q_ulong>;

// The middle of a photograph in the size of a stage; empty if it cannot be read.
Pixels readPhoto(const char *path) {
    int fullWidth = 0, fullHeight = 0, channels = 0;
    unsigned char *bytes = stbi_load(path, &fullWidth, &fullHeight, &channels, 3);
    if (!bytes) {
        std::fprintf(stderr, "qmur-wipe: %s: %s\n", path, stbi_failure_reason());
        return {};
    }
    Pixels full;
    for (int i = 0; i < fullWidth * fullHeight; ++i)
        full.push_back(static_cast<q_ulong>(bytes[3 * i] << 16 | bytes[3 * i + 1] << 8 | bytes[3 * i + 2]));
    stbi_image_free(bytes);

    // The largest part of the stage's proportions.
    const double shrink = std::min(1.0 * fullWidth / width, 1.0 * fullHeight / height);
    const int partWidth = static_cast<int>(width * shrink), partHeight = static_cast<int>(height * shrink);
    tagRECT part = {(fullWidth - partWidth) / 2, (fullHeight - partHeight) / 2, 0, 0};
    part.right = part.left + partWidth;
    part.bottom = part.top + partHeight;

    // Averaged first, as scaling down looks at single pixels. The key has a top byte, so nothing equals it: this is the
    // filtered copy that reads nothing outside its source.
    Blur_Rect(full.data(), &part, fullWidth, std::min(128, static_cast<int>(shrink / 2)));
    Pixels stage(width * height);
    tagRECT all = {0, 0, width, height};
    iBltBilinear32_KeySrc(stage.data(), full.data(), &all, &part, width, static_cast<q_ulong>(fullWidth), 0xFF000000);
    return stage;
}

} // namespace

int main(int count, char **arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: qmur-wipe FIRST.jpg SECOND.jpg\n");
        return 2;
    }
    Init_qMur_GlobalData(nullptr, nullptr);
    Pixels first = readPhoto(arguments[1]), second = readPhoto(arguments[2]);
    if (first.empty() || second.empty())
        return 1;

    constexpr int sheetWidth = columns * (width + gap) - gap, sheetHeight = rows * (height + gap) - gap;
    Pixels sheet(sheetWidth * sheetHeight, 0xFFFFFF), stage(width * height);
    tagPOINT centre = {width * 2 / 3, height / 3};
    tagRECT all = {0, 0, width, height};
    // With a radius of -band nothing of the circle is there, with the distance to the farthest corner + band all of it.
    constexpr int band = 60;
    const double farthest =
        std::hypot(std::max<double>(centre.x, width - centre.x), std::max<double>(centre.y, height - centre.y));
    for (int i = 0; i < columns * rows; ++i) {
        const double progress = i / (columns * rows - 1.0);
        const int radius = static_cast<int>(std::lround(-band + progress * (std::ceil(farthest) + 2 * band)));
        Edge_Transparency_Circle(stage.data(), second.data(), first.data(), &centre, radius, band, width, height,
                                 width);
        iBltFast32(sheet.data(), stage.data(), static_cast<q_ulong>(i % columns * (width + gap)),
                   static_cast<q_ulong>(i / columns * (height + gap)), &all, sheetWidth, width);
    }

    std::vector<unsigned char> bytes;
    for (const q_ulong pixel : sheet)
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(pixel >> shift));
    return stbi_write_png("wipe.png", sheetWidth, sheetHeight, 3, bytes.data(), 0) ? 0 : 1;
}
