/// \file
/// A row's picture with what a visitor has changed of it.
#ifndef Q_MUR_GALLERY_PLAY_H
#define Q_MUR_GALLERY_PLAY_H

#include "catalogue/row.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace gallery {

/// What of an argument a visitor may change.
enum class Shape {
    nothing,
    number,
    rectangle, ///< four numbers
    point,     ///< two
    words,     ///< as many as the array has
    surface,
};

/// How far a number can be moved.
struct Reach {
    double low;
    double high;
    double step; ///< 0 for real numbers
};

/// An argument as it is passed.
struct Passed {
    enum class Form { null, number, rectangle, point, words, letters, memory, block } form = Form::null;
    std::vector<double> numbers; ///< a number, sides, coordinates, words; of memory width, height, bytes of an
                                 ///< element and pitch
    std::string letters;
};

class Play {
public:
    explicit Play(const catalogue::Row &played);

    const catalogue::Row &row() const { return *played; }

    /// The size of the stage, and the time from 0 to 1.
    void setStage(const catalogue::Stage &wanted);
    const catalogue::Stage &stage() const { return where; }

    Shape shape(std::size_t argument) const;
    Reach reach(std::size_t argument, int part);

    /// Gives a number another value than the scene does, and takes that back.
    void set(std::size_t argument, int part, double value) { numbers[{argument, part}] = value; }
    void unset(std::size_t argument);

    /// Room for a photograph in place of the scene's own picture: so many pixels as 0xAARRGGBB, row after row.
    std::vector<q_ulong> &picture(std::size_t argument, int width, int height);

    /// Turns points in space about their middle, by angles about the upright and about the level axis.
    bool canTurn() const { return turns; }
    void turn(double aboutUpright, double aboutLevel) { angles = {aboutUpright, aboutLevel}; }

    /// Draws. Answers false where a call would break its contract; the picture is then the one before.
    bool draw();

    const catalogue::Plane &drawn() const { return result; }

    /// The arguments of the first call before it ran, and how many calls there were.
    const std::vector<Passed> &passed() const { return values; }
    int calls() const { return count; }

    /// The words of what the first call returned.
    const std::vector<std::uint32_t> &returned() const { return words; }

    /// The checksum of the picture without top bytes.
    std::uint64_t checksum() const;

private:
    struct Photograph {
        int width;
        int height;
        std::vector<q_ulong> pixels;
    };

    catalogue::Scene changedScene() const;
    void change(catalogue::Call &call, const catalogue::Stage &stage) const;
    void sample();

    const catalogue::Row *played;
    catalogue::Scene scene;
    catalogue::Stage where;
    std::map<std::pair<std::size_t, int>, double> numbers;
    std::map<std::size_t, Photograph> photographs;
    std::pair<double, double> angles = {0, 0};
    bool turns = false;
    std::vector<Shape> shapes;
    std::map<std::pair<std::size_t, int>, catalogue::Range> seenInScene; ///< what the scene itself sets
    catalogue::Plane result;
    std::vector<Passed> values;
    std::vector<std::uint32_t> words;
    int count = 0;
};

} // namespace gallery

#endif
