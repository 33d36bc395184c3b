#include "figures.h"

#include "picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace gallery {

using catalogue::Argument;
using catalogue::Call;
using catalogue::Figure;
using catalogue::Kind;
using catalogue::PipelineBlock;
using catalogue::Plane;
using catalogue::RegionBlock;
using catalogue::Row;
using catalogue::Scene;
using catalogue::Stage;
using catalogue::TexturedBlock;
using catalogue::Type;

namespace {

constexpr q_ulong background = 0x141A22, faint = 0x303A48, quiet = 0x708090, bright = 0xFFC860;
constexpr q_ulong hues[] = {0x60B0FF, 0x70D890, 0xF08090, 0xC090F0};

struct Place {
    double x;
    double y;
    double z;
};

std::string numberText(double number) {
    char text[32];
    std::snprintf(text, sizeof text, number == std::floor(number) && std::fabs(number) < 1e9 ? "%.0f" : "%.2f", number);
    return text;
}
std::string placeText(const Place &place) {
    return "(" + numberText(place.x) + ", " + numberText(place.y) + ", " + numberText(place.z) + ")";
}

/// A place as it lies when all is turned before the viewer.
Place viewed(const Place &place) {
    const double depth = place.z * std::cos(view.aboutUpright) - place.x * std::sin(view.aboutUpright);
    return {place.x * std::cos(view.aboutUpright) + place.z * std::sin(view.aboutUpright),
            place.y * std::cos(view.aboutLevel) - depth * std::sin(view.aboutLevel),
            place.y * std::sin(view.aboutLevel) + depth * std::cos(view.aboutLevel)};
}

/// A place in space as it is drawn where nothing else brings it to the screen: looked at from a little above.
Place oblique(const Place &from) {
    const Place place = viewed(from);
    return {place.x + 0.4 * place.z, place.y - 0.3 * place.z, 0};
}

/// Words of memory as what the function takes them for.
double wordAt(const Call &call, std::size_t argument, int index) {
    const Plane &plane = call[argument].plane();
    return call.row().functions.types[argument] == Type::reals ? static_cast<double>(plane.as<float>()[index])
                                                               : plane.as<int>()[index];
}
void setWord(Call &call, std::size_t argument, int index, double number) {
    const Plane &plane = call[argument].plane();
    if (call.row().functions.types[argument] == Type::reals)
        plane.as<float>()[index] = static_cast<float>(number);
    else
        plane.as<int>()[index] = static_cast<int>(std::lround(number));
}
Place placeIn(const Call &call, std::size_t argument) {
    return {wordAt(call, argument, 0), wordAt(call, argument, 1), wordAt(call, argument, 2)};
}

struct Edge {
    Place from;
    Place to;
};

/// A cube, with a cross on its front.
std::vector<Edge> cube(double half) {
    std::vector<Edge> edges;
    for (const double a : {-half, half})
        for (const double b : {-half, half}) {
            edges.push_back({{-half, a, b}, {half, a, b}});
            edges.push_back({{a, -half, b}, {a, half, b}});
            edges.push_back({{a, b, -half}, {a, b, half}});
        }
    edges.push_back({{-half, -half, -half}, {half, half, -half}});
    edges.push_back({{-half, half, -half}, {half, -half, -half}});
    return edges;
}
/// The letter F, which no turn brings onto itself.
std::vector<Edge> letter() {
    constexpr double outline[][2] = {{-30, -60}, {40, -60}, {40, -35}, {-5, -35}, {-5, -12}, {25, -12},
                                     {25, 12},   {-5, 12},  {-5, 60},  {-30, 60}, {-30, -60}};
    std::vector<Edge> edges;
    for (std::size_t i = 0; i + 1 < std::size(outline); ++i)
        edges.push_back({{outline[i][0], outline[i][1], 0}, {outline[i + 1][0], outline[i + 1][1], 0}});
    return edges;
}

Call callAt(const Row &row, const Scene &scene, double time) {
    return catalogue::sceneCall(row, scene, Stage{stageWidth, stageHeight, time});
}

void axes(const Sheet &sheet) {
    sheet.line(-stageWidth / 2.0, 0, stageWidth / 2.0, 0, faint);
    sheet.line(0, -stageHeight / 2.0, 0, stageHeight / 2.0, faint);
}

/// A shape, each point of which has gone through the function.
void drawTransform(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    std::vector<std::pair<std::size_t, int>> coordinates; // arguments and words
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
        if (row.arguments[i].kind == Kind::numbers)
            coordinates.emplace_back(i, 0);
        else if (row.arguments[i].name == "p")
            for (int word = 0; word < 3; ++word)
                coordinates.emplace_back(i, word);
    }
    const bool isFlat = coordinates.size() == 2;
    const bool isProjected = row.argument("distance") != nullptr;
    const auto made = [&](const Place &place) {
        Call call = callAt(row, scene, time);
        const double numbers[] = {place.x, place.y, place.z};
        for (std::size_t i = 0; i < coordinates.size(); ++i)
            setWord(call, coordinates[i].first, coordinates[i].second, numbers[i]);
        row.functions.library(call)();
        double results[3] = {};
        for (std::size_t i = 0; i < coordinates.size(); ++i)
            results[i] = wordAt(call, coordinates[i].first, coordinates[i].second);
        return Place{results[0], results[1], results[2]};
    };
    axes(sheet);
    const Call call = callAt(row, scene, time);
    if (row.argument("q")) {
        const Place a = oblique(placeIn(call, 1)), q = oblique(placeIn(call, 2));
        sheet.line(a.x, a.y, q.x, q.y, hues[2], 2);
    }
    for (const auto &[name, value] :
         {std::pair("centre", "centre"), std::pair("centreA", "centreB"), std::pair("centreX", "centreY")}) {
        if (!row.argument(name))
            continue;
        const bool isAlone = name == std::string_view(value);
        // Of two coordinates the second is the one in depth, or both lie on the sheet.
        const bool isSecond = row.name.find("ByX") != std::string_view::npos;
        const double first = call[name].number();
        const Place at =
            isAlone ? Place{isSecond ? 0 : first, isSecond ? first : 0, 0} : Place{first, call[value].number(), 0};
        sheet.dot(at.x, at.y, 4, hues[2]);
    }
    for (const Edge &edge : isFlat ? letter() : cube(isProjected ? 60 : 50)) {
        const Place from = isFlat ? edge.from : oblique(edge.from), to = isFlat ? edge.to : oblique(edge.to);
        sheet.line(from.x, from.y, to.x, to.y, quiet);
    }
    for (const Edge &edge : isFlat ? letter() : cube(isProjected ? 60 : 50)) {
        Place from = made(edge.from), to = made(edge.to);
        if (!isFlat && !isProjected)
            from = oblique(from), to = oblique(to);
        sheet.line(from.x, from.y, to.x, to.y, bright, 2);
    }
    const Place before = isFlat ? Place{40, -60, 0} : Place{50, 50, -50};
    const Place after = made(before);
    const auto text = [isFlat](const Place &place) {
        return isFlat ? "(" + numberText(place.x) + ", " + numberText(place.y) + ")" : placeText(place);
    };
    sheet.text(8, stageHeight - 22, text(before) + "  ->  " + text(after));
}

