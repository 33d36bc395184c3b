/// \file
/// The functions as Python calls them. Arguments come by the names of their rows; arrays lend their memory for the
/// length of a call, which is held against its row as in the checked library and is made without Python's lock.
/// `q_Mur_checked_functions.inc` names each function with the symbol under which the library inside has it.
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "checked/blocks.h"
#include "checked/given.h"
#include "checked/memory.h"

#include <q_Mur/checked.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#define Q_MUR_CHECKED(symbol, result, name, types, parameters, arguments)                                              \
    namespace unchecked {                                                                                              \
    result name types __asm__(symbol);                                                                                 \
    }
#include <q_Mur_checked_functions.inc>
#undef Q_MUR_CHECKED

namespace {

using catalogue::Argument;
using catalogue::Kind;
using catalogue::Row;
using checked::Given;
using checked::Lent;
using checked::Target;

/// Says what is wrong and ends a conversion.
struct Failure {};

template <class... Words>
[[noreturn]] void fail(PyObject *type, const char *format, Words... words) {
    PyErr_Format(type, format, words...);
    throw Failure();
}

// The types of this module. They are made when it is loaded, and stay.

PyTypeObject *framedType;
PyTypeObject *recordType;
PyTypeObject *blockType;

template <class Struct>
Struct &content(PyObject *object) {
    return *reinterpret_cast<Struct *>(object);
}

template <class Struct>
PyObject *make(PyTypeObject *type) {
    auto *const allocate = reinterpret_cast<allocfunc>(PyType_GetSlot(type, Py_tp_alloc));
    return allocate(type, 0);
}

void destroy(PyObject *object) {
    PyTypeObject *const type = Py_TYPE(object);
    reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free))(object);
    Py_DECREF(type);
}

/// A surface within a larger array: pixel (0, 0) has neighbours on all sides.
struct Framed {
    PyObject_HEAD PyObject *array;
    int left;
    int top;
};

/// The host's record with what it points to.
struct Record {
    PyObject_HEAD _TRANSFERDATA *data;
    TransferFrameGeometry geometry;
    TransferLimits3D limits;
    int views;          ///< buffers of its blocks that somebody looks at
    bool isBusy;        ///< a call works on it or its blocks
    std::uint64_t made; ///< how many blocks were
    std::array<std::uint64_t, std::extent_v<decltype(_TRANSFERDATA::blocks)>> numbers; ///< of the blocks in its slots
};

/// What a private block points to between calls; nothing where the view has no object.
struct Held {
    Py_buffer view;
    Lent lent;
};

/// The arguments by which functions set what a region's block points to.
constexpr std::array<std::string_view, 3> setArguments = {"destSurface", "testSurface", "plane"};
constexpr std::string_view setRect = "planeRect";

/// A block of a record.
struct Block {
    PyObject_HEAD PyObject *record;
    void *memory;
    std::size_t slot;
    std::uint64_t number; ///< memory that is freed is soon another block's
    Target target;
    std::array<Held, setArguments.size()> held;
    tagRECT rect; ///< to which a region's block keeps the pointer
};

/// The memory of a block; null if it has been freed.
const MemoryBlock *memoryOf(const Block &block) {
    const Record &record = content<Record>(block.record);
    return record.numbers[block.slot] == block.number ? record.data->blocks[block.slot] : nullptr;
}

const char *nameOf(Target target) {
    switch (target) {
    case Target::pipelineBlock:
        return "a block of GetPrivate_QMGL_Data";
    case Target::texturedBlock:
        return "a block of GetPrivate_QM3D_Data";
    case Target::regionBlock:
        return "a block of GetPrivate_QMGP_Data";
    case Target::phaseBlock:
        return "a block of GetPrivate_LUT_Data";
    default:
        return "a record";
    }
}

// Buffers

/// The letter of a buffer's elements; 0 where they are no plain numbers.
char letterOf(const Py_buffer &view) {
    const char *format = view.format ? view.format : "B";
    if (*format == '@' || *format == '=' || *format == '<')
        ++format;
    if (format[0] == '\0' || format[1] != '\0')
        return 0;
    if (view.itemsize == 4 && *format == 'L')
        return 'I';
    return view.itemsize == 4 && *format == 'l' ? 'i' : *format;
}

/// Buffers of one call, which are given back when it is over.
class Buffers {
public:
    Buffers() = default;
    Buffers(const Buffers &) = delete;
    Buffers &operator=(const Buffers &) = delete;
    ~Buffers() {
        for (std::size_t i = 0; i < count; ++i)
            if (views[i].obj)
                PyBuffer_Release(&views[i]);
    }

    /// The buffer of an array; it may be read-only.
    Py_buffer &of(PyObject *array) {
        if (count == views.size())
            fail(PyExc_TypeError, "too many arrays");
        Py_buffer &view = views[count];
        view.obj = nullptr;
        if (PyObject_GetBuffer(array, &view, PyBUF_STRIDES | PyBUF_FORMAT) != 0)
            throw Failure();
        ++count;
        return view;
    }

    void lend(const void *pointer, const checked::Piece &piece) { pieces[lentCount++] = {pointer, piece, argument}; }
    std::span<const Lent> lent() const { return {pieces.data(), lentCount}; }
    std::span<Py_buffer> all() { return {views.data(), count}; }

    int argument = Lent::noArgument; ///< which one the next pieces are handed as

private:
    static constexpr std::size_t most = 48;

