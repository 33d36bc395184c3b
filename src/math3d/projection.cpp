#include "projection.h"

#include "q_Mur/math3d.h"

namespace {

using namespace qmur;

int intDepth(int z, int distance) {
    return larger(wrapAdd(distance, z), nearestDistance);
}

} // namespace

void fMove3D(float *x, float *y, float *z, int dx, int dy, int dz) {
    *x += static_cast<float>(dx);
    *y += static_cast<float>(dy);
    *z += static_cast<float>(dz);
}

void iMove3D(int *x, int *y, int *z, int dx, int dy, int dz) {
    *x = wrapAdd(*x, dx);
    *y = wrapAdd(*y, dy);
    *z = wrapAdd(*z, dz);
}

void fConvertReal2Viewport(float *x, float *y, float *z, int distance) {
    atFullWidth([=] {
        const Wide factor = perspective(*z, distance);
        *x = static_cast<float>(*x * factor);
        *y = static_cast<float>(*y * factor);
    });
}

void fConvertReal2Viewport(float *x, float *y, float *z, int centreX, int centreY, int distance) {
    atFullWidth([=] {
        const Wide factor = perspective(*z, distance);
        const auto about = [factor](float coordinate, int centre) {
            const auto fromCentre = static_cast<float>(static_cast<Wide>(coordinate) - centre);
            return static_cast<float>(fromCentre * factor + centre);
        };
        *x = about(*x, centreX);
        *y = about(*y, centreY);
    });
}

void iConvertReal2Viewport(int *x, int *y, int *z, int distance) {
    const int depth = intDepth(*z, distance);
    *x = wrapMultiply(*x, distance) / depth;
    *y = wrapMultiply(*y, distance) / depth;
}

void iConvertReal2Viewport(int *x, int *y, int *z, int centreX, int centreY, int distance) {
    const int depth = intDepth(*z, distance);
    *x = wrapAdd(wrapMultiply(wrapSubtract(*x, centreX), distance) / depth, centreX);
    *y = wrapAdd(wrapMultiply(wrapSubtract(*y, centreY), distance) / depth, centreY);
}

void fMapping3D(float *x, float *y, float *z, float angleX, float angleY, float angleZ, int offsetX, int offsetY,
                int offsetZ, int distance) {
    atFullWidth([=] { FloatPlacement(angleX, angleY, angleZ, offsetX, offsetY, offsetZ, distance).apply(*x, *y, *z); });
}

void iMapping3D(int *x, int *y, int *z, unsigned short angleX, unsigned short angleY, unsigned short angleZ,
                int offsetX, int offsetY, int offsetZ, int distance) {
    iRotate3D(x, y, z, angleX, angleY, angleZ);
    *z = wrapAdd(*z, offsetZ);
    iConvertReal2Viewport(x, y, z, distance);
    *x = wrapAdd(*x, offsetX);
    *y = wrapAdd(*y, offsetY);
}
