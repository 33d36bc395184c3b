#include "plain/math3d.h"

#include "areas.h"
#include "arguments.h"

#include <limits>

namespace catalogue {
namespace {

constexpr Range finite = {-std::numeric_limits<float>::max(), std::numeric_limits<float>::max()};

// Arguments

Argument coordinate(std::string_view name) {
    return {.name = name, .kind = Kind::numbers, .unit = "units"};
}
Argument ownPoints(std::string_view name, std::string_view unit = "units") {
    return {.name = name, .kind = Kind::points, .unit = unit};
}
Argument whole(std::string_view name, Range drawn = {0, 0}) {
    return number(name, "units", anyInt, drawn);
}
Argument radians(std::string_view name, Range drawn = {0, 6.2831853}) {
    return {.name = name, .kind = Kind::angle, .unit = "radians", .contract = finite, .drawn = drawn};
}
Argument tableAngle(std::string_view name) {
    return {.name = name, .kind = Kind::angle, .unit = "1/65536 turn", .contract = anyShort, .drawn = {0, 65535}};
}
Argument distance() {
    return whole("distance", {240, 240});
}
Argument ownCount(std::string_view name, int fewest) {
    return {.name = name,
            .kind = Kind::count,
            .unit = "points",
            .contract = {static_cast<double>(fewest), 65536},
            .drawn = {64, 64}};
}
Argument length(std::string_view name) {
    return {.name = name, .kind = Kind::extent, .unit = "units"};
}
Argument factor(std::string_view name, Range drawn) {
    return {.name = name, .kind = Kind::scale, .unit = "1", .contract = finite, .drawn = drawn};
}

// What calls read and write: single coordinates, or x, y and z of a point. The fourth word belongs to nobody.

constexpr Box one = {0, 0, 1, 1};
constexpr Box xy = {0, 0, 2, 1};
constexpr Box xyz = {0, 0, 3, 1};

Areas written(const Call &call) {
    Areas areas;
    for (const Argument &argument : call.row().arguments)
        if (argument.kind == Kind::numbers || argument.name == "out" || argument.name == "p")
            areas.push_back({argument.name, argument.kind == Kind::numbers ? one : xyz});
    return areas;
}
Areas read(const Call &call) {
    Areas areas;
    for (const Argument &argument : call.row().arguments)
        if (argument.kind == Kind::numbers)
            areas.push_back({argument.name, one});
        else if (argument.kind == Kind::points && argument.name != "out")
            areas.push_back({argument.name, xyz});
    return areas;
}
Areas xAndY(const Call &) {
    return {{"x", one}, {"y", one}};
}
Areas xAndYOfPoints(const Call &) {
    return {{"p1", xy}, {"p2", xy}, {"p3", xy}};
}

// Random calls

bool isReal(const Call &call, std::size_t index) {
    const std::string_view type = call.row().call.types[index];
    return type.find("int") == std::string_view::npos && type.find("short") == std::string_view::npos &&
           type.find("_POINT3D ") == std::string_view::npos && type.find("_POINT3D*") == std::string_view::npos;
}

/// Random words, those of floats up to about `2^reach` and ints up to `bound`.
struct Words {
    Random &random;
    int reach;
    int bound;