/// What is passed as arrows or corners, and what is made of them.
void drawVectors(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    std::vector<std::pair<std::size_t, Place>> passed;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (row.arguments[i].kind == Kind::points && row.arguments[i].name != "out")
            passed.emplace_back(i, placeIn(call, i));
    row.functions.library(call)();
    const bool isFace = row.argument("p1") != nullptr;
    const bool areReal = row.functions.types[passed.front().first] == Type::reals;
    axes(sheet);
    Place foot = {0, 0, 0};
    for (std::size_t i = 0; i < passed.size(); ++i) {
        const Place at = oblique(passed[i].second);
        if (isFace) {
            const Place next = oblique(passed[(i + 1) % passed.size()].second);
            sheet.line(at.x, at.y, next.x, next.y, hues[i], 2);
            foot = {foot.x + passed[i].second.x / 3, foot.y + passed[i].second.y / 3, foot.z + passed[i].second.z / 3};
        } else {
            sheet.arrow(0, 0, at.x, at.y, hues[i]);
        }
        const std::string name(row.arguments[passed[i].first].name);
        sheet.text(static_cast<int>(at.x) + stageWidth / 2 + 6, static_cast<int>(at.y) + stageHeight / 2 - 8, name,
                   hues[i]);
        sheet.text(8, 6 + 16 * static_cast<int>(i), name + " = " + placeText(passed[i].second), hues[i], 13);
    }
    struct Words {
        std::uint32_t word[4];
    };
    const auto number = [areReal](std::uint32_t word) {
        float real;
        std::memcpy(&real, &word, 4);
        return areReal ? static_cast<double>(real) : static_cast<std::int32_t>(word);
    };
    const Argument *out = row.argument("out");
    const bool isVector = out || row.returnsWords() == 4;
    if (!isVector) {
        const double result = row.returnsWords() == 0 ? call.returned<bool>() : number(call.returned<std::uint32_t>());
        const std::string text = row.returnsWords() == 0 ? result != 0 ? "front" : "back" : numberText(result);
        sheet.text(8, stageHeight - 30, text, bright, 22);
        if (row.returnsWords() != 0) {
            const double length = passed.size() == 1 ? result : 220 * result / (std::fabs(result) + 4000);
            sheet.line(0, stageHeight / 2.0 - 12, length, stageHeight / 2.0 - 12, bright, 6);
        } else if (result != 0) {
            sheet.dot(0, 0, 6, bright);
        }
        return;
    }
    Place result;
    if (out) {
        result = placeIn(call, 0);
    } else {
        const auto words = call.returned<Words>();
        result = {number(words.word[0]), number(words.word[1]), number(words.word[2])};
    }
    const double length = std::sqrt(result.x * result.x + result.y * result.y + result.z * result.z);
    const double shown = length > 110 ? 90 / length : length < 2 && length > 0 ? 60 / length : 1;
    const Place tip = oblique({foot.x + result.x * shown, foot.y + result.y * shown, foot.z + result.z * shown});
    const Place from = oblique(foot);
    sheet.arrow(from.x, from.y, tip.x, tip.y, bright);
    sheet.text(8, stageHeight - 22, placeText(result), bright);
}

