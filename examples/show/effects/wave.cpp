// The photograph comes off the screen as a cloth that waves in the wind, with a gleam on its folds, and lies down
// again.
//
// Uses VKD_Render_Texture_3D (the lit cloth), VKD_3D_Line (its hem), VKD_glRotatef, VKD_glTranslatef and
// VKD_Mapping3Dto2D (its place in space), iSin (the waves), Blur_Rect and iFadeOut32 (the ground), Rect_Safe,
// Hor_Blur32, Ver_Blur32 and iBltFast32AlphaChannelSafe (its shadow).

#include "../angle.h"
#include "../effect.h"
#include "../mesh.h"
#include "../painting.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace show {

namespace {

/// A train of waves; lengths in frame heights, times in seconds.
struct Train {
    double height;
    double acrossPerHeight; ///< waves along a frame height, from left to right
    double downPerHeight;   ///< and from top to bottom
    double perSecond;
};

constexpr std::array<Train, 4> trains = {{
    {0.060, 1.30, -0.30, 0.72},
    {0.036, 0.70, 0.62, 0.45},
    {0.015, 2.35, -0.90, 1.20},
    {0.006, 3.10, 1.50, 1.65},
}};

class Wave : public Effect {
    static constexpr double cellSize = 16;

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Shot &shot = moment.a;
        // Down before a transition takes the photograph away, and up after one has brought it.
        const double aloft =
            easeInOut(stretch(shot.progress, 0.15, 0.38)) * (1 - easeInOut(stretch(shot.progress, 0.56, 0.80)));
        drawView(out, shot.photo, shot.camera.at(shot.progress));
        if (aloft <= 0)
            return;
        const Stage::Plane picture = stage.plane();
        copy(picture, out);
        extendEdges(picture);

        const double size = cellSize * out.height / 720;
        Mesh mesh = Mesh::over(out.width, out.height, size, size);
        const MeshCanvas canvas(out.width, out.height, mesh.points.size());
        const double seconds = shot.progress * shot.seconds;
        hang(mesh, out.width, out.height, aloft, seconds);
        place(canvas, out.height, aloft, seconds);
        canvas.project(mesh);

        const Ground ground(stage, picture, picture, 0, mix(0.80, 0.52, aloft));
        ground.castShadow(stage, mesh, 0.02 * out.height, 0.06 * out.height, 0.7 * aloft);
        const Stage::Plane behind = stage.plane();
        ground.fill(behind);
        canvas.fill(behind);
        canvas.draw(mesh, picture, lightAt(aloft, seconds));
        canvas.drawRim(mesh, paper);

        // The mesh softens the photograph a little: not from one frame to the next.
        const Stage::Plane drawn = stage.plane();
        canvas.finish(drawn);
        blend(out, drawn, clampUnit(aloft / 0.02));
    }

    /// The cloth, `aloft` of the way from a flat sheet that fills the frame.
    static void hang(Mesh &mesh, int width, int height, double aloft, double seconds) {
        constexpr double scale = MeshCanvas::scale;
        const auto depthAt = [&](double x, double y) {
            // Held where the wind comes from, and the freer the farther from there.
            const double free = mix(0.45, 1.0, x / width);
            double depth = 0;
            for (const Train &train : trains)
                depth +=
                    train.height * height *
                    sineOf((train.acrossPerHeight * x + train.downPerHeight * y) / height - train.perSecond * seconds);
            return depth * free * aloft;
        };
        // A little larger than the frame, so that nothing shows beside it when it lies flat.
        const double larger = 1 + 2.0 / height;
        for (int row = 0; row < mesh.rows; ++row) {
            const double y = static_cast<double>(height * row / (mesh.rows - 1));
            double reached = 0;
            double before = 0;
            double lastDepth = 0;
            for (int column = 0; column < mesh.columns; ++column) {
                const double x = static_cast<double>(width * column / (mesh.columns - 1));
                const double depth = depthAt(x, y);
                // The cloth does not stretch: what it takes into the depth it lacks in width.
                if (column > 0) {
                    const double step = x - before;
                    const double rise = depth - lastDepth;
                    reached += std::sqrt(std::max(step * step - rise * rise, step * step / 16));
                }
                before = x;
                lastDepth = depth;
                mesh.at(row, column) = {static_cast<float>(reached),
                                        static_cast<float>((y - height / 2.0) * scale * larger),
                                        static_cast<float>(depth * scale), 0};
            }
            for (int column = 0; column < mesh.columns; ++column) {
                float &x = mesh.at(row, column).x;
                x = static_cast<float>((x - reached / 2) * scale * larger);
            }
        }
    }

    static void place(const MeshCanvas &canvas, int height, double aloft, double seconds) {
        _PRIVATE_QMGL_DATA *const pipeline = canvas.pipeline();
        const double sway = sineOf(seconds * 0.13);
        VKD_glRotatef(pipeline, static_cast<float>((-13 + 5 * sway) * aloft), 0, 1, 0);
        VKD_glRotatef(pipeline, static_cast<float>((-14 + 3 * sineOf(seconds * 0.17)) * aloft), 1, 0, 0);
        VKD_glRotatef(pipeline, static_cast<float>((-2 + 1.5 * sway) * aloft), 0, 0, 1);
        VKD_glTranslatef(pipeline, static_cast<float>(-0.03 * aloft * height * MeshCanvas::scale),
                         static_cast<float>(-0.005 * aloft * height * MeshCanvas::scale),
                         static_cast<float>(0.40 * aloft * height * MeshCanvas::scale));
    }

    static MeshLight lightAt(double aloft, double seconds) {
        const double side = 0.56 + 0.08 * sineOf(seconds * 0.11);
        const _POINT3DFLOAT direction = {static_cast<float>(side), 0.40F, 0.72F, 0};
        return {direction, MeshLight::ambientBeside(direction), 0.9 * aloft, 5};
    }
};

const Registered<Wave> registered("wave", Effect::Kind::scene, Use::inTurn,
                                  "the photograph waves in the wind like a cloth");

} // namespace

} // namespace show
