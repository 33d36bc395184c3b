// The photograph as a landscape whose hills are its bright parts: a field of lights over which waves run turns to a
// net, the net to smooth hills, and these come into focus while they settle and rise to the upright photograph.
//
// Uses VKD_Render_3D_Dot_Add, VKD_Render_3D_Line, VKD_Render_Texture_3D, the matrix stacks, the camera and
// VKD_Mapping3Dto2D of the pipeline (by Space), Blur_Rect, iFadeOut32, iBltFast32Alpha, iBltPerfect32 (by drawView,
// drawHalved, drawBackdrop and Space).

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

/// Every so many columns and rows of the hills there is a light, or a line of the net.
constexpr int meshSize = 2;

/// Colours from 0 to 1 of a picture, between its pixels.
struct Colour {
    double red;
    double green;
    double blue;

    double luminance() const { return 0.30 * red + 0.59 * green + 0.11 * blue; }
};

Colour colourAt(const Surface &picture, double x, double y) {
    const double column = std::clamp(x, 0.0, picture.width - 1.0);
    const double row = std::clamp(y, 0.0, picture.height - 1.0);
    const int left = std::min(static_cast<int>(column), std::max(picture.width - 2, 0));
    const int top = std::min(static_cast<int>(row), std::max(picture.height - 2, 0));
    const int right = std::min(left + 1, picture.width - 1);
    const int bottom = std::min(top + 1, picture.height - 1);
    const auto channel = [&](int shift) {
        const auto level = [&](int px, int py) { return channelOf(*picture.at(px, py), shift); };
        return mix(mix(level(left, top), level(right, top), column - left),
                   mix(level(left, bottom), level(right, bottom), column - left), row - top) /
               255;
    };
    return {channel(16), channel(8), channel(0)};
}

q_ulong pixelOf(const Colour &colour) {
    return levelOf(colour.red) << 16 | levelOf(colour.green) << 8 | levelOf(colour.blue);
}

/// Points of the landscape, row after row from the far end, on the screen.
struct Grid {
    int columns;
    int rows;
    std::vector<_POINT3DFLOAT> points;
    std::vector<Colour> colours;
    double luminance = 0; ///< the mean

    std::size_t index(int row, int column) const { return static_cast<std::size_t>(row * columns + column); }
    /// From 0 at the far end to 1 at the near one.
    double depth(int row) const { return static_cast<double>(row) / (rows - 1); }
};

/// A change that comes over the landscape from its far end. It has come over a row by 0 to 1.
struct Front {
    double from;
    double to;

    double at(double progress, double depth) const {
        constexpr double softness = 0.22;
        return stretch(mix(0, 1 + softness, stretch(progress, from, to)) - depth, 0, softness);
    }
};

// The photograph stands when the next transition comes over the scene.
constexpr Front net = {0.10, 0.30};
constexpr Front hills = {0.20, 0.40};
constexpr Front focus = {0.26, 0.46};
/// How much light of their own the hills have before they rise.
constexpr double darkness = 0.17;

constexpr double settlingFrom = 0.38;
constexpr double settled = 0.70;

/// Light from the upper left. Upright, flat rows come out in their own brightness.
struct Light {
    _POINT3DFLOAT direction = {0.42F, 0.44F, 0.80F, 0};
    _POINT3D ambient = {0, 0, 0, 0};
    float specular;
    static constexpr int shininess = 3;

    explicit Light(double settling) : specular(static_cast<float>(0.14 * (1 - settling))) {
        direction = Normalize(&direction);
        ambient.x = 256 - static_cast<int>(direction.z * 256);
        // Hills that look into the light would turn white.
        const auto strength = static_cast<float>(mix(0.84, 1, settling));
        direction.x *= strength;
        direction.y *= strength;
        direction.z *= strength;
    }
};

