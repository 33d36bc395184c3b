#include "support/job.h"
#include "support/naive.h"
#include "support/row.h"

namespace bench {
namespace {

constexpr float alpha = 0.375F; // 96 of 256, exactly
constexpr int alphaWeight = 96;
constexpr unsigned char scaleRed = 200;
constexpr unsigned char scaleGreen = 150;
constexpr unsigned char scaleBlue = 100;

q_ulong *dst(Scene &scene) {
    return scene.dst.pixels();
}
q_ulong *picture(Scene &scene) {
    return scene.picture.pixels();
}
q_ulong *sprite(Scene &scene) {
    return scene.sprite.pixels();
}
q_ulong unsignedPitch(const Scene &scene) {
    return static_cast<q_ulong>(scene.pitch);
}

/// The source position of a destination pixel where the part of a source is stretched over the whole destination.
struct Position {
    int x;
    int y;
};

Position scaledInto(const Scene &scene, int x, int y, int fractionBits, int keptBits) {
    const tagRECT part = scene.part();
    return {naive::scaledPosition(x, static_cast<int>(part.right), scene.width, fractionBits, keptBits),
            naive::scaledPosition(y, static_cast<int>(part.bottom), scene.height, fractionBits, keptBits)};
}

q_ulong nearest(const Surface &src, const Scene &scene, int x, int y, int fractionBits) {
    const Position position = scaledInto(scene, x, y, fractionBits, 0);
    return src.at(position.x, position.y);
}

/// Filtered, reading over the edges of the part.
q_ulong filtered(const Scene &scene, int x, int y) {
    const Position position = scaledInto(scene, x, y, 20, 4);
    return naive::filtered(scene.picture, position.x, position.y);
}

/// Channel sums, reading nothing outside the part.
naive::Channels sumsInside(const Scene &scene, int x, int y) {
    const tagRECT part = scene.part();
    const Position position = scaledInto(scene, x, y, 15, 4);
    return naive::filteredSums(scene.picture, position.x, position.y, static_cast<int>(part.right) - 1,
                               static_cast<int>(part.bottom) - 1);
}

/// As filtered(), but unfiltered where the taps would reach the end of the source area, counted in bytes.
q_ulong filteredSafe(const Scene &scene, int x, int y) {
    const Position position = scaledInto(scene, x, y, 20, 4);
    const int column = position.x / 16;
    const int row = position.y / 16;
    const int limit = static_cast<int>(scene.part().bottom) * scene.pitch * 4 - 4;
    const bool atEnd =
        (row + 1) * scene.pitch * 4 + 4 * column + 5 >= limit || row * scene.pitch * 4 + 4 * column + 4 >= limit;
    return atEnd ? scene.picture.at(column, row) : naive::filtered(scene.picture, position.x, position.y);
}

/// Adds with scaled source channels; red and green drop the carry.
q_ulong wrappedScaledSum(q_ulong d, q_ulong s) {
    const naive::Channels a = naive::channelsOf(d);
    const naive::Channels b = naive::channelsOf(s);
    const int blue = a.blue + b.blue * scaleBlue / 256;
    return naive::pixelOf({(a.red + b.red * scaleRed / 256) % 256, (a.green + b.green * scaleGreen / 256) % 256,
                           blue > 255 ? 255 : blue});
}

/// The sum of iBltNear32_Add(): blue is not capped, its carry is or-ed onto green's lowest bit.
q_ulong sumWithLooseBlue(q_ulong d, q_ulong s) {
    const int blue = naive::channelsOf(d).blue + naive::channelsOf(s).blue;
    return (naive::saturatedSum(d, s) & 0xFFFF00) | static_cast<q_ulong>(blue);
}

q_ulong softened(const Scene &scene, int x, int y) {
    const Surface &src = scene.sprite;
    const q_ulong s = src.at(x, y);
    const q_ulong d = scene.before.at(x, y);
    if (y == scene.height - 1 || s == 0)
        return d;
    // The picture's outermost pixels are 0 in the sprite, and so is what lies around it.
    if (src.at(x - 1, y) && src.at(x + 1, y) && src.at(x, y - 1) && src.at(x, y + 1))
        return s;
    int count = 0;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            count += src.at(x + dx, y + dy) != 0;
    const auto weight = static_cast<std::uint32_t>(42 * (count - 1));
    const std::uint32_t rest = 256 - weight;
    const auto red = static_cast<std::uint32_t>((d & 0xFF0000) * rest + (s & 0xFF0000) * weight) & 0xFF0000FF;
    const auto green = static_cast<std::uint32_t>((d & 0xFF00) * rest + (s & 0xFF00) * weight) & 0xFF0000;
    const auto blue = static_cast<std::uint32_t>((d & 0xFF) * rest + (s & 0xFF) * weight);
    return (red | green | blue) >> 8;
}

/// A whole number of pixels in sixteenths, from a corner with a fraction. iBltPerfect32() writes one column and row
/// more.
tagRECT sixteenths(int left, int top, int columns, int rows) {
    return {left, top, left + (columns - 1) * 16, top + (rows - 1) * 16};
}

void addCopyRows() {
    const auto copied = [](const Scene &scene, int x, int y) { return scene.picture.at(x, y); };
    const auto filled = [](const Scene &, int, int) -> q_ulong { return 0xFF336699; };
    const auto copy = [](Scene &scene) {
        tagRECT all = scene.whole();
        iBltFast32(dst(scene), picture(scene), 0, 0, &all, scene.pitch, scene.pitch);
    };
    const auto copyClipped = [](Scene &scene) {
        tagRECT all = scene.whole();
        iBltFast32_Advanced(dst(scene), picture(scene), 0, 0, &all, scene.pitch, scene.pitch, scene.width,
                            scene.height);
    };
    const auto fill = [](Scene &scene) {
        tagRECT all = scene.whole();
        iFillRect(dst(scene), &all, scene.pitch, 0xFF336699);
    };
    constexpr int extraPitch = 40;
    addRows({
        {"iFillRect", Traffic::writes, fill, filled},
        {"iFillRect in a wider surface", Traffic::writes, fill, filled, extraPitch},
        {"iBltFast32", Traffic::readsSrc, copy, copied},
        {"iBltFast32 in a wider surface", Traffic::readsSrc, copy, copied, extraPitch},
        {"iBltFast32_Advanced", Traffic::readsSrc, copyClipped, copied},
        {"iBltFast32_Advanced in a wider surface", Traffic::readsSrc, copyClipped, copied, extraPitch},
        {"iFadeOut32", Traffic::readsDst,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iFadeOut32(dst(scene), &all, scene.pitch, 0.75F);
         },
         [](const Scene &scene, int x, int y) { return naive::weightedMean(scene.before.at(x, y), 192, 0, 0); }},
        {"iFadeOut32 gentle step", Traffic::readsDst,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iFadeOut32(dst(scene), &all, scene.pitch, 0);
         },
         [](const Scene &scene, int x, int y) {
             return naive::perChannel(scene.before.at(x, y), 0, [](int c, int) { return c / 16 * 15; });
         }},
    });
}

