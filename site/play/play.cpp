#include "play.h"

#include "site/draw/figures.h"
#include "site/draw/picture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace gallery {

using catalogue::Argument;
using catalogue::Call;
using catalogue::Figure;
using catalogue::IsBlock;
using catalogue::Kind;
using catalogue::Plane;
using catalogue::Range;
using catalogue::Row;
using catalogue::Scene;
using catalogue::Stage;
using catalogue::Type;
using catalogue::Value;

namespace {

constexpr int mostWords = 16;
constexpr int mostChoices = 16;

bool isSmallArray(const Value &value) {
    if (!value.is<Plane>() || value.plane().isNull())
        return false;
    const Plane &plane = value.plane();
    return plane.height() == 1 && plane.width() <= mostWords && plane.elementBytes() == 4;
}

Shape shapeOf(const Argument &argument, const Value &value) {
    if (argument.kind == Kind::pitch || argument.kind == Kind::unused)
        return Shape::nothing;
    if (value.is<double>())
        return Shape::number;
    if (value.is<tagRECT>())
        return Shape::rectangle;
    if (value.is<tagPOINT>())
        return Shape::point;
    if (argument.kind == Kind::colours && isSmallArray(value))
        return Shape::words;
    const bool isPicture = argument.kind == Kind::destination || argument.kind == Kind::source;
    const bool isSeen = isPicture && value.is<Plane>() && !value.plane().isNull() && value.plane().height() > 1 &&
                        value.plane().elementBytes() == 4;
    return isSeen ? Shape::surface : Shape::nothing;
}

std::vector<double> partsOf(const Value &value) {
    if (value.is<double>())
        return {value.number()};
    if (value.is<tagRECT>()) {
        const tagRECT &rect = value.rect();
        return {static_cast<double>(rect.left), static_cast<double>(rect.top), static_cast<double>(rect.right),
                static_cast<double>(rect.bottom)};
    }
    if (value.is<tagPOINT>())
        return {static_cast<double>(value.point().x), static_cast<double>(value.point().y)};
    if (isSmallArray(value)) {
        const Plane &plane = value.plane();
        return {plane.as<std::uint32_t>(), plane.as<std::uint32_t>() + plane.width()};
    }
    return {};
}

void setPart(Value &value, int part, double number) {
    if (value.is<double>()) {
        value = number;
    } else if (value.is<tagRECT>()) {
        tagRECT &rect = value.rect();
        decltype(rect.left) *const sides[] = {&rect.left, &rect.top, &rect.right, &rect.bottom};
        *sides[part & 3] = static_cast<int>(number);
    } else if (value.is<tagPOINT>()) {
        (part == 0 ? value.point().x : value.point().y) = static_cast<int>(number);
    } else if (isSmallArray(value) && part < value.plane().width()) {
        value.plane().as<std::uint32_t>()[part] = static_cast<std::uint32_t>(number);
    }
}

Passed passedAs(const Value &value, Kind kind) {
    using Form = Passed::Form;
    if (value.is<double>())
        return {Form::number, partsOf(value), {}};
    if (value.is<tagRECT>())
        return {Form::rectangle, partsOf(value), {}};
    if (value.is<tagPOINT>())
        return {Form::point, partsOf(value), {}};
    if (!value.is<Plane>())
        return {Form::block, {}, {}};
    const Plane &plane = value.plane();
    if (plane.isNull())
        return {};
    if (kind == Kind::text)
        return {Form::letters, {}, plane.as<const char>()};
    if (isSmallArray(value) && !isSurface(kind))
        return {Form::words, partsOf(value), {}};
    return {
        Form::memory, {1.0 * plane.width(), 1.0 * plane.height(), 1.0 * plane.elementBytes(), 1.0 * plane.pitch()}, {}};
}

/// Directions, which have no unit, are none: a lamp stays where it is when what it lights is turned.
bool arePointsInSpace(const Row &row, std::size_t argument, const Value &value) {
    return row.arguments[argument].kind == Kind::points && row.arguments[argument].unit != "1" &&
           row.functions.types[argument] == Type::reals && value.is<Plane>() && !value.plane().isNull() &&
           value.plane().height() == 1 && value.plane().width() % 4 == 0;
}

bool hasTopBytes(const Plane &plane) {
    for (int y = 0; y < plane.height(); ++y)
        for (int x = 0; x < plane.width(); ++x)
            if (plane.at(x, y) >> 24 != 0)
                return true;
    return false;
}

/// Points of all arguments, as far as their memory is not that of others.
std::vector<_POINT3DFLOAT *> pointsOf(Call &call) {
    std::vector<_POINT3DFLOAT *> points;
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (!arePointsInSpace(call.row(), i, call[i]))
            continue;
        const Plane &plane = call[i].plane();
        for (int point = 0; point < plane.width() / 4; ++point) {
            _POINT3DFLOAT *place = plane.as<_POINT3DFLOAT>() + point;
            if (std::find(points.begin(), points.end(), place) == points.end() || plane.width() > 4 * mostWords)
                points.push_back(place);
        }
    }
    return points;
}

