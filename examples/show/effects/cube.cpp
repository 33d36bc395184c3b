// The camera draws back from the photograph, which is a side of a turning block, rises over it, and comes down to the
// side that shows the next. The block stands on a dark floor that mirrors it.
//
// Uses the matrix stacks, the camera and VKD_Mapping3Dto2D of the pipeline (by Space), VKD_i3D_Blt_Rect, IsFront,
// Edge_Transparency, Blur_Rect, iFadeOut32, iBltFast32, iBltFast32Alpha, iBltPerfect32 (by drawBackdrop and Space).

#include "../angle.h"
#include "../backdrop.h"
#include "../effect.h"
#include "../painting.h"
#include "../space.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace show {

namespace {

double sine(double degrees) {
    return sineOf(degrees / 360);
}

double cosine(double degrees) {
    return sineOf(degrees / 360 + 0.25);
}

/// A side of the block: where it is, and what it shows.
struct Side {
    double turn;    ///< degrees about the upright axis, from the front
    double tip;     ///< degrees about the axis to the right, from the front
    bool showsNext; ///< the next photograph, not the one before
    View part;      ///< the part that it shows if it is upright, 0 to 1 of the frame
};

constexpr double wayAround = 270;
constexpr std::array<Side, 6> sides = {{{0, 0, false, {0, 0, 1, 1}},
                                        {90, 0, true, {0.22, 0.15, 0.55, 0.55}},
                                        {180, 0, false, {0.25, 0.3, 0.55, 0.55}},
                                        {270, 0, true, {0, 0, 1, 1}},
                                        {0, 90, true, {0, 0, 1, 1}},
                                        {0, -90, false, {0, 0, 1, 1}}}};

class Cube : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane before = stage.plane();
        const Stage::Plane after = stage.plane();
        const Stage::Plane ground = stage.plane();
        drawShot(stage, before, moment.a);
        drawShot(stage, after, moment.b);
        extendEdges(before);
        extendEdges(after);
        {
            const Stage::Plane both = stage.plane();
            copy(both, before);
            blend(both, after, easeInOut(moment.t));
            drawBackdrop(stage, ground, both, 0.5);
        }

        Space &space = stage.space();
        space.begin(42);
        drawReflection(stage, space, ground, before, after, moment.t);
        space.begin(42);
        space.fillWith(ground);
        drawBlock(space, space.surface(), 1, before, after, moment.t, false);
        space.show(out);

