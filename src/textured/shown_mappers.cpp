/// \file
/// Compiled once: within a set's own objects an exported function has the address of the set's own.
#include "q_Mur/textured.h"
#include "span_mappers.h"

const QMGLSpanMapper qmur::shownLinearHPE = VKD_i3D_Mapping_Linear_HPE;
const QMGLSpanMapper qmur::shownLinearHPEKeySrc = VKD_i3D_Mapping_Linear_HPE_KeySrc;
const QMGLSpanMapper qmur::shownNearHPE = VKD_i3D_Mapping_Near_HPE;