void turnPoints(Call &call, std::pair<double, double> angles) {
    const std::vector<_POINT3DFLOAT *> points = pointsOf(call);
    double middle[3] = {};
    for (const _POINT3DFLOAT *point : points) {
        middle[0] += static_cast<double>(point->x) / static_cast<double>(points.size());
        middle[1] += static_cast<double>(point->y) / static_cast<double>(points.size());
        middle[2] += static_cast<double>(point->z) / static_cast<double>(points.size());
    }
    const auto [upright, level] = angles;
    for (_POINT3DFLOAT *point : points) {
        const double x = static_cast<double>(point->x) - middle[0];
        const double y = static_cast<double>(point->y) - middle[1];
        const double z = static_cast<double>(point->z) - middle[2];
        const double turned = z * std::cos(upright) - x * std::sin(upright);
        point->x = static_cast<float>(middle[0] + x * std::cos(upright) + z * std::sin(upright));
        point->y = static_cast<float>(middle[1] + y * std::cos(level) - turned * std::sin(level));
        point->z = static_cast<float>(middle[2] + y * std::sin(level) + turned * std::cos(level));
    }
}

} // namespace

Play::Play(const Row &row) : played(&row), scene(shownScene(row)), where{stageWidth, stageHeight, 0.5} {
    sample();
}

void Play::setStage(const Stage &wanted) {
    const bool isOther = wanted.width != where.width || wanted.height != where.height;
    where = wanted;
    if (isOther)
        sample();
}

/// Looks what the scene sets in its course.
void Play::sample() {
    constexpr int times = 5;
    constexpr std::size_t mostCalls = 64;
    shapes.clear();
    seenInScene.clear();
    for (int i = 0; i < times; ++i) {
        const Stage stage = {where.width, where.height, static_cast<double>(i) / (times - 1)};
        std::vector<Call> calls = callsUntil(*played, scene, stage);
        for (std::size_t c = 0; c < std::min(calls.size(), mostCalls); ++c)
            for (std::size_t argument = 0; argument < calls[c].size(); ++argument) {
                const Value &value = calls[c][argument];
                if (shapes.size() <= argument) {
                    shapes.push_back(shapeOf(played->arguments[argument], value));
                    turns = turns || isInSpace(*played) || arePointsInSpace(*played, argument, value);
                }
                int part = 0;
                for (const double number : partsOf(value)) {
                    const auto [found, isNew] = seenInScene.insert({{argument, part++}, {number, number}});
                    found->second = {std::min(found->second.low, number), std::max(found->second.high, number)};
                }
            }
        if (i == 0 && scene.calls > 1)
            break;
    }
}

Shape Play::shape(std::size_t argument) const {
    return shapes[argument];
}

Reach Play::reach(std::size_t index, int part) {
    const Argument &argument = played->arguments[index];
    const auto found = seenInScene.find({index, part});
    Range range = found == seenInScene.end() ? Range{0, 0} : found->second;
    const bool isReal = shapes[index] == Shape::number && played->isReal(index);
    const auto include = [&range](double low, double high) {
        range = {std::min(range.low, low), std::max(range.high, high)};
    };
    const bool isDown = shapes[index] == Shape::number ? argument.name.find_first_of("yY") != std::string_view::npos ||
                                                             argument.name.ends_with("eight")
                                                       : part % 2 == 1;
    const double extent = isDown ? where.height : where.width;
    switch (shapes[index] == Shape::number ? argument.kind : Kind::position) {
    case Kind::position:
    case Kind::extent:
        include(0, extent);
        break;
    case Kind::angle:
        if (range.low == range.high || !isReal)
            include(0, std::min(argument.contract.high, isReal ? 2 * catalogue::fullTurn : 65535.0));
        break;
    case Kind::alpha:
        include(0, isReal ? 1 : 256);
        break;
    case Kind::weight:
        include(0, 256);
        break;
    case Kind::choice: // yes or no, where it is nothing else
        include(0, 1);
        if (argument.contract.high - argument.contract.low <= mostChoices)
            include(argument.contract.low, argument.contract.high);
        else if (range.high > 1)
            include(0, 2 * range.high);
        break;
    default: {
        // What is of one kind and unit is often of one size.
        for (std::size_t other = 0; other < shapes.size(); ++other) {
            const Argument &alike = played->arguments[other];
            const auto seen = seenInScene.find({other, 0});
            if (shapes[other] == Shape::number && alike.kind == argument.kind && alike.unit == argument.unit &&
                seen != seenInScene.end() && !argument.unit.empty())
                include(seen->second.low, seen->second.high);
        }
        const double way = range.high - range.low;
        if (way > 0)
            include(range.low - way / 4, range.high + way / 4);
        else if (range.low != 0)
            include(std::min(0.0, 2 * range.low), std::max(0.0, 2 * range.high));
        else
            include(isReal ? -1 : -16, isReal ? 1 : 16);
    }
    }
    if (!isReal)
        range = {std::floor(range.low), std::ceil(range.high)};
    if (shapes[index] == Shape::number)
        for (const Range &limit : {argument.contract, argument.meant})
            range = {std::max(range.low, limit.low), std::min(range.high, limit.high)};
    return {range.low, std::max(range.low, range.high), isReal ? 0.0 : 1.0};
}