    std::array<Py_buffer, most> views;
    std::size_t count = 0;
    std::array<Lent, most> pieces;
    std::size_t lentCount = 0;
};

/// A surface that a call is handed.
struct Surface {
    void *origin = nullptr;
    int pitch = 0;   ///< in elements
    int buffer = -1; ///< which of the call's it is
};

/// How each call says what it is about.
struct Place {
    const char *function;
    const char *argument;
};

/// `countedBytes` are those of what the row counts in.
Surface surfaceOf(PyObject *object, int elementBytes, int countedBytes, const Place &place, Buffers &buffers) {
    int left = 0;
    int top = 0;
    PyObject *array = object;
    if (Py_TYPE(object) == framedType) {
        const Framed &framed = content<Framed>(object);
        array = framed.array;
        left = framed.left;
        top = framed.top;
        if (!array)
            fail(PyExc_TypeError, "%s: %s is a Framed without its array", place.function, place.argument);
    }
    if (!PyObject_CheckBuffer(array))
        fail(PyExc_TypeError, "%s: %s is no array", place.function, place.argument);
    const Py_buffer &view = buffers.of(array);
    const char letter = letterOf(view);
    const bool isWords = elementBytes == 4 && view.ndim == 2 && letter == 'I';
    const bool isBytes = elementBytes == 4 && view.ndim == 3 && letter == 'B' && view.shape[2] == 4;
    const bool isPlane = elementBytes == 1 && view.ndim >= 2 && letter == 'B';
    if (!isWords && !isBytes && !isPlane)
        fail(PyExc_TypeError,
             elementBytes == 4 ? "%s: %s has to be an array of uint32 (H, W) or of uint8 (H, W, 4)"
                               : "%s: %s has to be an array of uint8 (H, W)",
             place.function, place.argument);
    Py_ssize_t expected = view.itemsize;
    Py_ssize_t columns = 1;
    for (int axis = view.ndim - 1; axis > 0; --axis) {
        if (view.strides && view.strides[axis] != expected && view.shape[axis] > 1)
            fail(PyExc_ValueError, "%s: the pixels of a row of %s do not stand side by side", place.function,
                 place.argument);
        expected *= view.shape[axis];
        columns *= view.shape[axis];
    }
    const Py_ssize_t rows = view.shape[0];
    const auto width = isBytes ? columns / 4 : columns;
    // Some arrays say nothing of their strides where nothing lies between their elements.
    const Py_ssize_t stride = rows > 1 && view.strides ? view.strides[0] : width * elementBytes;
    constexpr Py_ssize_t most = std::numeric_limits<int>::max();
    if (width == 0 || rows == 0)
        fail(PyExc_ValueError, "%s: %s has no pixels", place.function, place.argument);
    if (stride < 0)
        fail(PyExc_ValueError, "%s: the rows of %s are in reverse order", place.function, place.argument);
    if (stride % elementBytes != 0 || reinterpret_cast<std::uintptr_t>(view.buf) % static_cast<unsigned>(elementBytes))
        fail(PyExc_ValueError, "%s: %s is not aligned to its pixels", place.function, place.argument);
    if (stride < width * elementBytes)
        fail(PyExc_ValueError, "%s: the rows of %s overlap", place.function, place.argument);
    if (width > most || rows > most || stride > most)
        fail(PyExc_ValueError, "%s: %s is too large", place.function, place.argument);
    if (left >= width || top >= rows)
        fail(PyExc_ValueError, "%s: %s begins beyond its array", place.function, place.argument);
    const auto pitch = static_cast<int>(stride / elementBytes);
    auto *begin = static_cast<std::byte *>(view.buf);
    const Py_ssize_t bytes = stride * (rows - 1) + width * elementBytes;
    std::byte *const origin = begin + top * stride + Py_ssize_t{left} * elementBytes;
    if (stride % countedBytes != 0) { // such rows are counted in bytes, and nothing says where each of them ends
        countedBytes = elementBytes;
        if (rows > 1 && width < pitch)
            fail(PyExc_ValueError, "%s: %s is a part of rows that are no whole number of pixels", place.function,
                 place.argument);
    }
    buffers.lend(origin, {.begin = begin,
                          .bytes = static_cast<std::size_t>(bytes),
                          .pitch = rows > 1 ? static_cast<int>(stride / countedBytes) : 0,
                          .width = static_cast<int>(width * elementBytes / countedBytes),
                          .isReadOnly = view.readonly != 0});
    return {origin, pitch, static_cast<int>(buffers.all().size()) - 1};
}

const char *wordsOf(char letter) {
    switch (letter) {
    case 'I':
        return "uint32";
    case 'i':
        return "int32";
    case 'f':
        return "float32";
    case 'h':
        return "int16";
    default:
        return "uint8";
    }
}

template <class Element>
constexpr char elementLetter() {
    if constexpr (std::is_same_v<Element, q_ulong>)
        return 'I';
    else if constexpr (std::is_same_v<Element, float> || std::is_same_v<Element, _POINT3DFLOAT> ||
                       std::is_same_v<Element, _I3DVECTOR> || std::is_same_v<Element, _I3DMATRIX>)
        return 'f';
    else if constexpr (std::is_same_v<Element, short>)
        return 'h';
    else if constexpr (std::is_same_v<Element, unsigned char>)
        return 'B';
    else
        return 'i';
}