        // The block's surface is softer than the photographs are: they come into focus at either end.
        blend(out, before, 1 - stretch(moment.t, 0, 0.04));
        blend(out, after, stretch(moment.t, 0.96, 1));
    }

    /// The block upside down beneath the floor, out of focus, and fading into the ground.
    static void drawReflection(Stage &stage, Space &space, const Surface &ground, const Surface &before,
                               const Surface &after, double t) {
        const Stage::Plane mirrored = stage.plane();
        copy(mirrored, ground);
        drawBlock(space, mirrored, 1.0 / space.scale(), before, after, t, true);
        blur(mirrored, std::max(1, ground.height / 240));
        const auto middle = static_cast<q_long>(0.82 * ground.height);
        tagPOINT left = {-1, middle};
        tagPOINT right = {ground.width, middle};
        tagRECT clip = {0, 0, ground.width, ground.height + 1}; // the strip leaves out the last row of its clip
        Edge_Transparency(mirrored->pixels, ground.pixels, mirrored->pixels, &left, &right,
                          std::max(2, ground.height * 2 / 5), mirrored->pitch, 0, 0, 1, &clip);
        blend(ground, mirrored, 0.5);
    }

    static void drawBlock(Space &space, const Surface &to, double zoom, const Surface &before, const Surface &after,
                          double t, bool isMirrored) {
        _PRIVATE_QMGL_DATA *const data = space.pipeline();
        const double width = before.width * space.scale();
        const double height = before.height * space.scale();
        const double focal = space.focalLength();
        const double longer = std::max(width, height);

        const double drawnBack = easeGently(stretch(t, 0, 0.5)) * (1 - easeGently(stretch(t, 0.5, 1)));
        const double distance = focal + width / 2 + drawnBack * longer * 1.5;
        const double rise = 24 * drawnBack;
        const double sideways = 14 * drawnBack * (1 - 2 * t);
        space.look({static_cast<float>(distance * sine(sideways) * cosine(rise)),
                    static_cast<float>(-distance * sine(rise)),
                    static_cast<float>(-distance * cosine(sideways) * cosine(rise)), 0},
                   {0, static_cast<float>(0.10 * height * drawnBack), 0, 0});

        for (const Side &side : sides) {
            VKD_glLoadIdentity(data);
            VKD_glTranslatef(data, 0, 0, static_cast<float>(-(side.tip == 0 ? width : height) / 2));
            VKD_glRotatef(data, static_cast<float>(side.tip), 1, 0, 0);
            VKD_glRotatef(data, static_cast<float>(side.turn - wayAround * mix(easeInOut(t), easeGently(t), 0.5)), 0, 1,
                          0);
            if (isMirrored) {
                VKD_glScalef(data, 1, -1, 1);
                VKD_glTranslatef(data, 0, static_cast<float>(height * 1.06), 0);
            }
            drawSide(space, to, zoom, side.showsNext ? after : before, side, width, side.tip == 0 ? height : width,
                     drawnBack, isMirrored);
        }
    }

    static void drawSide(Space &space, const Surface &to, double zoom, const Surface &photo, const Side &side,
                         double width, double height, double drawnBack, bool isMirrored) {
        constexpr int columns = 33;
        constexpr int rows = 25;
        _PRIVATE_QMGL_DATA *const data = space.pipeline();
        std::vector<_POINT3DFLOAT> points;
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                points.push_back({static_cast<float>(width * (column / (columns - 1.0) - 0.5)),
                                  static_cast<float>(height * (row / (rows - 1.0) - 0.5)), 0, 0});
        const std::vector<_POINT3DFLOAT> model = points;
        VKD_Mapping3Dto2D(data, points.data(), rows, columns);
        if (IsFront(&points[0], &points[columns - 1], &points[columns * rows - 1]) == isMirrored)
            return;

        // Light from where the camera stands: a side darkens as it turns away. Where it mirrors the lamp it shines.
        const float *const m = data->workMatrix.m;
        std::vector<int> shade;
        std::vector<int> shine;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const _POINT3DFLOAT &p = model[i];
            const double x = m[0] * p.x + m[1] * p.y + m[3];
            const double y = m[4] * p.x + m[5] * p.y + m[7];
            const double z = m[8] * p.x + m[9] * p.y + m[11] + space.focalLength();
            const double length = std::sqrt(x * x + y * y + z * z) + 1;
            const double facing = std::fabs((m[2] * x + m[6] * y + m[10] * z) / length);
            const double lampX = x / length + 0.42;
            const double lampY = y / length + 0.62;
            const double lampZ = z / length;
            const double lampLength = std::sqrt(lampX * lampX + lampY * lampY + lampZ * lampZ);
            double mirror = std::fabs(m[2] * lampX + m[6] * lampY + m[10] * lampZ) / lampLength;
            for (int k = 0; k < 4; ++k)
                mirror *= mirror;
            const double dim = isMirrored ? 0.9 : 1;
            shade.push_back(static_cast<int>(256 * dim * mix(1, mix(0.38, 1.06, facing), drawnBack)));
            shine.push_back(static_cast<int>(isMirrored ? 0 : 70 * mirror * drawnBack));
        }

        const View part = partOf(photo, side);
        for (_POINT3DFLOAT &point : points) {
            point.x = static_cast<float>(point.x * zoom);
            point.y = static_cast<float>(point.y * zoom);
        }
        tagRECT clip = to.rect();
        for (int row = 0; row + 1 < rows; ++row)
            for (int column = 0; column + 1 < columns; ++column) {
                const std::array<std::size_t, 4> at = {static_cast<std::size_t>(row * columns + column),
                                                       static_cast<std::size_t>(row * columns + column + 1),
                                                       static_cast<std::size_t>((row + 1) * columns + column + 1),
                                                       static_cast<std::size_t>((row + 1) * columns + column)};
                const auto u = [&](int place) { return sixteenths(part.left + part.width * place / (columns - 1)); };
                const auto v = [&](int place) { return sixteenths(part.top + part.height * place / (rows - 1)); };
                std::array<_POINTINT, 4> t = {{{u(column), v(row)},
                                               {u(column + 1), v(row)},
                                               {u(column + 1), v(row + 1)},
                                               {u(column), v(row + 1)}}};
                VKD_i3D_Blt_Rect(data, to.pixels, &points[at[0]], &points[at[1]], &points[at[2]], &points[at[3]],
                                 photo.pixels, &t[0], &t[1], &t[2], &t[3], &clip, to.unsignedPitch(),
                                 photo.unsignedPitch(), shine[at[0]], shine[at[1]], shine[at[2]], shine[at[3]],
                                 shade[at[0]], shade[at[1]], shade[at[2]], shade[at[3]], 0x200);
            }
    }

    /// The part of a photograph that a side shows: the lid and the bottom, which are square, a square one.
    static View partOf(const Surface &photo, const Side &side) {
        if (side.tip == 0)
            return {side.part.left * photo.width, side.part.top * photo.height, side.part.width * photo.width,
                    side.part.height * photo.height};
        const double extent = std::min(photo.width, photo.height);
        return {(photo.width - extent) / 2, (photo.height - extent) / 2, extent, extent};
    }

    /// A filtered position lies a quarter of a pixel before the place that it stands for, as Space has two pixels for
    /// one.
    static int sixteenths(double place) { return static_cast<int>(std::floor(place * 16)) - 4; }
};

const Registered<Cube> registered("cube", Effect::Kind::transition, Use::inTurn,
                                  "a block turns before the camera, a photograph on each side");

} // namespace

} // namespace show
