/// \file
/// Comfort for hosts in C++: surfaces that know their size, rectangles as values, records that free themselves.
///
/// Nothing needs this header, and q_Mur.h does not include it. All of it is inline and compiles to the flat calls; in
/// debug builds (without `NDEBUG`, or with `Q_MUR_SURFACE_CHECKED` set to 1) places and rectangles are held against
/// their surfaces first, and a wrong one ends the program with a line that says so.
///
/// A function here says what it calls; what is drawn, how sums end and what becomes of top bytes stands there.
#ifndef Q_MUR_SURFACE_HPP
#define Q_MUR_SURFACE_HPP

#include "../q_Mur.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#ifndef Q_MUR_SURFACE_CHECKED
#ifdef NDEBUG
/// 1: places and rectangles are held against their surfaces.
#define Q_MUR_SURFACE_CHECKED 0
#else
/// 1: places and rectangles are held against their surfaces.
#define Q_MUR_SURFACE_CHECKED 1
#endif
#endif

namespace q_Mur {
// Sources that are checked and others that are not may meet in one program.
#if Q_MUR_SURFACE_CHECKED
inline namespace checked {
#else
inline namespace unchecked {
#endif

/// Ends the program where something is wrong, in builds that check.
constexpr void require([[maybe_unused]] bool holds, [[maybe_unused]] const char *otherwise) {
#if Q_MUR_SURFACE_CHECKED
    if (!holds) {
        std::fprintf(stderr, "q_Mur: %s\n", otherwise);
        std::abort();
    }
#endif
}

/// Whether an int holds it.
constexpr bool fitsInt(long long number) {
    return number >= INT_MIN && number <= INT_MAX;
}

/// A colour by its channels.
struct Rgb {
    unsigned char red = 0;   ///< 0 to 255
    unsigned char green = 0; ///< 0 to 255
    unsigned char blue = 0;  ///< 0 to 255

    /// 0x00RRGGBB, as pixels are.
    constexpr q_ulong pixel() const { return q_ulong{red} << 16 | q_ulong{green} << 8 | q_ulong{blue}; }

    /// 0x00BBGGRR, as iTextOut() takes it.
    constexpr q_ulong blueFirst() const { return q_ulong{blue} << 16 | q_ulong{green} << 8 | q_ulong{red}; }
};

/// A rectangle of pixels: left and top inclusive, right and bottom exclusive.
struct Rect {
    int left = 0;   ///< first column
    int top = 0;    ///< first row
    int right = 0;  ///< column behind the last
    int bottom = 0; ///< row behind the last

    /// From its corner and its size.
    static constexpr Rect sized(int x, int y, int columns, int rows) {
        return {x, y, sideOf(x, columns), sideOf(y, rows)};
    }

    constexpr int width() const { return right - left; }                      ///< columns, below 0 if turned inside out
    constexpr int height() const { return bottom - top; }                     ///< rows, likewise
    constexpr bool isEmpty() const { return left >= right || top >= bottom; } ///< whether it has no pixel
    /// The same to the right and further down.
    constexpr Rect moved(int dx, int dy) const {
        return {sideOf(left, dx), sideOf(top, dy), sideOf(right, dx), sideOf(bottom, dy)};
    }
    /// What lies in both; without such pixels it is empty.
    constexpr Rect inside(const Rect &other) const {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }

    /// An empty rectangle holds nothing and is held by all.
    constexpr bool holds(const Rect &other) const {
        return other.isEmpty() ||
               (left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom);
    }
    constexpr bool operator==(const Rect &) const = default; ///< whether all sides are equal

    /// As flat calls know it.
    constexpr operator tagRECT() const { return {left, top, right, bottom}; }

private:
    static constexpr int sideOf(int from, int distance) {
        require(fitsInt(1LL * from + distance), "a side of a rectangle is beyond all numbers");
        return from + distance;
    }
};

/// Whether a call that is handed `area` keeps to `all`. Without pixels it does, unless the sides are turned inside out
/// so far that the difference that flat calls take of them wraps into a size.
constexpr bool keepsTo(const Rect &all, const Rect &area) {
    return area.isEmpty() ? fitsInt(1LL * area.right - area.left) && fitsInt(1LL * area.bottom - area.top)
                          : all.holds(area);
}

/// Pixels that belong to somebody else, with their size. `Pixel` is #q_ulong, or constant where they are only read.
template <class Pixel>
class BasicView {
public:
    /// `pitch` may be greater than `width`, or below 0 for a picture stored bottom-up.
    constexpr BasicView(Pixel *first, int width, int height, int pitch)
        : origin(first), columns(width), rows(height), stride(pitch) {}
    /// Without gaps between rows.
    constexpr BasicView(Pixel *first, int width, int height) : BasicView(first, width, height, width) {}

    /// A view for reading of one for writing.
    template <class Other>
    requires(std::is_const_v<Pixel> &&std::is_same_v<const Other, Pixel>) constexpr BasicView(
        const BasicView<Other> &other)
        : BasicView(other.data(), other.width(), other.height(), other.pitch()) {}

    constexpr Pixel *data() const { return origin; }              ///< the pixel (0, 0)
    constexpr int width() const { return columns; }               ///< columns
    constexpr int height() const { return rows; }                 ///< rows
    constexpr int pitch() const { return stride; }                ///< pixels from a row to the next
    constexpr Rect rect() const { return {0, 0, columns, rows}; } ///< all of it

    /// A pixel.
    Pixel &at(int x, int y) const {
        require(x >= 0 && x < columns && y >= 0 && y < rows, "a pixel lies outside of its surface");
        return origin[std::ptrdiff_t{y} * stride + x];
    }

    /// A part of it, whose first pixel is that at the corner of `area`.
    BasicView part(const Rect &area) const {
        require(keepsTo(rect(), area), "a part lies outside of its surface");
        return {origin + std::ptrdiff_t{area.top} * stride + area.left, area.width(), area.height(), stride};
    }

private:
    Pixel *origin;
    int columns;
    int rows;
    int stride;
};
using View = BasicView<q_ulong>;            ///< for drawing
using ConstView = BasicView<const q_ulong>; ///< for reading

/// Pixels of its own, without gaps between rows.
class Surface {
public:
    /// All pixels have the colour.
    Surface(int width, int height, q_ulong colour = 0)
        : columns(width), rows(height),
          pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), colour) {}
    Surface(const Surface &) = default;            ///< copies the pixels
    Surface &operator=(const Surface &) = default; ///< likewise
    /// What is moved from has no columns, rows and pixels.
    Surface(Surface &&other) noexcept
        : columns(std::exchange(other.columns, 0)), rows(std::exchange(other.rows, 0)),
          pixels(std::move(other.pixels)) {}
    /// Likewise of `other`; the pixels held before are freed.
    Surface &operator=(Surface &&other) noexcept {
        Surface taken(std::move(other));
        std::swap(columns, taken.columns);
        std::swap(rows, taken.rows);
        pixels.swap(taken.pixels);
        return *this;
    }

    int width() const { return columns; }                   ///< columns
    int height() const { return rows; }                     ///< rows
    int pitch() const { return columns; }                   ///< pixels from a row to the next
    Rect rect() const { return {0, 0, width(), height()}; } ///< all of it

    View view() { return {pixels.data(), width(), height()}; }            ///< of all of it
    ConstView view() const { return {pixels.data(), width(), height()}; } ///< of all of it
    operator View() { return view(); }                                    ///< as view()
    operator ConstView() const { return view(); }                         ///< as view()

    q_ulong &at(int x, int y) { return view().at(x, y); }                ///< a pixel
    const q_ulong &at(int x, int y) const { return view().at(x, y); }    ///< a pixel
    View part(const Rect &area) { return view().part(area); }            ///< as BasicView::part()
    ConstView part(const Rect &area) const { return view().part(area); } ///< as BasicView::part()

private:
    int columns;
    int rows;
    std::vector<q_ulong> pixels;
};

/// A rectangle as flat calls take it, for the time of a call. Built in place: a copy would cost instructions.
class PassedRect {
public:
    /// Takes the sides over.
    explicit PassedRect(const Rect &rect) : passed{rect.left, rect.top, rect.right, rect.bottom} {}
    operator tagRECT *() { return &passed; } ///< until the call ends

private:
    tagRECT passed;
};

/// What flat calls take where they only read.
inline q_ulong *readBy(ConstView source) {
    return const_cast<q_ulong *>(source.data());
}
/// A position or pitch where flat calls take an unsigned one.
inline q_ulong wordOf(int number) {
    return static_cast<q_ulong>(number);
}

/// Fills the tables, the first time; to be called before anything else and before there are threads.
inline void prepare() {
    static const bool isPrepared = (Init_qMur_GlobalData(nullptr, nullptr), true);
    static_cast<void>(isPrepared);
}

// Rectangles of one surface.

/// iFillRect().
inline void fill(View to, const Rect &area, q_ulong colour) {
    require(keepsTo(to.rect(), area), "what is filled lies outside of its surface");
    iFillRect(to.data(), PassedRect(area), to.pitch(), colour);
}
/// All of it.
inline void fill(View to, q_ulong colour) {
    fill(to, to.rect(), colour);
}

/// iFadeOut32(): scales the colours by a factor from 1/256 to 1; 0 is the gentlest step.
inline void fade(View to, const Rect &area, float factor) {
    require(keepsTo(to.rect(), area), "what is faded lies outside of its surface");
    require(factor >= 0 && factor <= 1, "a factor lies outside of 0 to 1");
    iFadeOut32(to.data(), PassedRect(area), to.pitch(), factor);
}

/// Blur_Rect().
inline void blur(View to, const Rect &area, int radius) {
    require(keepsTo(to.rect(), area), "what is blurred lies outside of its surface");
    require(radius >= 0 && radius <= 128, "a radius lies outside of 0 to 128");
    Blur_Rect(to.data(), PassedRect(area), to.pitch(), radius);
}

// A source on a place.

/// Holds what lies on (`x`, `y`) against both surfaces.
inline void requireBoth(View to, int x, int y, ConstView from, const Rect &area) {
    require(keepsTo(from.rect(), area), "what is read lies outside of its surface");
    require(area.isEmpty() || (x >= 0 && y >= 0 && x <= to.width() - area.width() && y <= to.height() - area.height()),
            "what is drawn lies outside of its surface");
}

/// iBltFast32(): all of it lies on `to`.
inline void copy(View to, int x, int y, ConstView from, const Rect &area) {
    requireBoth(to, x, y, from, area);
    iBltFast32(to.data(), readBy(from), wordOf(x), wordOf(y), PassedRect(area), to.pitch(), from.pitch());
}
/// All of `from`.
inline void copy(View to, int x, int y, ConstView from) {
    copy(to, x, y, from, from.rect());
}

/// iBltFast32_Advanced(): anywhere; what lies on `to` is drawn.
inline void copyClipped(View to, int x, int y, ConstView from, const Rect &area) {
    require(keepsTo(from.rect(), area), "what is read lies outside of its surface");
    iBltFast32_Advanced(to.data(), readBy(from), x, y, PassedRect(area), to.pitch(), from.pitch(), to.width(),
                        to.height());
}

/// iBltFast32_KeySrc(): without the pixels that equal `key` in all 32 bits.
inline void copyKeyed(View to, int x, int y, ConstView from, const Rect &area, q_ulong key = 0) {
    requireBoth(to, x, y, from, area);
    iBltFast32_KeySrc(to.data(), readBy(from), wordOf(x), wordOf(y), PassedRect(area), wordOf(to.pitch()),
                      wordOf(from.pitch()), key);
}

/// iBltFast32_Add(): every channel ends at 255.
inline void add(View to, int x, int y, ConstView from, const Rect &area) {
    requireBoth(to, x, y, from, area);
    iBltFast32_Add(to.data(), readBy(from), wordOf(x), wordOf(y), PassedRect(area), wordOf(to.pitch()),
                   wordOf(from.pitch()));
}

/// iBltFast32Alpha(), whose source need not lie on the same place: with an `alpha` from 0 to 1.
inline void blend(View to, int x, int y, ConstView from, const Rect &area, float alpha) {
    requireBoth(to, x, y, from, area);
    require(alpha >= 0 && alpha <= 1, "an alpha lies outside of 0 to 1");
    if (area.isEmpty()) // its place need be no part of anything
        return;
    const ConstView source = from.part(area);
    const View target = to.part(Rect::sized(x, y, area.width(), area.height()));
    iBltFast32Alpha(target.data(), readBy(source), 0, 0, PassedRect(source.rect()), target.pitch(), source.pitch(),
                    alpha);
}

/// iBltFast32AlphaChannelSafe(): by the top byte of each pixel of `from`, anywhere; what lies on `to` is drawn.
inline void blendByTopByte(View to, int x, int y, ConstView from) {
    iBltFast32AlphaChannelSafe(to.data(), readBy(from), x, y, PassedRect(from.rect()), PassedRect(to.rect()),
                               to.pitch(), from.pitch());
}

// A source at another size.

/// Holds both rectangles against their surfaces.
inline void requireBoth(View to, const Rect &target, ConstView from, const Rect &area) {
    require(keepsTo(from.rect(), area), "what is read lies outside of its surface");
    require(keepsTo(to.rect(), target), "what is drawn lies outside of its surface");
}

/// iBltNear32(): the nearest pixel, all 32 bits. `area` must have pixels, and at most 4095 columns and rows.
inline void scale(View to, const Rect &target, ConstView from, const Rect &area) {
    requireBoth(to, target, from, area);
    require(!area.isEmpty(), "a source has no pixels");
    require(area.width() < 4096 && area.height() < 4096, "a source is larger than the format of positions");
    iBltNear32(to.data(), readBy(from), PassedRect(target), PassedRect(area), to.pitch(), from.pitch());
}

/// Filtered, and nothing bleeds in at the edges: iBltBilinear32_KeySrc(), which reads nothing outside of `area`, with a
/// key that no filtered pixel has. Top byte 0. `area` must have pixels, and at most 131071 columns and rows.
inline void enlarge(View to, const Rect &target, ConstView from, const Rect &area) {
    requireBoth(to, target, from, area);
    constexpr q_ulong noKey = 0xFF000000;
    require(!area.isEmpty(), "a source has no pixels");
    require(area.width() < 131072 && area.height() < 131072, "a source is larger than the format of positions");
    iBltBilinear32_KeySrc(to.data(), readBy(from), PassedRect(target), PassedRect(area), wordOf(to.pitch()),
                          wordOf(from.pitch()), noKey);
}
/// All of `from` to all of `to`.
inline void enlarge(View to, ConstView from) {
    enlarge(to, to.rect(), from, from.rect());
}

/// Whether each row of what turn() draws goes through 1024 pixels of its source at the most.
inline bool turnKeepsToFormat(View to, int centreX, const Rect &area, double angle, double size) {
    const double width = area.width();
    const double height = area.height();
    const double reach = std::sqrt(width * width + height * height) * size / 2;
    const double begin = std::max(centreX - reach, 0.0);
    const double end = std::min<double>(centreX + reach, to.width());
    return begin >= end || area.isEmpty() || to.rect().isEmpty() ||
           (end - begin) * std::max(std::fabs(std::cos(angle)), std::fabs(std::sin(angle))) <= 1024 * size;
}

/// iBltLinear32_Z_Roto(): `area` turned by `angle`, in radians, about its middle, which comes to (`centreX`,
/// `centreY`), inside of `to`. With a `size` of 2 it is twice as wide and high; 0 and below draw nothing. A row of `to`
/// may go through at most 1024 pixels of the source: so do all where `area` is no longer than that from corner to
/// corner, or where `to` is at most 1024 times `size` wide.
inline void turn(View to, int centreX, int centreY, ConstView from, const Rect &area, float angle, float size = 1) {
    require(keepsTo(from.rect(), area), "what is read lies outside of its surface");
#if Q_MUR_SURFACE_CHECKED
    require(turnKeepsToFormat(to, centreX, area, static_cast<double>(angle), static_cast<double>(size)),
            "a row of a turn goes through more than 1024 pixels of its source");
#endif
    iBltLinear32_Z_Roto(to.data(), to.pitch(), readBy(from), from.pitch(), PassedRect(to.rect()), PassedRect(area),
                        centreX, centreY, angle, size);
}

// Regions.

/// Paints the region around (`x`, `y`) up to pixels that are `border` in all 32 bits, or to the edges of `to`. What
/// Region_Fill() asks of its caller is not asked here: there may be islands, `colour` may be any, the region may wind
/// as it likes, and the first and last rows and columns are painted as all others are. While it runs it takes a bit for
/// each pixel, and eight bytes for each place from which it is still to go on. A seed outside of `to`, or on the
/// border, paints nothing.
inline void fillSafely(View to, int x, int y, q_ulong colour, q_ulong border) {
    if (x < 0 || x >= to.width() || y < 0 || y >= to.height() || to.at(x, y) == border)
        return;
    const auto width = static_cast<std::size_t>(to.width());
    std::vector<bool> isPainted(width * static_cast<std::size_t>(to.height()));
    const auto isOpen = [&](int column, int row) {
        return !isPainted[static_cast<std::size_t>(row) * width + static_cast<std::size_t>(column)] &&
               to.at(column, row) != border;
    };
    _PRIVATE_QMGP_DATA data = {};
    SetRegionFill(&data, to.data(), to.pitch(), to.data(), to.pitch());
    std::vector<std::pair<int, int>> seeds = {{x, y}};
    while (!seeds.empty()) {
        const auto [column, row] = seeds.back();
        seeds.pop_back();
        if (!isOpen(column, row))
            continue;
        // A scan looks at the pixel behind its limit, too.
        const int last = to.width() - 1;
        int left = column > 0 ? scan_left(&data, column, row, border, 1) : 0;
        if (left == 1 && to.at(0, row) != border)
            left = 0;
        int right = column < last ? scan_right(&data, column, row, border, last) + 1 : last + 1;
        if (right == last && to.at(last, row) != border)
            right = last + 1;
        const auto first = isPainted.begin() + static_cast<std::ptrdiff_t>(row) * to.width();
        std::fill(first + left, first + right, true);
        fill(to, {left, row, right, row + 1}, colour);
        for (const int next : {row - 1, row + 1}) {
            if (next < 0 || next >= to.height())
                continue;
            for (int i = left; i < right; ++i)
                if (isOpen(i, next) && (i == left || !isOpen(i - 1, next)))
                    seeds.emplace_back(i, next);
        }
    }
}

// Texts.

/// A text in UTF-8 as iTextOut() takes it, in code page 1252: a character that it does not have is a question mark.
inline std::string textOf(std::string_view utf8) {
    constexpr unsigned short upper[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                          0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                          0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                          0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
    std::string text;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto byte = [&utf8](std::size_t at) {
            return at < utf8.size() ? static_cast<unsigned char>(utf8[at]) : static_cast<unsigned char>(0);
        };
        const unsigned first = byte(i++);
        const int more = first < 0x80   ? 0
                         : first < 0xC0 ? -1
                         : first < 0xE0 ? 1
                         : first < 0xF0 ? 2
                         : first < 0xF8 ? 3
                                        : -1;
        unsigned code = more <= 0 ? first : first & (0x3FU >> more);
        bool isWhole = more >= 0;
        for (int k = 0; isWhole && k < more; ++k) {
            isWhole = (byte(i) & 0xC0U) == 0x80;
            if (isWhole)
                code = code << 6 | (byte(i++) & 0x3FU);
        }
        const auto *const found = std::find(std::begin(upper), std::end(upper), code);
        constexpr unsigned least[] = {0, 0x80, 0x800, 0x10000};
        if (!isWhole || code == 0 || code < least[more])
            text += '?';
        else if (code < 0x80 || (code >= 0xA0 && code < 0x100))
            text += static_cast<char>(code);
        else
            text += found == std::end(upper) ? '?' : static_cast<char>(0x80 + (found - upper));
    }
    return text;
}

/// iTextOut() in UTF-8, inside of `to`, with its top left corner on (`x`, `y`).
/// \param height in pixels: positive that of a line, negative that of its letters, 0 whatever is usual
/// \param face the name of a face as the system knows it, in UTF-8; empty leaves the choice to the system
/// \return whether the text was drawn
inline bool drawText(View to, int x, int y, std::string_view utf8, Rgb colour, int height, std::string_view face = {}) {
    std::string text = textOf(utf8);
    std::string name = textOf(face);
    return iTextOut(to.data(), PassedRect(to.rect()), to.pitch(), text.data(), colour.blueFirst(), x, y, height,
                    name.data()) != 0;
}

// Records and blocks.

/// A host's record with the sizes of its frame, whose blocks are freed when it goes.
class Record {
public:
    /// A frame of `width` by `height` pixels without margins, 2^31 - 1 in all at the most; `points` and `matrices` are
    /// what 3D blocks have room for.
    Record(int width, int height, int points = 0, int matrices = 2) {
        const long long elements = 1LL * width * height;
        require(width >= 0 && height >= 0 && fitsInt(elements), "a frame has more pixels than a record counts");
        geometry.planeElements = static_cast<int>(elements);
        limits.vertexArrayEntries = points;
        limits.matrixStackDepth = matrices;
        data.frameGeometry = &geometry;
        data.limits3D = &limits;
    }
    ~Record() { DeleteMemoryBlocks(&data); }
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;