/// An array without rows: numbers or records that follow each other.
template <class Element>
void *arrayOf(PyObject *object, const Place &place, Buffers &buffers) {
    constexpr char wanted = elementLetter<Element>();
    if (!PyObject_CheckBuffer(object))
        fail(PyExc_TypeError, "%s: %s is no array", place.function, place.argument);
    const Py_buffer &view = buffers.of(object);
    if (letterOf(view) != wanted)
        fail(PyExc_TypeError, "%s: %s has to be an array of %s", place.function, place.argument, wordsOf(wanted));
    if (!PyBuffer_IsContiguous(&view, 'C'))
        fail(PyExc_ValueError, "%s: the elements of %s do not stand side by side", place.function, place.argument);
    if (static_cast<std::size_t>(view.len) % sizeof(Element) != 0 || view.len == 0)
        fail(PyExc_ValueError, "%s: %s holds no whole number of records of %zd elements", place.function,
             place.argument, static_cast<Py_ssize_t>(sizeof(Element)) / view.itemsize);
    if (reinterpret_cast<std::uintptr_t>(view.buf) % alignof(Element) != 0)
        fail(PyExc_ValueError, "%s: %s is not aligned to its elements", place.function, place.argument);
    buffers.lend(view.buf, {.begin = static_cast<std::byte *>(view.buf),
                            .bytes = static_cast<std::size_t>(view.len),
                            .pitch = 0,
                            .width = 0,
                            .isReadOnly = view.readonly != 0});
    return view.buf;
}

// Numbers

double realOf(PyObject *object, const Place &place) {
    const double number = PyFloat_AsDouble(object);
    if (number == -1 && PyErr_Occurred()) {
        PyErr_Clear();
        fail(PyExc_TypeError, "%s: %s is no number", place.function, place.argument);
    }
    return number;
}

/// 32 bits have a sign, unless the row counts further; then a sign is taken, too, as in the -1 of a full word.
template <class Number>
Number wholeOf(PyObject *object, const Place &place, bool isUnsigned = false) {
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(object, &overflow);
    if (number == -1 && overflow == 0 && PyErr_Occurred()) {
        PyErr_Clear();
        fail(PyExc_TypeError, "%s: %s is no whole number", place.function, place.argument);
    }
    using Signed = std::conditional_t<sizeof(Number) == 4, int, Number>;
    constexpr long long low = std::numeric_limits<Signed>::min();
    const long long high = std::is_same_v<Number, q_ulong> && isUnsigned
                               ? static_cast<long long>(std::numeric_limits<q_ulong>::max())
                               : static_cast<long long>(std::numeric_limits<Signed>::max());
    if (overflow < 0 || (overflow == 0 && number < low))
        fail(PyExc_ValueError, "%s: %s %S is below %lld", place.function, place.argument, object, low);
    if (overflow > 0 || number > high)
        fail(PyExc_ValueError, "%s: %s %S exceeds %lld", place.function, place.argument, object, high);
    return static_cast<Number>(number);
}

/// The whole numbers of a tuple or the like.
template <std::size_t count>
std::array<int, count> wordsIn(PyObject *object, const Place &place) {
    if (!PySequence_Check(object) || PyUnicode_Check(object) ||
        PySequence_Size(object) != static_cast<Py_ssize_t>(count)) {
        PyErr_Clear();
        fail(PyExc_TypeError, count == 4 ? "%s: %s has to be (left, top, right, bottom)" : "%s: %s has to be (x, y)",
             place.function, place.argument);
    }
    std::array<int, count> words{};
    for (std::size_t i = 0; i < count; ++i) {
        PyObject *item = PySequence_GetItem(object, static_cast<Py_ssize_t>(i));
        if (!item)
            throw Failure();
        try {
            words[i] = wholeOf<int>(item, place);
        } catch (const Failure &) {
            Py_DECREF(item);
            throw;
        }
        Py_DECREF(item);
    }
    return words;
}

tagRECT recordIn(PyObject *object, const Place &place, const tagRECT *) {
    const auto [left, top, right, bottom] = wordsIn<4>(object, place);
    return {left, top, right, bottom};
}
tagPOINT recordIn(PyObject *object, const Place &place, const tagPOINT *) {
    const auto [x, y] = wordsIn<2>(object, place);
    return {x, y};
}

// A function

struct Parameter {
    const Argument *argument = nullptr;
    PyObject *name = nullptr; ///< null for a pitch, which comes from a surface
    std::string text;
    int surface = -1; ///< whose pitch it is
    bool isRows = false;
    bool isOptional = false;
    bool isUnsigned = false;
    int kept = -1; ///< where a region's block keeps it
};

/// What is known of a function before any call.
struct Described {
    Described(std::string_view exported, const std::type_index &signature)
        : row(checked::rowOf(exported, signature)), called(exported), name(exported) {
        if (!row.label.empty())
            name.append("_").append(row.label);
        std::replace_if(
            name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c) && c != '_'; }, '_');
        parameters.resize(row.arguments.size());
        const bool setsRegion = !row.arguments.empty() && row.arguments.front().unit == "_PRIVATE_QMGP_DATA";
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            const Argument &argument = row.arguments[i];
            Parameter &parameter = parameters[i];
            parameter.argument = &argument;
            parameter.text = argument.name;
            parameter.isRows = isSurface(argument.kind) || argument.kind == Kind::plane;
            parameter.isOptional = argument.kind == Kind::unused || argument.mayBeNull;
            parameter.isUnsigned = argument.kind == Kind::colour || argument.kind == Kind::key ||
                                   argument.kind == Kind::unused ||
                                   argument.contract.high > std::numeric_limits<int>::max();
            const auto *const setBy = std::find(setArguments.begin(), setArguments.end(), argument.name);
            if (setsRegion && setBy != setArguments.end())
                parameter.kept = static_cast<int>(setBy - setArguments.begin());
            if (argument.kind == Kind::pitch) {
                for (std::size_t k = 0; k < parameters.size(); ++k)
                    if (row.arguments[k].name == argument.of)
                        parameter.surface = static_cast<int>(k);
            } else {
                parameter.name = PyUnicode_InternFromString(parameter.text.c_str());
                visible.push_back(i);
            }
        }
    }

    const Row &row;
    std::string called;
    std::string name;
    std::vector<Parameter> parameters;
    std::vector<std::size_t> visible; ///< the parameters that Python passes, in their order
};

