// Relief from a light map: a medal that stands out of a photograph, and two footprints that are pressed into it.
//
//     qmur-relief PHOTO.jpg      writes relief.png
#include <algorithm>
#include <cstdio>
#include <q_Mur.h>
#include <vector>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image.h>
#include <stb_image_write.h>

namespace {

constexpr int width = 640, height = 320;

// The light on a flat spot is 279, and the word's upper half is a highlight.
q_ulong lit(q_ulong pixel, q_ulong word) {
    q_ulong result = 0;
    for (const int shift : {16, 8, 0})
        result |= std::min<q_ulong>(255, (pixel >> shift & 0xFF) * (word & 0xFFFF) / 279 + (word >> 16)) << shift;
    return result;
}

} // namespace

int main(int count, char **arguments) {
    int fullWidth = 0, fullHeight = 0, channels = 0;
    unsigned char *photo = count == 2 ? stbi_load(arguments[1], &fullWidth, &fullHeight, &channels, 3) : nullptr;
    if (!photo || fullWidth < width || fullHeight < height) {
        std::fprintf(stderr, "usage: qmur-relief PHOTO.jpg, of at least %d x %d pixels\n", width, height);
        stbi_image_free(photo);
        return 2;
    }
    Init_qMur_GlobalData(nullptr, nullptr);
    // Its upper left part is taken as it is.
    std::vector<q_ulong> picture;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const unsigned char *bytes = photo + 3 * (y * fullWidth + x);
            picture.push_back(static_cast<q_ulong>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]));
        }
    stbi_image_free(photo);

    // The shape is whatever is not 0: a rim and a built-in sprite for the medal, whose relief stands out.
    std::vector<q_ulong> map(width * height), sprite(128 * 166);
    Draw_Circle_NoFillInside(map.data(), width, 160, 160, 130, 22, 1);
    tagRECT notes = {0, 0, 128, 128}, foot = {0, 0, 122, 166};
    LoadResourceMusicSymbol(sprite.data(), 128, 128, 128);
    iBltFast32_KeySrc(map.data(), sprite.data(), 96, 96, &notes, width, 128, 0);
    tagRECT medal = {0, 0, 320, height};
    // The limit is beyond every squared distance, or the bevel would be a pixel wide.
    ConvertBlock2LightInfom(map.data(), &medal, width, 1, 14, 0, 1000000);

    // Footprints with a negative height are hollows.
    LoadResourceFootMark(sprite.data(), 122, 166, 122);
    iBltFast32_KeySrc(map.data(), sprite.data(), 350, 134, &foot, width, 122, 0);
    iBltFast32_KeySrc(map.data(), sprite.data(), 490, 20, &foot, width, 122, 0);
    tagRECT steps = {320, 0, width, height};
    ConvertBlock2LightInfom(map.data(), &steps, width, -1, 10, 0, 1000000);

    // Nothing in the library reads a light map: the host lays it over the picture. Outside of the shape it is 0.
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        const q_ulong pixel = map[i] ? lit(picture[i], map[i]) : picture[i];
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(pixel >> shift));
    }
    return stbi_write_png("relief.png", width, height, 3, bytes.data(), 0) ? 0 : 1;
}