/// The points of a grid on the screen, joined along rows and columns.
void drawGrid(const Sheet &sheet, const Row &row, const Scene &scene, double time, bool isLit) {
    Call call = callAt(row, scene, time);
    row.functions.library(call)();
    const Plane &points = call[row.argument("out") ? "out" : "points"].plane();
    const int rows = call["rows"].whole();
    const int columns = call[row.argument("cols") ? "cols" : "columns"].whole();
    const Plane *add = nullptr, *multiply = nullptr;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const auto take = [&](const auto &block) { add = &block.vertexArray0, multiply = &block.vertexArray1; };
        if (call[i].is<PipelineBlock>())
            take(call[i].get<PipelineBlock>());
        else if (call[i].is<TexturedBlock>())
            take(call[i].get<TexturedBlock>());
    }
    const auto colourAt = [&](int index) -> q_ulong {
        if (!isLit)
            return bright;
        const int light = std::clamp(160 * multiply->as<int>()[index] / 256 + add->as<int>()[index], 0, 255);
        return static_cast<q_ulong>(light) * 0x010101;
    };
    const auto at = [&](int y, int x) {
        const float *point = points.as<float>() + 4 * (y * columns + x);
        return Place{static_cast<double>(point[0]) - stageWidth / 2.0,
                     static_cast<double>(point[1]) - stageHeight / 2.0, 0};
    };
    const int step = isLit ? 1 : 3;
    for (int y = 0; y < rows; y += step)
        for (int x = 0; x < columns; x += step) {
            const Place place = at(y, x);
            if (isLit)
                sheet.dot(place.x, place.y, 4, colourAt(y * columns + x));
            for (const auto &[down, right] : {std::pair(step, 0), std::pair(0, step)}) {
                if (isLit || y + down >= rows || x + right >= columns)
                    continue;
                const Place next = at(y + down, x + right);
                sheet.line(place.x, place.y, next.x, next.y, colourAt(y * columns + x));
            }
        }
}

/// A point, a line and the side that the point is found on.
void drawSide(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    const auto at = [&](std::size_t x) { return Place{wordAt(call, x, 0), wordAt(call, x + 1, 0), 0}; };
    const Place p = at(0), a = at(2), b = at(4);
    row.functions.library(call)();
    const int side = call.returned<int>();
    const double dx = stageWidth / 2.0, dy = stageHeight / 2.0;
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    const double ex = (b.x - a.x) / length * 600, ey = (b.y - a.y) / length * 600;
    sheet.line(a.x - ex - dx, a.y - ey - dy, a.x + ex - dx, a.y + ey - dy, faint);
    sheet.arrow(a.x - dx, a.y - dy, b.x - dx, b.y - dy, hues[0]);
    sheet.dot(p.x - dx, p.y - dy, 6, side > 0 ? bright : side < 0 ? hues[2] : 0xFFFFFF);
    sheet.text(8, stageHeight - 30, std::to_string(side), bright, 22);
}

