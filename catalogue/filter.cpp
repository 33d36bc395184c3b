#include "plain/blurs.h"
#include "plain/edge_transparency.h"
#include "plain/light_map.h"

#include "areas.h"
#include "arguments.h"

#include <cmath>

namespace catalogue {
namespace {

// Edges: two pictures of one pitch, of which each pixel is mixed with the one in its place.

void makePictures(Call &call, Random &random) {
    const Plane &out = call["out"].plane();
    const int extraPitch = out.pitch() - out.width() - 2 * Plane::usualMargin;
    for (const char *name : {"imageA", "imageB"}) {
        const Plane picture = Plane::surface(out.width(), out.height(), 0, extraPitch);
        for (int y = -1; y <= out.height(); ++y)
            for (int x = -1; x <= out.width(); ++x)
                picture.at(x, y) = random.pixel();
        call[name] = picture;
    }
}
Areas readsBoth(const Box &part) {
    return {{"imageA", part}, {"imageB", part}};
}

Box stripBox(const Call &call) {
    const tagPOINT p1 = call["p1"].point();
    const tagPOINT p2 = call["p2"].point();
    Box box = call["clip"].rect();
    --box.bottom;
    if (plain::stripOf(p1, p2, call["edgeWidth"].whole()).isSteep)
        return common(box, {box.left, std::min(p1.y, p2.y), box.right, std::max(p1.y, p2.y)});
    return common(box, {std::min(p1.x, p2.x), box.top, std::int64_t{std::max(p1.x, p2.x)} + 1, box.bottom});
}
Areas writesStrip(const Call &call) {
    return {{"out", stripBox(call)}};
}
Areas readsStrip(const Call &call) {
    return readsBoth(stripBox(call));
}
void arrangeStrip(Call &call, Random &random) {
    makePictures(call, random);
    const auto anyPoint = [&random]() -> tagPOINT {
        const int reach = random.oneIn(10) ? 1000 : random.oneIn(10) ? (1 << 30) - 1 : 0;
        if (reach > 0)
            return {random.between(-reach, reach), random.between(-reach, reach)};
        return {random.between(-8, 24), random.between(-8, 24)};
    };
    tagPOINT p1 = anyPoint();
    tagPOINT p2 = anyPoint();
    if (random.oneIn(4))
        p2.y = p1.y;
    else if (random.oneIn(4))
        p2.x = p1.x;
    else if (random.oneIn(4))
        p2 = {p1.x + random.between(-9, 9) * 4, p1.y + random.between(-9, 9) * 3};
    call["p1"] = p1;
    call["p2"] = p2;
    if (!random.oneIn(20))
        call["edgeWidth"] = random.between(-2, 40);
    call["swapImages"] = random.between(0, 1) * random.between(-3, 3);
}
template <bool isSteep>
void setStrip(Call &call, const Stage &stage) {
    const int width = stage.width;
    const int height = stage.height;
    const auto part = [&stage](int extent, Range range) { return static_cast<int>(extent * stage.within(range)); };
    call["p1"] = isSteep ? tagPOINT{part(width, {0.4, 0.85}), 0} : tagPOINT{0, part(height, {0.2, 0.55})};
    call["p2"] = isSteep ? tagPOINT{part(width, {0.15, 0.6}), height} : tagPOINT{width, part(height, {0.45, 0.8})};
    call["edgeWidth"] = height / 2;
    call["clip"] = tagRECT{0, 0, width, height + 1}; // the row that a clip loses is one below the picture
    call["swapImages"] = 0;
}

Areas writesDisc(const Call &call) {
    const bool isDrawn = call["band"].whole() % (1LL << 31) != 0;
    return {{"out", isDrawn ? boxOf(0, 0, call["width"].whole(), call["height"].whole()) : Box()}};
}
Areas readsDisc(const Call &call) {
    return readsBoth(writesDisc(call).front().part);
}
void arrangeDisc(Call &call, Random &random) {
    makePictures(call, random);
    const int reach = random.oneIn(20) ? 300 : 22;
    call["centre"] = tagPOINT{random.between(22 - reach - 28, reach), random.between(22 - reach - 28, reach)};
    call["radius"] = random.between(0, reach == 300 ? 450 : 20);
    call["band"] = random.between(-2, 20);
}
void setDisc(Call &call, const Stage &stage) {
    call["centre"] = tagPOINT{stage.width / 2, stage.height / 2};
    call["radius"] = std::floor(stage.height * stage.within({0.3, 0.7}));
    call["band"] = stage.height / 4;
}

// Blurs in place.

Areas writesInterior(const Call &call) {
    const tagRECT &rect = call["rect"].rect();
    return {{"surface", {rect.left + 1LL, rect.top + 1LL, rect.right - 1LL, rect.bottom - 1LL}}};
}
Areas readsNeighbours(const Call &call) {
    return {{"surface", grown(writesInterior(call).front().part, 1, 1, 1, 1)}};
}
void arrangePhase(Call &call, Random &random) {
    call["lut"] = PhaseBlock{.data = {random.between(0, 1)}};
}
void setPhase(Call &call, const Stage &stage) {
    call["lut"] = PhaseBlock{.data = {stage.time < 0.5 ? 0 : 1}};
}

Areas blurredRect(const Call &call) {
    const tagRECT &rect = call["rect"].rect();
    return {{"surface", plain::isBlurred(rect, call["radius"].whole()) ? Box(rect) : Box()}};
}
void arrangeRadius(Call &call, Random &random) {
    const tagRECT &rect = call["rect"].rect();
    if (!random.oneIn(20))
        call["radius"] = random.between(0, std::max(std::min(widthOf(rect), heightOf(rect)), 1) / 2);
}

template <int amount>
void setRadius(Call &call, const Stage &) {
    call["radius"] = amount;
}

// Blurs from buffer to buffer, of an area that begins at the first pixel.

Plane likeSource(const Call &call, Random &random) {
    const Plane &src = call["src"].plane();
    const int extraPitch = src.pitch() - src.width() - 2 * Plane::usualMargin;
    return Plane::surface(src.width(), src.height(), random.word(), extraPitch);
}
Box area(const Call &call) {
    return boxOf(0, 0, call["width"].whole(), call["height"].whole());
}
Areas writesBlurred(const Call &call) {
    return {{"dst", plain::isBlurSize(call["blurSize"].whole()) ? area(call) : Box()}};
}
Areas readsBlurred(const Call &call) {
    return {{"src", writesBlurred(call).front().part}};
}
template <bool alongRows>
bool windowFits(const Call &call) {
    const int length = call[alongRows ? "width" : "height"].whole();
    const int lines = call[alongRows ? "height" : "width"].whole();
    const int blurSize = call["blurSize"].whole();
    return blurSize < length || lines < 1 || !plain::isBlurSize(blurSize);
}
template <bool alongRows>
void arrangeBlurSize(Call &call, Random &random) {
    const Plane &src = call["src"].plane();
    call["dst"] = likeSource(call, random);
    call["width"] = random.between(1, src.width());
    call["height"] = random.between(1, src.height());
    call["blurSize"] = random.between(0, call[alongRows ? "width" : "height"].whole() - 1);
}
template <int amount>
void setBlurSize(Call &call, const Stage &) {
    call["blurSize"] = amount;
}

Areas writesGauss(const Call &call) {
    const plain::GaussWeights weights = plain::gaussWeightsOf(static_cast<float>(call["sigma"].number()));
    return {{"dst", weights.radius < 128 ? area(call) : Box()}};
}
Areas readsGauss(const Call &call) {
    return {{"src", writesGauss(call).front().part}};
}
template <bool alongRows>
void arrangeSigma(Call &call, Random &random) {
    // Mostly small kernels, so that the pictures can be small.
    const float sigma = random.oneIn(50) ? random.realBetween(42, 5000) : random.realBetween(0.015625F, 3);
    const int radius = plain::gaussWeightsOf(sigma).radius;
    const int least = radius == 128 || random.oneIn(8) ? 1 : 2 * radius;
    const int length = random.between(least, least + 6);
    const int lines = random.between(1, 3);
    const int width = alongRows ? length : lines;
    const int height = alongRows ? lines : length;
    call["src"] = Plane::randomSurface(random, width, height);
    call["dst"] = likeSource(call, random);
    call["sigma"] = static_cast<double>(sigma);
    call["width"] = width;
    call["height"] = height;
}
template <int amount>
void setSigma(Call &call, const Stage &) {
    call["sigma"] = amount;
}

// Distance fields.

/// A word that is part of a shape; at times its colour is black or its top byte 0.
q_ulong anyNonZero(Random &random) {
    const q_ulong bit = q_ulong{1} << random.between(0, 31);
    return random.oneIn(4) ? bit : bit | random.word();
}

Areas readsBlock(const Call &call) {
    return {{"block", {0, 0, call["blockWords"].whole(), 1}}};
}
Areas readsSurface(const Call &call) {
    const std::int64_t width = call["width"].whole();
    const std::int64_t height = call["height"].whole();
    return {{"surface", {0, 0, width > 0 && height > 0 ? width * height : 0, 1}}};
}
Areas writesDistance(const Call &) {
    return {{"distanceSquare", {0, 0, 1, 1}}};
}
void arrangeBlackSearch(Call &call, Random &random) {
    const int pitch = random.between(1, 9);
    const int blockWords = pitch * random.between(1, 9);
    const int seldom = random.oneIn(3) ? 1000 : random.between(2, 40);
    call["block"] = Plane(4, blockWords, 1);
    for (int i = 0; i < blockWords; ++i)
        call["block"].plane().at(i, 0) = random.oneIn(seldom) ? 0 : anyNonZero(random);
    call["blockWords"] = blockWords;
    call["index"] = random.between(-3, blockWords + 3);
    call["pitch"] = pitch;
    call["ring"] = random.between(0, 6);
    call["distanceSquare"] = Plane(4, 1, 1);
    if (call.row().argument("limit"))
        call["limit"] = random.oneIn(4) ? random.between(999999, 1000001) : random.between(-2, 40);
}
void arrangeColourSearch(Call &call, Random &random) {
    const int width = random.between(1, 9);
    const int height = random.between(1, 9);
    const int seldom = random.between(2, 40);
    call["surface"] = Plane(4, width * height, 1);
    for (int i = 0; i < width * height; ++i)
        call["surface"].plane().at(i, 0) = random.oneIn(seldom) ? random.pixel() : random.word() & 0xFF000000;
    call["width"] = width;
    call["height"] = height;
    call["x"] = random.between(-3, width + 2);
    call["y"] = random.between(-3, height + 2);
    call["ring"] = random.between(0, 8);
    call["distanceSquare"] = Plane(4, 1, 1);
}
/// From the middle of a field on to its only spot.
void setSearch(Call &call, const Stage &stage) {
    constexpr int side = 201;
    const bool forBlack = call.row().argument("block");
    const char *field = forBlack ? "block" : "surface";
    if (stage.call == 0) {
        call[field] = Plane(4, side * side, 1);
        for (int i = 0; i < side * side; ++i)
            call[field].plane().at(i, 0) = forBlack == (i > 0) ? 1 : 0;
        call["distanceSquare"] = Plane(4, 1, 1);
    }
    call["ring"] = std::floor(stage.time * (side / 2 + 1));
    if (forBlack) {
        call["blockWords"] = side * side;
        call["index"] = side * side / 2;
        call["pitch"] = side;
    } else {
        call["width"] = call["height"] = side;
        call["x"] = call["y"] = side / 2;
    }
    if (call.row().argument("limit"))
        call["limit"] = 2000000;
}

// Light maps.

/// A search runs on over the ends of rows, and ends as far right as it began.
Areas readsSearched(const Call &call) {
    const tagRECT &rect = call["rect"].rect();
    const std::int64_t pitch = call["pitch"].whole();
    if (widthOf(rect) < 1 || widthOf(rect) > pitch)
        return {};
    return {{"surface", Box{rect.left, rect.top, pitch, rect.bottom}},
            {"surface", Box{0, rect.top + 1, rect.left, rect.bottom + 1}}};
}
Areas writesShape(const Call &call) {
    const tagRECT &rect = call["rect"].rect();
    return {{"surface", widthOf(rect) <= call["pitch"].whole() ? Box(rect) : Box()}};
}
/// A mask whose rows lie one behind another, so that searches wrap round at their ends. Behind the last row lies one
/// more, into which a block that begins inside a row reaches.
void arrangeMask(Call &call, Random &random) {
    const int pitch = random.between(1, 12);
    const int rows = random.between(1, 8);
    Plane mask(4, pitch, rows + 1);
    tagRECT rect = random.rectInsideOrEmpty(pitch, rows);
    if (random.oneIn(3) && rect.bottom > rect.top) // at the bottom
        rect.bottom = rows;
    const int seldom = random.oneIn(8) ? 1000 : random.between(2, 60);
    for (int y = 0; y <= rows; ++y)
        for (int x = 0; x < pitch; ++x)
            mask.at(x, y) = random.oneIn(seldom) ? 0 : anyNonZero(random);
    if (!random.oneIn(8) && rect.bottom > rect.top)
        mask.at(static_cast<int>(rect.left) + random.between(0, heightOf(rect) * pitch - 1),
                static_cast<int>(rect.top)) = 0;
    call["surface"] = mask;
    call["rect"] = rect;
    if (!random.oneIn(20))
        call["heightScale"] = random.between(-4, 12);
    call["bevelSize"] = random.oneIn(20)  ? random.between(-40, 0)
                        : random.oneIn(2) ? random.between(0, 12)
                                          : random.between(0, 47);
    if (call.row().argument("limit"))
        call["limit"] = random.oneIn(2)   ? random.between(-2, 40)
                        : random.oneIn(2) ? random.between(999999, 1000001)
                                          : 0x7FFFFFFF;
    if (call.row().argument("profile"))
        call["profile"] = random.between(-1, 3);
}
/// A flower, the light on which grows with its height.
void setShape(Call &call, const Stage &stage) {
    const Stage small = {std::min(stage.width, 320), std::min(stage.height, 160), stage.time};
    call["surface"] = small.sprite();
    call["rect"] = call["surface"].plane().rect();
    call["heightScale"] = std::floor(stage.within({1, 5}));
    call["bevelSize"] = 40;
    if (call.row().argument("limit"))
        call["limit"] = 2000000;
    if (call.row().argument("profile"))
        call["profile"] = 2;
}

// What functions have in common.

std::vector<Argument> edgeArguments(const std::vector<Argument> &others) {
    std::vector<Argument> arguments = {destination("out"), source("imageA"), source("imageB")};
    arguments.insert(arguments.end(), others.begin(), others.end());
    return arguments;
}
/// Numbers that a picture in memory may have.
constexpr Range onPictures = {-(1 << 20), 1 << 20};
Argument extentOf(std::string_view name, std::string_view of) {
    return {.name = name, .kind = Kind::extent, .unit = "pixels", .contract = onPictures, .of = of};
}
Argument placeOn(std::string_view name) {
    return {.name = name, .kind = Kind::position, .unit = "pixels", .contract = onPictures};
}
Argument pointOn(std::string_view name) {
    return {.name = name, .kind = Kind::point, .unit = "pixels", .of = "out"};
}
Argument distanceSquare() {
    return {.name = "distanceSquare", .kind = Kind::numbers, .unit = "pixels squared"};
}
std::vector<Argument> searchArguments(bool hasLimit) {
    std::vector<Argument> arguments = {source("block"),
                                       {.name = "blockWords", .kind = Kind::count, .unit = "words"},
                                       number("index", "words", {-(1 << 29), 1 << 29}, {}),
                                       number("pitch", "words", {1, 46340}, {}),
                                       number("ring", "pixels", {0, 46340}, {}),
                                       distanceSquare()};
    if (hasLimit)
        arguments.push_back(number("limit", "pixels squared", anyInt, {}));
    return arguments;
}
std::vector<Argument> mapArguments(const Argument &last) {
    return {destination("surface"),
            rectangle("rect", "surface"),
            pitch("pitch", "surface"),
            number("heightScale", "1", anyInt, {1, 5}),
            number("bevelSize", "pixels", {-4096, 4096}, {40, 40}),
            last};
}
std::vector<Argument> mapArguments(const Argument &unusedOne, const Argument &last) {
    std::vector<Argument> arguments = mapArguments(unusedOne);
    arguments.push_back(last);
    return arguments;
}

Row search(Row row) {
    row.writes = writesDistance;
    row.reads = readsBlock;
    row.arrange = arrangeBlackSearch;
    row.scenes = {{.set = setSearch, .figures = 100, .figure = "rings", .calls = 100}};
    return row;
}
Row lightMap(Row row) {
    row.writes = writesShape;
    row.reads = readsSearched;
    row.topByte = TopByte::noPixels;
    row.arrange = arrangeMask;
    row.scenes = {{.set = setShape, .figures = 1, .figure = "maps"}};
    row.without = {{"every_place_and_size_over_a_small_surface", "rows are searched to the ends of their pitch"}};
    return row;
}
template <bool alongRows>
Row boxBlur(Row row) {
    row.arguments = {destination(),
                     source(),
                     radius("blurSize", anyInt, {6, 30}),
                     extent("width", "src"),
                     extent("height", "src"),
                     pitch("pitch", "src")};
    row.writes = writesBlurred;
    row.reads = readsBlurred;
    row.allows = windowFits<alongRows>;
    row.overlap = Overlap::notPromised;
    row.sums = Sums::stayInside;
    row.arrange = arrangeBlurSize<alongRows>;
    row.scenes = {{.set = setBlurSize<30>},
                  {.word = "radius 3", .set = setBlurSize<6>},
                  {.word = "radius 60", .set = setBlurSize<120>}};
    return row;
}
template <bool alongRows>
Row gaussBlur(Row row) {
    row.arguments = {
        destination(),
        source(),
        {.name = "sigma", .kind = Kind::number, .unit = "pixels", .contract = {1e-15, 1e6}, .drawn = {1, 9}},
        extent("width", "src"),
        extent("height", "src"),
        pitch("pitch", "src")};
    row.writes = writesGauss;
    row.reads = readsGauss;
    row.overlap = Overlap::notPromised;
    row.topByte = TopByte::cleared;
    row.sums = Sums::stayInside;
    row.arrange = arrangeSigma<alongRows>;
    row.scenes = {
        {.set = setSigma<8>}, {.word = "sigma 2", .set = setSigma<2>}, {.word = "sigma 20", .set = setSigma<20>}};
    return row;
}

} // namespace

std::vector<Row> filterRows() {
    const Argument inPlace = destination("surface");
    const Argument rect = rectangle("rect", "surface");
    const Argument itsPitch = pitch("pitch", "surface");
    const Argument lut = {.name = "lut", .kind = Kind::privateBlock, .unit = "_PRIVATE_LUT_DATA"};
    return {
        {
            Q_MUR_FUNCTION(Edge_Transparency),
            .sentence = "Fades two pictures into each other along a straight edge.",
            .arguments = edgeArguments({pointOn("p1"), pointOn("p2"), number("edgeWidth", "pixels", anyInt, {}),
                                        pitch("pitch", "out"), unused("unused1"), unused("unused2"),
                                        choice("swapImages", anyInt), clip("clip", "out")}),
            .writes = writesStrip,
            .reads = readsStrip,
            .overlap = Overlap::notPromised,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::stayInside,
            .arrange = arrangeStrip,
            .scenes = {{.set = setStrip<false>}, {.word = "steep", .set = setStrip<true>}},
        },
        {
            Q_MUR_FUNCTION(Edge_Transparency_Circle),
            .sentence = "Fades a picture inside a circle into another outside.",
            .arguments = edgeArguments({pointOn("centre"), radius("radius", anyInt, {}), radius("band", anyInt, {}),
                                        extentOf("width", "out"), extentOf("height", "out"), pitch("pitch", "out")}),
            .writes = writesDisc,
            .reads = readsDisc,
            .overlap = Overlap::rowOrder,
            .topByte = TopByte::disturbsRed,
            .sums = Sums::stayInside,
            .arrange = arrangeDisc,
            .scenes = {{.set = setDisc}},
        },
        {
            Q_MUR_FUNCTION_WITHOUT_TWIN(FastBlur_Rect),
            .sentence = "Averages the neighbours on either side of each pixel, in a direction drawn anew at each call.",
            .arguments = {inPlace, rect, itsPitch},
            .writes = writesInterior,
            .reads = readsNeighbours,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .without = {{"reads_nothing_outside_its_region", "each call draws its direction"},
                        {"two_threads_on_separate_surfaces", "each call draws its direction"}},
        },
        {
            Q_MUR_FUNCTION(CrossBlur_Rect),
            .sentence = "Averages the four neighbours of each pixel, beside it and at its corners in turn.",
            .arguments = {lut, inPlace, rect, itsPitch},
            .writes = writesInterior,
            .reads = readsNeighbours,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = arrangePhase,
            .scenes = {{.set = setPhase}},
        },
        {
            Q_MUR_FUNCTION(Blur_Rect),
            .sentence = "Blurs a rectangle in place by the means of square windows.",
            .arguments = {inPlace, rect, itsPitch, radius("radius", anyInt, {2, 15})},
            .writes = blurredRect,
            .reads = blurredRect,
            .topByte = TopByte::cleared,
            .sums = Sums::stayInside,
            .arrange = arrangeRadius,
            .scenes = {{.set = setRadius<15>},
                       {.word = "radius 3", .set = setRadius<3>},
                       {.word = "radius 60", .set = setRadius<60>}},
        },
        {
            Q_MUR_FUNCTION(Blur_Ring),
            .sentence = "Does nothing.",
            .arguments = {inPlace,
                          {.name = "centre", .kind = Kind::point, .unit = "pixels", .of = "surface"},
                          unused("a"),
                          unused("b"),
                          unused("c"),
                          unused("d")},
        },
        {
            Q_MUR_FUNCTION(Blur_Parallelogram),
            .sentence = "Does nothing.",
            .arguments = {inPlace, unused("a"), unused("b"), unused("c"), unused("d"), unused("e"), unused("f"), rect,
                          unused("g"), unused("h")},
        },
        boxBlur<true>(
            {Q_MUR_FUNCTION(Hor_Blur), .sentence = "Blurs rows by the means of windows.", .topByte = TopByte::cleared}),
        boxBlur<false>({Q_MUR_FUNCTION(Ver_Blur), .sentence = "Blurs columns by the means of windows.",
                        .topByte = TopByte::cleared}),
        boxBlur<true>({Q_MUR_FUNCTION(Hor_Blur32),
                       .sentence = "Blurs rows, top bytes included, by the means of windows.",
                       .topByte = TopByte::blended}),
        boxBlur<false>({Q_MUR_FUNCTION(Ver_Blur32),
                        .sentence = "Blurs columns, top bytes included, by the means of windows.",
                        .topByte = TopByte::blended}),
        gaussBlur<true>({Q_MUR_FUNCTION(Hor_GaussBlur), .sentence = "Blurs rows by a normal distribution."}),
        gaussBlur<false>({Q_MUR_FUNCTION(Ver_GaussBlur), .sentence = "Blurs columns by a normal distribution."}),
        search({Q_MUR_OVERLOAD(FindNearBlackDistanceSquare, int(q_ulong *, int, int, int, int, int *, int)),
                .word = "limit", .sentence = "Searches a square ring around a word for black, within a limit.",
                .arguments = searchArguments(true)}),
        search({Q_MUR_OVERLOAD(FindNearBlackDistanceSquare, int(q_ulong *, int, int, int, int, int *)),
                .sentence = "Searches a square ring around a word for black.", .arguments = searchArguments(false)}),
        {
            Q_MUR_FUNCTION(FindNearSrcDistanceSquare),
            .sentence = "Searches a square ring around a pixel for a colour other than black.",
            .arguments = {source("surface"), extentOf("width", ""), extentOf("height", ""), placeOn("x"), placeOn("y"),
                          number("ring", "pixels", {0, 46340}, {}), distanceSquare()},
            .writes = writesDistance,
            .reads = readsSurface,
            .arrange = arrangeColourSearch,
            .scenes = {{.set = setSearch, .figures = 100, .figure = "rings", .calls = 100}},
        },
        lightMap({Q_MUR_OVERLOAD(ConvertBlock2LightInfom, void(q_ulong *, tagRECT *, int, int, int, int, int)),
                  .word = "limit", .sentence = "Makes a light map of a shape with a bevel by true distance.",
                  .arguments = mapArguments(unused("unused"), number("limit", "pixels squared", anyInt, {}))}),
        lightMap({Q_MUR_OVERLOAD(ConvertBlock2LightInfom, void(q_ulong *, tagRECT *, int, int, int, int)),
                  .sentence = "Makes a light map of a shape with a bevel of square contours.",
                  .arguments = mapArguments(unused("unused"))}),
        lightMap({Q_MUR_FUNCTION(ConvertSrc2LightInfom), .sentence = "Makes a light map with slopes of a shape.",
                  .arguments = mapArguments(choice("profile", anyInt, 2))}),
    };
}

} // namespace catalogue
