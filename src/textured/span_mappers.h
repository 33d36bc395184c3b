/// \file
/// The span mappers that have no exported name. All of them take `u` and `v` in sixteenths of a texel where they
/// filter, in whole texels where they take the nearest.
#ifndef Q_MUR_TEXTURED_SPAN_MAPPERS_H
#define Q_MUR_TEXTURED_SPAN_MAPPERS_H

#include "walks/bands.h"

namespace qmur {

/// A column with its texel, depth and light.
struct MappedColumn {
    int x;
    int u;
    int v;
    int z;
    int add;
    int mul;

    template <class Operation, class... Columns>
    static constexpr MappedColumn each(Operation operation, const Columns &...c) {
        return {.x = operation(c.x...),
                .u = operation(c.u...),
                .v = operation(c.v...),
                .z = operation(c.z...),
                .add = operation(c.add...),
                .mul = operation(c.mul...)};
    }
};

extern const QM3DSpanMapper mapLinearHPE;        ///< filtered, light interpolated, Z plane tested
extern const QM3DSpanMapper mapLinearHPEKeySrc;  ///< the same without pixels of which all texels are 0
extern const QM3DSpanMapper mapNearHPE;          ///< nearest texel, light interpolated, Z plane tested
extern const QM3DSpanMapper mapLinearNoHPE;      ///< filtered, light of the start of the left edge
extern const QM3DSpanMapper mapNearNoHPE;        ///< nearest texel, light of the start of the left edge
extern const QM3DSpanMapper mapNearNoLightNoHPE; ///< nearest texel as it is

/// The mappers of the matrix pipeline under their exported addresses, with which hosts compare what they find in a
/// slot.
extern const QMGLSpanMapper shownLinearHPE;
extern const QMGLSpanMapper shownLinearHPEKeySrc;
extern const QMGLSpanMapper shownNearHPE;

} // namespace qmur

#endif
