#include "plain/math3d.h"

#include "areas.h"
#include "arguments.h"

#include <limits>

namespace catalogue {
namespace {

constexpr Range finite = {-std::numeric_limits<float>::max(), std::numeric_limits<float>::max(), true};

// Arguments

Argument whole(std::string_view name, Way inScene = {0, 0}) {
    return number(name, "units", anyInt, inScene);
}
Argument radians(std::string_view name) {
    return angle(name, finite);
}
Argument tableAngle(std::string_view name) {
    return {.name = name, .kind = Kind::angle, .unit = "1/65536 turn", .contract = anyShort, .inScene = {0, 65535}};
}
Argument distance() {
    return whole("distance", {240, 240});
}
Argument length(std::string_view name) {
    Argument argument = extent(name, "");
    argument.unit = "units";
    return argument;
}
Argument point(std::string_view name) {
    return points(name, "units");
}
const Arguments ab = each({"a", "b"}, numbers("", "units"));
const Arguments xyz = each({"x", "y", "z"}, numbers("", "units"));
const Arguments vectors = each({"a", "b"}, point(""));
const Arguments face = each({"p1", "p2", "p3"}, point(""));
const Arguments radiansOfAxes = each({"angleX", "angleY", "angleZ"}, radians(""));
const Arguments tableAnglesOfAxes = each({"angleX", "angleY", "angleZ"}, tableAngle(""));
const Arguments offsets = each({"offsetX", "offsetY", "offsetZ"}, whole(""));
const Arguments steps = {whole("dx", {-9, 9}), whole("dy", {9, -9}), whole("dz", {-9, 9})};
const Arguments centre = {whole("centreX", {-60, -60}), whole("centreY", {30, 30})};
/// Columns and rows of a grid, so many at the fewest.
Arguments gridSize(double fewest) {
    const Argument size = count("", "points", {fewest, 65536, true}, {64, 64});
    return each({"columns", "rows"}, fewest > 0 ? idle(size, {anyInt.low, 0}) : size);
}

// What calls read and write: single coordinates, or x, y and z of a point. The fourth word belongs to nobody.

Areas written(const Call &call) {
    Areas areas;
    for (const Argument &argument : call.row().arguments)
        if (argument.kind == Kind::numbers || argument.name == "out" || argument.name == "p")
            areas.push_back(words(argument.name, argument.kind == Kind::numbers ? 1 : 3));
    return areas;
}
Areas read(const Call &call) {
    Areas areas;
    for (const Argument &argument : call.row().arguments)
        if (argument.kind == Kind::numbers || (argument.kind == Kind::points && argument.name != "out"))
            areas.push_back(words(argument.name, argument.kind == Kind::numbers ? 1 : 3));
    return areas;
}
const Region xAndY = always({words("x", 1), words("y", 1)});
const Region xAndYOfPoints = always({words("p1", 2), words("p2", 2), words("p3", 2)});

// Random calls

bool isFloatMemory(const Call &call, std::size_t index) {
    return call.row().functions.types[index] == Type::reals;
}

/// Fills memory with random floats up to about `2^reach` or ints up to `bound`.
Plane randomWords(Random &random, const Plane &plane, bool areReal, int reach, int bound) {
    return areReal ? plane.fill<float>(plane.rect(), [&](int, int) { return random.real(reach); })
                   : plane.fill<int>(plane.rect(), [&](int, int) { return random.between(-bound, bound); });
}

/// Memory for each coordinate and point, and numbers of all sizes.
template <int reach>
void arrangeUpTo(Call &call, Random &random) {
    constexpr int bounds[] = {100, 1000, 70000, std::numeric_limits<int>::max()};
    const int bound = bounds[random.between(0, 3)];
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if (kind == Kind::points || kind == Kind::numbers)
            call[i] = randomWords(random, kind == Kind::points ? Plane(4, 4, 1) : Plane(4, 1, 1, 1),
                                  isFloatMemory(call, i), reach, bound);
        else if (kind == Kind::number)
            call[i] = random.between(-bound, bound);
        else if (kind == Kind::angle && call.row().isReal(i) && !random.oneIn(4))
            call[i] = random.real(4);
    }
}
constexpr auto arrange = arrangeUpTo<10>;

/// At times two of the points lie in one place.
void arrangeFace(Call &call, Random &random) {
    arrange(call, random);
    if (random.oneIn(10))
        call["p3"].restore(call[random.oneIn(2) ? "p1" : "p2"]);
}
void arrangeLine(Call &call, Random &random) {
    arrange(call, random);
    if (random.oneIn(16))
        call["q"].restore(call["a"]);
}

// Scenes: one point that is moved again and again, a thousand times.

void setPoint(Call &call, const Stage &stage) {
    if (stage.call > 0)
        return;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if (kind != Kind::points && kind != Kind::numbers)
            continue;
        const int from = static_cast<int>(i) * 37 % 101;
        const int wholes[] = {from + 60, from * from % 89 - 40, 25 - from, 0};
        call[i] = isFloatMemory(call, i) ? Plane::array<float>(4, [&](int k) { return static_cast<float>(wholes[k]); })
                                         : Plane::of(wholes);
    }
}

