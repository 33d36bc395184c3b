/// \file
/// Pictures on meshes: lit, with depth and perspective, before a ground of their own.
#ifndef QMUR_SHOW_MESH_H
#define QMUR_SHOW_MESH_H

#include "picture.h"
#include "stage.h"

#include <cstddef>
#include <vector>

namespace show {

/// A grid of points, row after row.
struct Mesh {
    /// With cells of about `cellWidth` by `cellHeight`, of a picture of `width` by `height`, but at least a few.
    static Mesh over(double width, double height, double cellWidth, double cellHeight);

    _POINT3DFLOAT *data() { return points.data(); }
    _POINT3DFLOAT &at(int row, int column) { return points[static_cast<std::size_t>(row * columns + column)]; }
    const _POINT3DFLOAT &at(int row, int column) const {
        return points[static_cast<std::size_t>(row * columns + column)];
    }

    int rows;
    int columns;
    std::vector<_POINT3DFLOAT> points;
};

/// What lights a mesh. The vector leads away from the light: x to the right, y down and z into the depth for a light at
/// the upper left before the picture. Its length is the light's strength.
struct MeshLight {
    _POINT3DFLOAT direction;
    double ambient;  ///< 1 shows the picture as it is
    double specular; ///< strength of the highlight
    int shininess;   ///< how many times the highlight is squared

    /// As much ambient light as leaves a picture that faces the viewer as bright as it is.
    static double ambientBeside(const _POINT3DFLOAT &direction);
};

/// The radius of Post3D() at a scale of 1.
constexpr double postRadius = 180;

/// An eye so far away that Flat3D() and Post3D() project nothing: MeshCanvas does it afterwards.
constexpr int noProjection = 1 << 30;

/// What the edges of a printed sheet look like.
constexpr q_ulong paper = 0xC8C4BC;

/// The place where meshes are drawn: twice as large as the frame, since the library puts the points of a mesh on whole
/// pixels, which would make edges crawl.
class MeshCanvas {
public:
    /// How many of its pixels lie along one of the frame's.
    static constexpr int scale = 2;

    /// For a frame of this size and meshes of no more than `vertices` points.
    MeshCanvas(int width, int height, std::size_t vertices);
    ~MeshCanvas() { FreeMemoryBlocks(&record); }
    MeshCanvas(const MeshCanvas &) = delete;
    MeshCanvas &operator=(const MeshCanvas &) = delete;

    /// The matrix pipeline. Its view is set: points in the plane z = 0 count this canvas's pixels from its middle. The
    /// model matrix is the identity at first.
    _PRIVATE_QMGL_DATA *pipeline() const { return data; }

    /// Brings the points to the canvas, by the pipeline's matrices.
    void project(Mesh &mesh) const { VKD_Mapping3Dto2D(data, mesh.data(), mesh.rows, mesh.columns); }

    /// Fills the canvas with a picture of the frame's size.
    void fill(const Surface &ground) const;

    /// Draws the mesh, of projected points, with a picture of the frame's size whose margin repeats its edges.
    void draw(Mesh &mesh, const Surface &front, const MeshLight &light) const;

    /// Draws the mesh with one picture where it faces the viewer, and another one, of the same pitch, on its back.
    void draw(Mesh &mesh, const Surface &front, const Surface &back, const MeshLight &light) const;

    /// Draws the outline of the mesh that was drawn last, in its light: a thin rim of this colour, whose edges are
    /// smoother than those of the picture.
    void drawRim(const Mesh &mesh, q_ulong colour) const;

    /// Brings what was drawn to the frame.
    void finish(const Surface &out) const { drawHalved(out, canvas); }

private:
    /// Draws again, a little nearer to the viewer, the cells beside which the mesh turns its back: where both sides
    /// have the same depth, the front is to be seen.
    void drawOutline(const Mesh &mesh, const Surface &front) const;
    void drawCell(const Mesh &mesh, const Surface &picture, int row, int column) const;

    PlaneLayout layout;
    TransferFrameGeometry geometry = {};
    TransferLimits3D limits = {};
    _TRANSFERDATA record = {};
    Surface canvas;
    _PRIVATE_QMGL_DATA *data = nullptr;
};

/// Lets a transition by a mesh, at `t`, begin and end with the photographs themselves: the mesh softens them a little,
/// which must not happen from one frame to the next.
void blendEnds(const Surface &out, const Surface &before, const Surface &after, double t);

/// The ground below a mesh: a quarter of the frame's size, so that it is blurred when it fills the frame.
class Ground {
public:
    /// The blurred mixture of two pictures, `t` of the second one, at `brightness`.
    Ground(Stage &stage, const Surface &first, const Surface &second, double t, double brightness);

    /// Lays the soft shadow of a mesh, of points projected for a MeshCanvas, on the ground.
    void castShadow(Stage &stage, const Mesh &mesh, double offsetX, double offsetY, double opacity) const;

    void fill(const Surface &out) const;

private:
    Stage::Plane plane;
    Surface small;
};

} // namespace show

#endif
