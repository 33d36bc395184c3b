/// \file
/// Space in front of the viewer: the library's matrix pipeline over a surface of its own.
#ifndef QMUR_SHOW_SPACE_H
#define QMUR_SHOW_SPACE_H

#include "surface.h"

namespace show {

/// A private block of the pipeline, with the surface that is drawn into through it. The surface has twice the frame's
/// pixels in either direction, since the pipeline places points on whole pixels and draws hard edges: halved onto the
/// frame, edges are smooth and motion is fine. Frames that are large anyway are drawn at their own size.
///
/// Lengths count pixels of this surface. The origin is its middle, x goes right, y down and z away from the viewer.
class Space {
public:
    Space(int frameWidth, int frameHeight);
    ~Space();
    Space(const Space &) = delete;
    Space &operator=(const Space &) = delete;

    const Surface &surface() const { return picture; }
    /// Pixels of the surface for one of the frame.
    int scale() const { return pixelsPerFramePixel; }
    _PRIVATE_QMGL_DATA *pipeline() const { return data; }
    /// From the eye to the plane z = 0, which fills the surface one to one as long as the camera stands there.
    double focalLength() const { return data->focalLength; }

    /// Sets a perspective in which the longer side of the surface is seen under `degrees`, empties both matrix stacks
    /// and the Z plane, and places the camera before the origin. What is nearer to the eye than a twentieth of the
    /// focal length is not drawn.
    void begin(double degrees);

    /// Places the camera and turns it to a point.
    void look(const _POINT3DFLOAT &eye, const _POINT3DFLOAT &at);

    /// Fills the surface with a picture of the frame's size, of which show() gives back the same pixels.
    void fillWith(const Surface &frame);

    /// Brings the surface onto the frame.
    void show(const Surface &frame);

private:
    int frameWidth;
    int frameHeight;
    int pixelsPerFramePixel;
    Canvas canvas;
    Surface picture;
    TransferFrameGeometry geometry = {};
    TransferLimits3D limits = {};
    _TRANSFERDATA record = {};
    _PRIVATE_QMGL_DATA *data;
};

} // namespace show

#endif
