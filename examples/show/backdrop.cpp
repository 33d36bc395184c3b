#include "backdrop.h"

#include "picture.h"

#include <algorithm>

namespace show {

void drawBackdrop(Stage &stage, const Surface &out, const Surface &picture, double brightness) {
    constexpr int halvings = 3;
    const Stage::Plane planes[] = {stage.plane(), stage.plane()};
    Surface small = picture;
    for (int i = 0; i < halvings; ++i) {
        const Surface half = planes[i % 2]->cropped((small.width + 1) / 2, (small.height + 1) / 2);
        drawHalved(half, small);
        small = half;
    }
    tagRECT area = small.rect();
    const int radius = std::min({small.width / 2, small.height / 2, 128, std::max(1, small.height / 10)});
    for (int i = 0; i < 2; ++i)
        Blur_Rect(small.pixels, &area, small.pitch, radius);
    iFadeOut32(small.pixels, &area, small.pitch, static_cast<float>(brightness));
    extendEdges(small);
    drawView(out, small, wholeOf(small));
}

} // namespace show