/// The first of the points turns, the others stand still; one that is alone grows longer.
void setVectors(Call &call, const Stage &stage) {
    constexpr int others[][3] = {{70, 30, 0}, {-60, 50, 30}, {-30, -70, -40}};
    const double angle = fullTurn * stage.time;
    const bool isAlone = call.size() == 1;
    const double length = isAlone ? 25 + 80 * stage.time : 80;
    int met = 0;
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (call.row().arguments[i].kind != Kind::points)
            continue;
        const bool isFirst = met == 0 || call.row().arguments[i].name == "out";
        const int turning[] = {static_cast<int>(length * std::cos(angle)), static_cast<int>(-length * std::sin(angle)),
                               20};
        const int *from = isFirst ? turning : others[met - 1];
        const auto word = [from](int k) { return k < 3 ? from[k] : 0; };
        call[i] = isFloatMemory(call, i) ? Plane::array<float>(4, [&](int k) { return static_cast<float>(word(k)); })
                                         : Plane::array<int>(4, word);
        met += call.row().arguments[i].name != "out";
    }
}
/// An axis that leans.
void setAxis(Call &call, const Stage &) {
    constexpr int ends[][4] = {{0, 0, 0, 0}, {-50, -80, 0, 0}, {50, 80, 0, 0}};
    for (std::size_t i = 0; i < 3; ++i)
        call[i] = isFloatMemory(call, i) ? Plane::array<float>(4, [&](int k) { return static_cast<float>(ends[i][k]); })
                                         : Plane::of(ends[i]);
}

/// What most rows have in common: they change or measure single points.
void describePoint(Row &row) {
    if (row.scenes.empty())
        row.scenes = {{.set = setPoint, .figures = 1000, .figure = "Mpoints", .calls = 1000}};
    if (!row.arrange)
        row.arrange = arrange;
    const bool isGrid = row.argument("columns");
    const bool makesVector = row.functions.hasResult || row.argument("out");
    row.figure = isGrid ? Figure::grid : makesVector ? Figure::vectors : Figure::transform;
    if (row.figure == Figure::vectors)
        row.picture = Scene{.set = setVectors};
    else if (row.argument("q"))
        row.picture = Scene{.set = setAxis};
    row.readsTables = std::any_of(row.arguments.begin(), row.arguments.end(),
                                  [](const Argument &argument) { return argument.unit == tableAngle("").unit; });
    if (!row.reads && !isGrid)
        row.reads = read;
    if (!row.writes && !row.functions.hasResult)
        row.writes = written;
}

// Grids

Box gridBox(const Call &call) {
    const std::int64_t columns = call["columns"].whole();
    const std::int64_t rows = call["rows"].whole();
    return columns > 0 && rows > 0 ? boxOf(0, 0, 4 * columns * rows, 1) : Box();
}

/// Grids of random points, and a point behind each.
void arrangeGrids(Call &call, Random &random) {
    arrange(call, random);
    const auto fewest = static_cast<int>(std::max(call.row().argument("columns")->contract.low, -1.0));
    const int columns = random.between(fewest, 5);
    const int rows = random.between(fewest, 5);
    call.set({{"columns", columns}, {"rows", rows}});
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if (kind == Kind::points)
            call[i] = randomWords(random, Plane(4, 4 * (std::max(columns, 0) * std::max(rows, 0) + 1), 1), true, 10, 0);
        else if (kind == Kind::extent)
            call[i] = random.between(-20, 500);
        else if (kind == Kind::scale)
            call[i] = random.real(2);
    }
}