void addScalingRows() {
    addRows({
        {"iBltNear32", Traffic::readsSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltNear32(dst(scene), picture(scene), &all, &part, scene.pitch, scene.pitch);
         },
         [](const Scene &scene, int x, int y) { return nearest(scene.picture, scene, x, y, 20); }},
        {"iBltNear32Safe", Traffic::readsSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltNear32Safe(dst(scene), picture(scene), &all, &part, &all, scene.pitch, scene.pitch);
         },
         [](const Scene &scene, int x, int y) { return nearest(scene.picture, scene, x, y, 20); }},
        {"iBltBilinear32", Traffic::readsSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltBilinear32(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene));
         },
         filtered},
        {"iBltBilinear32Safe", Traffic::readsSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltBilinear32Safe(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene));
         },
         filteredSafe},
        {"iBltAdaptive32", Traffic::readsSrc,
         [](Scene &scene) { // enlarges the area by more than half: filtered
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltAdaptive32(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene));
         },
         filteredSafe},
        {"iBltPerfect32", Traffic::readsSrc,
         [](Scene &scene) {
             // In quarters: a source of 1024 pixels or more is beyond the format.
             const int columns = scene.width / 2;
             const int rows = scene.height / 2;
             for (int left : {0, columns * 16}) {
                 for (int top : {0, rows * 16}) {
                     tagRECT target = sixteenths(left + 3, top + 5, columns, rows);
                     tagRECT source = sixteenths(left + 23, top + 41, columns, rows);
                     iBltPerfect32(dst(scene), picture(scene), &target, &source, unsignedPitch(scene),
                                   unsignedPitch(scene));
                 }
             }
         },
         [](const Scene &scene, int x, int y) { // 23 - 3 and 41 - 5 sixteenths further into the source
             return naive::filtered(scene.picture, 16 * x + 20, 16 * y + 36);
         }},
    });
}

