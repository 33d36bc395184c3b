// A moon over a blue evening, drawn by q_Mur and written as hello.ppm.
#include <cstdio>
#include <q_Mur.h>
#include <vector>

int main() {
    constexpr int width = 640, height = 360;
    std::vector<q_ulong> night(width * height), light(width * height), picture(width * height);

    Init_qMur_GlobalData(nullptr, nullptr);
    for (int y = 0; y < height; ++y) {
        tagRECT row = {0, y, width, y + 1};
        iFillRect(night.data(), &row, width, static_cast<q_ulong>((y / 8) << 16 | (y / 5) << 8 | (40 + y / 3)));
        iFillRect(light.data(), &row, width, 0xFFF4D6);
    }
    tagPOINT moon = {450, 110};
    Edge_Transparency_Circle(picture.data(), light.data(), night.data(), &moon, 50, 12, width, height, width);

    std::FILE *file = std::fopen("hello.ppm", "wb");
    if (!file) {
        std::perror("hello.ppm");
        return 1;
    }
    std::fprintf(file, "P6 %d %d 255\n", width, height);
    for (q_ulong pixel : picture)
        for (int shift : {16, 8, 0})
            std::fputc(static_cast<int>(pixel >> shift & 0xFF), file);
    return std::fclose(file) == 0 ? 0 : 1;
}