constexpr std::size_t mostParameters = 48;

/// What Python passes for each parameter; null where nothing is passed.
using Passed = std::array<PyObject *, mostParameters>;

void distribute(const Described &function, PyObject *const *arguments, Py_ssize_t count, PyObject *keywords,
                Passed &passed) {
    const auto visible = static_cast<Py_ssize_t>(function.visible.size());
    if (count > visible)
        fail(PyExc_TypeError, "%s() takes %zd arguments, not %zd", function.name.c_str(), visible, count);
    for (Py_ssize_t i = 0; i < count; ++i)
        passed[function.visible[static_cast<std::size_t>(i)]] = arguments[i];
    const Py_ssize_t named = keywords ? PyTuple_Size(keywords) : 0;
    for (Py_ssize_t i = 0; i < named; ++i) {
        PyObject *const name = PyTuple_GetItem(keywords, i);
        std::size_t found = mostParameters;
        for (const std::size_t k : function.visible)
            if (function.parameters[k].name == name)
                found = k;
        if (found == mostParameters)
            for (const std::size_t k : function.visible)
                if (PyUnicode_Compare(function.parameters[k].name, name) == 0)
                    found = k;
        if (found == mostParameters)
            fail(PyExc_TypeError, "%s() has no argument %U", function.name.c_str(), name);
        if (passed[found])
            fail(PyExc_TypeError, "%s() has two of the argument %U", function.name.c_str(), name);
        passed[found] = arguments[count + i];
    }
    for (const std::size_t k : function.visible)
        if (!passed[k] && !function.parameters[k].isOptional)
            fail(PyExc_TypeError, "%s() lacks the argument %s", function.name.c_str(),
                 function.parameters[k].text.c_str());
}

/// Everything that one call needs until it is over.
struct Making {
    Buffers buffers;
    std::array<Surface, mostParameters> surfaces;
    PyObject *record = nullptr;
    PyObject *block = nullptr;
    const char *blockName = nullptr;

    /// The record that the call works on, by itself or by a block.
    Record *owner() const {
        PyObject *const object = block ? content<Block>(block).record : record;
        return object ? &content<Record>(object) : nullptr;
    }

    Block *regionBlock() const {
        return block && content<Block>(block).target == Target::regionBlock ? &content<Block>(block) : nullptr;
    }
};

/// An argument as the library takes it, with what owns it.
template <class Type>
class Converted;

template <class Number>
requires std::is_arithmetic_v<Number>
class Converted<Number> {
public:
    void take(const Parameter &parameter, PyObject *object, const Place &place, Making &, std::size_t) {
        if (!object || (parameter.isOptional && object == Py_None))
            value = Number();
        else if constexpr (std::is_floating_point_v<Number>)
            value = static_cast<Number>(realOf(object, place));
        else
            value = wholeOf<Number>(object, place, parameter.isUnsigned);
    }
    void takePitch(const Parameter &parameter, const Making &making) {
        const Surface &surface = making.surfaces[static_cast<std::size_t>(parameter.surface)];
        value = static_cast<Number>(surface.pitch);
    }
    Number get() { return value; }
    Given given() const { return {.value = static_cast<double>(value)}; }

private:
    Number value = 0;
};

template <class Element>
class Converted<Element &> {
public:
    void take(const Parameter &, PyObject *object, const Place &place, Making &making, std::size_t) {
        if (object == Py_None)
            fail(PyExc_ValueError, "%s: %s is null", place.function, place.argument);
        value = static_cast<Element *>(arrayOf<std::remove_cv_t<Element>>(object, place, making.buffers));
    }
    Element &get() { return *value; }
    Given given() const { return {.target = Target::elements, .pointer = value, .elementBytes = 4}; }

private:
    Element *value = nullptr;
};

template <class Record_>
requires std::is_same_v<Record_, tagRECT> || std::is_same_v<Record_, tagPOINT>
class Converted<Record_> {
public:
    void take(const Parameter &, PyObject *object, const Place &place, Making &, std::size_t) {
        value = recordIn(object, place, &value);
    }
    Record_ get() { return value; }
    Given given() const { return {.value = value}; }

private:
    Record_ value{};
};