/// A row of pixels, and how far a scan goes.
void drawScan(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    const auto &block = call["data"].get<RegionBlock>();
    row.functions.library(call)();
    const int found = call.returned<int>();
    const int x = call["x"].whole();
    const bool onPlane = !row.argument("limit");
    const int columns = (onPlane ? block.plane : block.testSurface).width();
    constexpr int cell = 15, top = 90;
    const int left = (stageWidth - cell * columns) / 2;
    for (int i = 0; i < columns; ++i) {
        const bool isBoundary = onPlane ? block.plane.as<unsigned char>()[i] != 0 : block.testSurface.at(i, 0) != 0;
        const bool isInside = i >= std::min(x, found) && i <= std::max(x, found);
        sheet.box({left + i * cell, top, left + i * cell + cell - 2, top + 34}, i == x       ? 0xFFFFFF
                                                                                : isBoundary ? hues[2]
                                                                                : isInside   ? bright
                                                                                             : faint);
    }
    sheet.text(left + x * cell - 2, top - 22, "x");
    sheet.text(left + found * cell - 4, top + 44, std::to_string(found), bright);
}

/// A field of pixels with the ring that is searched.
void drawSearch(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    const Plane field = call[0].plane();
    const int side = static_cast<int>(std::lround(std::sqrt(field.width())));
    row.functions.library(call)();
    const int ring = call["ring"].whole();
    constexpr int cell = 5, reach = 20, left = 20;
    const int top = (stageHeight - cell * (2 * reach + 1)) / 2;
    const q_ulong ground = field.as<q_ulong>()[0];
    for (int y = -reach; y <= reach; ++y)
        for (int x = -reach; x <= reach; ++x) {
            const q_ulong pixel = field.as<q_ulong>()[(side / 2 + y) * side + side / 2 + x];
            const bool onRing = std::max(std::abs(x), std::abs(y)) == ring;
            const bool isMiddle = x == 0 && y == 0;
            const int column = left + (x + reach) * cell, line = top + (y + reach) * cell;
            sheet.box({column, line, column + cell - 1, line + cell - 1}, pixel != ground ? onRing ? 0xFFFFFF : hues[2]
                                                                          : onRing ? bright
                                                                          : isMiddle      ? 0xFFFFFF
                                                                                          : faint);
        }
    const int textLeft = left + cell * (2 * reach + 1) + 20;
    sheet.text(textLeft, 60, "ring " + std::to_string(ring), 0xC8D0DC, 16);
    sheet.text(textLeft, 86, "squared " + std::to_string(call["distanceSquare"].plane().as<int>()[0]), bright, 16);
    sheet.text(textLeft, 112, "answer " + std::to_string(call.returned<int>()), bright, 16);
}

/// The matrix that a call makes or works on: its first, or the top of the stack of its block that the mode chooses.
std::array<float, 16> matrixOf(const Call &call, bool isOfView) {
    std::array<float, 16> matrix = {};
    const Row &row = call.row();
    if (!row.argument("data")) {
        const auto first = std::find_if(row.arguments.begin(), row.arguments.end(),
                                        [](const Argument &argument) { return argument.kind == Kind::matrix; });
        std::copy_n(call[first->name].plane().as<float>(), 16, matrix.begin());
        return matrix;
    }
    const auto &block = call["data"].get<PipelineBlock>();
    const Plane &stack = isOfView ? block.viewStack : block.modelStack;
    std::copy_n(stack.as<float>() + 16 * (isOfView ? block.data.viewDepth : block.data.modelDepth), 16, matrix.begin());
    return matrix;
}

void drawCube(const Sheet &sheet, const std::array<float, 16> &matrix, q_ulong colour, int width) {
    const auto made = [&matrix](const Place &place) {
        const double numbers[] = {place.x, place.y, place.z, 1};
        double results[3] = {};
        for (std::size_t r = 0; r < 3; ++r)
            for (std::size_t c = 0; c < 4; ++c)
                results[r] += static_cast<double>(matrix[4 * r + c]) * numbers[c];
        const Place result = oblique({results[0], results[1], results[2]});
        return Place{result.x - 90, result.y, 0};
    };
    for (const Edge &edge : cube(36)) {
        const Place from = made(edge.from), to = made(edge.to);
        sheet.line(from.x, from.y, to.x, to.y, colour, width);
    }
}

