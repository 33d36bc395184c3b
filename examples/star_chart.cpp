// A chart of the northern sky: lines, lights, texts, and bubbles that magnify what lies behind them.
//
//     qmur-star-chart      writes star-chart.png
#include <cmath>
#include <q_Mur.h>
#include <string>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>

namespace {

struct Constellation {
    const char *name;
    double hours, degrees;     // right ascension and declination of the name
    unsigned joined;           // the star that the last one is joined to
    std::vector<double> stars; // right ascension, declination and magnitude of each
};
const Constellation constellations[] = {
    {"Ursa Major", 11.4, 48, 3, {13.8, 49.3, 2,    13.4, 54.9, 2,    12.9, 56,   2,    12.3, 57,
                                 3,    11.1, 61.8, 2,    11,   56.4, 2,    11.9, 53.7, 2}},
    {"Ursa Minor", 17.6, 76, 3, {2.5, 89.3, 2,    17.5, 86.6, 4,    16.8, 82,   4,    15.7, 77.8,
                                 4,   14.9, 74.2, 2,    15.4, 71.8, 3,    16.3, 75.8, 5}},
    {"Cassiopeia", 1.9, 68, 4, {0.2, 59.2, 2, 0.7, 56.5, 2, 0.9, 60.7, 2, 1.4, 60.2, 3, 1.9, 63.7, 3}},
    {"Cepheus", 19.7, 64, 0, {21.3, 62.6, 2, 21.5, 70.6, 3, 23.7, 77.6, 3, 22.8, 66.2, 3, 22.2, 58.2, 3}},
};

constexpr int size = 720, middle = size / 2;
std::vector<q_ulong> chart(size *size), scratch(size *size);
tagRECT all = {0, 0, size, size};

// The pole stands in the middle, and hours run against the clock.
tagPOINT placeOf(double hours, double degrees) {
    const double distance = (90 - degrees) * 7.6, angle = hours * std::acos(-1.0) / 12;
    return {static_cast<q_long>(std::lround(middle - distance * std::sin(angle))),
            static_cast<q_long>(std::lround(middle - distance * std::cos(angle)))};
}

void line(tagPOINT from, tagPOINT to, q_ulong colour) {
    iLine_AntiAliasing_Add(chart.data(), &all, size, from.x, from.y, to.x, to.y, colour, 1);
}
// The colour of a text is the reverse of a pixel.
void letter(std::string text, tagPOINT at, int height, q_ulong blueGreenRed) {
    char font[] = "DejaVu Sans";
    iTextOut(chart.data(), &all, size, text.data(), blueGreenRed, at.x, at.y, height, font);
}

} // namespace

int main() {
    Init_qMur_GlobalData(nullptr, nullptr); // once: lights and bubbles read its tables
    iFillRect(chart.data(), &all, size, 0x0A1030);

    for (int distance = 76; distance < middle; distance += 76) {
        tagRECT box = {middle - distance, middle - distance, middle + distance, middle + distance};
        Draw_Outer_Ellipse_NoFillInside(chart.data(), size, &all, &box, 1, 0x283460);
    }
    for (int hour = 0; hour < 24; hour += 2)
        line(placeOf(hour, 80), placeOf(hour, 20), 0x1A2240);
    for (const Constellation &each : constellations) {
        const double *joined = &each.stars[3 * each.joined];
        tagPOINT last = placeOf(joined[0], joined[1]);
        for (std::size_t i = each.stars.size(); i > 0; i -= 3) {
            const double *star = &each.stars[i - 3];
            const tagPOINT at = placeOf(star[0], star[1]);
            const int radius = static_cast<int>(18 - 3 * star[2]);
            line(last, at, 0x506498);
            Draw_Light_Safe(chart.data(), size, &all, at.x, at.y, radius, 0x7C98FF, 64);
            Draw_Star_Type1_Safe(chart.data(), size, &all, at.x, at.y, 2 * radius, 0xFFF4D8, 50);
            last = at;
        }
        letter(each.name, placeOf(each.hours, each.degrees), 20, 0xF0B8A8);
    }
    letter("Bears && Queens", {24, 20}, 34, 0xB0E9FF); // one & alone would underline what follows

    // The resource of bubbles is made once and serves any size and colour.
    std::vector<q_ulong> glass(256 * 256);
    MakeBubbleResource(glass.data(), 256, 0, 0, 256, 1);
    const tagPOINT pole = placeOf(2.5, 89.3), mizar = placeOf(13.4, 54.9);
    DrawRealBubble(chart.data(), scratch.data(), size, pole.x, pole.y, 110, glass.data(), 256, 0x80A0C0, size, size);
    DrawRealBubble(chart.data(), scratch.data(), size, mizar.x, mizar.y, 120, glass.data(), 256, 0xC0A080, size, size);

    std::vector<unsigned char> bytes;
    for (const q_ulong pixel : chart)
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(pixel >> shift));
    return stbi_write_png("star-chart.png", size, size, 3, bytes.data(), 0) ? 0 : 1;
}
