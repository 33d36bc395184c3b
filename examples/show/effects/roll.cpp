// The photograph bends into a drum that rolls over once, brings up the next photograph from behind, and flattens again.
//
// Uses Flat3D, Post3D and Interpolate3DPoint (the sheet, the drum and what lies between), VKD_glRotatef,
// VKD_glTranslatef and VKD_Mapping3Dto2D (their place in space), VKD_Render_Texture_3D, VKD_3D_Line (the rim);
// Blur_Rect, iFadeOut32, Rect_Safe, Hor_Blur32, Ver_Blur32 and iBltFast32AlphaChannelSafe (the ground and the shadow).

#include "../effect.h"
#include "../mesh.h"
#include "../painting.h"

#include <utility>

namespace show {

namespace {

class Roll : public Effect {
    static constexpr double cellSize = 14;

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane before = stage.plane();
        const Stage::Plane after = stage.plane();
        drawShot(stage, before, moment.a);
        drawShot(stage, after, moment.b);

        const double t = moment.t;
        const double bend = easeGently(stretch(t, 0.0, 0.42)) * (1 - easeGently(stretch(t, 0.58, 1.0)));
        const double turn = easeInOut(stretch(t, 0.12, 0.88));

        // What has come round behind the drum is the next photograph.
        const Stage::Plane picture = stage.plane();
        const auto come = static_cast<q_long>(turn * out.height);
        copy(picture, after, {0, 0, out.width, come});
        copy(picture, before, {0, come, out.width, out.height});
        extendEdges(picture);

        const double size = cellSize * out.height / 720;
        Mesh mesh = Mesh::over(out.width, out.height, size, size);
        const MeshCanvas canvas(out.width, out.height, mesh.points.size());
        shape(mesh, bend, out.width, out.height);
        place(canvas, bend, turn, t, out.height);
        canvas.project(mesh);

        const Ground ground(stage, before, after, easeInOut(t), 0.52);
        ground.castShadow(stage, mesh, 0.02 * out.height, 0.09 * out.height, 0.7 * stretch(bend, 0, 0.2));
        const Stage::Plane behind = stage.plane();
        ground.fill(behind);
        canvas.fill(behind);
        const _POINT3DFLOAT direction = {0.20F, 0.52F, 0.80F, 0};
        canvas.draw(mesh, picture, {direction, MeshLight::ambientBeside(direction), 0.35 * stretch(bend, 0, 0.5), 5});
        canvas.drawRim(mesh, paper);
        canvas.finish(out);
        blendEnds(out, before, after, t);
    }

    /// The mesh, `bend` of the way from a flat sheet to a drum whose axis lies across the frame.
    static void shape(Mesh &mesh, double bend, int width, int height) {
        constexpr int scale = MeshCanvas::scale;
        // A pixel larger on each side than the frame, so that nothing shows beside it.
        Flat3D(mesh.data(), mesh.columns, mesh.rows, 1, 0, 0, 0, 0, 0, 0, noProjection, (width + 2) * scale,
               (height + 2) * scale);

        // A post stands upright: laid down, its rows become the drum's columns.
        Mesh post = {mesh.columns, mesh.rows, mesh.points};
        const double size = 0.27 * height * scale / postRadius;
        Post3D(post.data(), post.columns, post.rows, static_cast<float>(size), 0, 0, 0, 0, 0, 0, noProjection, 0,
               static_cast<int>((width + 2) * scale / size + 0.5));
        Mesh drum = mesh;
        for (int row = 0; row < mesh.rows; ++row)
            for (int column = 0; column < mesh.columns; ++column) {
                _POINT3DFLOAT &point = drum.at(row, column);
                point = post.at(column, row);
                std::swap(point.x, point.y);
            }
        Interpolate3DPoint(mesh.data(), mesh.data(), drum.data(), mesh.columns, mesh.rows, static_cast<float>(bend));
    }

    static void place(const MeshCanvas &canvas, double bend, double turn, double t, int height) {
        _PRIVATE_QMGL_DATA *const pipeline = canvas.pipeline();
        VKD_glRotatef(pipeline, static_cast<float>(360 * turn), 1, 0, 0);
        VKD_glRotatef(pipeline, static_cast<float>(12 * bend * (1 - 2 * easeInOut(t))), 0, 0, 1);
        VKD_glRotatef(pipeline, static_cast<float>(10 * bend * (1 - 2 * easeInOut(t))), 0, 1, 0);
        VKD_glTranslatef(pipeline, 0, 0, static_cast<float>(0.55 * bend * height * MeshCanvas::scale));
    }
};

const Registered<Roll> registered("roll", Effect::Kind::transition, Use::inTurn,
                                  "the photograph becomes a drum that rolls over to the next");

} // namespace

} // namespace show
