#include "plain/blit.h"

#include "areas.h"
#include "arguments.h"

namespace catalogue {
namespace {

// Placed blits: an area of the source lands somewhere in the destination, pixel on pixel.

Box placed(const Call &call) {
    const tagRECT rect = call["srcRect"].rect();
    return boxOf(call["dstX"].whole(), call["dstY"].whole(), widthOf(rect), heightOf(rect));
}
Areas writesPlaced(const Call &call) {
    return {{"dst", placed(call)}};
}
Areas readsSrcRect(const Call &call) {
    return {{"src", call["srcRect"].rect()}};
}
/// Moves a random area to where it fits.
void place(Call &call, Random &random) {
    const Plane &dst = call["dst"].plane();
    tagRECT &rect = call["srcRect"].rect();
    rect = common(rect, {0, 0, rect.left + dst.width(), rect.top + dst.height()});
    call["dstX"] = random.between(0, dst.width() - std::max(widthOf(rect), 0));
    call["dstY"] = random.between(0, dst.height() - std::max(heightOf(rect), 0));
}
void placeWhole(Call &call) {
    call["srcRect"] = call["src"].plane().rect();
    call["dstX"] = call["dstY"] = 0;
}

/// An offset between the area in the source and the same in the destination.
[[maybe_unused]] Areas writesMoved(const Call &call) {
    const tagRECT rect = call["rect"].rect();
    return {{"dst", boxOf(std::int64_t{rect.left} + call["offsetX"].whole(),
                          std::int64_t{rect.top} + call["offsetY"].whole(), widthOf(rect), heightOf(rect))}};
}

} // namespace

std::vector<Row> blitRows() {
    return {
        {
            Q_MUR_FUNCTION(iBltFast32),
            .sentence = "Copies a rectangle.",
            .arguments = {destination(), source(), position("dstX", "dst", {0, 0.2}), position("dstY", "dst", {0, 0}),
                          rectangle("srcRect", "src"), pitch("dstPitch", "dst"), pitch("srcPitch", "src")},
            .writes = writesPlaced,
            .reads = readsSrcRect,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::copied,
            .sums = Sums::stayInside,
            .arrange = place,
            .pixelOnPixel = placeWhole,
        },
    };
}

} // namespace catalogue
