/// \file
/// Matrices, stacks, camera and projection once more.
#ifndef Q_MUR_TESTS_PLAIN_MATRICES_H
#define Q_MUR_TESTS_PLAIN_MATRICES_H

#include "vectors.h"

namespace plain {

inline void SetIdentityMatrix(_I3DMATRIX &m) {
    for (int i = 0; i < 16; ++i)
        m.m[i] = i / 4 == i % 4 ? 1.0F : 0.0F;
}

inline void SetRotationMatrix(_I3DMATRIX &m, _I3DVECTOR &axis, float radians) {
    const FullWidth scope;
    const Vector u = unit(vectorOf(axis));
    const Real c = static_cast<float>(cosine(radians));
    const Real s = static_cast<float>(sine(radians));
    const Real t = static_cast<float>(1 - c);
    const Real x = u.x;
    const Real y = u.y;
    const Real z = u.z;
    const Real elements[4][4] = {{t * x * x + c, t * x * y + s * z, t * x * z - s * y, 0},
                                 {t * x * y - s * z, t * y * y + c, t * y * z + s * x, 0},
                                 {t * x * z + s * y, t * y * z - s * x, t * z * z + c, 0},
                                 {0, 0, 0, 1}};
    for (int i = 0; i < 16; ++i)
        m.m[i] = static_cast<float>(elements[i / 4][i % 4]);
}

inline void MatrixMultiply(_I3DMATRIX &out, _I3DMATRIX &a, _I3DMATRIX &b) {
    const FullWidth scope;
    _I3DMATRIX product;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            Real sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += Real{a.m[4 * row + k]} * Real{b.m[4 * k + column]};
            product.m[4 * row + column] = static_cast<float>(sum);
        }
    out = product;
}

inline _I3DMATRIX &modelTop(_PRIVATE_QMGL_DATA &data) {
    return data.modelStack[data.modelDepth];
}
inline _I3DMATRIX &viewTop(_PRIVATE_QMGL_DATA &data) {
    return data.viewStack[data.viewDepth];
}
inline _I3DMATRIX &current(_PRIVATE_QMGL_DATA &data) {
    return data.matrixMode == 1 ? modelTop(data) : viewTop(data);
}

inline void VKD_glMatrixMode(_PRIVATE_QMGL_DATA *data, int mode) {
    data->matrixMode = mode;
}

inline void VKD_glLoadIdentity(_PRIVATE_QMGL_DATA *data) {
    plain::SetIdentityMatrix(current(*data));
}

inline void glLoadMatrixf(_PRIVATE_QMGL_DATA *data, const float *m) {
    std::copy_n(m, 16, current(*data).m);
}

/// What is behind the current matrix.
inline void act(_PRIVATE_QMGL_DATA &data, const _I3DMATRIX &matrix) {
    data.workMatrix = matrix;
    plain::MatrixMultiply(current(data), data.workMatrix, current(data));
}

inline void glMultMatrixf(_PRIVATE_QMGL_DATA *data, const float *m) {
    _I3DMATRIX matrix;
    std::copy_n(m, 16, matrix.m);
    act(*data, matrix);
}

inline void VKD_glPushMatrix(_PRIVATE_QMGL_DATA *data) {
    const _I3DMATRIX top = current(*data);
    ++(data->matrixMode == 1 ? data->modelDepth : data->viewDepth);
    current(*data) = top;
}

inline void VKD_glPopMatrix(_PRIVATE_QMGL_DATA *data) {
    --(data->matrixMode == 1 ? data->modelDepth : data->viewDepth);
}

inline void VKD_glRotatef(_PRIVATE_QMGL_DATA *data, float angleDegrees, float x, float y, float z) {
    if (angleDegrees == 0)
        return;
    data->workAxis.x = x;
    data->workAxis.y = y;
    data->workAxis.z = z;
    const float radians = static_cast<float>(double{angleDegrees} * 0x1.1DF468p-6);
    _I3DMATRIX rotation;
    plain::SetRotationMatrix(rotation, data->workAxis, radians);
    act(*data, rotation);
}

inline void VKD_glTranslatef(_PRIVATE_QMGL_DATA *data, float x, float y, float z) {
    act(*data, {{1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z, 0, 0, 0, 1}});
}

inline void VKD_glScalef(_PRIVATE_QMGL_DATA *data, float x, float y, float z) {
    act(*data, {{x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1}});
}