template <class Pointed>
class Converted<Pointed *> {
    using Element = std::remove_cv_t<Pointed>;
    static constexpr Target target = checked::targetOf<Element>();

public:
    void take(const Parameter &parameter, PyObject *object, const Place &place, Making &making, std::size_t index) {
        if (!object || object == Py_None)
            return;
        if constexpr (std::is_same_v<Element, HINSTANCE__>) {
            fail(PyExc_TypeError, "%s: %s has to be None", place.function, place.argument);
        } else if constexpr (target == Target::rect || target == Target::point) {
            held = recordIn(object, place, &held);
            value = &held;
        } else if constexpr (target == Target::hostRecord) {
            if (Py_TYPE(object) != recordType)
                fail(PyExc_TypeError, "%s: %s has to be a Record", place.function, place.argument);
            making.record = object;
            value = content<Record>(object).data;
        } else if constexpr (target != Target::elements) {
            if (Py_TYPE(object) != blockType || content<Block>(object).target != target)
                fail(PyExc_TypeError, "%s: %s has to be %s", place.function, place.argument, nameOf(target));
            value = static_cast<Element *>(content<Block>(object).memory);
            making.block = object;
            making.blockName = place.argument;
        } else if constexpr (std::is_same_v<Element, char>) {
            takeText(*parameter.argument, object, place);
        } else if (parameter.isRows) {
            const int countedBytes = catalogue::isSurface(parameter.argument->kind) ? 4 : int{sizeof(Element)};
            making.surfaces[index] = surfaceOf(object, sizeof(Element), countedBytes, place, making.buffers);
            value = static_cast<Element *>(making.surfaces[index].origin);
            // Once it is in a block, no row tells of it that it is written.
            const bool isWritten = parameter.kept >= 0 && parameter.argument->kind != Kind::source;
            if (isWritten && making.buffers.all().back().readonly)
                fail(PyExc_ValueError, "%s: %s is read-only", place.function, place.argument);
        } else {
            value = static_cast<Element *>(arrayOf<Element>(object, place, making.buffers));
        }
    }
    Pointed *get() { return value; }
    Element *&slot() { return value; }
    Given given() const {
        return {.target = target,
                .pointer = const_cast<Element *>(value),
                .elementBytes = checked::bytesOfElement<Element>()};
    }

private:
    void takeText(const Argument &argument, PyObject *object, const Place &place) {
        const bool isWestern = argument.unit.find("1252") != std::string_view::npos;
        PyObject *bytes = PyUnicode_Check(object) ? PyUnicode_AsEncodedString(object, isWestern ? "cp1252" : "utf-8",
                                                                              isWestern ? "strict" : "surrogateescape")
                          : PyBytes_Check(object) ? (Py_INCREF(object), object)
                                                  : nullptr;
        if (!bytes && PyErr_Occurred())
            throw Failure();
        if (!bytes)
            fail(PyExc_TypeError, "%s: %s has to be a text", place.function, place.argument);
        text.assign(PyBytes_AsString(bytes), static_cast<std::size_t>(PyBytes_Size(bytes)));
        Py_DECREF(bytes);
        if (text.find('\0') != std::string::npos)
            fail(PyExc_ValueError, "%s: %s holds a character 0", place.function, place.argument);
        value = reinterpret_cast<Element *>(text.data());
    }

    struct Nothing {};
    static constexpr bool isRecord = target == Target::rect || target == Target::point;
    [[no_unique_address]] std::conditional_t<isRecord, Element, Nothing> held{};
    [[no_unique_address]] std::conditional_t<std::is_same_v<Element, char>, std::string, Nothing> text;
    Element *value = nullptr;
};

PyObject *newBlock(PyObject *record, void *memory, Target target) {
    if (!memory)
        Py_RETURN_NONE;
    PyObject *const made = make<Block>(blockType);
    if (!made)
        return nullptr;
    auto &block = content<Block>(made);
    auto &owner = content<Record>(record);
    Py_INCREF(record);
    block.record = record;
    block.memory = memory;
    block.target = target;
    block.number = ++owner.made;
    const auto &slots = owner.data->blocks;
    const auto *const slot = std::find_if(std::begin(slots), std::end(slots),
                                          [memory](const MemoryBlock *each) { return each && each->work == memory; });
    if (slot != std::end(slots)) { // unless another thread has freed it already
        block.slot = static_cast<std::size_t>(slot - std::begin(slots));
        owner.numbers[block.slot] = block.number;
    }
    return made;
}

template <class Result>
PyObject *returned(const Result &result, const Making &making) {
    if constexpr (std::is_same_v<Result, bool>)
        return PyBool_FromLong(result);
    else if constexpr (std::is_floating_point_v<Result>)
        return PyFloat_FromDouble(static_cast<double>(result));
    else if constexpr (std::is_integral_v<Result>)
        return PyLong_FromLongLong(result);
    else if constexpr (std::is_pointer_v<Result>)
        return newBlock(making.record, result, checked::targetOf<std::remove_pointer_t<Result>>());
    else if constexpr (std::is_same_v<decltype(result.x), int>)
        return Py_BuildValue("(iii)", result.x, result.y, result.z);
    else
        return Py_BuildValue("(ddd)", static_cast<double>(result.x), static_cast<double>(result.y),
                             static_cast<double>(result.z));
}

/// What a region's block points to stays there, and is known, until another call sets it.
void keep(const Described &described, Making &making) {
    Block *const block = making.regionBlock();
    if (!block)
        return;
    for (std::size_t i = 0; i < described.parameters.size(); ++i) {
        const int place = described.parameters[i].kept;
        if (place < 0)
            continue;
        Held &held = block->held[static_cast<std::size_t>(place)];
        const int buffer = making.surfaces[i].buffer;
        if (buffer < 0) {
            PyBuffer_Release(&held.view);
        } else {
            const auto given = static_cast<std::size_t>(buffer);
            held.lent = making.buffers.lent()[given];
            held.lent.argument = Lent::kept[static_cast<std::size_t>(place)];
            std::swap(held.view, making.buffers.all()[given]); // the old one goes with the call's buffers
        }
    }
}

