// The photograph lifts off and winds into a cylinder that turns; inside it is the next photograph, which opens out and
// fills the frame.
//
// Uses Post3D (the cylinder), fRotate3DByY (the sheet on its way), VKD_glScalef, VKD_glRotatef, VKD_glTranslatef and
// VKD_Mapping3Dto2D (its place in space), VKD_Render_Texture_3D with two textures, VKD_i3D_Blt_Rect (its outline),
// VKD_3D_Line (its rim); Blur_Rect, iFadeOut32, Rect_Safe, Hor_Blur32, Ver_Blur32 and iBltFast32AlphaChannelSafe (the
// ground and the shadow on it).

#include "../angle.h"
#include "../effect.h"
#include "../mesh.h"

namespace show {

namespace {

constexpr double circle = radiansIn(1);

class Cylinder : public Effect {
    // Across it is bent, and straight otherwise: longer cells have straighter edges.
    static constexpr double cellWidth = 14;
    static constexpr double cellHeight = 72;

    void render(Stage &stage, const Surface &out, const Moment &moment) const override {
        const Stage::Plane before = stage.plane();
        const Stage::Plane after = stage.plane();
        drawShot(stage, before, moment.a);
        drawShot(stage, after, moment.b);
        extendEdges(before);
        extendEdges(after);

        const double t = moment.t;
        const double curl = easeGently(stretch(t, 0.0, 0.40)) * (1 - easeGently(stretch(t, 0.60, 1.0)));
        const double size = out.height / 720.0;
        Mesh mesh = Mesh::over(out.width, out.height, cellWidth * size, cellHeight * size);
        const MeshCanvas canvas(out.width, out.height, mesh.points.size());
        wind(mesh, curl, out.width, out.height);
        place(canvas, t, out.width, out.height);
        canvas.project(mesh);

        const Ground ground(stage, before, after, easeInOut(t), 0.52);
        ground.castShadow(stage, mesh, 0.03 * out.height, 0.07 * out.height, 0.7 * stretch(curl, 0, 0.2));
        const Stage::Plane behind = stage.plane();
        ground.fill(behind);
        canvas.fill(behind);
        canvas.draw(mesh, before, after, lightAt(t, curl));
        canvas.drawRim(mesh, paper);
        canvas.finish(out);
        blendEnds(out, before, after, t);
    }

    /// The sheet, `curl` of the way from flat to a cylinder, in the units of Post3D(): the cylinder's circumference is
    /// the sheet's width.
    static void wind(Mesh &mesh, double curl, int width, int height) {
        const double sheetWidth = circle * postRadius;
        const double sheetHeight = sheetWidth * height / width;
        if (curl >= 1) {
            Post3D(mesh.data(), mesh.columns, mesh.rows, 1, 0, 0, 0, 0, 0, 0, noProjection, 0,
                   static_cast<int>(sheetHeight + 0.5));
            return;
        }
        const bool flat = curl < 0.002;
        for (int column = 0; column < mesh.columns; ++column) {
            const double across = static_cast<double>(column) / (mesh.columns - 1) - 0.5;
            auto x = static_cast<float>(flat ? across * sheetWidth : 0);
            float z = 0;
            if (!flat) {
                // A part of a larger cylinder, whose front comes forward as it closes.
                const double radius = postRadius / curl;
                z = static_cast<float>(-radius);
                fRotate3DByY(&x, &z, static_cast<float>(across * circle * curl));
                z += static_cast<float>(radius - postRadius * curl);
            }
            for (int row = 0; row < mesh.rows; ++row) {
                const double down = static_cast<double>(row) / (mesh.rows - 1) - 0.5;
                mesh.at(row, column) = {x, static_cast<float>(down * sheetHeight), z, 0};
            }
        }
    }

    static void place(const MeshCanvas &canvas, double t, int width, int height) {
        _PRIVATE_QMGL_DATA *const pipeline = canvas.pipeline();
        // A pixel larger on each side than the frame, so that nothing shows beside it when it is flat.
        const double larger = 1 + 2.0 / height;
        const auto unit = static_cast<float>(MeshCanvas::scale * width * larger / (circle * postRadius));
        const double away = easeGently(stretch(t, 0.0, 0.40)) * (1 - easeGently(stretch(t, 0.60, 1.0)));
        VKD_glScalef(pipeline, unit, unit, unit);
        VKD_glRotatef(pipeline, static_cast<float>(540 * easeInOut(stretch(t, 0.10, 0.90))), 0, 1, 0);
        VKD_glRotatef(pipeline, static_cast<float>(10 * away), 0, 0, 1);
        VKD_glRotatef(pipeline, static_cast<float>(-26 * away), 1, 0, 0);
        VKD_glTranslatef(pipeline, 0, 0, static_cast<float>(0.5 * away * height * MeshCanvas::scale));
    }

    /// From before the photograph to behind it: at the end its back is what faces the viewer.
    static MeshLight lightAt(double t, double curl) {
        constexpr double depth = 0.80;
        const double way = mix(depth, -depth, easeInOut(stretch(t, 0.66, 0.94)));
        const _POINT3DFLOAT direction = {0.42F, 0.28F, static_cast<float>(way), 0};
        const double fromTheSide = depth + MeshLight::ambientBeside(direction) - 1;
        return {direction, 1 - depth + 0.5 * fromTheSide + 0.34 * curl, 0.35 * curl, 4};
    }
};

const Registered<Cylinder> registered("cylinder", Effect::Kind::transition, Use::inTurn,
                                      "the photograph winds into a turning cylinder; inside is the next");

} // namespace

} // namespace show