inline void VKD_glViewPort(_PRIVATE_QMGL_DATA *data, int left, int top, int right, int bottom) {
    data->viewportLeft = left;
    data->viewportTop = top;
    data->viewportRight = right;
    data->viewportBottom = bottom;
}

inline void VKD_gluPerspective(_PRIVATE_QMGL_DATA *data, float fovyDegrees, float, float zNear, float zFar) {
    const FullWidth scope;
    const Real slope = tangent(Real{fovyDegrees} * 0x1.1DF468p-7);
    const Number half = signed32(Number{data->viewportBottom} - data->viewportTop) / 2;
    data->focalLength = slope == 0 ? 32768 : truncated(static_cast<Real>(half) / slope);
    data->nearLimit = truncated(-Real{zNear});
    data->farLimit = truncated(-Real{zFar});
}

inline void VKD_gluLookAt(_PRIVATE_QMGL_DATA *data, float eyeX, float eyeY, float eyeZ, float centerX, float centerY,
                          float centerZ, float upX, float upY, float upZ) {
    _I3DMATRIX view;
    {
        const FullWidth scope;
        const Real tiny = 0x1.0C6F7Ap-20;
        /// What is left of a vector without its part along another.
        const auto beside = [](const Vector &v, Real part, const Vector &along) {
            return difference(v, eachComponent([&](float Vector::*k) { return part * along.*k; }));
        };
        const Vector eye = {eyeX, eyeY, -eyeZ};
        const Vector sight = difference({centerX, centerY, -centerZ}, eye);
        if (lengthOf(sight) <= tiny)
            return;
        const Vector forward = quotient(sight, static_cast<float>(lengthOf(sight)));
        const Vector up = {upX, upY, -upZ};
        Vector down = beside(up, dot(up, forward), forward);
        Real length = lengthOf(down);
        if (length < tiny) {
            down = beside({0, 1, 0}, forward.y, forward);
            length = lengthOf(down);
            if (length < tiny)
                down = beside({0, 0, 1}, forward.z, forward); // over the length that is left of the other
        }
        down = quotient(down, static_cast<float>(length));
        const Vector right = cross(down, forward);
        int row = 0;
        for (const Vector &axis : {right, down, forward}) {
            float *elements = view.m + 4 * row++;
            elements[0] = axis.x;
            elements[1] = axis.y;
            elements[2] = axis.z;
            elements[3] = static_cast<float>(-dot(eye, axis));
        }
        std::copy_n(std::array<float, 4>{0, 0, 0, 1}.data(), 4, view.m + 12);
    }
    data->workMatrix = view;
    plain::MatrixMultiply(viewTop(*data), view, viewTop(*data));
}

inline void VKD_Mapping3Dto2D(_PRIVATE_QMGL_DATA *data, _POINT3DFLOAT *points, int rows, int columns) {
    plain::MatrixMultiply(data->workMatrix, viewTop(*data), modelTop(*data));
    const FullWidth scope;
    const auto m = [data](int row, int column) -> Real { return data->workMatrix.m[4 * row + column]; };
    const auto middle = [](int a, int b) { return static_cast<float>(static_cast<Real>(signed32(Number{a} + b)) / 2); };
    const Real middleX = middle(data->viewportLeft, data->viewportRight);
    const Real middleY = middle(data->viewportTop, data->viewportBottom);
    const Real focalLength = data->focalLength;
    for (Number row = 0; row < rows; ++row)
        for (Number column = 0; column < columns; ++column) {
            _POINT3DFLOAT &p = points[row * columns + column];
            const Real x = p.x;
            const Real y = p.y;
            const Real z = p.z;
            const Real cameraX = static_cast<float>(z * m(0, 2) + x * m(0, 0) + y * m(0, 1) + m(0, 3));
            const Real cameraY = static_cast<float>(y * m(1, 1) + x * m(1, 0) + z * m(1, 2) + m(1, 3));
            const Real depth = z * m(2, 2) + y * m(2, 1) + x * m(2, 0) + m(2, 3);
            const Real distance = focalLength + depth;
            const Real scale = focalLength / (distance > 1 ? distance : 1);
            p.x = static_cast<float>(cameraX * scale + middleX);
            p.y = static_cast<float>(cameraY * scale + middleY);
            p.z = static_cast<float>(depth);
        }
}

} // namespace plain

#endif
