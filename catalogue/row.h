/// \file
/// The catalogue: a row for each exported function, from which proofs, benchmarks and everything else that goes over
/// all functions is made.
#ifndef Q_MUR_CATALOGUE_ROW_H
#define Q_MUR_CATALOGUE_ROW_H

#include "bound.h"
#include "call.h"

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace catalogue {

/// What an argument is for.
enum class Kind {
    destination,  ///< pixels that are drawn into
    source,       ///< pixels that are read
    scratch,      ///< pixels whose content is lost
    plane,        ///< bytes, a plane of 8 bits
    rectangle,    ///< an area of a surface
    clip,         ///< a rectangle beyond which nothing is drawn
    point,        ///< a place on a surface
    position,     ///< a column or a row on a surface
    pitch,        ///< elements from a row of a surface to the next
    extent,       ///< a width or a height
    radius,       ///< or another half extent
    count,        ///< how many
    colour,       ///< 0x00RRGGBB
    key,          ///< a colour that is left out
    weight,       ///< a factor of a channel
    alpha,        ///< how much of the source is seen
    angle,        ///< a turn
    scale,        ///< a factor of a length
    number,       ///< any other number
    choice,       ///< one of a few, or yes and no
    unused,       ///< ignored
    points,       ///< records of coordinates
    colours,      ///< an array of colours
    numbers,      ///< an array of other numbers
    matrix,       ///< 16 floats
    privateBlock, ///< a private block
    hostRecord,   ///< the host's record or a part of it
    text,         ///< characters that end with 0
};

/// Whether an argument is a number that has a range.
constexpr bool isNumber(Kind kind) {
    return kind >= Kind::position && kind <= Kind::choice && kind != Kind::pitch;
}

/// Whether an argument leads to pixels.
constexpr bool isSurface(Kind kind) {
    return kind == Kind::destination || kind == Kind::source || kind == Kind::scratch;
}

/// Numbers from `low` to `high`, both included.
struct Range {
    double low;
    double high;

    /// The function takes any number: `low` and `high` are only how far seeded calls try it. A `low` of 0 or more is an
    /// end all the same, since such numbers are sizes and counts.
    bool isASample = false;

    bool contains(double number) const { return number >= low && number <= high; }

    /// Whether the function takes a number, be it one that no seeded call tries.
    bool allows(double number) const { return isASample ? number >= low || low < 0 : contains(number); }
};

inline constexpr Range anyInt = {-2147483648.0, 2147483647.0};
inline constexpr Range anyWord = {0, 4294967295.0};
inline constexpr Range anyShort = {0, 65535};
inline constexpr Range anyByte = {0, 255};
inline constexpr Range anyReal = {-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};

/// A number's way through a scene, from its beginning to its end; it may fall.
struct Way {
    double begin;
    double end;
};

struct Argument {
    std::string_view name;
    Kind kind;
    std::string_view unit;
    Range contract = anyInt; ///< what the caller may pass, other arguments aside
    Way inScene = {0, 0};    ///< what is worth drawing; a position's is a share of the stage's width or height
    std::string_view of;     ///< the surface that a pitch, a place or an area belongs to
    bool mayBeNull = false;
    Range meant = anyReal; ///< what makes sense; the contract may have numbers beyond, whose results nobody wants
    Range idle = {1, 0};   ///< further numbers that the contract allows, with which a call writes nothing; never tried
    int fractionBits = -1; ///< a real number that counts in steps of 1 / 2^n, what lies between cut off; -1: no steps
};
using Arguments = std::vector<Argument>;

/// A part of what a pointer leads to: elements of a surface, or the columns of a single row of an array.
struct Area {
    std::string_view argument;
    Box part;
    bool isAtMost = false; ///< there is nothing outside, but how much of it is touched is not worked out
};
using Areas = std::vector<Area>;

/// What a call may write or read, worked out from its arguments.
using Region = std::function<Areas(const Call &)>;

/// What the contract asks of the arguments together, beyond their ranges and what they write and read.
struct Rule {
    /// What is wrong where it does not hold. Numbers stand behind the names in braces, sizes behind those of
    /// rectangles.
    std::string_view broken;
    std::function<bool(const Call &)> holds;

    /// To find out, the twin runs on a copy, for as long and as deep as the function would.
    bool takesATrial = false;
};

/// What happens where source and destination share memory.
enum class Overlap {
    rowOrder,    ///< rows run top to bottom and pixels left to right
    none,        ///< there is no second surface
    notPromised, ///< the result is not promised
};

/// What becomes of the top byte of a pixel that is written.
enum class TopByte {
    cleared,        ///< it is 0
    clearedByLight, ///< it is 0, or full where light leaves a channel below 0; without light it is copied
    copied,         ///< it is that of a source or a colour, or 0 where pixels are computed
    blended,        ///< it is computed as the channels are
    setByColour,    ///< it is that of the colour, or 0 where pixels are computed
    disturbsRed,    ///< top bytes that are read count as upper bits of red
    noPixels,
};

/// What becomes of a sum that leaves a channel.
enum class Sum {
    stayInside, ///< none does
    saturate,   ///< the channel is full
    wrap,       ///< the channel keeps its low bits
    carryOver,  ///< it changes the next channel
    none,
};

/// The same for each channel.
struct Sums {
    Sum red;
    Sum green;
    Sum blue;

    constexpr Sums(Sum each) : Sums(each, each, each) {}
    constexpr Sums(Sum r, Sum g, Sum b) : red(r), green(g), blue(b) {}
    constexpr bool areAll(Sum sum) const { return red == sum && green == sum && blue == sum; }
};

/// What becomes of fractions of a level, where levels are multiplied or divided.
enum class Fractions {
    none,       ///< there are none: levels are moved, or summed as they are
    cutOff,     ///< the lower level is taken
    roundedUp,  ///< the upper level is taken, since what is taken away is cut off
    notCounted, ///< levels do not follow from those of a picture or a colour alone, or by steps of a slope
};

/// What a mean makes of pictures and colours that are all one colour.
enum class Uniform {
    stays,   ///< the same colour: the weights add up to 1
    darkens, ///< at times a level or more less
    none,    ///< nothing is mixed
};

/// How pixels of a source are looked up.
enum class Lookup {
    nearest,
    filtered, ///< four neighbours, with weights of `tapBits` fraction bits in either direction
    none,     ///< there is no source, or what is read of it are not its levels
};
inline constexpr int tapBits = 4;

/// A number in fixed point, in 32 bits with its sign.
struct FixedPoint {
    int wholeBits;
    int fractionBits;
    bool isSigned;

    /// The first whole number that it cannot hold.
    constexpr std::int64_t end() const { return std::int64_t{1} << (isSigned ? wholeBits - 1 : wholeBits); }
};
constexpr FixedPoint signedBits(int whole, int fraction) {
    return {whole, fraction, true};
}
constexpr FixedPoint unsignedBits(int whole, int fraction) {
    return {whole, fraction, false};
}

/// The stage on which a scene is set.
struct Stage {
    int width;
    int height;
    double time;  ///< from 0 to 1
    int call = 0; ///< which of a scene's calls is being set

    /// A number as far on its way as the time is.
    double along(const Way &way) const { return way.begin + (way.end - way.begin) * time; }

    Plane picture(int number = 0) const; ///< a photograph-like picture, the same for the same number
    Plane sprite() const;                ///< a figure on pixels that are 0, its alphas in the top byte
};

/// A set of arguments that makes a good picture, or a piece of work worth timing.
struct Scene {
    std::string label = {}; ///< what tells it from the function's other scenes; empty for the first
    std::function<void(Call &, const Stage &)> set = {}; ///< empty where each argument's own way does
    double figures = 0;                                  ///< how many figures one run draws, where they count
    std::string_view figure = {}; ///< their name, "lines"; one that begins with M is shown in millions

    /// So many calls, set at times from 0 up to, not including, 1, make one run. All but the first are set on the
    /// memory of the first, so that they change numbers only.
    int calls = 1;

    /// What is not a surface, a Z plane for example, is put back before each run.
    bool isRestored = false;
};

/// What stands in a picture for calls that draw no pixels of their own.
enum class Figure {
    none,         ///< there are pixels: those of a destination, or else of a plane of 8 bits
    nothing,      ///< the calls leave nothing behind that could be looked at
    transform,    ///< a shape whose points' coordinates the calls change
    vectors,      ///< the points that are passed, and what is made of them
    grid,         ///< a grid of points
    litGrid,      ///< a grid with the light that is worked out for its points
    side,         ///< a point and a line
    scan,         ///< a row of pixels and how far a scan goes
    search,       ///< a ring of pixels
    matrix,       ///< a cube that a matrix or a block's matrices bring to the screen
    projection,   ///< a cube as a block's viewport and focal length bring it to the screen
    depths,       ///< a Z plane
    relief,       ///< a picture under the light map that the calls make
    storage,      ///< what a private block points to
    record,       ///< the host's record with its slots
    tables,       ///< the tables of sines and cosines
    distribution, ///< how often each number is drawn
    colours,      ///< the colours that are drawn
};

/// What becomes of the blocks of the host's record.
enum class Blocks {
    kept,
    freed,           ///< all up to the first empty slot
    freedUnlessUsed, ///< likewise, unless somebody has given notice
    allocated,       ///< one more; in slot 0, after all others have been freed
};

/// Why a proof has nothing to say of a row, in a word.
struct Waiver {
    std::string_view proof;
    std::string_view reason;
};

struct Row {
    std::string_view name;     ///< the exported name
    Bound functions;           ///< the function and its plain twin
    std::string_view label;    ///< what tells an overload from the others
    std::string_view sentence; ///< what the function does
    Arguments arguments;
    std::vector<std::string_view> aliases;
    Region writes;
    Region reads;

    std::vector<Rule> rules;

    /// What makes sense of the arguments together; the contract allows more, whose results nobody wants.
    std::vector<Rule> meant;

    Overlap overlap = Overlap::none;
    TopByte topByte = TopByte::noPixels;
    Sums sums = Sum::none;
    Fractions fractions = Fractions::none;
    Uniform uniform = Uniform::none;
    Lookup lookup = Lookup::none;

    /// How places in a source are counted, of a source from its left and top where nothing else is said.
    std::optional<FixedPoint> positions = {};

    /// The function reads the tables that the set-up call fills.
    bool readsTables = false;

    /// The function draws from the platform's `rand`. It is called from the same seed as its twin, and since platforms
    /// draw differently, its results have no checksum.
    bool drawsRandomNumbers = false;

    /// Turns arguments that were chosen one by one into a call inside the contract.
    std::function<void(Call &, Random &)> arrange;

    /// Draws the whole of the sources over the whole destination, pixel on pixel; null where a pixel does not depend on
    /// the ones in its place alone.
    std::function<void(Call &)> pixelOnPixel;

    std::vector<Scene> scenes;
    std::vector<Waiver> waived;

    Blocks blocks = Blocks::kept;

    /// What pictures show.
    Figure figure = Figure::none;
    /// The scene that makes the picture, where the first of the others is for work worth timing alone.
    std::optional<Scene> picture = {};
    /// Why the picture may be that of another function.
    std::string_view looksLike = {};

    /// How many seeded cases are compared with the twin; fewer where a call takes long.
    int cases = 20000;

    /// The name with the label behind it.
    std::string fullName() const;
    const Argument *argument(std::string_view name) const;
    /// How many words a result has; 0 for a truth value.
    int returnsWords() const { return static_cast<int>(functions.resultBytes / 4); }
    bool isReal(std::size_t index) const { return functions.types[index] == Type::real; }
};

/// Each subsystem's rows, in the order of its header.
std::vector<Row> frameRows();
std::vector<Row> blitRows();
std::vector<Row> warpRows();
std::vector<Row> drawRows();
std::vector<Row> regionRows();
std::vector<Row> filterRows();
std::vector<Row> math3dRows();
std::vector<Row> pipelineRows();
std::vector<Row> texturedRows();
std::vector<Row> spriteRows();

struct Subsystem {
    std::string_view name;
    std::vector<Row> rows;
};

/// All rows, made once.
const std::vector<Subsystem> &subsystems();

/// Calls `visit` for every row.
void forEachRow(const std::function<void(const Row &)> &visit);

/// Whether a call keeps to the contract: numbers within their ranges, nothing read or written outside of its planes.
bool keepsToContract(const Call &call);

/// A call with arguments chosen by `random`, inside the contract, on small surfaces or on those of a size.
Call randomCall(const Row &row, Random &random, tagPOINT size = {0, 0});

/// A call as a scene sets it.
Call sceneCall(const Row &row, const Scene &scene, const Stage &stage);

/// All calls of a scene, on the same memory.
std::vector<Call> sceneCalls(const Row &row, const Scene &scene, Stage stage);

/// The scene that makes a row's picture.
Scene pictureOf(const Row &row);

/// The scenes of a row: where it names none, one of its arguments' own ways.
std::vector<Scene> scenesOf(const Row &row);

} // namespace catalogue

#endif
