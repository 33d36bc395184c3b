#include "sprite/tables.h"
#include "support/job.h"
#include "support/naive.h"
#include "support/row.h"

namespace bench {
namespace {

constexpr int bytesPerWord = 4;

/// A byte of a row of pixels, counted from the row's start.
q_ulong byteOf(const Surface &src, int index, int y) {
    return src.at(index / bytesPerWord, y) >> 8 * (index % bytesPerWord) & 255;
}

/// The picture's memory, taken as pixels of three bytes: as many as its part has, which fill nine bytes of sixteen.
void addFitRow() {
    addRows({{"_FitOn32RAW_24RAW_Nearest", Traffic::readsSrc,
              [](Scene &scene) {
                  const tagRECT part = scene.part();
                  const int pitchBytes = scene.pitch * bytesPerWord;
                  _FitOn32RAW_24RAW_Nearest(reinterpret_cast<unsigned char *>(scene.dst.pixels()), scene.width,
                                            scene.height, pitchBytes,
                                            reinterpret_cast<unsigned char *>(scene.picture.pixels()),
                                            static_cast<int>(part.right), static_cast<int>(part.bottom), pitchBytes);
              },
              [](const Scene &scene, int x, int y) {
                  const tagRECT part = scene.part();
                  const int column = naive::scaledPosition(x, static_cast<int>(part.right), scene.width, 15, 0);
                  const int row = naive::scaledPosition(y, static_cast<int>(part.bottom), scene.height, 15, 0);
                  return byteOf(scene.picture, column * 3, row) + byteOf(scene.picture, column * 3 + 1, row) * 256 +
                         byteOf(scene.picture, column * 3 + 2, row) * 65536;
              }}});
}

constexpr const auto &sprite = qmur::christmasTree;

Job christmasTree() {
    return drawing(
        noise(sprite.width, sprite.height),
        [](test::Surface &dst) { LoadResourceChristmasTree(dst.pixels(), dst.width(), dst.height(), dst.pitch()); },
        [](test::Surface &dst) {
            for (int y = 0; y < sprite.height; ++y)
                for (int x = 0; x < sprite.width; ++x)
                    dst.at(x, y) = sprite.palette[sprite.pixels[y * sprite.width + x]];
        },
        1, static_cast<double>(sprite.width * sprite.height));
}

} // namespace

void addSpriteRows() {
    addFitRow();
    addJobs({{"LoadResourceChristmasTree", "512 x 384", "sprites", christmasTree}});
}

} // namespace bench
