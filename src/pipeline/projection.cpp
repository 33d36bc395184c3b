#include "base/integers.h"
#include "base/wide.h"
#include "matrix.h"
#include "q_Mur/pipeline.h"

using namespace qmur;

void VKD_Mapping3Dto2D(_PRIVATE_QMGL_DATA *data, _POINT3DFLOAT *points, int rows, int columns) {
    atFullWidth([=] {
        data->workMatrix = matrixProduct(data->viewStack[data->viewDepth], data->modelStack[data->modelDepth]);
        const _I3DMATRIX matrix = data->workMatrix;
        const auto m = [&matrix](int row, int column) -> Wide { return matrix.m[4 * row + column]; };
        const auto middle = [](int low, int high) {
            return static_cast<float>(wrapAdd(low, high) * static_cast<Wide>(0.5));
        };
        const float centreX = middle(data->viewportLeft, data->viewportRight);
        const float centreY = middle(data->viewportTop, data->viewportBottom);
        const Wide focalLength = data->focalLength;

        _POINT3DFLOAT *point = points;
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column, ++point) {
                const Wide x = point->x;
                const Wide y = point->y;
                const Wide z = point->z;
                // The order of the terms differs from row to row of the matrix; its last row is never read.
                const auto cameraX = static_cast<float>(z * m(0, 2) + x * m(0, 0) + y * m(0, 1) + m(0, 3));
                const auto cameraY = static_cast<float>(y * m(1, 1) + x * m(1, 0) + z * m(1, 2) + m(1, 3));
                const Wide cameraZ = z * m(2, 2) + y * m(2, 1) + x * m(2, 0) + m(2, 3);
                const Wide depth = focalLength + cameraZ;
                const Wide scale = focalLength / (depth > 1 ? depth : 1);
                point->x = static_cast<float>(cameraX * scale + centreX);
                point->y = static_cast<float>(cameraY * scale + centreY);
                point->z = static_cast<float>(cameraZ);
            }
    });
}
