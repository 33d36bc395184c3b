#include "space.h"

#include "painting.h"
#include "picture.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace show {

namespace {

// Depths have 16 bits: a surface of twice this size still leaves them room.
constexpr int largestDoubled = 2560;

constexpr int vertexArrayEntries = 65536;
constexpr int matrixStackDepth = 32;

int scaleFor(int width, int height) {
    return std::max(width, height) > largestDoubled ? 1 : 2;
}

} // namespace

// VKD_ResetZBuffer() counts in pairs of columns: the surface has an even number of them.
Space::Space(int width, int height)
    : frameWidth(width), frameHeight(height), pixelsPerFramePixel(scaleFor(width, height)),
      canvas((width * pixelsPerFramePixel + 1) / 2 * 2, height * pixelsPerFramePixel), picture(canvas.surface()) {
    const PlaneLayout layout = {picture.width, picture.height};
    geometry.planeElements = layout.elements();
    geometry.originElement = layout.origin();
    limits.vertexArrayEntries = vertexArrayEntries;
    limits.matrixStackDepth = matrixStackDepth;
    record.frameGeometry = &geometry;
    record.limits3D = &limits;
    data = GetPrivate_QMGL_Data(&record, 0);
    if (!data)
        throw std::bad_alloc();
}

Space::~Space() {
    FreeMemoryBlocks(&record);
}

void Space::begin(double degrees) {
    // The opening angle is that of the viewport's height, which is made as high as the longer side.
    const int width = frameWidth * pixelsPerFramePixel;
    const int height = frameHeight * pixelsPerFramePixel;
    const int side = std::max(width, height);
    const int left = (width - side) / 2;
    const int top = (height - side) / 2;
    VKD_glViewPort(data, left, top, width - left, height - top);
    const auto angle = static_cast<float>(degrees);
    VKD_gluPerspective(data, angle, 1, 0, 0);
    VKD_gluPerspective(data, angle, 1, static_cast<float>(data->focalLength * 0.95), 0);
    for (const int mode : {0, 1}) {
        VKD_glMatrixMode(data, mode);
        VKD_glLoadIdentity(data);
    }
    // As one long row, margins included: whatever pitch is drawn with then finds it empty.
    tagRECT all = {0, 0, picture.pitch * picture.height, 1};
    VKD_ResetZBuffer(data, &all, picture.pitch);
}

void Space::look(const _POINT3DFLOAT &eye, const _POINT3DFLOAT &at) {
    const int mode = data->matrixMode;
    VKD_glMatrixMode(data, 0);
    VKD_glLoadIdentity(data);
    // The pipeline's camera takes z toward the viewer, and stands where the picture plane is: the eye is behind it.
    VKD_gluLookAt(data, eye.x, eye.y, -eye.z, at.x, at.y, -at.z, 0, 1, 0);
    VKD_glTranslatef(data, 0, 0, static_cast<float>(-data->focalLength));
    VKD_glMatrixMode(data, mode);
}

void Space::fillWith(const Surface &frame) {
    tagRECT from = {0, 0, frameWidth, frameHeight};
    tagRECT to = {0, 0, frameWidth * pixelsPerFramePixel, frameHeight * pixelsPerFramePixel};
    iBltNear32(picture.pixels, frame.pixels, &to, &from, picture.pitch, frame.pitch);
}

void Space::show(const Surface &frame) {
    if (pixelsPerFramePixel == 1)
        copy(frame, picture);
    else
        drawHalved(frame, picture);
}

} // namespace show