void addAdditiveRows() {
    addRows({
        {"iBltFast32_Add", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32_Add(dst(scene), picture(scene), 0, 0, &all, unsignedPitch(scene), unsignedPitch(scene));
         },
         [](const Scene &scene, int x, int y) {
             return naive::saturatedSum(scene.before.at(x, y), scene.picture.at(x, y));
         }},
        {"iBltFast32_Add scaled", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32_Add(dst(scene), picture(scene), 0, 0, &all, unsignedPitch(scene), unsignedPitch(scene),
                            scaleRed, scaleGreen, scaleBlue);
         },
         [](const Scene &scene, int x, int y) {
             return wrappedScaledSum(scene.before.at(x, y), scene.picture.at(x, y));
         }},
        {"iBltNear32_Add", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltNear32_Add(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene));
         },
         [](const Scene &scene, int x, int y) {
             return sumWithLooseBlue(scene.before.at(x, y), nearest(scene.picture, scene, x, y, 15));
         }},
        {"iBltNear32_Add scaled", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltNear32_Add(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene),
                            scaleRed, scaleGreen, scaleBlue);
         },
         [](const Scene &scene, int x, int y) {
             return wrappedScaledSum(scene.before.at(x, y), nearest(scene.picture, scene, x, y, 15));
         }},
        {"iBltBilinear32_Add", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltBilinear32_Add(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene));
         },
         [](const Scene &scene, int x, int y) {
             const naive::Channels sum = sumsInside(scene, x, y);
             return naive::saturatedSum(scene.before.at(x, y),
                                        naive::pixelOf({sum.red / 256, sum.green / 256, sum.blue / 256}));
         }},
        {"iBltBilinear32_Add scaled", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltBilinear32_Add(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene),
                                scaleRed, scaleGreen, scaleBlue);
         },
         [](const Scene &scene, int x, int y) {
             const naive::Channels sum = sumsInside(scene, x, y);
             return naive::saturatedSum(scene.before.at(x, y),
                                        naive::pixelOf({sum.red * scaleRed / 65536, sum.green * scaleGreen / 65536,
                                                        sum.blue * scaleBlue / 65536}));
         }},
        {"iBltFast32_KeySrc_Add", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32_KeySrc_Add(dst(scene), sprite(scene), 0, 0, &all, scene.pitch, scene.pitch, 0);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = scene.sprite.at(x, y);
             const q_ulong d = scene.before.at(x, y);
             return s ? naive::saturatedSum(d, s) : d;
         }},
        {"iBltNear32SafeKeySrcAdd", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltNear32SafeKeySrcAdd(dst(scene), sprite(scene), &all, &part, scene.pitch, scene.pitch, scene.width,
                                     scene.height);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = nearest(scene.sprite, scene, x, y, 16);
             const q_ulong d = scene.before.at(x, y);
             return s ? naive::saturatedSum(d, s) : d;
         }},
        {"iBltNear32_Add_KeySrc", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltNear32_Add_KeySrc(dst(scene), scene.pitch, sprite(scene), scene.pitch, &all, &all, scene.width / 2,
                                   scene.height / 2);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = scene.sprite.at(x, y);
             const q_ulong d = scene.before.at(x, y);
             return s ? naive::saturatedSum(d, s) : d;
         }},
    });
}