void setGrids(Call &call, const Stage &) {
    int made = 3;
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (call.row().arguments[i].kind != Kind::points)
            continue;
        call[i] = Plane::array<float>(4 * 64 * 64, [made](int word) { return static_cast<float>(word * made % 211); });
        ++made;
    }
}

/// A flat sheet on the screen that becomes a wave.
void setSheets(Call &call, const Stage &stage) {
    int made = 0;
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (call.row().arguments[i].kind != Kind::points)
            continue;
        call[i] = Plane::array<float>(4 * 64 * 64, [&](int word) {
            const double u = word / 4 % 64 / 63.0;
            const double v = word / 4 / 64 / 63.0;
            const double wave = made < 2 ? 0 : 0.25 * std::sin(fullTurn * u);
            const double x = made < 2 ? 0.2 + 0.6 * u : 0.3 + 0.4 * u;
            return static_cast<float>(word % 4 == 0   ? stage.width * x
                                      : word % 4 == 1 ? stage.height * (0.2 + 0.6 * v * (1 - 0.3 * made * u) + wave)
                                                      : 0);
        });
        ++made;
    }
    if (call.row().argument("angleX")) {
        call.set({{"scale", 0.5}, {"distance", 400}, {"offsetX", stage.width / 2}, {"offsetY", stage.height / 2}});
        call.set({{"angleX", 0.5}, {"angleY", fullTurn * stage.time}, {"angleZ", 0}});
        call["height"] = stage.height;
        if (call.row().argument("width"))
            call["width"] = stage.width;
    }
}

Row grid(Row row) {
    row.picture = Scene{.set = setSheets};
    row.arrange = arrangeGrids;
    row.scenes = {{.set = setGrids, .figures = 64 * 64, .figure = "Mpoints"}};
    return row;
}
/// A grid on the screen, whose width means something or nothing.
Row projectedGrid(const Argument &width, Row row) {
    row.arguments = points("points") + gridSize(2) + scale("scale", finite, {0.5, 1}) + radiansOfAxes +
                    each({"offsetX", "offsetY"}, whole("", {350, 350})) + whole("offsetZ") + distance() + width +
                    length("height");
    row.writes = on("points", gridBox);
    return grid(std::move(row));
}

template <class Number, class Angle, class... Centre>
using Turn = void(Number *, Number *, Angle, Centre...);
template <class Number, class... Centre>
using Projection = void(Number *, Number *, Number *, Centre..., int);

} // namespace