/// What a block holds besides: the stacks' entries, the viewport within its picture, and how wide the eye sees.
void drawBlock(const Sheet &sheet, const PipelineBlock &block) {
    const auto &data = block.data;
    for (const bool isOfView : {false, true}) {
        const bool isChosen = isOfView == (data.matrixMode != 1);
        const int y = isOfView ? 146 : 122;
        sheet.text(228, y, isOfView ? "view" : "model", isChosen ? bright : quiet, 13);
        for (int entry = 0; entry < 3; ++entry) {
            const tagRECT box = {278 + entry * 24, y, 298 + entry * 24, y + 16};
            if (entry == (isOfView ? data.viewDepth : data.modelDepth))
                sheet.box(box, isChosen ? bright : quiet);
            sheet.frame(box, quiet);
        }
    }
    sheet.frame({228, 170, 292, 206}, faint);
    sheet.frame({228 + data.viewportLeft * 64 / stageWidth, 170 + data.viewportTop * 36 / stageHeight,
                 228 + data.viewportRight * 64 / stageWidth, 170 + data.viewportBottom * 36 / stageHeight},
                quiet);
    const double half = 18.0 * (data.viewportBottom - data.viewportTop) / stageHeight;
    const double length = std::clamp(data.focalLength * 36.0 / stageHeight, 2.0, 90.0);
    sheet.line(110, 76, 110 + length, 76 - half, quiet);
    sheet.line(110, 76, 110 + length, 76 + half, quiet);
    sheet.line(110 + length, 76 - half, 110 + length, 76 + half, quiet);
    sheet.text(228, 208,
               "near " + std::to_string(data.nearLimit) + "  focal length " + std::to_string(data.focalLength), quiet,
               11);
}

/// A cube under the matrix before and after a call, and the matrix itself.
void drawMatrix(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    const auto model = matrixOf(call, false), view = matrixOf(call, true);
    if (row.argument("b")) {
        for (const std::size_t i : {std::size_t{1}, std::size_t{2}}) {
            std::array<float, 16> factor;
            std::copy_n(call[i].plane().as<float>(), 16, factor.begin());
            drawCube(sheet, factor, hues[i - 1], 1);
        }
        sheet.text(150, 8, "a", hues[0]);
        sheet.text(166, 8, "b", hues[1]);
        sheet.text(182, 8, "out", bright);
    }
    row.functions.library(call)();
    bool isOfView = matrixOf(call, true) != view;
    if (row.argument("data")) {
        const auto &block = call["data"].get<PipelineBlock>();
        isOfView = isOfView || (matrixOf(call, false) == model && block.data.matrixMode != 1);
        drawCube(sheet, isOfView ? view : model, quiet, 1);
        drawBlock(sheet, block);
    } else if (!row.argument("b")) {
        drawCube(sheet, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, quiet, 1);
    }
    const auto made = matrixOf(call, isOfView);
    drawCube(sheet, made, bright, 2);
    for (std::size_t r = 0; r < 4; ++r)
        for (std::size_t c = 0; c < 4; ++c)
            sheet.text(228 + 42 * static_cast<int>(c), 14 + 22 * static_cast<int>(r),
                       numberText(static_cast<double>(made[4 * r + c])), 0xC8D0DC, 13);
}

/// A cube as it comes to the screen, and the viewport.
void drawProjection(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    row.functions.library(call)();
    auto block = call["data"].get<PipelineBlock>();
    _PRIVATE_QMGL_DATA *data = block.settled();
    sheet.frame({data->viewportLeft, data->viewportTop, data->viewportRight, data->viewportBottom}, quiet);
    const auto turned = [](const Place &from) {
        constexpr double sine = 0.48, cosine = 0.88;
        const Place place = viewed(from);
        const double z = sine * place.x + cosine * place.z;
        return _POINT3DFLOAT{static_cast<float>(cosine * place.x - sine * place.z),
                             static_cast<float>(cosine * place.y + sine * z),
                             static_cast<float>(cosine * z - sine * place.y), 0};
    };
    for (const Edge &edge : cube(80)) {
        _POINT3DFLOAT ends[] = {turned(edge.from), turned(edge.to)};
        VKD_Mapping3Dto2D(data, ends, 1, 2);
        sheet.line(static_cast<double>(ends[0].x) - stageWidth / 2.0,
                   static_cast<double>(ends[0].y) - stageHeight / 2.0,
                   static_cast<double>(ends[1].x) - stageWidth / 2.0,
                   static_cast<double>(ends[1].y) - stageHeight / 2.0, bright, 2);
    }
    sheet.text(8, stageHeight - 22,
               "focal length " + std::to_string(data->focalLength) + ",  near " + std::to_string(data->nearLimit),
               0xC8D0DC, 13);
}

