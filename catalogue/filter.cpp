#include "plain/blurs.h"
#include "plain/edge_transparency.h"
#include "plain/light_map.h"

#include "areas.h"
#include "arguments.h"

#include <cmath>

namespace catalogue {
namespace {

using enum TopByte;
using enum Sum;
using Fractions::cutOff;
using Uniform::darkens, Uniform::stays;

// Edges: two pictures of one pitch, of which each pixel is mixed with the one in its place.

void makePictures(Call &call, Random &random) {
    const Plane &out = call["out"].plane();
    for (const char *name : {"imageA", "imageB"})
        call[name] = out.alike().fill({-1, -1, out.width() + 1, out.height() + 1},
                                      [&random](int, int) { return random.pixel(); });
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
void arrangeStrip(Call &call, Random &random) {
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
    call.set({{"p1", p1}, {"p2", p2}});
    if (!random.oneIn(20))
        call["edgeWidth"] = random.between(-2, 40);
    call["swapImages"] = random.between(0, 1) * random.between(-3, 3);
}
template <bool isSteep>
void setStrip(Call &call, const Stage &stage) {
    const int width = stage.width;
    const int height = stage.height;
    const auto part = [&stage](int extent, const Way &way) { return static_cast<int>(extent * stage.along(way)); };
    call["p1"] = isSteep ? tagPOINT{part(width, {0.4, 0.85}), 0} : tagPOINT{0, part(height, {0.2, 0.55})};
    call["p2"] = isSteep ? tagPOINT{part(width, {0.15, 0.6}), height} : tagPOINT{width, part(height, {0.45, 0.8})};
    call["edgeWidth"] = height / 2;
    call["clip"] = tagRECT{0, 0, width, height + 1}; // the row that a clip loses is one below the picture
    call["swapImages"] = 0;
}

/// Twice the band divides, in 32 bits.
Box discBox(const Call &call) {
    return call["band"].whole() % (1LL << 31) != 0 ? frameOf(call) : Box();
}
void arrangeDisc(Call &call, Random &random) {
    const int reach = random.oneIn(20) ? 300 : 22;
    call["centre"] = tagPOINT{random.between(-6 - reach, reach), random.between(-6 - reach, reach)};
    call.set({{"radius", random.between(0, reach == 300 ? 450 : 20)}, {"band", random.between(-2, 20)}});
}
void setDisc(Call &call, const Stage &stage) {
    call["radius"] = std::floor(stage.height * stage.along({0.3, 0.7}));
    call["band"] = stage.height / 4;
}

Row edge(Box (*box)(const Call &), Row row) {
    row.arguments = destination("out") + source("imageA") + source("imageB") + row.arguments;
    row.writes = on("out", box);
    row.reads = on("imageA", box) + on("imageB", box);
    row.topByte = disturbsRed;
    row.sums = stayInside;
    row.fractions = cutOff;
    row.uniform = stays;
    row.arrange = inTurn(makePictures, row.arrange);
    return row;
}

// Blurs in place.

const Arguments inPlace = {destination("surface"), rectangle("rect", "surface"), pitch("pitch", "surface")};

Box interior(const Call &call) {
    return grown(call["rect"].rect(), -1, -1, -1, -1);
}
Box blurredRect(const Call &call) {
    const tagRECT &rect = call["rect"].rect();
    return plain::isBlurred(rect, call["radius"].whole()) ? Box(rect) : Box();
}
void arrangeRadius(Call &call, Random &random) {
    const tagRECT &rect = call["rect"].rect();
    if (!random.oneIn(20))
        call["radius"] = random.between(0, std::max(std::min(widthOf(rect), heightOf(rect)), 1) / 2);
}

// Blurs from buffer to buffer, of an area that begins at the first pixel.

Plane likeSource(const Call &call, Random &random) {
    return call["src"].plane().alike(random.word());
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
    call.set({{"width", random.between(1, src.width())}, {"height", random.between(1, src.height())}});
    call["blurSize"] = random.between(0, call[alongRows ? "width" : "height"].whole() - 1);
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
    call.set({{"sigma", static_cast<double>(sigma)}, {"width", width}, {"height", height}});
}

/// `fits` says of a window whether anything is blurred.
template <class Fits>
Row blur(const Argument &window, Fits fits, Row row) {
    const auto box = [fits](const Call &call) { return fits(call) ? frameOf(call) : Box(); };
    row.arguments =
        destination() + source() + window + each({"width", "height"}, extent("", "src")) + pitch("pitch", "src");
    row.writes = on("dst", box);
    row.reads = on("src", box);
    row.sums = stayInside;
    row.fractions = cutOff;
    row.uniform = row.name.ends_with("GaussBlur") ? stays : darkens;
    return apart(std::move(row));
}
/// The middle of the picture, so that there is something to compare it with.
void inset(Call &call, const Stage &stage) {
    call["rect"] = tagRECT{stage.width / 5, stage.height / 8, stage.width * 4 / 5, stage.height * 7 / 8};
}
void insetWithPhase(Call &call, const Stage &stage) {
    inset(call, stage);
    if (stage.call == 0)
        call["lut"] = PhaseBlock();
}

template <bool alongRows>
Row boxBlur(Row row) {
    row.rules = {{"blurSize is not below the length of a line", windowFits<alongRows>}};
    row.arrange = arrangeBlurSize<alongRows>;
    row.scenes = {{.set = set("blurSize", 30)}, {"radius 3", set("blurSize", 6)}, {"radius 60", set("blurSize", 120)}};
    row.picture = Scene{};
    return blur(
        meant(radius("blurSize", anyInt, {6, 30}), {0, anyInt.high}),
        [](const Call &call) { return plain::isBlurSize(call["blurSize"].whole()); }, std::move(row));
}
template <bool alongRows>
Row gaussBlur(Row row) {
    row.topByte = cleared;
    row.arrange = arrangeSigma<alongRows>;
    row.scenes = {{.set = set("sigma", 8)}, {"sigma 2", set("sigma", 2)}, {"sigma 20", set("sigma", 20)}};
    row.picture = Scene{};
    const auto hasWeights = [](const Call &call) {
        return plain::gaussWeightsOf(static_cast<float>(call["sigma"].number())).radius < 128;
    };
    return blur(number("sigma", "pixels", {1e-15, 1e6, true}, {1, 9}), hasWeights, std::move(row));
}

// Distance fields.

/// A word that is part of a shape; at times its colour is black or its top byte 0.
q_ulong anyNonZero(Random &random) {
    const q_ulong bit = q_ulong{1} << random.between(0, 31);
    return random.oneIn(4) ? bit : bit | random.word();
}

void arrangeBlackSearch(Call &call, Random &random) {
    const int pitch = random.between(1, 9);
    const int blockWords = pitch * random.between(1, 9);
    const int seldom = random.oneIn(3) ? 1000 : random.between(2, 40);
    call["block"] =
        Plane::array<q_ulong>(blockWords, [&](int) { return random.oneIn(seldom) ? 0 : anyNonZero(random); });
    call.set({{"blockWords", blockWords}, {"index", random.between(-3, blockWords + 3)}, {"pitch", pitch}});
    call["ring"] = random.between(0, 6);
    if (call.row().argument("limit"))
        call["limit"] = random.oneIn(4) ? random.between(999999, 1000001) : random.between(-2, 40);
}
void arrangeColourSearch(Call &call, Random &random) {
    const int width = random.between(1, 9);
    const int height = random.between(1, 9);
    const int seldom = random.between(2, 40);
    call["surface"] = Plane::array<q_ulong>(
        width * height, [&](int) { return random.oneIn(seldom) ? random.pixel() : random.word() & 0xFF000000; });
    call.set({{"width", width}, {"height", height}});
    call.set({{"x", random.between(-3, width + 2)}, {"y", random.between(-3, height + 2)}});
    call["ring"] = random.between(0, 8);
}
Areas blockWordsRead(const Call &call) {
    return {words("block", call["blockWords"].whole())};
}
Areas surfaceWordsRead(const Call &call) {
    const Box frame = frameOf(call);
    return {words("surface", frame.isEmpty() ? 0 : frame.width() * frame.height())};
}
constexpr int side = 201; ///< of the field in a scene

/// From the middle of a field on to its only spot.
Row search(Row row, std::function<void(Call &, const Stage &)> place) {
    const std::string_view field = row.arguments.front().name;
    const bool forBlack = field == "block";
    row.writes = always({words("distanceSquare", 1)});
    row.arrange = inTurn(forBlack ? arrangeBlackSearch : arrangeColourSearch, set("distanceSquare", Plane(4, 1, 1)));
    const auto begin = [=](Call &call, const Stage &stage) {
        if (stage.call == 0) {
            call[field] = Plane::array<q_ulong>(side * side, [=](int i) { return forBlack == (i > 0) ? 1 : 0; });
            call["distanceSquare"] = Plane(4, 1, 1);
        }
        call["ring"] = std::floor(stage.time * (side / 2 + 1));
        if (call.row().argument("limit"))
            call["limit"] = 2000000;
    };
    const auto spots = [=](Call &call, const Stage &stage) {
        const q_ulong ground = forBlack ? 0x404858 : 0;
        call[field] = Plane(4, side * side, 1).fill({0, 0, side * side, 1}, [=](int, int) { return ground; });
        for (const tagPOINT &spot : {tagPOINT{-7, -11}, {14, 5}, {3, 17}})
            call[field].plane().at((side / 2 + spot.y) * side + side / 2 + spot.x, 0) = forBlack ? 0 : 0xFFB060;
        call["ring"] = std::floor(stage.along({1, 19}));
    };
    row.figure = Figure::search;
    row.picture = Scene{.set = inTurn(begin, place, spots)};
    row.scenes = {{.set = inTurn(begin, std::move(place)), .figures = 100, .figure = "rings", .calls = 100}};
    return row;
}

// Light maps.

/// A search runs on over the ends of rows, and ends as far right as it began.
Areas readsSearched(const Call &call) {
    const tagRECT &rect = call["rect"].rect();
    const std::int64_t pitch = call["pitch"].whole();
    if (widthOf(rect) < 1 || widthOf(rect) > pitch)
        return {};
    return {{"surface", Box{rect.left, rect.top, pitch, rect.bottom}},
            {"surface", Box{0, rect.top + 1LL, rect.left, rect.bottom + 1LL}, true}};
}
Box shapeBox(const Call &call) {
    const tagRECT &rect = call["rect"].rect();
    return widthOf(rect) <= call["pitch"].whole() ? Box(rect) : Box();
}
/// A mask whose rows lie one behind another, so that searches wrap round at their ends. Behind the last row lies one
/// more, into which a block that begins inside a row reaches.
void arrangeMask(Call &call, Random &random) {
    const int pitch = random.between(1, 12);
    const int rows = random.between(1, 8);
    const Plane mask(4, pitch, rows + 1);
    tagRECT rect = random.rectInsideOrEmpty(pitch, rows);
    if (random.oneIn(3) && rect.bottom > rect.top) // at the bottom
        rect.bottom = rows;
    const int seldom = random.oneIn(8) ? 1000 : random.between(2, 60);
    mask.fill(mask.rect(), [&](int, int) { return random.oneIn(seldom) ? 0 : anyNonZero(random); });
    if (!random.oneIn(8) && rect.bottom > rect.top)
        mask.at(static_cast<int>(rect.left) + random.between(0, heightOf(rect) * pitch - 1),
                static_cast<int>(rect.top)) = 0;
    call.set({{"surface", mask}, {"rect", rect}});
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
    call["heightScale"] = std::floor(stage.along({1, 5}));
    call["bevelSize"] = 40;
    if (call.row().argument("limit"))
        call["limit"] = 2000000;
    if (call.row().argument("profile"))
        call["profile"] = 2;
}

Row lightMap(Row row) {
    row.arguments = inPlace + number("heightScale", "1", anyInt, {1, 5}) +
                    number("bevelSize", "pixels", {-4096, 4096, true}, {40, 40}) + row.arguments;
    row.writes = on("surface", shapeBox);
    row.reads = readsSearched;
    row.arrange = arrangeMask;
    row.scenes = {{.set = setShape, .figures = 1, .figure = "maps"}};
    row.figure = Figure::relief;
    row.waived = {{"every_place_and_size_over_a_small_surface", "rows are searched to the ends of their pitch"},
                  {"pictures_stored_bottom_up", "rows are searched to the ends of their pitch"}};
    return row;
}

} // namespace

std::vector<Row> filterRows() {
    using BlackSearch = int(q_ulong *, int, int, int, int, int *);
    using BlackSearchWithin = int(q_ulong *, int, int, int, int, int *, int);
    using LightMap = void(q_ulong *, tagRECT *, int, int, int, int);
    using LightMapWithin = void(q_ulong *, tagRECT *, int, int, int, int, int);
    constexpr Range onPictures = {-(1 << 20), 1 << 20, true}; // numbers that a picture in memory may have
    const Arguments limit = {number("limit", "pixels squared", anyInt, {})};
    const Arguments ring = {number("ring", "pixels", {0, 46340, true}, {}),
                            numbers("distanceSquare", "pixels squared")};
    const Arguments inBlock = source("block") + count("blockWords", "words") +
                              number("index", "words", {-(1 << 29), 1 << 29, true}, {}) +
                              number("pitch", "words", {1, 46340, true}, {}) + ring;
    const auto inMiddle = inTurn(set("blockWords", side * side), set("index", side * side / 2), set("pitch", side));
    const Region nextToInterior = on("surface", [](const Call &call) { return grown(interior(call), 1, 1, 1, 1); });
    return {
        edge(stripBox, {Q_MUR_FUNCTION(Edge_Transparency),
                        .sentence = "Fades two pictures into each other along a straight edge.",
                        .arguments = each({"p1", "p2"}, point("", "out")) + number("edgeWidth", "pixels", anyInt, {}) +
                                     pitch("pitch", "out") + unused("unused1") + unused("unused2") +
                                     choice("swapImages") + clip("clip", "out"),
                        .overlap = Overlap::notPromised, .arrange = arrangeStrip,
                        .scenes = {{.set = setStrip<false>}, {"steep", setStrip<true>}},
                        .waived = {{"places_are_bounded_by_clips_alone", "sources are read at the same places"}}}),
        edge(discBox, {Q_MUR_FUNCTION(Edge_Transparency_Circle),
                       .sentence = "Fades a picture inside a circle into another outside.",
                       .arguments = point("centre", "out") + radius("radius", anyInt, {}) +
                                    meant(radius("band", anyInt, {}), {1, anyInt.high}) +
                                    each({"width", "height"}, extent("", "out", onPictures)) + pitch("pitch", "out"),
                       .overlap = Overlap::rowOrder, .arrange = arrangeDisc, .scenes = {{.set = setDisc}}}),
        {Q_MUR_FUNCTION_WITHOUT_TWIN(FastBlur_Rect),
         .sentence = "Averages the neighbours on either side of each pixel, in a direction drawn anew at each call.",
         .arguments = inPlace, .writes = on("surface", interior), .reads = nextToInterior, .topByte = cleared,
         .sums = stayInside, .fractions = cutOff, .uniform = darkens,
         .waived = {{"reads_nothing_outside_its_region", "each call draws its direction"},
                    {"two_threads_on_separate_surfaces", "each call draws its direction"},
                    {"pictures_stored_bottom_up", "each call draws its direction"}},
         .picture = Scene{.set = inset, .calls = 48}},
        {Q_MUR_FUNCTION(CrossBlur_Rect),
         .sentence = "Averages the four neighbours of each pixel, beside it and at its corners in turn.",
         .arguments = privateBlock("lut", "_PRIVATE_LUT_DATA") + inPlace, .writes = on("surface", interior),
         .reads = nextToInterior, .topByte = cleared, .sums = stayInside, .fractions = cutOff, .uniform = darkens,
         .arrange = [](Call &call, Random &random) { call["lut"] = PhaseBlock{.data = {random.between(0, 1)}}; },
         .scenes = {{.set = [](Call &call,
                               const Stage &stage) { call["lut"] = PhaseBlock{.data = {stage.time < 0.5 ? 0 : 1}}; }}},
         .picture = Scene{.set = insetWithPhase, .calls = 48}},
        {Q_MUR_FUNCTION(Blur_Rect), .sentence = "Blurs a rectangle in place by the means of square windows.",
         .arguments = inPlace + meant(radius("radius", anyInt, {2, 15}), {0, 128}),
         .writes = on("surface", blurredRect), .reads = on("surface", blurredRect), .topByte = cleared,
         .sums = stayInside, .fractions = cutOff, .uniform = darkens, .arrange = arrangeRadius,
         .scenes = {{.set = set("radius", 15)}, {"radius 3", set("radius", 3)}, {"radius 60", set("radius", 60)}},
         .picture = Scene{.set = inset}},
        {Q_MUR_FUNCTION(Blur_Ring), .sentence = "Does nothing.",
         .arguments = destination("surface") + point("centre", "surface") + each({"a", "b", "c", "d"}, unused("")),
         .figure = Figure::nothing},
        {Q_MUR_FUNCTION(Blur_Parallelogram), .sentence = "Does nothing.",
         .arguments = destination("surface") + each({"a", "b", "c", "d", "e", "f"}, unused("")) +
                      rectangle("rect", "surface") + each({"g", "h"}, unused("")),
         .figure = Figure::nothing},
        boxBlur<true>(
            {Q_MUR_FUNCTION(Hor_Blur), .sentence = "Blurs rows by the means of windows.", .topByte = cleared}),
        boxBlur<false>(
            {Q_MUR_FUNCTION(Ver_Blur), .sentence = "Blurs columns by the means of windows.", .topByte = cleared}),
        boxBlur<true>({Q_MUR_FUNCTION(Hor_Blur32),
                       .sentence = "Blurs rows, top bytes included, by the means of windows.", .topByte = blended,
                       .looksLike = "Differs from `Hor_Blur()` in the top bytes alone, which pictures do not show."}),
        boxBlur<false>({Q_MUR_FUNCTION(Ver_Blur32),
                        .sentence = "Blurs columns, top bytes included, by the means of windows.", .topByte = blended,
                        .looksLike = "Differs from `Ver_Blur()` in the top bytes alone, which pictures do not show."}),
        gaussBlur<true>({Q_MUR_FUNCTION(Hor_GaussBlur), .sentence = "Blurs rows by a normal distribution."}),
        gaussBlur<false>({Q_MUR_FUNCTION(Ver_GaussBlur), .sentence = "Blurs columns by a normal distribution."}),
        search({Q_MUR_OVERLOAD(FindNearBlackDistanceSquare, BlackSearchWithin), .label = "limit",
                .sentence = "Searches a square ring around a word for black, within a limit.",
                .arguments = inBlock + limit, .reads = blockWordsRead},
               inMiddle),
        search({Q_MUR_OVERLOAD(FindNearBlackDistanceSquare, BlackSearch),
                .sentence = "Searches a square ring around a word for black.", .arguments = inBlock,
                .reads = blockWordsRead},
               inMiddle),
        search({Q_MUR_FUNCTION(FindNearSrcDistanceSquare),
                .sentence = "Searches a square ring around a pixel for a colour other than black.",
                .arguments = source("surface") + each({"width", "height"}, extent("", "", onPictures)) +
                             each({"x", "y"}, position("", "", {0, 0}, onPictures)) + ring,
                .reads = surfaceWordsRead,
                .looksLike = "The search of `FindNearBlackDistanceSquare()` turned round: for what is not black."},
               inTurn(set("width", side), set("height", side), set("x", side / 2), set("y", side / 2))),
        lightMap({Q_MUR_OVERLOAD(ConvertBlock2LightInfom, LightMapWithin), .label = "limit",
                  .sentence = "Makes a light map of a shape with a bevel by true distance.",
                  .arguments = unused("unused") + limit}),
        lightMap({Q_MUR_OVERLOAD(ConvertBlock2LightInfom, LightMap),
                  .sentence = "Makes a light map of a shape with a bevel of square contours.",
                  .arguments = {unused("unused")}}),
        lightMap({Q_MUR_FUNCTION(ConvertSrc2LightInfom), .sentence = "Makes a light map with slopes of a shape.",
                  .arguments = {choice("profile", anyInt, 2)}}),
    };
}

} // namespace catalogue
