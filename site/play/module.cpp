/// \file
/// What the page calls: one row at a time, its numbers, pictures and drawing.
#include "play.h"
#include "site/draw/figures.h"

#include <optional>

// Each of them is for the page alone.
#define PLAY_EXPORT(name) __attribute__((export_name(#name)))

namespace gallery {
namespace {

struct Written {
    int x;
    int y;
    q_ulong colour;
    int height;
    std::string text;
};

std::optional<Play> play;
std::vector<Written> written;
std::vector<q_ulong> image;
std::string answer;

const catalogue::Row *rowNamed(const std::string &name) {
    const catalogue::Row *found = nullptr;
    catalogue::forEachRow([&](const catalogue::Row &row) {
        if (row.fullName() == name)
            found = &row;
    });
    return found;
}

/// Where the page writes the name of a row.
char name[256];

} // namespace
} // namespace gallery

using namespace gallery;

extern "C" {

PLAY_EXPORT(begin) void playBegin() {
    Init_qMur_GlobalData(nullptr, nullptr);
    writeInstead = [](int x, int y, const std::string &text, q_ulong colour, int height) {
        written.push_back({x, y, colour, height, text});
    };
}

PLAY_EXPORT(nameOfRow) char *playName() {
    return name;
}

/// Answers whether there is such a row.
PLAY_EXPORT(open) int playOpen() {
    const catalogue::Row *row = rowNamed(name);
    play.reset();
    if (row)
        play.emplace(*row);
    return row != nullptr;
}

PLAY_EXPORT(stage) void playStage(int width, int height, double time) {
    play->setStage({width, height, time});
}

PLAY_EXPORT(isFigure) int playIsFigure() {
    return play->row().figure != catalogue::Figure::none;
}

PLAY_EXPORT(canTurn) int playCanTurn() {
    return play->canTurn();
}

PLAY_EXPORT(shape) int playShape(unsigned argument) {
    return static_cast<int>(play->shape(argument));
}

PLAY_EXPORT(low) double playLow(unsigned argument, int part) {
    return play->reach(argument, part).low;
}
PLAY_EXPORT(high) double playHigh(unsigned argument, int part) {
    return play->reach(argument, part).high;
}
PLAY_EXPORT(step) double playStep(unsigned argument, int part) {
    return play->reach(argument, part).step;
}

PLAY_EXPORT(set) void playSet(unsigned argument, int part, double value) {
    play->set(argument, part, value);
}
PLAY_EXPORT(unset) void playUnset(unsigned argument) {
    play->unset(argument);
}
PLAY_EXPORT(picture) q_ulong *playPicture(unsigned argument, int width, int height) {
    return play->picture(argument, width, height).data();
}
PLAY_EXPORT(turn) void playTurn(double aboutUpright, double aboutLevel) {
    play->turn(aboutUpright, aboutLevel);
}

/// Answers 0 where a call would break its contract; everything below stays as it was.
PLAY_EXPORT(draw) int playDraw() {
    std::vector<Written> before;
    before.swap(written);
    if (play->draw())
        return 1;
    written.swap(before);
    return 0;
}

PLAY_EXPORT(pixels) const void *playPixels() {
    return play->drawn().origin();
}
PLAY_EXPORT(width) int playWidth() {
    return play->drawn().width();
}
PLAY_EXPORT(height) int playHeight() {
    return play->drawn().height();
}
PLAY_EXPORT(pitch) int playPitch() {
    return play->drawn().pitch();
}

/// The picture as a canvas takes it: red first, opaque, without gaps.
PLAY_EXPORT(image) const q_ulong *playImage() {
    const catalogue::Plane &drawn = play->drawn();
    const auto width = static_cast<std::size_t>(drawn.width());
    image.resize(width * static_cast<std::size_t>(drawn.height()));
    q_ulong *to = image.data();
    for (int y = 0; y < drawn.height(); ++y, to += width) {
        const q_ulong *from = &drawn.at(0, y);
        for (std::size_t x = 0; x < width; ++x)
            to[x] = 0xFF000000 | (from[x] & 0xFF) << 16 | (from[x] & 0xFF00) | (from[x] >> 16 & 0xFF);
    }
    return image.data();
}

PLAY_EXPORT(checksum) const char *playChecksum() {
    answer = std::to_string(play->checksum());
    return answer.c_str();
}

PLAY_EXPORT(calls) int playCalls() {
    return play->calls();
}
PLAY_EXPORT(returned) double playReturned(unsigned word) {
    return word < play->returned().size() ? static_cast<double>(play->returned()[word]) : 0;
}
PLAY_EXPORT(returnedWords) int playReturnedWords() {
    return static_cast<int>(play->returned().size());
}
PLAY_EXPORT(form) int playForm(unsigned argument) {
    return static_cast<int>(play->passed()[argument].form);
}
PLAY_EXPORT(numbers) const double *playNumbers(unsigned argument) {
    return play->passed()[argument].numbers.data();
}
PLAY_EXPORT(numbersCount) int playNumbersCount(unsigned argument) {
    return static_cast<int>(play->passed()[argument].numbers.size());
}
PLAY_EXPORT(letters) const char *playLetters(unsigned argument) {
    return play->passed()[argument].letters.c_str();
}

PLAY_EXPORT(texts) int playTexts() {
    return static_cast<int>(written.size());
}
PLAY_EXPORT(text) const char *playText(unsigned index) {
    return written[index].text.c_str();
}
/// Of a text: its place, its colour, its height.
PLAY_EXPORT(textNumber) int playTextNumber(unsigned index, int which) {
    const Written &text = written[index];
    const int numbers[] = {text.x, text.y, static_cast<int>(text.colour), text.height};
    return numbers[which & 3];
}
}
