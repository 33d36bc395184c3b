/// \file
/// Draws each row of the catalogue into a WebP file, and prints what the pictures show.
///
/// usage: q_Mur_gallery_draw DIRECTORY [REGEX] [--frames N]
#include "picture.h"
#include "webp.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <deque>
#include <exception>
#include <future>
#include <regex>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace gallery {
namespace {

using catalogue::Call;
using catalogue::Plane;
using catalogue::Row;
using catalogue::Scene;
using catalogue::Value;
using Json = nlohmann::ordered_json;

constexpr int millisecondsOfFrame = 90;

/// What an argument is in a call: numbers as they are, memory by its shape, small arrays by the bits of their words.
Json valueOf(const Call &call, std::size_t argument) {
    const Value &value = call[argument];
    if (value.is<double>())
        return std::isfinite(value.number()) ? Json(value.number()) : Json(nullptr);
    if (value.is<tagRECT>()) {
        const tagRECT &rect = value.rect();
        return {{"rect", {rect.left, rect.top, rect.right, rect.bottom}}};
    }
    if (value.is<tagPOINT>())
        return {{"point", {value.point().x, value.point().y}}};
    if (!value.is<Plane>())
        return {{"block", true}};
    const Plane &plane = value.plane();
    if (plane.isNull())
        return nullptr;
    Json json = {{"width", plane.width()},
                 {"height", plane.height()},
                 {"bytes", plane.elementBytes()},
                 {"pitch", plane.pitch()}};
    if (plane.height() == 1 && plane.elementBytes() == 1)
        json["text"] = plane.as<const char>();
    if (const int words = wordsOf(call, argument)) {
        json["words"] = Json::array();
        for (int i = 0; i < words; ++i) {
            std::uint32_t word;
            std::memcpy(&word, plane.as<std::uint32_t>() + i, 4);
            json["words"].push_back(word);
        }
    }
    return json;
}

Json valuesOf(const Call &call) {
    Json json = Json::array();
    for (std::size_t i = 0; i < call.size(); ++i)
        json.push_back(valueOf(call, i));
    return json;
}

/// The frames in the order in which they are shown: there and back, where the end does not lead to the beginning.
std::vector<Plane> shown(const Film &film) {
    std::vector<Plane> pictures;
    for (const Drawn &frame : film.frames)
        pictures.push_back(frame.picture);
    if (!film.isLoop)
        for (std::size_t i = film.frames.size(); i-- > 2;)
            pictures.push_back(film.frames[i - 1].picture);
    return pictures;
}

std::string fileOf(const Row &row, const Scene &scene) {
    std::string name = row.fullName() + (scene.label.empty() ? "" : " " + scene.label);
    for (char &letter : name)
        if (!std::isalnum(static_cast<unsigned char>(letter)) && letter != '_')
            letter = '-';
    return name + ".webp";
}

std::uint64_t checksumOf(const std::vector<Plane> &pictures) {
    std::uint64_t sum = 0xCBF29CE484222325u;
    for (const Plane &picture : pictures)
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                sum = (sum ^ (picture.at(x, y) & 0xFFFFFF)) * 0x100000001B3u;
    return sum;
}

bool isPlain(const Plane &picture) {
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (((picture.at(x, y) ^ picture.at(0, 0)) & 0xFFFFFF) != 0)
                return false;
    return true;
}

/// Work beside the drawing, on as many threads as there are processors.
class Writers {
public:
    template <class Work>
    void start(Work work) {
        if (running.size() >= std::max(std::thread::hardware_concurrency(), 1U))
            finishOne();
        running.push_back(std::async(std::launch::async, std::move(work)));
    }
    void finish() {
        while (!running.empty())
            finishOne();
    }

private:
    void finishOne() {
        std::future<void> first = std::move(running.front());
        running.pop_front();
        first.get();
    }

    std::deque<std::future<void>> running;
};

/// A line on a terminal that says how far the work is.
class Progress {
public:
    void say(std::size_t done, std::size_t all, const std::string &name) const {
        constexpr std::size_t columns = 30;
        const std::size_t full = columns * done / all;
        if (isTerminal)
            std::fprintf(stderr, "\r\033[K%s%s %zu of %zu  %s%s", std::string(full, '#').c_str(),
                         std::string(columns - full, '.').c_str(), done, all, name.c_str(), done == all ? "\n" : "");
    }

private:
    bool isTerminal = isatty(STDERR_FILENO) != 0;
};

Json pictureOf(const Row &row, const Scene &scene, const std::filesystem::path &directory, int frames,
               Writers &writers) {
    const Film film = gallery::film(row, scene, frames);
    const std::vector<Plane> pictures = shown(film);
    const std::string file = fileOf(row, scene);
    writers.start([=] { writeWebP(directory / file, pictures, millisecondsOfFrame); });
    const Drawn &middle = film.frames[film.frames.size() / 2];
    Json json = {{"name", row.name}, {"overload", row.label}, {"scene", scene.label}, {"file", file}};
    json["width"] = middle.picture.width();
    json["height"] = middle.picture.height();
    json["frames"] = film.frames.size();
    json["isLoop"] = film.isLoop;
    json["calls"] = middle.calls.size();
    json["isPlain"] = isPlain(middle.picture);
    json["changes"] = middle.changes;
    json["checksum"] = std::to_string(checksumOf(pictures));
    json["values"] = valuesOf(middle.calls.front());
    json["begin"] = valuesOf(film.frames.front().calls.front());
    json["end"] = valuesOf(film.frames.back().calls.back());
    return json;
}

void draw(const std::filesystem::path &directory, const std::string &pattern, int frames) {
    const std::regex wanted(pattern);
    std::vector<const Row *> rows;
    catalogue::forEachRow([&](const Row &row) {
        if (std::regex_search(row.fullName(), wanted))
            rows.push_back(&row);
    });
    Json json = Json::array();
    Writers writers;
    const Progress progress;
    for (const Row *row : rows) {
        progress.say(json.size(), rows.size(), row->fullName());
        json.push_back(pictureOf(*row, shownScene(*row), directory, frames, writers));
    }
    writers.finish();
    progress.say(rows.size(), rows.size(), "");
    const std::string text = json.dump(1) + "\n";
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw std::runtime_error("cannot write to the standard output");
}

} // namespace
} // namespace gallery

int main(int argc, char **argv) {
    CLI::App app("Draws each row of q_Mur's catalogue into a WebP file, and prints what the pictures show.");
    std::string directory, pattern;
    int frames = 16;
    app.add_option("directory", directory, "Where the pictures go")->required();
    app.add_option("regex", pattern, "Only the rows whose names it is found in");
    app.add_option("--frames", frames, "How many frames a film has, there and not back")->check(CLI::Range(2, 200));
    CLI11_PARSE(app, argc, argv);
    try {
        Init_qMur_GlobalData(nullptr, nullptr);
        std::filesystem::create_directories(directory);
        gallery::draw(directory, pattern, frames);
        return 0;
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "q_Mur_gallery_draw: %s\n", failure.what());
        return 1;
    }
}
