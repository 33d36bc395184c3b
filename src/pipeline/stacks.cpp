#include "q_Mur/pipeline.h"

#include <algorithm>

namespace {

bool modelIsCurrent(const _PRIVATE_QMGL_DATA &data) {
    return data.matrixMode == 1;
}

_I3DMATRIX &currentMatrix(const _PRIVATE_QMGL_DATA &data) {
    return modelIsCurrent(data) ? data.modelStack[data.modelDepth] : data.viewStack[data.viewDepth];
}

int &currentDepth(_PRIVATE_QMGL_DATA &data) {
    return modelIsCurrent(data) ? data.modelDepth : data.viewDepth;
}

/// The operation in the work matrix comes behind those that the current matrix holds already.
void applyWorkMatrix(_PRIVATE_QMGL_DATA &data) {
    _I3DMATRIX &current = currentMatrix(data);
    MatrixMultiply(current, data.workMatrix, current);
}

void copyElements(_I3DMATRIX &matrix, const float *m) {
    std::copy_n(m, 16, matrix.m);
}

} // namespace

void VKD_glMatrixMode(_PRIVATE_QMGL_DATA *data, int mode) {
    data->matrixMode = mode;
}

void VKD_glLoadIdentity(_PRIVATE_QMGL_DATA *data) {
    SetIdentityMatrix(currentMatrix(*data));
}

void glLoadMatrixf(_PRIVATE_QMGL_DATA *data, const float *m) {
    copyElements(currentMatrix(*data), m);
}

void glMultMatrixf(_PRIVATE_QMGL_DATA *data, const float *m) {
    copyElements(data->workMatrix, m);
    applyWorkMatrix(*data);
}

void VKD_glPushMatrix(_PRIVATE_QMGL_DATA *data) {
    _I3DMATRIX *const top = &currentMatrix(*data);
    top[1] = top[0];
    ++currentDepth(*data);
}

void VKD_glPopMatrix(_PRIVATE_QMGL_DATA *data) {
    --currentDepth(*data);
}

void VKD_glRotatef(_PRIVATE_QMGL_DATA *data, float angleDegrees, float x, float y, float z) {
    // One unit in the last place below the float that is nearest to pi / 180.
    constexpr float radiansPerDegree = 0x1.1df468p-6F;
    if (angleDegrees == 0)
        return;
    data->workAxis.x = x;
    data->workAxis.y = y;
    data->workAxis.z = z;
    SetRotationMatrix(data->workMatrix, data->workAxis, angleDegrees * radiansPerDegree);
    applyWorkMatrix(*data);
}

void VKD_glTranslatef(_PRIVATE_QMGL_DATA *data, float x, float y, float z) {
    SetIdentityMatrix(data->workMatrix);
    data->workMatrix.m[3] = x;
    data->workMatrix.m[7] = y;
    data->workMatrix.m[11] = z;
    applyWorkMatrix(*data);
}

void VKD_glScalef(_PRIVATE_QMGL_DATA *data, float x, float y, float z) {
    data->workMatrix = {{x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1}};
    applyWorkMatrix(*data);
}