/// A Z plane, what is nearer darker.
Plane depthsAfter(const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    row.functions.library(call)();
    const Plane &depths = *call["data"].surface();
    const Plane picture = Plane::surface(depths.width(), depths.height());
    return picture.fill(picture.rect(), [&](int x, int y) {
        const int depth = depths.as<short>()[static_cast<std::ptrdiff_t>(y) * depths.pitch() + x];
        return static_cast<q_ulong>(std::clamp(depth >> 7, 0, 255)) * 0x010101;
    });
}

/// A picture that a light map is laid over as hosts do it.
Plane reliefAfter(const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    row.functions.library(call)();
    const Plane &map = call["surface"].plane();
    const Plane picture = Stage{map.width(), map.height(), time}.picture(1);
    const bool hasBytes = row.name == "ConvertSrc2LightInfom";
    return picture.fill(picture.rect(), [&](int x, int y) {
        const q_ulong word = map.at(x, y), before = picture.at(x, y);
        if (word == 0)
            return before;
        const q_ulong light = hasBytes ? word & 0xFF : word & 0xFFFF, whole = hasBytes ? 255 : 279;
        const q_ulong highlight = hasBytes ? word >> 8 & 0xFF : word >> 16;
        q_ulong lit = 0;
        for (const int shift : {16, 8, 0})
            lit = lit << 8 | std::min<q_ulong>((before >> shift & 0xFF) * light / whole + highlight, 255);
        return lit;
    });
}

/// What a block points to.
void drawStorage(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    row.functions.library(call)();
    const auto &data = call["data"].get<RegionBlock>().data;
    sheet.frame({20, 20, 170, stageHeight - 20}, quiet);
    sheet.text(30, 26, "_PRIVATE_QMGP_DATA", quiet, 12);
    const std::pair<const char *, const void *> fields[] = {{"plane", data.plane},
                                                            {"planeRect", data.planeRect},
                                                            {"destSurface", data.destSurface},
                                                            {"testSurface", data.testSurface}};
    const int pitches[] = {data.planePitch, 0, data.destPitch, data.testPitch};
    int y = 52;
    for (std::size_t i = 0; i < std::size(fields); ++i, y += 38) {
        const auto &[name, pointer] = fields[i];
        sheet.text(34, y, name, pointer ? bright : faint);
        if (!pointer)
            continue;
        sheet.arrow(-40, y + 8 - stageHeight / 2.0, 14, y + 8 - stageHeight / 2.0, bright);
        sheet.frame({222, y - 6, 370, y + 22}, bright);
        sheet.text(230, y, std::string(name) + (pitches[i] ? ", pitch " + std::to_string(pitches[i]) : ""), 0xC8D0DC,
                   12);
    }
}

void drawRecord(const Sheet &sheet, const _TRANSFERDATA &data, int top, const char *when) {
    sheet.text(12, top,
               std::string(when) + ":  memoryUsedFlag " + std::to_string(data.memoryUsedFlag) + ",  blockCount " +
                   std::to_string(data.blockCount),
               0xC8D0DC, 13);
    for (int i = 0; i < 16; ++i) {
        const tagRECT box = {12 + i * 23, top + 22, 32 + i * 23, top + 56};
        const MemoryBlock *block = data.blocks[i];
        bool isZero = block != nullptr;
        for (q_ulong byte = 0; block && byte < std::min<q_ulong>(block->size, 256); ++byte)
            isZero = isZero && static_cast<const unsigned char *>(block->start)[byte] == 0;
        if (block)
            sheet.box(box, isZero ? hues[0] : bright);
        sheet.frame(box, quiet);
        sheet.text(15 + i * 23, top + 60, std::to_string(i), quiet, 11);
    }
    std::string sizes;
    for (const MemoryBlock *block : data.blocks)
        if (block)
            sizes += std::to_string(block->size) + "  ";
    sheet.text(12, top + 76, sizes.empty() ? "no block" : "bytes: " + sizes, quiet, 12);
}

