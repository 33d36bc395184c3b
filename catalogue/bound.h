/// \file
/// An exported function and its plain twin, bound to the arguments of a call by their common signature.
#ifndef Q_MUR_CATALOGUE_BOUND_H
#define Q_MUR_CATALOGUE_BOUND_H

#include "call.h"

#include <functional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <typeindex>
#include <utility>
#include <vector>

namespace catalogue {
namespace detail {

template <class>
inline constexpr bool isKnown = false;

template <class T>
T passed(Value &value) {
    using Target = std::remove_cv_t<std::remove_pointer_t<std::remove_reference_t<T>>>;
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value.number());
    else if constexpr (std::is_integral_v<T>)
        return static_cast<T>(static_cast<std::int64_t>(value.number()));
    else if constexpr (std::is_same_v<T, tagRECT> || std::is_same_v<T, tagPOINT>)
        return value.get<T>();
    else if constexpr (std::is_same_v<T, tagRECT *> || std::is_same_v<T, tagPOINT *>)
        return value.is<Target>() ? &value.get<Target>() : nullptr;
    else if constexpr (std::is_same_v<Target, _PRIVATE_QMGL_DATA>)
        return value.get<PipelineBlock>().settled();
    else if constexpr (std::is_same_v<Target, _PRIVATE_QM3D_DATA>)
        return value.get<TexturedBlock>().settled();
    else if constexpr (std::is_same_v<Target, _PRIVATE_QMGP_DATA>)
        return value.get<RegionBlock>().settled();
    else if constexpr (std::is_same_v<Target, _PRIVATE_LUT_DATA>)
        return value.get<PhaseBlock>().settled();
    else if constexpr (std::is_reference_v<T>)
        return *value.plane().as<Target>();
    else if constexpr (std::is_pointer_v<T>)
        return value.is<Plane>() ? value.plane().as<Target>() : nullptr;
    else
        static_assert(isKnown<T>, "no value of a call passes as this type");
}

} // namespace detail

/// What a parameter takes, as far as it matters to those who choose a value.
enum class Type { real, reals, pipelineBlock, texturedBlock, other };

template <class T>
constexpr Type typeOf() {
    using Target = std::remove_cv_t<std::remove_pointer_t<std::remove_reference_t<T>>>;
    if (std::is_floating_point_v<T>)
        return Type::real;
    if (std::is_floating_point_v<Target> || std::is_same_v<Target, _POINT3DFLOAT> || std::is_same_v<Target, _I3DVECTOR>)
        return Type::reals;
    if (std::is_same_v<Target, _PRIVATE_QMGL_DATA>)
        return Type::pipelineBlock;
    return std::is_same_v<Target, _PRIVATE_QM3D_DATA> ? Type::texturedBlock : Type::other;
}

/// Ready to run as often as wanted on the values of one call, which must stay where it is.
using Run = std::function<void()>;

struct Bound {
    std::function<Run(Call &)> library;
    std::function<Run(Call &)> twin; ///< empty where there is none
    std::vector<Type> types;         ///< of the parameters
    std::vector<bool> isPointer;     ///< of the parameters, too
    bool hasResult;
    std::size_t resultBytes; ///< 0 without a result
    std::type_index signature;
};

template <class Result, class... Parameters>
std::function<Run(Call &)> bound(Result (*function)(Parameters...)) {
    return [function](Call &call) -> Run {
        return [&]<std::size_t... index>(std::index_sequence<index...>)->Run {
            return [function, &call,
                    arguments = std::tuple<Parameters...>(detail::passed<Parameters>(call[index])...)]() mutable {
                static_cast<void>(call); // unused where nothing is returned
                if constexpr (std::is_void_v<Result>)
                    std::apply(function, arguments);
                else
                    call.keep(std::apply(function, arguments));
            };
        }
        (std::index_sequence_for<Parameters...>());
    };
}

template <class Result>
constexpr std::size_t bytesOfResult() {
    if constexpr (std::is_void_v<Result>)
        return 0;
    else
        return sizeof(Result);
}

template <class Result, class... Parameters>
Bound callOf(Result (*function)(Parameters...), Result (*twin)(Parameters...)) {
    return {.library = bound(function),
            .twin = twin ? bound(twin) : nullptr,
            .types = {typeOf<Parameters>()...},
            .isPointer = {std::is_pointer_v<Parameters>...},
            .hasResult = !std::is_void_v<Result>,
            .resultBytes = bytesOfResult<Result>(),
            .signature = typeid(Result(Parameters...))};
}

template <class Result, class... Parameters>
Bound callOf(Result (*function)(Parameters...), std::nullptr_t) {
    return callOf(function, static_cast<Result (*)(Parameters...)>(nullptr));
}

/// The overload of this signature.
template <class Signature>
Bound callOfOverload(Signature *function, Signature *twin) {
    return callOf(function, twin);
}

} // namespace catalogue

#if defined(Q_MUR_CATALOGUE_WITHOUT_TWINS)

// Programs that draw only have no need of twins.
#define Q_MUR_FUNCTION(function) .name = #function, .functions = callOf(function, nullptr)
#define Q_MUR_OVERLOAD(function, ...) .name = #function, .functions = callOfOverload<__VA_ARGS__>(function, nullptr)

#else

/// The beginning of a row: the function's name, itself and its twin of the same name.
#define Q_MUR_FUNCTION(function) .name = #function, .functions = callOf(function, plain::function)

/// The same for the overload of a signature, which begins with the type of the result.
#define Q_MUR_OVERLOAD(function, ...)                                                                                  \
    .name = #function, .functions = callOfOverload<__VA_ARGS__>(function, plain::function)

#endif

/// The same for a function that has no twin, since what it does is nothing that could be computed again.
#define Q_MUR_FUNCTION_WITHOUT_TWIN(function) .name = #function, .functions = callOf(function, nullptr)

#endif
