#include "picture.h"

#include "figures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>

namespace gallery {

using catalogue::Call;
using catalogue::Kind;
using catalogue::Plane;
using catalogue::RegionBlock;
using catalogue::Row;
using catalogue::Scene;
using catalogue::Stage;

namespace {

/// Values of a plane of 8 bits as colours that differ.
Plane coloured(const Plane &bytes) {
    constexpr q_ulong colours[] = {0x101820, 0xFFC860, 0x60B0FF, 0xFF7080};
    const Plane picture = Plane::surface(bytes.width(), bytes.height());
    return picture.fill(picture.rect(), [&](int x, int y) -> q_ulong {
        const unsigned value = bytes.as<unsigned char>()[static_cast<std::ptrdiff_t>(y) * bytes.pitch() + x];
        return value < 4 ? colours[value] : 0x010101 * value;
    });
}

} // namespace

Plane seen(const Call &call) {
    const auto &arguments = call.row().arguments;
    for (std::size_t i = 0; i < call.size(); ++i)
        if (arguments[i].kind == Kind::destination && call[i].is<Plane>() && !call[i].plane().isNull())
            return call[i].plane();
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (arguments[i].kind == Kind::plane && call[i].is<Plane>() && !call[i].plane().isNull())
            return coloured(call[i].plane());
        if (!call[i].is<RegionBlock>())
            continue;
        const auto &block = call[i].get<RegionBlock>();
        if (!block.destSurface.isNull())
            return block.destSurface;
        if (!block.plane.isNull())
            return coloured(block.plane);
    }
    return {};
}

namespace {

bool equal(const Plane &a, const Plane &b) {
    if (a.width() != b.width() || a.height() != b.height())
        return false;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (((a.at(x, y) ^ b.at(x, y)) & 0xFFFFFF) != 0)
                return false;
    return true;
}

/// How far two pictures of one size are from each other, as the mean over all channels.
double distance(const Plane &a, const Plane &b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            for (const int shift : {0, 8, 16})
                sum += std::abs(static_cast<int>(a.at(x, y) >> shift & 0xFF) -
                                static_cast<int>(b.at(x, y) >> shift & 0xFF));
    return sum / (3.0 * a.width() * a.height());
}

/// Where what a row is for is its clip, what is drawn reaches beyond it. A text is to be read.
bool showsItsClip(const Row &row) {
    if (row.argument("fontName"))
        return false;
    return row.sentence.find("clip") != std::string_view::npos || row.name.find("Safe") != std::string_view::npos;
}
void cut(Call &call, const Stage &stage) {
    const auto &arguments = call.row().arguments;
    const tagRECT clip = {stage.width / 10, stage.width * 6 / 100, stage.width * 11 / 20, stage.height * 11 / 20};
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (arguments[i].kind == Kind::clip && arguments[i].of != "tex")
            call[i] = clip;
        else if (arguments[i].name == "clipWidth")
            call[i] = std::floor(0.7 * stage.width);
        else if (arguments[i].name == "clipHeight")
            call[i] = std::floor(0.7 * stage.height);
    }
}

} // namespace

Scene shownScene(const Row &row) {
    Scene scene = catalogue::pictureOf(row);
    if (scene.calls == 1 && showsItsClip(row))
        scene.set = [set = scene.set](Call &call, const Stage &stage) {
            if (set)
                set(call, stage);
            cut(call, stage);
        };
    return scene;
}

std::vector<Call> callsUntil(const Row &row, const Scene &scene, const Stage &stage) {
    std::vector<Call> calls;
    if (scene.calls == 1) {
        calls.push_back(catalogue::sceneCall(row, scene, stage));
        return calls;
    }
    calls = catalogue::sceneCalls(row, scene, stage);
    calls.erase(calls.begin() + std::max(1, static_cast<int>(std::lround(stage.time * scene.calls))), calls.end());
    return calls;
}

int wordsOf(const Call &call, std::size_t argument) {
    constexpr int most = 16;
    if (!call[argument].is<Plane>() || call[argument].plane().isNull())
        return 0;
    const Plane &plane = call[argument].plane();
    if (plane.height() != 1 || plane.width() > most || plane.elementBytes() != 4)
        return 0;
    int count = plane.width();
    while (count > 0 && !plane.holds({0, 0, count, 1}))
        --count;
    for (std::size_t i = 0; i < call.size(); ++i) {
        if (i == argument || !call[i].is<Plane>() || call[i].plane().isNull())
            continue;
        const auto *const next = static_cast<const char *>(call[i].plane().origin());
        const auto *const own = static_cast<const char *>(plane.origin());
        if (std::less<>()(own, next) && std::less<>()(next, own + std::ptrdiff_t{4} * count))
            count = static_cast<int>((next - own) / 4);
    }
    return count;
}

Drawn drawn(const Row &row, const Scene &scene, double time) {
    const Stage stage = {stageWidth, stageHeight, time};
    Drawn result{{}, callsUntil(row, scene, stage), true};
    const Call before = result.calls.front();
    std::srand(seedAt(time));
    std::vector<Call> run = callsUntil(row, scene, stage);
    if (row.figure != catalogue::Figure::none) {
        result.picture = figureOf(row, scene, time);
        return result;
    }
    for (Call &call : run)
        row.functions.library(call)();
    result.picture = seen(run.front());
    result.changes = !equal(result.picture, seen(before));
    return result;
}

Film film(const Row &row, const Scene &scene, int frames) {
    Film film{{}, false};
    const auto at = [&](double time) { film.frames.push_back(drawn(row, scene, time)); };
    at(0);
    at(1);
    film.isLoop = distance(film.frames.front().picture, film.frames.back().picture) < 3;
    film.frames.clear();
    for (int i = 0; i < frames; ++i)
        at(static_cast<double>(i) / (film.isLoop ? frames : frames - 1));
    const bool moves = std::any_of(film.frames.begin(), film.frames.end(), [&film](const Drawn &frame) {
        return !equal(frame.picture, film.frames.front().picture);
    });
    if (!moves) {
        film.frames.clear();
        at(0.5);
    }
    return film;
}

} // namespace gallery
