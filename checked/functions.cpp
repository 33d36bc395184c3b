/// \file
/// The exported functions. `q_Mur_checked_functions.inc`, which the build writes from the list of exports, names each
/// of them with the symbol under which the library inside has it.
#include "given.h"

#include <algorithm>
#include <iterator>

#if defined(_WIN32)
// The rows are compiled for hosts of the DLL, which call by pointers of these names.
#define Q_MUR_JOINED(a, b) a##b
#define Q_MUR_NUMBERED(a, b) Q_MUR_JOINED(a, b)
#define Q_MUR_TEXT_OF(token) #token
#define Q_MUR_TEXT(token) Q_MUR_TEXT_OF(token)
#define Q_MUR_POINTER(type, place, symbol, value)                                                                      \
    extern type place __asm__("__imp_" symbol);                                                                        \
    type place = value;
namespace unchecked {
using Function = void (*)();
Q_MUR_POINTER(const void *const, sines, Q_MUR_TEXT(__USER_LABEL_PREFIX__) "iSin", iSin)
Q_MUR_POINTER(const void *const, cosines, Q_MUR_TEXT(__USER_LABEL_PREFIX__) "iCos", iCos)
Q_MUR_POINTER(const void *const, roots, Q_MUR_TEXT(__USER_LABEL_PREFIX__) "iSqrt", iSqrt)
} // namespace unchecked
#else
#define Q_MUR_POINTER(type, place, symbol, value)
#endif

#define Q_MUR_CHECKED(symbol, result, name, types, parameters, arguments)                                              \
    namespace unchecked {                                                                                              \
    result name types __asm__(symbol);                                                                                 \
    Q_MUR_POINTER(const Function, Q_MUR_NUMBERED(function, __LINE__), symbol,                                          \
                  reinterpret_cast<Function>(static_cast<result(*) types>(name)))                                      \
    }                                                                                                                  \
    result name parameters {                                                                                           \
        static const checked::Checked<result types> function(#name, unchecked::name);                                  \
        return function arguments;                                                                                     \
    }
#include <q_Mur_checked_functions.inc>

namespace checked {
namespace {

struct Mapper {
    QMGLSpanMapper exported;
    QMGLSpanMapper inside;
};
constexpr Mapper mappers[] = {
    {VKD_i3D_Mapping_Linear_HPE, unchecked::VKD_i3D_Mapping_Linear_HPE},
    {VKD_i3D_Mapping_Linear_HPE_KeySrc, unchecked::VKD_i3D_Mapping_Linear_HPE_KeySrc},
    {VKD_i3D_Mapping_Near_HPE, unchecked::VKD_i3D_Mapping_Near_HPE},
};

} // namespace

QMGLSpanMapper mapperInside(QMGLSpanMapper mapper) {
    const auto *const found = std::find_if(std::begin(mappers), std::end(mappers),
                                           [mapper](const Mapper &m) { return m.exported == mapper; });
    return found == std::end(mappers) ? mapper : found->inside;
}

MapperSlot::MapperSlot(std::span<const Given> given) {
    for (const Given &argument : given)
        if (argument.target == Target::pipelineBlock && argument.pointer)
            slot = &static_cast<_PRIVATE_QMGL_DATA *>(argument.pointer)->spanMapper;
    if (slot)
        *slot = mapperInside(*slot);
}

MapperSlot::~MapperSlot() {
    for (const Mapper &mapper : mappers)
        if (slot && *slot == mapper.inside)
            *slot = mapper.exported;
}

} // namespace checked
