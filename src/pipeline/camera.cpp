#include "base/integers.h"
#include "base/vector.h"
#include "matrix.h"
#include "q_Mur/pipeline.h"

namespace {

using namespace qmur;

/// Lengths below this count as none.
constexpr float tinyLength = 0.000001F;

/// What of `v` is left across the direction `along`, a unit vector, of which v is to lose `share`.
_I3DVECTOR withoutShare(const _I3DVECTOR &v, const _I3DVECTOR &along, Wide share) {
    return difference(v, scaled(along, share));
}

/// Each vector is rounded to floats; of a magnitude only what a vector is divided by is.
_I3DVECTOR unitOf(const _I3DVECTOR &v, Wide length) {
    return dividedBy(v, static_cast<float>(length));
}

} // namespace

void VKD_glViewPort(_PRIVATE_QMGL_DATA *data, int left, int top, int right, int bottom) {
    data->viewportLeft = left;
    data->viewportTop = top;
    data->viewportRight = right;
    data->viewportBottom = bottom;
}

void VKD_gluPerspective(_PRIVATE_QMGL_DATA *data, float fovyDegrees, float, float zNear, float zFar) {
    // Half of the angle, in the same short radians as the rotations.
    constexpr float halfRadiansPerDegree = 0x1.1df468p-7F;
    const int halfHeight = wrapSubtract(data->viewportBottom, data->viewportTop) / 2;
    data->focalLength = atFullWidth([=] {
        const Wide slope = tangent(static_cast<Wide>(fovyDegrees) * halfRadiansPerDegree);
        return slope == 0 ? 0x8000 : truncateToInt(halfHeight / slope);
    });
    data->nearLimit = truncateToInt(-zNear);
    data->farLimit = truncateToInt(-zFar);
}

void VKD_gluLookAt(_PRIVATE_QMGL_DATA *data, float eyeX, float eyeY, float eyeZ, float centerX, float centerY,
                   float centerZ, float upX, float upY, float upZ) {
    atFullWidth([=] {
        const _I3DVECTOR eye = {eyeX, eyeY, -eyeZ, 0};
        const _I3DVECTOR centre = {centerX, centerY, -centerZ, 0};
        const _I3DVECTOR up = {upX, upY, -upZ, 0};

        _I3DVECTOR forward = difference(centre, eye);
        const Wide distance = magnitude(forward);
        if (distance <= tinyLength)
            return;
        forward = unitOf(forward, distance);

        _I3DVECTOR vertical = withoutShare(up, forward, dotProduct(up, forward));
        Wide length = magnitude(vertical);
        if (length < tinyLength) {
            vertical = withoutShare({0, 1, 0, 0}, forward, forward.y);
            length = magnitude(vertical);
            // Meant: the length of the last resort is not worked out again, so a camera that looks along world Y, with
            // its up vector along the same line, gets a huge matrix.
            if (length < tinyLength)
                vertical = withoutShare({0, 0, 1, 0}, forward, forward.z);
        }
        vertical = unitOf(vertical, length);
        const _I3DVECTOR right = crossProduct(vertical, forward);

        _I3DMATRIX &matrix = data->workMatrix;
        const auto setRow = [&matrix, &eye](int row, const _I3DVECTOR &v) {
            float *const elements = matrix.m + 4 * row;
            elements[0] = v.x;
            elements[1] = v.y;
            elements[2] = v.z;
            elements[3] = static_cast<float>(-dotProduct(eye, v));
        };
        matrix = identityMatrix;
        setRow(0, right);
        setRow(1, vertical);
        setRow(2, forward);
        _I3DMATRIX &view = data->viewStack[data->viewDepth];
        view = matrixProduct(matrix, view);
    });
}