/// Python's lock is free from a begin to an end, and taken again at the latest when this goes. Until then no other call
/// may work on the same record.
class Unlocked {
public:
    Unlocked() = default;
    Unlocked(const Unlocked &) = delete;
    Unlocked &operator=(const Unlocked &) = delete;
    ~Unlocked() { end(); }

    void begin(Record *worked) {
        record = worked;
        if (record)
            record->isBusy = true;
        state = PyEval_SaveThread();
    }
    void end() {
        if (!state)
            return;
        PyEval_RestoreThread(std::exchange(state, nullptr));
        if (record)
            record->isBusy = false;
    }

private:
    PyThreadState *state = nullptr;
    Record *record = nullptr;
};

void refuseWhatIsGone(const Described &described, const Making &making) {
    if (making.block && !memoryOf(content<Block>(making.block)))
        fail(PyExc_ValueError, "%s: %s has been freed with its record's blocks", described.name.c_str(),
             making.blockName);
}

void refuseWhileBusy(const Described &described, const Making &making) {
    if (making.owner() && making.owner()->isBusy)
        fail(PyExc_RuntimeError, "%s: another thread works on the same record", described.name.c_str());
}

void refuseWhileSeen(const Described &described, const Making &making) {
    if (making.record && described.row.blocks != catalogue::Blocks::kept && content<Record>(making.record).views)
        fail(PyExc_BufferError, "%s: blocks of the record are in use by other objects", described.name.c_str());
}

/// Refuses a call that breaks its contract; begins to go without the lock. \return what makes no sense
std::string lookAt(const Described &described, std::span<const Given> given, const Making &making, Unlocked &unlocked) {
    refuseWhileBusy(described, making);
    refuseWhatIsGone(described, making);
    refuseWhileSeen(described, making);
    std::vector<Lent> known;
    std::span<const Lent> lent = making.buffers.lent();
    if (const Block *const block = making.regionBlock()) {
        known.assign(lent.begin(), lent.end());
        for (const Held &held : block->held)
            if (held.view.obj)
                known.push_back(held.lent);
        lent = known;
    }
    checked::Verdict verdict;
    unlocked.begin(making.owner());
    {
        const checked::Lending lending(lent);
        verdict = checked::judge(described.row, given);
    }
    if (!verdict.fault.empty()) {
        unlocked.end();
        fail(PyExc_ValueError, "%s: %s", described.name.c_str(), verdict.fault.c_str());
    }
    return std::move(verdict.doubt);
}

template <class Signature>
class Caller;

template <class Result, class... Types>
class Caller<Result(Types...)> {
public:
    static PyObject *call(const Described &described, Result (*function)(Types...), PyObject *const *arguments,
                          Py_ssize_t count, PyObject *keywords) {
        try {
            Passed passed{};
            distribute(described, arguments, count, keywords, passed);
            return make(described, function, passed, std::index_sequence_for<Types...>());
        } catch (const Failure &) {
            return nullptr;
        } catch (const std::bad_alloc &) {
            return PyErr_NoMemory();
        }
    }

private:
    template <std::size_t... index>
    static PyObject *make(const Described &described, Result (*function)(Types...), const Passed &passed,
                          std::index_sequence<index...>) {
        Making making;
        [[maybe_unused]] const auto &parameters = described.parameters;
        const char *const name = described.name.c_str();
        std::tuple<Converted<Types>...> converted;
        (convert(std::get<index>(converted), parameters[index], passed[index], name, making, index), ...);
        (convertPitch(std::get<index>(converted), parameters[index], making), ...);
        const std::array<Given, sizeof...(Types)> given = {std::get<index>(converted).given()...};

        Unlocked unlocked;
        if (const std::string doubt = lookAt(described, given, making, unlocked); !doubt.empty()) {
            unlocked.end();
            if (PyErr_WarnFormat(PyExc_UserWarning, 1, "%s: %s", name, doubt.c_str()) != 0)
                throw Failure();
            lookAt(described, given, making, unlocked); // who was warned may have freed a block
        }
        (keepRect(std::get<index>(converted), parameters[index], making), ...);
        checked::noteBefore(described.row, given);
        const checked::MapperSlot slot(given);
        if constexpr (std::is_void_v<Result>) {
            function(std::get<index>(converted).get()...);
            unlocked.end();
            keep(described, making);
            Py_RETURN_NONE;
        } else {
            const Result result = function(std::get<index>(converted).get()...);
            if constexpr (std::is_pointer_v<Result>)
                checked::notice(described.row, given, result);
            unlocked.end();
            keep(described, making);
            return returned(result, making);
        }
    }

    template <class Type>
    static void convert(Converted<Type> &to, const Parameter &parameter, PyObject *object, const char *function,
                        Making &making, std::size_t index) {
        making.buffers.argument = static_cast<int>(index);
        if (parameter.argument->kind != Kind::pitch)
            to.take(parameter, object, {function, parameter.text.c_str()}, making, index);
    }

    template <class Type>
    static void convertPitch(Converted<Type> &to, const Parameter &parameter, const Making &making) {
        if constexpr (requires { to.takePitch(parameter, making); }) {
            if (parameter.argument->kind == Kind::pitch && parameter.surface >= 0)
                to.takePitch(parameter, making);
        }
    }

