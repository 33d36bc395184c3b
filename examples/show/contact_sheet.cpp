#include "contact_sheet.h"

#include "image_file.h"
#include "painting.h"
#include "picture.h"
#include "text.h"

#include <algorithm>

namespace show {

namespace {

constexpr int mostPictures = 20;
constexpr int mostColumns = 4;
constexpr int widestPicture = 320;
constexpr int highestPicture = 240;
constexpr int gap = 16;
constexpr q_ulong background = 0x17181B;
constexpr q_ulong rim = 0x3A3C42;

/// The middles of equal stretches of the range.
std::vector<int> evenlySpaced(FrameRange frames) {
    const int count = std::min(mostPictures, frames.count());
    std::vector<int> chosen;
    for (int i = 0; i < count; ++i)
        chosen.push_back(frames.first + static_cast<int>((2LL * i + 1) * frames.count() / (2LL * count)));
    return chosen;
}

} // namespace

ContactSheet::ContactSheet(const std::filesystem::path &sheetTarget, int frameWidth, int frameHeight, FrameRange frames)
    : target(sheetTarget), file(target, target), chosen(evenlySpaced(frames)),
      columns(std::min(mostColumns, static_cast<int>(chosen.size()))) {
    const double share = std::min(
        {1.0, static_cast<double>(widestPicture) / frameWidth, static_cast<double>(highestPicture) / frameHeight});
    pictureWidth = std::max(static_cast<int>(frameWidth * share), 1);
    pictureHeight = std::max(static_cast<int>(frameHeight * share), 1);
    const int rows = (static_cast<int>(chosen.size()) + columns - 1) / columns;
    sheet = Canvas(columns * (pictureWidth + gap) + gap, rows * (pictureHeight + gap) + gap);
    fill(sheet, background);
}

bool ContactSheet::wants(int frame) const {
    return std::binary_search(chosen.begin(), chosen.end(), frame);
}

EncodedFrame ContactSheet::encode(const Surface &frame) const {
    return {{}, reduced(frame, pictureWidth, pictureHeight)};
}

void ContactSheet::write(int, const EncodedFrame &encoded) {
    const Surface picture = encoded.picture.surface();
    const int left = gap + placed % columns * (pictureWidth + gap);
    const int top = gap + placed / columns * (pictureHeight + gap);
    fill(sheet, {left - 1, top - 1, left + pictureWidth + 1, top + pictureHeight + 1}, rim);
    copy(sheet, left, top, picture, picture.rect());
    ++placed;
}

std::string ContactSheet::finish() {
    file.write(encodePng(sheet.surface()));
    file.finish();
    return quoted(target);
}

} // namespace show