std::vector<Row> math3dRows() {
    std::vector<Row> rows = {
        {Q_MUR_OVERLOAD(fRotate3DByX, Turn<float, float>), .sentence = "Turns (y, z) about X.",
         .arguments = ab + radians("angle")},
        {Q_MUR_OVERLOAD(fRotate3DByX, Turn<float, float, int>), .label = "centre",
         .sentence = "Turns (y, z) about an axis along X.",
         .arguments = ab + radians("angle") + whole("centre", {40, 40})},
        {Q_MUR_OVERLOAD(fRotate3DByY, Turn<float, float>), .sentence = "Turns (x, z) about Y.",
         .arguments = ab + radians("angle")},
        {Q_MUR_OVERLOAD(fRotate3DByY, Turn<float, float, int>), .label = "centre",
         .sentence = "Turns (x, z) about an axis along Y.",
         .arguments = ab + radians("angle") + whole("centre", {40, 40})},
        {Q_MUR_OVERLOAD(fRotate3DByZ, Turn<float, float>), .sentence = "Turns (x, y) about Z.",
         .arguments = ab + radians("angle"),
         .looksLike = "Turns as `fRotate3DByX()` does, but other coordinates: x and y."},
        {Q_MUR_OVERLOAD(fRotate3DByZ, Turn<float, float, int, int>), .label = "centre",
         .sentence = "Turns (x, y) about an axis along Z.",
         .arguments = ab + radians("angle") + whole("centreA", {40, 40}) + whole("centreB", {-30, -30})},
        {Q_MUR_OVERLOAD(iRotate3DByX, Turn<int, unsigned short>), .sentence = "Turns (y, z) about X.",
         .arguments = ab + tableAngle("angle")},
        {Q_MUR_OVERLOAD(iRotate3DByX, Turn<int, unsigned short, int>), .label = "centre",
         .sentence = "Turns (y, z) about an axis along X.",
         .arguments = ab + tableAngle("angle") + whole("centre", {40, 40})},
        {Q_MUR_OVERLOAD(iRotate3DByY, Turn<int, unsigned short>), .sentence = "Turns (x, z) about Y.",
         .arguments = ab + tableAngle("angle")},
        {Q_MUR_OVERLOAD(iRotate3DByY, Turn<int, unsigned short, int>), .label = "centre",
         .sentence = "Turns (x, z) about an axis along Y.",
         .arguments = ab + tableAngle("angle") + whole("centre", {40, 40})},
        {Q_MUR_OVERLOAD(iRotate3DByZ, Turn<int, unsigned short>), .sentence = "Turns (x, y) about Z.",
         .arguments = ab + tableAngle("angle"),
         .looksLike = "Turns as `iRotate3DByX()` does, but other coordinates: x and y."},
        {Q_MUR_OVERLOAD(iRotate3DByZ, Turn<int, unsigned short, int, int>), .label = "centre",
         .sentence = "Turns (x, y) about an axis along Z.",
         .arguments = ab + tableAngle("angle") + whole("centreA", {40, 40}) + whole("centreB", {-30, -30})},
        {Q_MUR_OVERLOAD(fRotate3D, void(float *, float *, float *, float, float, float)),
         .sentence = "Turns a point about X, then Y, then Z.", .arguments = xyz + radiansOfAxes},
        {Q_MUR_OVERLOAD(iRotate3D, void(int *, int *, int *, unsigned short, unsigned short, unsigned short)),
         .sentence = "Turns a point about X, then Y, then Z.", .arguments = xyz + tableAnglesOfAxes},
        {Q_MUR_OVERLOAD(fRotate3D, void(_POINT3DFLOAT *, _POINT3DFLOAT *, _POINT3DFLOAT *, float)), .label = "line",
         .sentence = "Turns a point about the line through two others.",
         .arguments = {point("p"), point("a"), point("q"), radians("angle")}, .arrange = arrangeLine},
        {Q_MUR_OVERLOAD(iRotate3D, void(_POINT3D *, _POINT3D *, _POINT3D *, unsigned short)), .label = "line",
         .sentence = "Turns a point about the line through two others.",
         .arguments = {point("p"), point("a"), point("q"), tableAngle("angle")}, .arrange = arrangeLine},
        {Q_MUR_FUNCTION(fMove3D), .sentence = "Adds three ints to a point.", .arguments = xyz + steps},
        {Q_MUR_FUNCTION(iMove3D), .sentence = "Adds three ints to a point.", .arguments = xyz + steps,
         .looksLike = "In whole numbers what `fMove3D()` is in floats."},
        {Q_MUR_OVERLOAD(fConvertReal2Viewport, Projection<float>), .sentence = "Projects a point.",
         .arguments = xyz + distance(), .writes = xAndY},
        {Q_MUR_OVERLOAD(fConvertReal2Viewport, Projection<float, int, int>), .label = "centre",
         .sentence = "Projects a point about a centre.", .arguments = xyz + centre + distance(), .writes = xAndY},
        {Q_MUR_OVERLOAD(iConvertReal2Viewport, Projection<int>), .sentence = "Projects a point.",
         .arguments = xyz + distance(), .writes = xAndY},
        {Q_MUR_OVERLOAD(iConvertReal2Viewport, Projection<int, int, int>), .label = "centre",
         .sentence = "Projects a point about a centre.", .arguments = xyz + centre + distance(), .writes = xAndY},
        {Q_MUR_FUNCTION(fMapping3D), .sentence = "Brings a point to the screen: turns, moves and projects it.",
         .arguments = xyz + radiansOfAxes + offsets + distance()},
        {Q_MUR_FUNCTION(iMapping3D), .sentence = "Brings a point to the screen: turns, moves and projects it.",
         .arguments = xyz + tableAnglesOfAxes + offsets + distance()},
        {Q_MUR_FUNCTION(DotProduct), .sentence = "Gives the dot product of two vectors.", .arguments = vectors},
        {Q_MUR_FUNCTION(fDot_Product), .sentence = "Gives the dot product of two vectors, with the body of DotProduct.",
         .arguments = vectors, .looksLike = "The same body as `DotProduct()`."},
        {Q_MUR_FUNCTION(iDot_Product), .sentence = "Gives the dot product of two vectors in 32 bits.",
         .arguments = vectors, .sums = Sum::wrap, .looksLike = "In whole numbers what `DotProduct()` is in floats."},
        {Q_MUR_FUNCTION(CrossProduct), .sentence = "Gives the cross product of two vectors.", .arguments = vectors},
        {Q_MUR_FUNCTION(fCross_Product), .sentence = "Stores the cross product of two vectors.",
         .arguments = point("out") + vectors, .looksLike = "Stores what `CrossProduct()` gives."},
        {Q_MUR_FUNCTION(iCross_Product), .sentence = "Stores the cross product of two vectors in 32 bits.",
         .arguments = point("out") + vectors, .sums = Sum::wrap,
         .looksLike = "In whole numbers what `fCross_Product()` is in floats."},
        {Q_MUR_OVERLOAD(Magnitude, float(_I3DVECTOR &)), .sentence = "Gives the length of a vector.",
         .arguments = {point("v")}, .arrange = arrangeUpTo<100>},
        {Q_MUR_OVERLOAD(Magnitude, float(_POINT3DFLOAT *)), .label = "point",
         .sentence = "Gives the length of a vector, under the same body as the other Magnitude.",
         .arguments = {point("v")}, .arrange = arrangeUpTo<100>, .looksLike = "Both have one body."},
        {Q_MUR_OVERLOAD(Normalize, _I3DVECTOR(_I3DVECTOR &)), .sentence = "Brings a vector to length 1.",
         .arguments = {point("v")}, .arrange = arrangeUpTo<100>},
        {Q_MUR_OVERLOAD(Normalize, _POINT3DFLOAT(_POINT3DFLOAT *)), .label = "point",
         .sentence = "Brings a vector to length 1, under the same body as the other Normalize.",
         .arguments = {point("v")}, .arrange = arrangeUpTo<100>, .looksLike = "Both have one body."},
        {Q_MUR_FUNCTION(fBubSun), .sentence = "Gives the unit normal of a face.", .arguments = point("out") + face,
         .arrange = arrangeFace},
        {Q_MUR_FUNCTION(iBubSun), .sentence = "Gives the normal of a face, of length 256.",
         .arguments = point("out") + face, .arrange = arrangeFace},
        {Q_MUR_FUNCTION(IsFront), .sentence = "Tells whether three projected points run clockwise.", .arguments = face,
         .reads = xAndYOfPoints, .arrange = arrangeFace},
        {Q_MUR_FUNCTION(fMean2Vector), .sentence = "Gives the mean of two points.", .arguments = vectors},
        {Q_MUR_FUNCTION(fMean4Vector), .sentence = "Gives the mean of four points.",
         .arguments = vectors + point("c") + point("d")},
        {Q_MUR_FUNCTION(iMean2Vector), .sentence = "Gives the mean of two points, rounded down.", .arguments = vectors,
         .looksLike = "In whole numbers what `fMean2Vector()` is in floats."},
        {Q_MUR_FUNCTION(iMean4Vector), .sentence = "Gives the mean of four points, rounded down.",
         .arguments = vectors + point("c") + point("d"),
         .looksLike = "In whole numbers what `fMean4Vector()` is in floats."},
        projectedGrid(length("width"),
                      {Q_MUR_FUNCTION(Flat3D), .sentence = "Makes a flat grid of points on the screen."}),
        projectedGrid(unused("unusedWidth"),
                      {Q_MUR_FUNCTION(Post3D), .sentence = "Makes a cylinder of points on the screen."}),
        grid({Q_MUR_FUNCTION(Interpolate3DPoint), .sentence = "Blends two grids of points.",
              .arguments = point("out") + vectors + gridSize(anyInt.low) + scale("t", finite, {0, 1}),
              .writes = on("out", gridBox), .reads = on("a", gridBox) + on("b", gridBox)}),
    };
    for (Row &row : rows)
        describePoint(row);
    return rows;
}

} // namespace catalogue