void Play::unset(std::size_t argument) {
    std::erase_if(numbers, [argument](const auto &each) { return each.first.first == argument; });
    photographs.erase(argument);
}

std::vector<q_ulong> &Play::picture(std::size_t argument, int width, int height) {
    photographs[argument] = {width, height,
                             std::vector<q_ulong>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
    return photographs[argument].pixels;
}

void Play::change(Call &call, const Stage &stage) const {
    if (stage.call == 0)
        for (const auto &pair : photographs) {
            const std::size_t argument = pair.first;
            const Photograph &photograph = pair.second;
            if (shapes[argument] != Shape::surface || !call[argument].is<Plane>())
                continue;
            const Plane &own = call[argument].plane();
            // A surface whose top bytes mean something takes over those of a photograph.
            const bool hasHoles = std::any_of(photograph.pixels.begin(), photograph.pixels.end(),
                                              [](q_ulong pixel) { return pixel >> 24 != 0xFF; });
            const q_ulong mask = hasHoles || hasTopBytes(own) ? 0xFFFFFFFF : 0xFFFFFF;
            constexpr int margin = Plane::usualMargin;
            const Plane taken = own.alike();
            taken.fill({-margin, -margin, own.width() + margin, own.height() + margin}, [&](int x, int y) {
                const int column = std::clamp(x, 0, own.width() - 1) * photograph.width / own.width();
                const int line = std::clamp(y, 0, own.height() - 1) * photograph.height / own.height();
                return photograph.pixels[static_cast<std::size_t>(line) * static_cast<std::size_t>(photograph.width) +
                                         static_cast<std::size_t>(column)] &
                       mask;
            });
            call[argument] = taken;
        }
    if (stage.call == 0 && angles != std::pair(0.0, 0.0) && !isInSpace(*played))
        turnPoints(call, angles);
    for (const auto &[place, number] : numbers)
        setPart(call[place.first], place.second, number);
}

Scene Play::changedScene() const {
    Scene changed = scene;
    if (!numbers.empty() || !photographs.empty() || angles != std::pair(0.0, 0.0))
        changed.set = [this](Call &call, const Stage &stage) {
            if (scene.set)
                scene.set(call, stage);
            change(call, stage);
        };
    return changed;
}

bool Play::draw() {
    const Scene changed = changedScene();
    std::vector<Call> run = callsUntil(*played, changed, where);
    if (!std::all_of(run.begin(), run.end(), catalogue::keepsToContract))
        return false;
    values.clear();
    for (std::size_t i = 0; i < run.front().size(); ++i)
        values.push_back(passedAs(run.front()[i], played->arguments[i].kind));
    for (std::size_t i = 0; i < values.size(); ++i)
        if (values[i].form == Passed::Form::words)
            values[i].numbers.resize(static_cast<std::size_t>(wordsOf(run.front(), i)));
    count = static_cast<int>(run.size());
    words.clear();
    std::srand(seedAt(where.time));
    if (played->figure != Figure::none) {
        view = {angles.first, angles.second};
        result = figureOf(*played, changed, where.time);
        return true;
    }
    for (Call &call : run)
        played->functions.library(call)();
    if (played->functions.resultBytes == 4)
        words.push_back(run.front().returned<std::uint32_t>());
    result = seen(run.front());
    return true;
}

std::uint64_t Play::checksum() const {
    std::uint64_t sum = 0xCBF29CE484222325u;
    for (int y = 0; y < result.height(); ++y)
        for (int x = 0; x < result.width(); ++x)
            sum = (sum ^ (result.at(x, y) & 0xFFFFFF)) * 0x100000001B3u;
    return sum;
}

} // namespace gallery
