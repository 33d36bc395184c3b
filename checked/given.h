/// \file
/// A call as it comes from the host, and what checks it before it is passed on.
#ifndef Q_MUR_CHECKED_GIVEN_H
#define Q_MUR_CHECKED_GIVEN_H

#include "catalogue/row.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeindex>
#include <utility>

namespace checked {

/// What a pointer leads to.
enum class Target { nothing, elements, rect, point, hostRecord, pipelineBlock, texturedBlock, regionBlock, phaseBlock };

/// An argument as it comes.
struct Given {
    catalogue::Value value = {}; ///< of what is no pointer
    Target target = Target::nothing;
    void *pointer = nullptr;
    int elementBytes = 0;
};

template <class Record>
constexpr Target targetOf() {
    constexpr std::pair<bool, Target> known[] = {
        {std::is_same_v<Record, tagRECT>, Target::rect},
        {std::is_same_v<Record, tagPOINT>, Target::point},
        {std::is_same_v<Record, _TRANSFERDATA>, Target::hostRecord},
        {std::is_same_v<Record, _PRIVATE_QMGL_DATA>, Target::pipelineBlock},
        {std::is_same_v<Record, _PRIVATE_QM3D_DATA>, Target::texturedBlock},
        {std::is_same_v<Record, _PRIVATE_QMGP_DATA>, Target::regionBlock},
        {std::is_same_v<Record, _PRIVATE_LUT_DATA>, Target::phaseBlock},
    };
    for (const auto &[is, target] : known)
        if (is)
            return target;
    return Target::elements;
}

template <class Element>
constexpr int bytesOfElement() {
    if constexpr (std::is_arithmetic_v<Element>)
        return sizeof(Element);
    else
        return 4; // records count by their words
}

template <class Argument>
Given givenBy(Argument &argument) {
    if constexpr (std::is_arithmetic_v<Argument>) {
        return {.value = static_cast<double>(argument)};
    } else if constexpr (std::is_pointer_v<Argument>) {
        using Element = std::remove_cv_t<std::remove_pointer_t<Argument>>;
        return {.target = targetOf<Element>(),
                .pointer = const_cast<Element *>(argument),
                .elementBytes = bytesOfElement<Element>()};
    } else if constexpr (std::is_constructible_v<catalogue::Value, Argument>) {
        return {.value = argument};
    } else {
        return {.target = Target::elements, .pointer = &argument, .elementBytes = 4};
    }
}

/// The row of a function, also under a further name.
const catalogue::Row &rowOf(std::string_view name, const std::type_index &signature);

/// What is wrong with a call, and what of it keeps to the contract and makes no sense; empty if nothing is.
struct Verdict {
    std::string fault;
    std::string doubt;
};
Verdict judge(const catalogue::Row &row, std::span<const Given> given);

/// Reports what is wrong with a call. \return whether it may be made
bool mayBeMade(std::string_view name, const catalogue::Row &row, std::span<const Given> given);

/// Takes notice of what a call has allocated.
void notice(const catalogue::Row &row, std::span<const Given> given, const void *allocated);

/// A mapper of the library inside for the exported one of the same name; any other as it is.
QMGLSpanMapper mapperInside(QMGLSpanMapper mapper);

/// The mapper slot of a pipeline's block names an exported function. For as long as the library inside works, it names
/// the one inside.
class MapperSlot {
public:
    explicit MapperSlot(std::span<const Given> given);
    ~MapperSlot();
    MapperSlot(const MapperSlot &) = delete;
    MapperSlot &operator=(const MapperSlot &) = delete;

private:
    QMGLSpanMapper *slot = nullptr;
};

/// A function that is checked before it is called.
template <class Signature>
class Checked;

template <class Result, class... Parameters>
class Checked<Result(Parameters...)> {
public:
    Checked(std::string_view calledName, Result (*unchecked)(Parameters...))
        : name(calledName), row(rowOf(calledName, typeid(Result(Parameters...)))), function(unchecked) {}

    Result operator()(Parameters... arguments) const {
        const std::array<Given, sizeof...(Parameters)> given = {givenBy(arguments)...};
        if (!mayBeMade(name, row, given))
            return Result();
        const MapperSlot slot(given);
        if constexpr (std::is_pointer_v<Result>) {
            const Result result = function(arguments...);
            notice(row, given, result);
            return result;
        } else {
            return function(arguments...);
        }
    }

private:
    std::string_view name;
    const catalogue::Row &row;
    Result (*function)(Parameters...);
};

} // namespace checked

#endif