    void fill(Plane &plane, bool real) {
        for (int y = 0; y < plane.height(); ++y)
            for (int x = 0; x < plane.width(); ++x)
                if (real)
                    plane.as<float>()[y * plane.pitch() + x] = random.real(reach);
                else
                    plane.as<int>()[y * plane.pitch() + x] = random.between(-bound, bound);
    }
};

/// Memory for each coordinate and point, and numbers of all sizes.
template <int reach>
void arrangeUpTo(Call &call, Random &random) {
    constexpr int bounds[] = {100, 1000, 70000, std::numeric_limits<int>::max()};
    Words words = {random, reach, bounds[random.between(0, 3)]};
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if (kind == Kind::points || kind == Kind::numbers) {
            Plane plane = kind == Kind::points ? Plane(4, 4, 1) : Plane(4, 1, 1, 1);
            words.fill(plane, isReal(call, i));
            call[i] = plane;
        } else if (kind == Kind::number) {
            call[i] = random.between(-words.bound, words.bound);
        } else if (kind == Kind::angle && isReal(call, i) && !random.oneIn(4)) {
            call[i] = random.real(4);
        }
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

void drawPoint(Call &call, const Stage &stage) {
    if (stage.call > 0)
        return;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const Kind kind = call.row().arguments[i].kind;
        if (kind != Kind::points && kind != Kind::numbers)
            continue;
        const int from = static_cast<int>(i) * 37 % 101;
        const int words[] = {from + 60, from * from % 89 - 40, 25 - from, 0};
        const float reals[] = {static_cast<float>(words[0]), static_cast<float>(words[1]), static_cast<float>(words[2]),
                               0};
        call[i] = isReal(call, i) ? Plane::of(reals) : Plane::of(words);
    }
}

/// What most rows have in common: they change or measure single points.
void describePoint(Row &row) {
    if (row.scenes.empty())
        row.scenes = {{.set = drawPoint, .figures = 0.001, .figure = "Mpoints", .calls = 1000}};
    if (!row.arrange)
        row.arrange = arrange;
    const bool isGrid = row.argument("columns");
    if (!row.reads && !isGrid)
        row.reads = read;
    if (!row.writes && row.call.resultType == "void")
        row.writes = written;
}

// Grids

Box gridOf(const Call &call) {
    const std::int64_t columns = call["columns"].whole();
    const std::int64_t rows = call["rows"].whole();
    return columns > 0 && rows > 0 ? boxOf(0, 0, 4 * columns * rows, 1) : Box();
}
Areas grid(const Call &call) {
    return {{"points", gridOf(call)}};
}
Areas gridOut(const Call &call) {
    return {{"out", gridOf(call)}};
}
Areas gridsAB(const Call &call) {
    return {{"a", gridOf(call)}, {"b", gridOf(call)}};
}

/// Grids of random points, and a point behind each.
void arrangeGrids(Call &call, Random &random) {
    arrange(call, random);
    const auto fewest = static_cast<int>(std::max(call.row().argument("columns")->contract.low, -1.0));
    const int columns = random.between(fewest, 5);
    const int rows = random.between(fewest, 5);
    call["columns"] = columns;
    call["rows"] = rows;
    Words words = {random, 10, 0};
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].kind == Kind::points) {
            call[i] = Plane(4, 4 * (std::max(columns, 0) * std::max(rows, 0) + 1), 1);
            words.fill(call[i].plane(), true);
        } else if (call.row().arguments[i].kind == Kind::extent) {
            call[i] = random.between(-20, 500);
        } else if (call.row().arguments[i].kind == Kind::scale) {
            call[i] = random.real(2);
        }
}

void drawGrids(Call &call, const Stage &) {
    int made = 0;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (call.row().arguments[i].kind == Kind::points) {
            Plane plane(4, 4 * 64 * 64, 1);
            for (int word = 0; word < plane.width(); ++word)
                plane.as<float>()[word] = static_cast<float>(word * (made + 3) % 211);
            call[i] = plane;
            ++made;
        }
}
const std::vector<Scene> oneGrid = {{.set = drawGrids, .figures = 64 * 64 * 1e-6, .figure = "Mpoints"}};

std::vector<Argument> gridArguments(std::string_view width) {
    return {ownPoints("points", "pixels"),
            ownCount("columns", 2),
            ownCount("rows", 2),
            factor("scale", {0.5, 1}),
            radians("angleX"),
            radians("angleY"),
            radians("angleZ"),
            whole("offsetX", {350, 350}),
            whole("offsetY", {350, 350}),
            whole("offsetZ"),
            distance(),
            width == "width" ? length(width) : unused(width),
            length("height")};
}

} // namespace