class Landscape : public Effect {
    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const double progress = moment.a.progress;
        const Stage::Plane photo = stage.plane();
        const Stage::Plane ground = stage.plane();
        drawView(photo, moment.a.photo, moment.a.camera.at(progress));
        const double arrival = easeInOut(stretch(progress, settled, settled + 0.03));
        if (arrival < 1) {
            Space &space = stage.space();
            space.begin(56);
            const double settling = easeInOut(stretch(progress, settlingFrom, settled));
            const Grid grid = raise(stage, space, photo, settling, progress * moment.a.seconds, progress);
            drawBackdrop(stage, ground, photo, std::clamp(0.13 / (grid.luminance + 0.01), 0.3, 0.7));
            space.fillWith(ground);
            drawHills(stage, space, grid, photo, ground, settling, progress);
            drawNet(space, grid, settling, progress);
            drawLights(space, grid, progress);
            space.show(out);
        }
        blend(out, photo, arrival);
    }

    static Grid raise(Stage &stage, Space &space, const Surface &photo, double settling, double seconds,
                      double progress) {
        const double width = photo.width * space.scale();
        const double height = photo.height * space.scale();
        // The cells are a ninetieth of the height, but no finer than can be seen, nor than the pipeline has room for.
        const double cell = std::max({height / 90, 4.0, std::sqrt(width * height / 50000)});
        Grid grid;
        grid.columns = std::max(1, static_cast<int>(width / cell / meshSize + 0.5)) * meshSize + 1;
        grid.rows = std::max(1, static_cast<int>(height / cell / meshSize + 0.5)) * meshSize + 1;

        constexpr int halvings = 3;
        const Stage::Plane planes[] = {stage.plane(), stage.plane(), stage.plane()};
        Surface colours = photo;
        for (int i = 0; i < halvings && colours.height > grid.rows; ++i) {
            const Surface half = planes[i % 2]->cropped((colours.width + 1) / 2, (colours.height + 1) / 2);
            drawHalved(half, colours);
            colours = half;
        }
        const Surface relief = planes[2]->cropped(colours.width, colours.height);
        copy(relief, colours);
        blur(relief, std::max(1, relief.height / 18), 2);
        // Contours across the cells would show the triangles' teeth.
        if (colours.pixels != photo.pixels)
            blur(colours, 1);

        const auto placeX = [&](int column) { return static_cast<double>(column) / (grid.columns - 1); };
        std::vector<double> luminances;
        for (int row = 0; row < grid.rows; ++row)
            for (int column = 0; column < grid.columns; ++column) {
                const double pixelX = placeX(column) * colours.width - 0.5;
                const double pixelY = grid.depth(row) * colours.height - 0.5;
                grid.colours.push_back(colourAt(colours, pixelX, pixelY));
                luminances.push_back(colourAt(relief, pixelX, pixelY).luminance());
                grid.luminance += luminances.back();
            }
        const auto count = static_cast<double>(luminances.size());
        grid.luminance /= count;
        double deviation = 0.01;
        for (const double luminance : luminances)
            deviation += std::fabs(luminance - grid.luminance) / count;

        // Of pictures without much contrast the hills are higher.
        const double steepness = std::clamp(0.03 / deviation, 0.18, 0.36);
        const double extent = std::min(width, height);
        for (int row = 0; row < grid.rows; ++row)
            for (int column = 0; column < grid.columns; ++column) {
                const double x = (placeX(column) - 0.5) * width;
                const double y = (grid.depth(row) - 0.5) * height;
                const double hill = steepness * (luminances[grid.index(row, column)] - grid.luminance);
                const double fromX = x + 0.2 * extent;
                const double fromY = y - 0.9 * extent;
                const double distance = std::sqrt(fromX * fromX + fromY * fromY) / extent;
                const double wave = 0.020 * sineOf(distance * 2.6 - seconds * 0.55) +
                                    0.012 * sineOf(x / extent * 1.3 + y / extent * 0.8 + seconds * 0.4);
                // Low until the net has come, and at the near end, which must not lift into view.
                const double rise = mix(0.35, 1, hills.at(progress, grid.depth(row))) *
                                    mix(0.25, 1, easeInOut(stretch(1 - grid.depth(row), 0, 0.2)));
                const double z = -extent * (1 - settling) * (hill * rise + wave);
                grid.points.push_back({static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), 0});
            }

        _PRIVATE_QMGL_DATA *const data = space.pipeline();
        const double course = easeInOut(progress);
        const double away = 1 - settling;
        VKD_glRotatef(data, static_cast<float>(mix(64, 42, course) * away), 1, 0, 0);
        VKD_glRotatef(data, static_cast<float>(mix(-20, 16, progress) * away), 0, 1, 0);
        const double distance = space.focalLength() * mix(mix(0.72, 0.66, course), 1, settling);
        space.look({0, 0, static_cast<float>(-distance), 0}, {0, static_cast<float>(-0.04 * height * away), 0, 0});
        VKD_Mapping3Dto2D(data, grid.points.data(), grid.rows, grid.columns);
        return grid;
    }

    static void drawHills(Stage &stage, Space &space, const Grid &grid, const Surface &photo, const Surface &ground,
                          double settling, double progress) {
        int rows = 0;
        while (rows < grid.rows && net.at(progress, grid.depth(rows)) > 0)
            ++rows;
        if (rows < 2)
            return;
        const Stage::Plane face = stage.plane();
        drawFace(stage, face, space, grid, photo, ground, progress);
        Grid part = grid;
        Light light(settling);
        tagRECT clip = space.surface().rect();
        tagRECT shown = {0, 0, face->width, face->height * (rows - 1) / (grid.rows - 1)};
        VKD_Render_Texture_3D(space.pipeline(), space.surface().pixels, face->pixels, &clip, &shown,
                              space.surface().unsignedPitch(), face->unsignedPitch(), part.points.data(), rows,
                              part.columns, &light.direction, nullptr, &light.ambient, light.specular,
                              Light::shininess);
    }

    /// What the hills show, row by row from the far end: the photograph, out of focus further on, dark where only the
    /// net is seen yet, and at last what lies behind the landscape, out of which it comes.
    static void drawFace(Stage &stage, const Surface &face, const Space &space, const Grid &grid, const Surface &photo,
                         const Surface &ground, double progress) {
        const Stage::Plane soft = stage.plane();
        const Stage::Plane behind = stage.plane();
        const Stage::Plane small = stage.plane();
        drawSoft(stage, soft, photo);
        const Surface colours = small->cropped(std::min(grid.columns, face.width), std::min(grid.rows, face.height));
        for (int row = 0; row < colours.height; ++row)
            for (int column = 0; column < colours.width; ++column) {
                const _POINT3DFLOAT &point = grid.points[grid.index(row, column)];
                *colours.at(column, row) = pixelOf(colourAt(ground, point.x / static_cast<double>(space.scale()) - 0.5,
                                                            point.y / static_cast<double>(space.scale()) - 0.5));
            }
        extendEdges(colours);
        drawView(behind, colours, wholeOf(colours));
        const Stage::Plane &white = small; // its colours are on their place
        fill(white, 0xFFFFFF);
        copy(face, photo);
        for (int y = 0; y < face.height; ++y) {
            const tagRECT row = {0, y, face.width, y + 1};
            const double depth = (y + 0.5) / face.height;
            blend(face, soft, row, 1 - focus.at(progress, depth));
            const double shown = hills.at(progress, depth);
            if (shown < 1) {
                dim(face, row, mix(darkness, 1, shown));
                const double glow = 4 * shown * (1 - shown) * 0.16;
                addStretched(face, row, white, row, glow * 0.8, glow * 0.9, glow);
                blend(face, behind, row, 1 - net.at(progress, depth));
            }
        }
        extendEdges(face);
    }

    /// The photograph out of focus.
    static void drawSoft(Stage &stage, const Surface &out, const Surface &photo) {
        const Stage::Plane between[] = {stage.plane(), stage.plane()};
        Surface small = photo;
        for (const Stage::Plane &plane : between) {
            const Surface half = plane->cropped((small.width + 1) / 2, (small.height + 1) / 2);
            drawHalved(half, small);
            small = half;
        }
        blur(small, std::max(small.height / 60, 1), 3);
        extendEdges(small);
        drawView(out, small, wholeOf(small));
    }

    static void drawNet(Space &space, const Grid &grid, double settling, double progress) {
        std::vector<_POINT3DFLOAT> points;
        std::vector<q_ulong> colours;
        const int columns = (grid.columns - 1) / meshSize + 1;
        int rows = 0;
        for (int row = 0; row < grid.rows; row += meshSize) {
            const double shown = net.at(progress, grid.depth(row));
            const double risen = hills.at(progress, grid.depth(row));
            if (shown <= 0)
                break;
            if (risen >= 1)
                continue;
            ++rows;
            for (int column = 0; column < grid.columns; column += meshSize) {
                const std::size_t at = grid.index(row, column);
                const Colour &own = grid.colours[at];
                points.push_back(grid.points[at]);
                // Before the hills that it covers.
                points.back().z -= static_cast<float>(0.012 * space.focalLength());
                // They glow at first, and take the colour of the hills in the end.
                const double glow = 0.15 * (1 - risen);
                const double strength = mix(darkness, mix(1.6, 1, risen), shown);
                colours.push_back(pixelOf({strength * (own.red + glow * 0.7), strength * (own.green + glow * 0.85),
                                           strength * (own.blue + glow)}));
            }
        }
        if (rows < 2)
            return;
        Light light(settling);
        tagRECT clip = space.surface().rect();
        VKD_Render_3D_Line(space.pipeline(), space.surface().pixels, &clip, space.surface().unsignedPitch(),
                           points.data(), colours.data(), 0, 0, columns, rows, &light.direction, nullptr,
                           &light.ambient, light.specular, Light::shininess, 0);
    }

    static void drawLights(Space &space, const Grid &grid, double progress) {
        // Each is a cross between four fainter ones.
        constexpr double reach = 1;
        constexpr std::array<std::array<double, 3>, 5> parts = {
            {{-reach, -reach, 0.5}, {reach, -reach, 0.4}, {-reach, reach, 0.4}, {reach, reach, 0.4}, {0, 0, 1}}};
        const int columns = (grid.columns - 1) / meshSize + 1;
        tagRECT clip = space.surface().rect();
        for (const auto &[aside, below, share] : parts) {
            std::vector<_POINT3DFLOAT> points;
            std::vector<q_ulong> colours;
            for (int row = 0; row < grid.rows; row += meshSize) {
                const double strength = share * (1 - net.at(progress, grid.depth(row)));
                if (strength <= 0)
                    continue;
                for (int column = 0; column < grid.columns; column += meshSize) {
                    const std::size_t at = grid.index(row, column);
                    const Colour &own = grid.colours[at];
                    points.push_back(grid.points[at]);
                    points.back().x += static_cast<float>(aside);
                    points.back().y += static_cast<float>(below);
                    colours.push_back(pixelOf({strength * (0.16 + 1.7 * own.red), strength * (0.18 + 1.7 * own.green),
                                               strength * (0.22 + 1.7 * own.blue)}));
                }
            }
            VKD_Render_3D_Dot_Add(space.surface().pixels, &clip, space.surface().unsignedPitch(), points.data(),
                                  colours.data(), columns, static_cast<int>(points.size()) / columns);
        }
    }
};

const Registered<Landscape> registered("landscape", Effect::Kind::scene, Use::inTurn,
                                       "lights, a net and hills settle into the photograph");

} // namespace

} // namespace show