void addColourKeyRows() {
    addRows({
        {"iBltFast32_KeySrc", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32_KeySrc(dst(scene), sprite(scene), 0, 0, &all, unsignedPitch(scene), unsignedPitch(scene), 0);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = scene.sprite.at(x, y);
             return s ? s : scene.before.at(x, y);
         }},
        {"iBltNear32_KeySrc", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltNear32_KeySrc(dst(scene), sprite(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene), 0);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = nearest(scene.sprite, scene, x, y, 15);
             return s ? s : scene.before.at(x, y);
         }},
        {"iBltBilinear32_KeySrc", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltBilinear32_KeySrc(dst(scene), sprite(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene),
                                   0);
         },
         [](const Scene &scene, int x, int y) {
             const tagRECT part = scene.part();
             const Position position = scaledInto(scene, x, y, 15, 4);
             const q_ulong s = naive::filtered(scene.sprite, position.x, position.y, static_cast<int>(part.right) - 1,
                                               static_cast<int>(part.bottom) - 1);
             return s ? s : scene.before.at(x, y);
         }},
        {"iBltFast32SafeKeySrc", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32SafeKeySrc(dst(scene), sprite(scene), scene.width / 2, scene.height / 2, &all, scene.pitch,
                                  scene.pitch, scene.width, scene.height);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = scene.sprite.at(x, y);
             return s ? s : scene.before.at(x, y);
         }},
    });
}

void addAlphaRows() {
    addRows({
        {"iBltFast32Alpha", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32Alpha(dst(scene), picture(scene), 0, 0, &all, scene.pitch, scene.pitch, alpha);
         },
         [](const Scene &scene, int x, int y) {
             return naive::weightedMean(scene.before.at(x, y), 256 - alphaWeight, scene.picture.at(x, y), alphaWeight);
         }},
        {"iBltBilinear32_Alpha", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             tagRECT part = scene.part();
             iBltBilinear32_Alpha(dst(scene), picture(scene), &all, &part, unsignedPitch(scene), unsignedPitch(scene),
                                  alpha);
         },
         [](const Scene &scene, int x, int y) {
             return naive::weightedMean(scene.before.at(x, y), 256 - alphaWeight, filtered(scene, x, y), alphaWeight);
         }},
        {"iBltFast32_KeySrc_AlphaFast", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32_KeySrc_AlphaFast(dst(scene), sprite(scene), 0, 0, &all, scene.pitch, scene.pitch, 0);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = scene.sprite.at(x, y);
             const q_ulong d = scene.before.at(x, y);
             return s ? naive::perChannel(d, s, [](int a, int b) { return a / 2 + b / 2; }) : d;
         }},
        {"iBltFast32_KeySrc_Alpha", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32_KeySrc_Alpha(dst(scene), sprite(scene), 0, 0, &all, scene.pitch, scene.pitch, 0, alpha);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = scene.sprite.at(x, y);
             const q_ulong d = scene.before.at(x, y);
             return s ? naive::weightedMean(d, 256 - alphaWeight, s, alphaWeight) : d;
         }},
        {"iBltFast32SafeAlpha_Channel", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32SafeAlpha_Channel(dst(scene), sprite(scene), scene.width / 2, scene.height / 2, &all,
                                         scene.pitch, scene.pitch, scene.width, scene.height);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong s = scene.sprite.at(x, y);
             const q_ulong d = scene.before.at(x, y);
             if (s == 0)
                 return d;
             const int weight = naive::alphaOf(s);
             return weight == 255 ? s : naive::weightedMean(d, 255 - weight, s, weight);
         }},
        {"iBltFast32SafeKeySrcAntiAliasing", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32SafeKeySrcAntiAliasing(dst(scene), sprite(scene), scene.width / 2, scene.height / 2, &all,
                                              scene.pitch, scene.pitch, scene.width, scene.height);
         },
         softened},
        {"iBltFast32AlphaChannelSafe", Traffic::readsDstAndSrc,
         [](Scene &scene) {
             tagRECT all = scene.whole();
             iBltFast32AlphaChannelSafe(dst(scene), sprite(scene), 0, 0, &all, &all, scene.pitch, scene.pitch);
         },
         [](const Scene &scene, int x, int y) {
             const q_ulong d = scene.before.at(x, y);
             const q_ulong s = scene.sprite.at(x, y);
             const int weight = naive::alphaOf(s);
             return weight ? naive::weightedMean(d, 256 - weight, s, weight) : d;
         }},
    });
}