    /// A region's block keeps the pointer to its rectangle.
    template <class Type>
    static void keepRect(Converted<Type> &to, const Parameter &parameter, const Making &making) {
        if constexpr (std::is_same_v<Type, tagRECT *>) {
            Block *const block = making.regionBlock();
            if (block && to.slot() && parameter.argument->name == setRect) {
                block->rect = *to.slot();
                to.slot() = &block->rect;
            }
        }
    }
};

using Entry = PyObject *(*)(PyObject *, PyObject *const *, Py_ssize_t, PyObject *);

template <int number>
struct Function;

struct Listed {
    Entry entry;
    const Described *described;
};
std::vector<Listed> &listed() {
    static std::vector<Listed> all;
    return all;
}

template <class Signature, int number>
PyObject *called(PyObject *, PyObject *const *arguments, Py_ssize_t count, PyObject *keywords) {
    return Caller<Signature>::call(Function<number>::described(), Function<number>::function, arguments, count,
                                   keywords);
}

constexpr int firstNumber = __COUNTER__ + 1;

#define Q_MUR_CHECKED(symbol, result, name, types, parameters, arguments)                                              \
    Q_MUR_PYTHON_FUNCTION(__COUNTER__, result, name, types)
#define Q_MUR_PYTHON_FUNCTION(count, result, name, types)                                                              \
    template <>                                                                                                        \
    struct Function<count - firstNumber> {                                                                             \
        using Signature = result types;                                                                                \
        static constexpr result(*function) types = unchecked::name;                                                    \
        static const Described &described() {                                                                          \
            static const Described all(#name, typeid(result types));                                                   \
            return all;                                                                                                \
        }                                                                                                              \
    };
#include <q_Mur_checked_functions.inc>
constexpr int functions = __COUNTER__ - firstNumber;

template <int... number>
void listAll(std::integer_sequence<int, number...>) {
    (listed().push_back({called<typename Function<number>::Signature, number>, &Function<number>::described()}), ...);
}

constexpr std::pair<std::string_view, const char *> texts[] = {
#include <q_Mur_python_texts.inc>
};

// The types' own functions

int initialiseFramed(PyObject *self, PyObject *arguments, PyObject *keywords) {
    static const char *names[] = {"array", "left", "top", nullptr};
    PyObject *array = nullptr;
    int left = 0;
    int top = 0;
    if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "Oii", const_cast<char **>(names), &array, &left, &top))
        return -1;
    if (left < 0 || top < 0) {
        PyErr_SetString(PyExc_ValueError, "a frame has no negative width");
        return -1;
    }
    Framed &framed = content<Framed>(self);
    Py_INCREF(array);
    PyObject *const before = std::exchange(framed.array, array);
    framed.left = left;
    framed.top = top;
    Py_XDECREF(before);
    return 0;
}

void destroyFramed(PyObject *self) {
    Py_XDECREF(content<Framed>(self).array);
    destroy(self);
}

int initialiseRecord(PyObject *self, PyObject *arguments, PyObject *keywords) {
    static const char *names[] = {"planeElements", "originElement", "vertexArrayEntries", "matrixStackDepth", nullptr};
    Record &record = content<Record>(self);
    if (record.data) {
        PyErr_SetString(PyExc_TypeError, "a Record is made once");
        return -1;
    }
    if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "|iiii", const_cast<char **>(names),
                                     &record.geometry.planeElements, &record.geometry.originElement,
                                     &record.limits.vertexArrayEntries, &record.limits.matrixStackDepth))
        return -1;
    if (record.geometry.originElement < 0 || record.geometry.originElement > record.geometry.planeElements) {
        PyErr_SetString(PyExc_ValueError, "originElement is outside of the plane");
        return -1;
    }
    record.data = static_cast<_TRANSFERDATA *>(std::calloc(1, sizeof(_TRANSFERDATA)));
    if (!record.data) {
        PyErr_NoMemory();
        return -1;
    }
    checked::remember({.begin = reinterpret_cast<std::byte *>(record.data), .bytes = sizeof(_TRANSFERDATA)});
    record.data->frameGeometry = &record.geometry;
    record.data->limits3D = &record.limits;
    return 0;
}

void destroyRecord(PyObject *self) {
    if (_TRANSFERDATA *const data = content<Record>(self).data) {
        DeleteMemoryBlocks(data);
        checked::forget(data, sizeof(_TRANSFERDATA));
        std::free(data);
    }
    destroy(self);
}

void destroyBlock(PyObject *self) {
    Block &block = content<Block>(self);
    for (Held &held : block.held)
        PyBuffer_Release(&held.view); // which does nothing without an object
    Py_XDECREF(block.record);
    destroy(self);
}

/// Lends the memory of a block that is its caller's to fill.
int lendBlock(PyObject *self, Py_buffer *view, int flags) {
    Block &block = content<Block>(self);
    view->obj = nullptr;
    if (block.target != Target::elements) {
        PyErr_SetString(PyExc_BufferError, "a private block is the library's own");
        return -1;
    }
    if (content<Record>(block.record).isBusy) {
        PyErr_SetString(PyExc_BufferError, "another thread works on the record of the block");
        return -1;
    }
    const MemoryBlock *const held = memoryOf(block);
    if (!held) {
        PyErr_SetString(PyExc_BufferError, "the block has been freed");
        return -1;
    }
    const auto before = static_cast<std::byte *>(held->work) - static_cast<std::byte *>(held->start);
    if (before > static_cast<Py_ssize_t>(held->size)) {
        PyErr_SetString(PyExc_BufferError, "the block ends before it begins");
        return -1;
    }
    const int filled =
        PyBuffer_FillInfo(view, self, block.memory, static_cast<Py_ssize_t>(held->size) - before, 0, flags);
    if (filled == 0)
        ++content<Record>(block.record).views;
    return filled;
}