/// The host's record before and after, with the blocks of its slots.
void drawRecords(const Sheet &sheet, const Row &row, const Scene &scene) {
    Call call = callAt(row, scene, 0.5);
    _TRANSFERDATA data{};
    TransferFrameGeometry geometry{};
    geometry.planeElements = stageWidth * stageHeight;
    TransferLimits3D limits{0, 0, 4096, 4};
    data.frameGeometry = &geometry;
    data.limits3D = &limits;
    const bool takesSlot = row.argument("slot") != nullptr;
    const bool needsBlock = row.name == "ClearMemory";
    const int filled = takesSlot ? needsBlock ? 3 : 2 : 3;
    for (int slot = 0; slot < filled; ++slot)
        if (void *memory = FindNotUsedMemory(&data, slot, 4096))
            std::memset(memory, 0x55, 4096);
    data.memoryUsedFlag = row.name == "BeginMemoryManager" ? 1 : 0;
    if (takesSlot)
        call["slot"] = needsBlock ? 1 : filled;
    drawRecord(sheet, data, 14, "before");
    call[0] = Plane::of(data);
    row.functions.library(call)();
    auto &after = *call[0].plane().as<_TRANSFERDATA>();
    drawRecord(sheet, after, 118, "after");
    DeleteMemoryBlocks(&after);
}

/// Sines, cosines and roots over the whole of the tables.
void drawTables(const Sheet &sheet, const Row &row, const Scene &scene, double time) {
    Call call = callAt(row, scene, time);
    row.functions.library(call)();
    axes(sheet);
    const auto curve = [&](const int *table, double unit, double base, q_ulong colour) {
        for (int x = 1; x < stageWidth; ++x) {
            const auto at = [&](int column) { return base - 90 * table[column * 8191 / stageWidth] / unit; };
            sheet.line(x - 1 - stageWidth / 2.0, at(x - 1), x - stageWidth / 2.0, at(x), colour, 2);
        }
    };
    curve(iSin, 32768, 0, bright);
    curve(iCos, 32768, 0, hues[0]);
    curve(iSqrt, 1024.0 * 91, 100, hues[1]);
    sheet.text(90, 8, "iSin", bright);
    sheet.text(8, 8, "iCos", hues[0]);
    sheet.text(330, 132, "iSqrt", hues[1]);
    sheet.text(8, stageHeight - 20, std::string(row.name), quiet, 12);
}

/// How often each number comes.
void drawDistribution(const Sheet &sheet, const Row &row, const Scene &scene) {
    constexpr int bins = 40, draws = 40000;
    Call call = callAt(row, scene, 0.5);
    const auto run = row.functions.library(call);
    const double low = row.argument("low") ? call["low"].number() : -3;
    const double high = row.argument("high") ? call["high"].number() : 3;
    std::vector<int> counts(bins);
    std::srand(1);
    std::vector<double> first;
    for (int i = 0; i < draws; ++i) {
        run();
        const double drawn = row.name.find("Float") != std::string_view::npos
                                 ? static_cast<double>(call.returned<float>())
                             : row.name.find("Double") != std::string_view::npos ? call.returned<double>()
                                                                                 : call.returned<int>();
        if (first.size() < 6)
            first.push_back(drawn);
        ++counts[static_cast<std::size_t>(
            std::clamp(static_cast<int>((drawn - low) / (high - low) * bins), 0, bins - 1))];
    }
    const int most = *std::max_element(counts.begin(), counts.end());
    for (int i = 0; i < bins; ++i) {
        const int height = 160 * counts[static_cast<std::size_t>(i)] / most;
        if (height > 0)
            sheet.box({20 + i * 9, 190 - height, 28 + i * 9, 190}, bright);
    }
    sheet.text(20, 194, numberText(low), quiet, 13);
    sheet.text(356, 194, numberText(high), quiet, 13);
    std::string text;
    for (const double number : first)
        text += numberText(number) + "  ";
    sheet.text(20, 6, text + "...", 0xC8D0DC, 13);
    sheet.text(20, 208, std::string(row.name), quiet, 11);
}

/// One square for each colour that is drawn.
void drawColours(const Sheet &sheet, const Row &row, const Scene &scene) {
    Call call = callAt(row, scene, 0.5);
    const auto run = row.functions.library(call);
    std::srand(1);
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 16; ++x) {
            run();
            sheet.box({x * 25 + 1, y * 25 + 1, x * 25 + 24, y * 25 + 24}, call.returned<q_ulong>() & 0xFFFFFF);
        }
}

} // namespace

Sheet::Sheet() : surface(Plane::surface(stageWidth, stageHeight, background)) {}

void Sheet::line(double x1, double y1, double x2, double y2, q_ulong colour, int width) const {
    tagRECT clip = surface.rect();
    const auto place = [](double from, int middle) {
        return static_cast<int>(std::lround(std::clamp(from, -9000.0, 9000.0))) + middle;
    };
    iLine_AntiAliasing(surface.as<q_ulong>(), &clip, surface.pitch(), place(x1, stageWidth / 2),
                       place(y1, stageHeight / 2), place(x2, stageWidth / 2), place(y2, stageHeight / 2), colour,
                       width);
}

