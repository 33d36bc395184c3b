/// \file
/// What a call leaves behind, as a picture.
#ifndef Q_MUR_GALLERY_PICTURE_H
#define Q_MUR_GALLERY_PICTURE_H

#include "catalogue/row.h"

namespace gallery {

/// The size of a stage on which pictures are drawn.
inline constexpr int stageWidth = 400;
inline constexpr int stageHeight = 225;

/// The scene that a picture shows: a row's own; where what the row is for is its clip, with a clip that cuts it.
catalogue::Scene shownScene(const catalogue::Row &row);

/// The calls of a scene; of several those up to the time.
std::vector<catalogue::Call> callsUntil(const catalogue::Row &row, const catalogue::Scene &scene,
                                        const catalogue::Stage &stage);

/// What a call leaves behind that can be looked at as pixels; a null plane where there is nothing such.
catalogue::Plane seen(const catalogue::Call &call);

/// From where random numbers begin in a picture.
constexpr unsigned seedAt(double time) {
    return static_cast<unsigned>(time * 1000) + 1;
}

/// A scene at a time from 0 to 1, drawn by the library.
/// How many words of a small array of a call are an argument's own: those before the next argument's in the same
/// memory, as points of one polygon stand behind each other. 0 for what is none.
int wordsOf(const catalogue::Call &call, std::size_t argument);

struct Drawn {
    catalogue::Plane picture;           ///< its margins are none of it
    std::vector<catalogue::Call> calls; ///< as they were before they ran; one but for scenes of several calls
    bool changes;                       ///< whether the picture would be another without the calls
};
Drawn drawn(const catalogue::Row &row, const catalogue::Scene &scene, double time);

/// A scene as it runs.
struct Film {
    std::vector<Drawn> frames; ///< one where nothing moves
    bool isLoop;               ///< whether the end leads to the beginning
};
Film film(const catalogue::Row &row, const catalogue::Scene &scene, int frames);

} // namespace gallery

#endif