    _TRANSFERDATA *get() { return &data; }       ///< as flat calls take it
    operator _TRANSFERDATA *() { return &data; } ///< as get()

    /// FindNotUsedMemory(): bytes that live as long as the record, in a slot of their own; null without memory.
    void *allocate(int slot, int bytes) { return FindNotUsedMemory(&data, slot, bytes); }

private:
    TransferFrameGeometry geometry = {};
    TransferLimits3D limits = {};
    _TRANSFERDATA data = {};
};

/// A private block with a record of its own, freed when it goes. It is null where there is no memory.
template <class Data>
class Block {
public:
    /// `sizes` are those of its Record.
    template <class... Sizes>
    explicit Block(Sizes... sizes) : record(sizes...), block(made()) {}

    Data *get() { return block; }        ///< as flat calls take it
    operator Data *() { return block; }  ///< as get()
    Data *operator->() { return block; } ///< its fields

private:
    Data *made() {
        if constexpr (std::is_same_v<Data, _PRIVATE_QMGL_DATA>)
            return GetPrivate_QMGL_Data(record, 0);
        else if constexpr (std::is_same_v<Data, _PRIVATE_QM3D_DATA>)
            return GetPrivate_QM3D_Data(record, 0);
        else if constexpr (std::is_same_v<Data, _PRIVATE_QMGP_DATA>)
            return GetPrivate_QMGP_Data(record, 0);
        else
            return GetPrivate_LUT_Data(record, 0);
    }

    Record record;
    Data *block;
};
using PipelineBlock = Block<_PRIVATE_QMGL_DATA>; ///< of the matrix pipeline
using TexturedBlock = Block<_PRIVATE_QM3D_DATA>; ///< of the older textured module

} // namespace
} // namespace q_Mur

#endif