#if Q_MUR_BENCH_TEXT

/// White letters. The platform's letters cannot be computed: the check is that they are where they should be, whole and
/// in their colour, and that the same ones stand elsewhere when asked for elsewhere.
class TextPage {
public:
    TextPage() : dst(width, height, ground) {}

    int write(int x, int y) {
        tagRECT clip = dst.rect();
        return iTextOut(dst.pixels(), &clip, dst.pitch(), text.data(), 0xFFFFFF, x, y, lineHeight, face.data());
    }

    Outcome outcome() {
        Outcome found;
        if (write(left, top) != 1)
            return {"the answer is not 1"};
        int white = 0;
        for (int y = -test::Surface::margin; y < height + test::Surface::margin; ++y)
            for (int x = -test::Surface::margin; x < width + test::Surface::margin; ++x) {
                const q_ulong pixel = dst.at(x, y);
                if (pixel == ground)
                    continue;
                // No letter is wider than its line is high.
                const int mostColumns = static_cast<int>(text.size()) * lineHeight;
                if (x < left || x >= left + mostColumns || y < top || y >= top + lineHeight)
                    return {"writes beside the text"};
                if (pixel % 256 * 0x010101 != pixel)
                    return {"a letter is not white"};
                white += pixel == 0xFFFFFF;
                found.pixels += 1;
            }
        if (white < static_cast<int>(text.size()) * lineHeight)
            return {"letters are missing"};
        TextPage moved;
        moved.write(left + 7, top + 5);
        for (int y = 0; y < height - 5; ++y)
            for (int x = 0; x < width - 7; ++x)
                if (moved.dst.at(x + 7, y + 5) != dst.at(x, y))
                    return {"the letters differ from place to place"};
        return found;
    }

    static constexpr int left = 10;
    static constexpr int top = 20;

private:
    static constexpr q_ulong ground = 0x5A102030;
    static constexpr int width = 640;
    static constexpr int height = 80;
    static constexpr int lineHeight = 40;
    test::Surface dst;
    std::string text = "Letters on a page";
    std::string face = "DejaVu Sans";
};

void addTextRow() {
    addJobs(
        {{"iTextOut", "17 characters 40 pixels high", "texts", [] {
              auto page = std::make_shared<TextPage>();
              return Job{[page] { page->write(TextPage::left, TextPage::top); }, [page] { return page->outcome(); }, 1};
          }}});
}

#endif

} // namespace

void addBlitRows() {
    addCopyRows();
    addScalingRows();
    addAdditiveRows();
    addColourKeyRows();
    addAlphaRows();
#if Q_MUR_BENCH_TEXT
    addTextRow();
#endif
    addCall("i3DBltNear32", i3DBltNear32, [] {
        i3DBltNear32();
        return true; // that it returns is all it promises
    });
}

} // namespace bench
