/// \file
/// The functions at full width under other names, made to ask their wider computation every few calls.
#define Q_MUR_SOFT_WIDE_DOUBT_BITS 59
#define softSineCosine doubtingSineCosine
#define softTangent doubtingTangent
#define softArcTangent doubtingArcTangent
#define softPowerOf2Less1 doubtingPowerOf2Less1
#define softExponential doubtingExponential
#include "base/soft_wide.cpp"