std::vector<Row> math3dRows() {
    std::vector<Row> rows = {
        {Q_MUR_OVERLOAD(fRotate3DByX, void(float *, float *, float)), .sentence = "Turns (y, z) about X.",
         .arguments = {coordinate("a"), coordinate("b"), radians("angle")}},
        {Q_MUR_OVERLOAD(fRotate3DByX, void(float *, float *, float, int)), .word = "centre",
         .sentence = "Turns (y, z) about an axis along X.",
         .arguments = {coordinate("a"), coordinate("b"), radians("angle"), whole("centre")}},
        {Q_MUR_OVERLOAD(fRotate3DByY, void(float *, float *, float)), .sentence = "Turns (x, z) about Y.",
         .arguments = {coordinate("a"), coordinate("b"), radians("angle")}},
        {Q_MUR_OVERLOAD(fRotate3DByY, void(float *, float *, float, int)), .word = "centre",
         .sentence = "Turns (x, z) about an axis along Y.",
         .arguments = {coordinate("a"), coordinate("b"), radians("angle"), whole("centre")}},
        {Q_MUR_OVERLOAD(fRotate3DByZ, void(float *, float *, float)), .sentence = "Turns (x, y) about Z.",
         .arguments = {coordinate("a"), coordinate("b"), radians("angle")}},
        {Q_MUR_OVERLOAD(fRotate3DByZ, void(float *, float *, float, int, int)), .word = "centre",
         .sentence = "Turns (x, y) about an axis along Z.",
         .arguments = {coordinate("a"), coordinate("b"), radians("angle"), whole("centreA"), whole("centreB")}},
        {Q_MUR_OVERLOAD(iRotate3DByX, void(int *, int *, unsigned short)), .sentence = "Turns (y, z) about X.",
         .arguments = {coordinate("a"), coordinate("b"), tableAngle("angle")}},
        {Q_MUR_OVERLOAD(iRotate3DByX, void(int *, int *, unsigned short, int)), .word = "centre",
         .sentence = "Turns (y, z) about an axis along X.",
         .arguments = {coordinate("a"), coordinate("b"), tableAngle("angle"), whole("centre")}},
        {Q_MUR_OVERLOAD(iRotate3DByY, void(int *, int *, unsigned short)), .sentence = "Turns (x, z) about Y.",
         .arguments = {coordinate("a"), coordinate("b"), tableAngle("angle")}},
        {Q_MUR_OVERLOAD(iRotate3DByY, void(int *, int *, unsigned short, int)), .word = "centre",
         .sentence = "Turns (x, z) about an axis along Y.",
         .arguments = {coordinate("a"), coordinate("b"), tableAngle("angle"), whole("centre")}},
        {Q_MUR_OVERLOAD(iRotate3DByZ, void(int *, int *, unsigned short)), .sentence = "Turns (x, y) about Z.",
         .arguments = {coordinate("a"), coordinate("b"), tableAngle("angle")}},
        {Q_MUR_OVERLOAD(iRotate3DByZ, void(int *, int *, unsigned short, int, int)), .word = "centre",
         .sentence = "Turns (x, y) about an axis along Z.",
         .arguments = {coordinate("a"), coordinate("b"), tableAngle("angle"), whole("centreA"), whole("centreB")}},
        {Q_MUR_OVERLOAD(fRotate3D, void(float *, float *, float *, float, float, float)),
         .sentence = "Turns a point about X, then Y, then Z.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), radians("angleX"), radians("angleY"),
                       radians("angleZ")}},
        {Q_MUR_OVERLOAD(iRotate3D, void(int *, int *, int *, unsigned short, unsigned short, unsigned short)),
         .sentence = "Turns a point about X, then Y, then Z.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), tableAngle("angleX"), tableAngle("angleY"),
                       tableAngle("angleZ")}},
        {Q_MUR_OVERLOAD(fRotate3D, void(_POINT3DFLOAT *, _POINT3DFLOAT *, _POINT3DFLOAT *, float)), .word = "line",
         .sentence = "Turns a point about the line through two others.",
         .arguments = {ownPoints("p"), ownPoints("a"), ownPoints("q"), radians("angle")}, .arrange = arrangeLine},
        {Q_MUR_OVERLOAD(iRotate3D, void(_POINT3D *, _POINT3D *, _POINT3D *, unsigned short)), .word = "line",
         .sentence = "Turns a point about the line through two others.",
         .arguments = {ownPoints("p"), ownPoints("a"), ownPoints("q"), tableAngle("angle")}, .arrange = arrangeLine},
        {Q_MUR_FUNCTION(fMove3D), .sentence = "Adds three ints to a point.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), whole("dx", {-9, 9}), whole("dy", {9, -9}),
                       whole("dz", {-9, 9})}},
        {Q_MUR_FUNCTION(iMove3D), .sentence = "Adds three ints to a point.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), whole("dx", {-9, 9}), whole("dy", {9, -9}),
                       whole("dz", {-9, 9})}},
        {Q_MUR_OVERLOAD(fConvertReal2Viewport, void(float *, float *, float *, int)), .sentence = "Projects a point.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), distance()}, .writes = xAndY},
        {Q_MUR_OVERLOAD(fConvertReal2Viewport, void(float *, float *, float *, int, int, int)), .word = "centre",
         .sentence = "Projects a point about a centre.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), whole("centreX"), whole("centreY"),
                       distance()},
         .writes = xAndY},
        {Q_MUR_OVERLOAD(iConvertReal2Viewport, void(int *, int *, int *, int)), .sentence = "Projects a point.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), distance()}, .writes = xAndY},
        {Q_MUR_OVERLOAD(iConvertReal2Viewport, void(int *, int *, int *, int, int, int)), .word = "centre",
         .sentence = "Projects a point about a centre.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), whole("centreX"), whole("centreY"),
                       distance()},
         .writes = xAndY},
        {Q_MUR_FUNCTION(fMapping3D), .sentence = "Brings a point to the screen: turns, moves and projects it.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), radians("angleX"), radians("angleY"),
                       radians("angleZ"), whole("offsetX"), whole("offsetY"), whole("offsetZ"), distance()}},
        {Q_MUR_FUNCTION(iMapping3D), .sentence = "Brings a point to the screen: turns, moves and projects it.",
         .arguments = {coordinate("x"), coordinate("y"), coordinate("z"), tableAngle("angleX"), tableAngle("angleY"),
                       tableAngle("angleZ"), whole("offsetX"), whole("offsetY"), whole("offsetZ"), distance()}},
        {Q_MUR_FUNCTION(DotProduct), .sentence = "Gives the dot product of two vectors.",
         .arguments = {ownPoints("a"), ownPoints("b")}},
        {Q_MUR_FUNCTION(fDot_Product), .sentence = "Gives the dot product of two vectors, with the body of DotProduct.",
         .arguments = {ownPoints("a"), ownPoints("b")}},
        {Q_MUR_FUNCTION(iDot_Product), .sentence = "Gives the dot product of two vectors in 32 bits.",
         .arguments = {ownPoints("a"), ownPoints("b")}, .sums = Sums::wrap},
        {Q_MUR_FUNCTION(CrossProduct), .sentence = "Gives the cross product of two vectors.",
         .arguments = {ownPoints("a"), ownPoints("b")}},
        {Q_MUR_FUNCTION(fCross_Product), .sentence = "Stores the cross product of two vectors.",
         .arguments = {ownPoints("out"), ownPoints("a"), ownPoints("b")}},
        {Q_MUR_FUNCTION(iCross_Product), .sentence = "Stores the cross product of two vectors in 32 bits.",
         .arguments = {ownPoints("out"), ownPoints("a"), ownPoints("b")}, .sums = Sums::wrap},
        {Q_MUR_OVERLOAD(Magnitude, float(_I3DVECTOR &)), .sentence = "Gives the length of a vector.",
         .arguments = {ownPoints("v")}, .arrange = arrangeUpTo<100>},
        {Q_MUR_OVERLOAD(Magnitude, float(_POINT3DFLOAT *)), .word = "point",
         .sentence = "Gives the length of a vector, with the same body.", .arguments = {ownPoints("v")},
         .arrange = arrangeUpTo<100>},
        {Q_MUR_OVERLOAD(Normalize, _I3DVECTOR(_I3DVECTOR &)), .sentence = "Brings a vector to length 1.",
         .arguments = {ownPoints("v")}, .arrange = arrangeUpTo<100>},
        {Q_MUR_OVERLOAD(Normalize, _POINT3DFLOAT(_POINT3DFLOAT *)), .word = "point",
         .sentence = "Brings a vector to length 1, with the same body.", .arguments = {ownPoints("v")},
         .arrange = arrangeUpTo<100>},
        {Q_MUR_FUNCTION(fBubSun), .sentence = "Gives the unit normal of a face.",
         .arguments = {ownPoints("out"), ownPoints("p1"), ownPoints("p2"), ownPoints("p3")}, .arrange = arrangeFace},
        {Q_MUR_FUNCTION(iBubSun), .sentence = "Gives the normal of a face, of length 256.",
         .arguments = {ownPoints("out"), ownPoints("p1"), ownPoints("p2"), ownPoints("p3")}, .arrange = arrangeFace},
        {Q_MUR_FUNCTION(IsFront), .sentence = "Tells whether three projected points run clockwise.",
         .arguments = {ownPoints("p1"), ownPoints("p2"), ownPoints("p3")}, .reads = xAndYOfPoints,
         .arrange = arrangeFace},
        {Q_MUR_FUNCTION(fMean2Vector), .sentence = "Gives the mean of two points.",
         .arguments = {ownPoints("a"), ownPoints("b")}},
        {Q_MUR_FUNCTION(fMean4Vector), .sentence = "Gives the mean of four points.",
         .arguments = {ownPoints("a"), ownPoints("b"), ownPoints("c"), ownPoints("d")}},
        {Q_MUR_FUNCTION(iMean2Vector), .sentence = "Gives the mean of two points, rounded down.",
         .arguments = {ownPoints("a"), ownPoints("b")}},
        {Q_MUR_FUNCTION(iMean4Vector), .sentence = "Gives the mean of four points, rounded down.",
         .arguments = {ownPoints("a"), ownPoints("b"), ownPoints("c"), ownPoints("d")}},
        {Q_MUR_FUNCTION(Flat3D), .sentence = "Makes a flat grid of points on the screen.",
         .arguments = gridArguments("width"), .writes = grid, .arrange = arrangeGrids, .scenes = oneGrid},
        {Q_MUR_FUNCTION(Post3D), .sentence = "Makes a cylinder of points on the screen.",
         .arguments = gridArguments("unusedWidth"), .writes = grid, .arrange = arrangeGrids, .scenes = oneGrid},
        {Q_MUR_FUNCTION(Interpolate3DPoint), .sentence = "Blends two grids of points.",
         .arguments = {ownPoints("out"), ownPoints("a"), ownPoints("b"),
                       ownCount("columns", std::numeric_limits<int>::min()),
                       ownCount("rows", std::numeric_limits<int>::min()), factor("t", {0, 1})},
         .writes = gridOut, .reads = gridsAB, .arrange = arrangeGrids, .scenes = oneGrid},
    };
    for (Row &row : rows)
        describePoint(row);
    return rows;
}

} // namespace catalogue
