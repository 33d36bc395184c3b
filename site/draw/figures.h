/// \file
/// Figures that stand for what is no picture: numbers, points, matrices, records.
#ifndef Q_MUR_GALLERY_FIGURES_H
#define Q_MUR_GALLERY_FIGURES_H

#include "catalogue/row.h"

#include <functional>
#include <string>

namespace gallery {

/// From where figures in space are looked at: by which angles they are turned about the upright and the level axis.
struct View {
    double aboutUpright = 0;
    double aboutLevel = 0;
};
inline View view;

/// Whether a row's figure is one that can be looked at from elsewhere.
bool isInSpace(const catalogue::Row &row);

/// Is told of each text on a sheet in place of the library, where that has no letters.
inline std::function<void(int x, int y, const std::string &text, q_ulong colour, int height)> writeInstead;

/// A dark sheet of the stage's size, to draw figures on.
class Sheet {
public:
    Sheet();

    /// Places are counted from the middle, in pixels.
    void line(double x1, double y1, double x2, double y2, q_ulong colour, int width = 1) const;
    void dot(double x, double y, int radius, q_ulong colour) const;
    void arrow(double x1, double y1, double x2, double y2, q_ulong colour) const;

    /// Places are counted from the corner.
    void text(int x, int y, const std::string &text, q_ulong colour = 0xC8D0DC, int height = 14) const;
    void box(const tagRECT &rect, q_ulong colour) const;
    void frame(const tagRECT &rect, q_ulong colour) const;

    const catalogue::Plane &plane() const { return surface; }

private:
    catalogue::Plane surface;
};

/// The figure of a row whose calls draw no pixels, with what the calls make of it.
catalogue::Plane figureOf(const catalogue::Row &row, const catalogue::Scene &scene, double time);

} // namespace gallery

#endif
