#include "base/surface.h"
#include "projection.h"
#include "q_Mur/math3d.h"

namespace {

using namespace qmur;

/// The step between `count` positions that lie evenly along `length`. A single position gives no finite step.
float stepAlong(Wide length, int count) {
    return static_cast<float>(length / wrapSubtract(count, 1));
}

} // namespace

void Flat3D(_POINT3DFLOAT *points, int columns, int rows, float scale, float angleX, float angleY, float angleZ,
            int offsetX, int offsetY, int offsetZ, int distance, int width, int height) {
    atFullWidth([=] {
        const FloatPlacement placement(angleX, angleY, angleZ, offsetX, offsetY, offsetZ, distance);
        const float stepX = stepAlong(width, columns);
        const float stepY = stepAlong(height, rows);
        const auto place = [scale](int index, float step, int half) {
            return static_cast<float>((static_cast<Wide>(index) * step - half) * scale);
        };
        _POINT3DFLOAT *point = points;
        for (int row = 0; row < rows; ++row) {
            const float y = place(row, stepY, height / 2);
            for (int column = 0; column < columns; ++column, ++point) {
                point->x = place(column, stepX, width / 2);
                point->y = y;
                point->z = 0;
                placement.apply(point->x, point->y, point->z);
            }
        }
    });
}

void Post3D(_POINT3DFLOAT *points, int columns, int rows, float scale, float angleX, float angleY, float angleZ,
            int offsetX, int offsetY, int offsetZ, int distance, int, int height) {
    atFullWidth([=] {
        constexpr float fullCircle = 6.2831855F;
        static_assert(fullCircle == 0x1.921fb6p+2F);
        const FloatPlacement placement(angleX, angleY, angleZ, offsetX, offsetY, offsetZ, distance);
        const float stepY = stepAlong(height, rows);
        const float stepAngle = stepAlong(fullCircle, columns);
        const float radius = scale * 180;
        const int half = height / 2;
        for (Distance column = 0; column < columns; ++column) {
            float x = 0;
            float z = radius;
            turn(x, z, reversed(sineCosine(static_cast<float>(static_cast<Wide>(column) * stepAngle))));
            for (Distance row = 0; row < rows; ++row) {
                _POINT3DFLOAT &point = points[row * columns + column];
                point.x = x;
                point.y = static_cast<float>((static_cast<Wide>(row) * stepY - half) * scale);
                point.z = z;
                placement.apply(point.x, point.y, point.z);
            }
        }
    });
}

void Interpolate3DPoint(_POINT3DFLOAT *out, _POINT3DFLOAT *a, _POINT3DFLOAT *b, int columns, int rows, float t) {
    if (columns <= 0 || rows <= 0)
        return;
    atFullWidth([=] {
        const auto between = [t](float p, float q) { return static_cast<float>((static_cast<Wide>(q) - p) * t + p); };
        const Distance count = static_cast<Distance>(columns) * rows;
        for (Distance i = 0; i < count; ++i) {
            out[i].x = between(a[i].x, b[i].x);
            out[i].y = between(a[i].y, b[i].y);
            out[i].z = between(a[i].z, b[i].z);
        }
    });
}