void takeBlockBack(PyObject *self, Py_buffer *) {
    --content<Record>(content<Block>(self).record).views;
}

PyObject *addressOfBlock(PyObject *self, void *) {
    return PyLong_FromVoidPtr(content<Block>(self).memory);
}

PyObject *refuseToMake(PyTypeObject *, PyObject *, PyObject *) {
    PyErr_SetString(PyExc_TypeError, "a Block is made by FindNotUsedMemory and the GetPrivate functions");
    return nullptr;
}

PyTypeObject *newType(PyObject *module, const char *name, int bytes, std::vector<PyType_Slot> slots) {
    slots.push_back({0, nullptr});
    PyType_Spec spec = {name, bytes, 0, Py_TPFLAGS_DEFAULT, slots.data()};
    auto *const type = reinterpret_cast<PyTypeObject *>(PyType_FromSpec(&spec));
    if (type)
        PyModule_AddType(module, type);
    return type;
}

template <class Function>
void *slotOf(Function *function) {
    return reinterpret_cast<void *>(function);
}

PyObject *tableOf(int (&table)[8192]) {
    PyObject *bytes = PyMemoryView_FromMemory(reinterpret_cast<char *>(table), sizeof table, PyBUF_READ);
    PyObject *numbers = bytes ? PyObject_CallMethod(bytes, "cast", "s", "i") : nullptr;
    Py_XDECREF(bytes);
    return numbers;
}

} // namespace

PyMODINIT_FUNC PyInit__q_mur() {
    q_Mur_checked_handle([](const char *, void *) {}, nullptr); // what calls of this module tell is looked at there
    Init_qMur_GlobalData(nullptr, nullptr);
    static PyModuleDef definition = {
        PyModuleDef_HEAD_INIT, "_q_mur", nullptr, -1, nullptr, nullptr, nullptr, nullptr, nullptr};
    PyObject *const module = PyModule_Create(&definition);
    if (!module)
        return nullptr;
    static PyGetSetDef properties[] = {{"address", addressOfBlock, nullptr, "Where the block begins.", nullptr},
                                       {nullptr, nullptr, nullptr, nullptr, nullptr}};
    static char aboutFramed[] = "Framed(array, left, top)\n--\n\n"
                                "A surface whose pixel (0, 0) is array[top, left]. What lies around it may be read, "
                                "and where a function writes there, written.";
    static char aboutRecord[] = "Record(planeElements=0, originElement=0, vertexArrayEntries=0, matrixStackDepth=0)\n"
                                "--\n\nThe host's record. Its blocks live as long as it does.";
    static char aboutBlock[] = "A block of a Record. One of FindNotUsedMemory is a buffer of bytes.";
    framedType = newType(module, "q_mur.Framed", sizeof(Framed),
                         {{Py_tp_init, slotOf(initialiseFramed)},
                          {Py_tp_new, slotOf(PyType_GenericNew)},
                          {Py_tp_dealloc, slotOf(destroyFramed)},
                          {Py_tp_doc, aboutFramed}});
    recordType = newType(module, "q_mur.Record", sizeof(Record),
                         {{Py_tp_init, slotOf(initialiseRecord)},
                          {Py_tp_new, slotOf(PyType_GenericNew)},
                          {Py_tp_dealloc, slotOf(destroyRecord)},
                          {Py_tp_doc, aboutRecord}});
    blockType = newType(module, "q_mur.Block", sizeof(Block),
                        {{Py_tp_dealloc, slotOf(destroyBlock)},
                         {Py_tp_new, slotOf(refuseToMake)},
                         {Py_bf_getbuffer, slotOf(lendBlock)},
                         {Py_bf_releasebuffer, slotOf(takeBlockBack)},
                         {Py_tp_getset, properties},
                         {Py_tp_doc, aboutBlock}});
    if (!framedType || !recordType || !blockType)
        return nullptr;

    if (PyModule_AddStringConstant(module, "__version__", Q_MUR_VERSION) != 0)
        return nullptr;
    static std::vector<PyMethodDef> methods;
    listAll(std::make_integer_sequence<int, functions>());
    const std::map<std::string_view, const char *> textOf(std::begin(texts), std::end(texts));
    for (const Listed &each : listed()) {
        const auto text = textOf.find(each.described->name);
        methods.push_back({each.described->name.c_str(), reinterpret_cast<PyCFunction>(slotOf(each.entry)),
                           METH_FASTCALL | METH_KEYWORDS, text == textOf.end() ? nullptr : text->second});
    }
    methods.push_back({nullptr, nullptr, 0, nullptr});
    if (PyModule_AddFunctions(module, methods.data()) != 0)
        return nullptr;
    for (const auto &[name, table] : {std::pair{"iSin", &iSin}, std::pair{"iCos", &iCos}, std::pair{"iSqrt", &iSqrt}})
        if (PyObject *numbers = tableOf(*table); !numbers || PyModule_AddObjectRef(module, name, numbers) != 0)
            return nullptr;
    return module;
}