void Sheet::dot(double x, double y, int radius, q_ulong colour) const {
    tagRECT clip = surface.rect();
    iFill_Circle_Safe(surface.as<q_ulong>(), &clip, surface.pitch(),
                      static_cast<int>(std::lround(std::clamp(x, -9000.0, 9000.0))) + stageWidth / 2,
                      static_cast<int>(std::lround(std::clamp(y, -9000.0, 9000.0))) + stageHeight / 2, radius, colour);
}

void Sheet::arrow(double x1, double y1, double x2, double y2, q_ulong colour) const {
    line(x1, y1, x2, y2, colour, 2);
    const double length = std::hypot(x2 - x1, y2 - y1);
    if (length < 1)
        return;
    const double dx = (x2 - x1) / length * 9, dy = (y2 - y1) / length * 9;
    line(x2, y2, x2 - dx - 0.5 * dy, y2 - dy + 0.5 * dx, colour, 2);
    line(x2, y2, x2 - dx + 0.5 * dy, y2 - dy - 0.5 * dx, colour, 2);
}

void Sheet::text(int x, int y, const std::string &text, q_ulong colour, int height) const {
    if (writeInstead)
        return writeInstead(x, y, text, colour, height);
    tagRECT clip = surface.rect();
    std::string copy = text, font = "DejaVu Sans";
    // Colours of texts have red and blue the other way round.
    const q_ulong turned = (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
    iTextOut(surface.as<q_ulong>(), &clip, surface.pitch(), copy.data(), turned, x, y, height, font.data());
}

void Sheet::box(const tagRECT &rect, q_ulong colour) const {
    const int left = std::max<int>(rect.left, 0), top = std::max<int>(rect.top, 0);
    tagRECT inside = {left, top, std::min<int>(rect.right, stageWidth), std::min<int>(rect.bottom, stageHeight)};
    iFillRect(surface.as<q_ulong>(), &inside, surface.pitch(), colour);
}

void Sheet::frame(const tagRECT &rect, q_ulong colour) const {
    box({rect.left, rect.top, rect.right, rect.top + 1}, colour);
    box({rect.left, rect.bottom - 1, rect.right, rect.bottom}, colour);
    box({rect.left, rect.top, rect.left + 1, rect.bottom}, colour);
    box({rect.right - 1, rect.top, rect.right, rect.bottom}, colour);
}

bool isInSpace(const Row &row) {
    switch (row.figure) {
    case Figure::vectors:
    case Figure::matrix:
    case Figure::projection:
        return true;
    case Figure::transform:
        return row.argument("p") && !row.argument("distance");
    default:
        return false;
    }
}

Plane figureOf(const Row &row, const Scene &scene, double time) {
    const Sheet sheet;
    switch (row.figure) {
    case Figure::transform:
        drawTransform(sheet, row, scene, time);
        break;
    case Figure::vectors:
        drawVectors(sheet, row, scene, time);
        break;
    case Figure::grid:
    case Figure::litGrid:
        drawGrid(sheet, row, scene, time, row.figure == Figure::litGrid);
        break;
    case Figure::side:
        drawSide(sheet, row, scene, time);
        break;
    case Figure::scan:
        drawScan(sheet, row, scene, time);
        break;
    case Figure::search:
        drawSearch(sheet, row, scene, time);
        break;
    case Figure::matrix:
        drawMatrix(sheet, row, scene, time);
        break;
    case Figure::projection:
        drawProjection(sheet, row, scene, time);
        break;
    case Figure::depths:
        return depthsAfter(row, scene, time);
    case Figure::relief:
        return reliefAfter(row, scene, time);
    case Figure::storage:
        drawStorage(sheet, row, scene, time);
        break;
    case Figure::record:
        drawRecords(sheet, row, scene);
        break;
    case Figure::tables:
        drawTables(sheet, row, scene, time);
        break;
    case Figure::distribution:
        drawDistribution(sheet, row, scene);
        break;
    case Figure::colours:
        drawColours(sheet, row, scene);
        break;
    case Figure::none:
    case Figure::nothing:
        sheet.text(24, 84, std::string(row.name), bright, 18);
        sheet.text(24, 116, std::string(row.sentence), 0xC8D0DC, 14);
    }
    return sheet.plane();
}

} // namespace gallery
