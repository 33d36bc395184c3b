/// \file
/// The source pixels that a stretch of destination columns shows, worked out once for all rows. Where a group of
/// columns looks at few pixels, these are loaded side by side and picked out of registers.
#ifndef Q_MUR_WALKS_COLUMNS_H
#define Q_MUR_WALKS_COLUMNS_H

#include "base/lanes.h"
#include "base/surface.h"

#include <cstdint>
#include <type_traits>

namespace qmur {

/// So many columns are worked out at a time: the tables for them stay in the nearest cache.
constexpr int mostColumns = 2048;

/// How many loads make up the window that a group of columns looks into; 0 if each pixel has its own.
template <int count>
using WindowLoads = std::integral_constant<int, count>;

/// Calls `call(WindowLoads)`.
template <class Call>
void withWindowLoads(int loads, Call call) {
    if constexpr (sumsPairs) {
        if (loads == 1)
            return call(WindowLoads<1>());
        if (loads == 2)
            return call(WindowLoads<2>());
        if (loads == 4)
            return call(WindowLoads<4>());
    }
    call(WindowLoads<0>());
}

/// The source columns of up to `mostColumns` destination columns, in groups of as many pixels as a register takes.
class PickedColumns {
public:
    using Group = MostPixels;
    static constexpr int size = sizeof(Group) / sizeof(std::uint32_t);

    /// `columnOf(x)` does not fall as x grows from 0 to `count`. All of `readable` may be read, and each column's
    /// neighbours up to `neighbours` to the right lie within.
    template <class ColumnOf>
    PickedColumns(int count, Span readable, int neighbours, ColumnOf columnOf) : columnCount(count) {
        const int groups = groupCount();
        for (int x = 0; x < count; ++x)
            places[x] = columnOf(x);
        for (int x = count; x < groups * size; ++x)
            places[x] = places[count - 1];
        int widest = 0;
        for (int group = 0; group < groups; ++group)
            widest = larger(widest, places[group * size + size - 1] - places[group * size] + 1);
        const int room = readable.length() - neighbours;
        if (sumsPairs && widest <= 4 * size) {
            const int loads = widest <= size ? 1 : widest <= 2 * size ? 2 : 4;
            windowLoads = loads * size <= room ? loads : 0;
        }
        if (windowLoads == 0)
            return;
        const int last = readable.end - neighbours - windowLoads * size;
        for (int group = 0; group < groups; ++group) {
            std::int32_t *const ofGroup = places + group * size;
            const int begin = smaller(ofGroup[0], last);
            begins[group] = begin;
            for (int lane = 0; lane < size; ++lane)
                ofGroup[lane] -= begin;
        }
    }

    int count() const { return columnCount; }
    int groupCount() const { return (columnCount + size - 1) / size; }
    int loads() const { return windowLoads; }

    /// The source pixels of a group, and with `loadNeighbours` those to the right of them.
    template <int loads>
    Group pixels(const q_ulong *row, int group) const {
        static_assert(loads > 0);
        const auto load = [from = row + begins[group]](int number) { return Group::load(from + number * size); };
        const Group ofGroup = Group::load(places + group * size);
        if constexpr (loads == 1)
            return picked(load(0), ofGroup);
        else if constexpr (loads == 2)
            return picked(load(0), load(1), ofGroup);
        else
            return selectEqual(ofGroup & Group::all(2 * size), Group::all(0), picked(load(0), load(1), ofGroup),
                               picked(load(2), load(3), ofGroup));
    }

    template <int loads>
    target::Neighbours<size> neighbours(const q_ulong *row, int group) const {
        if constexpr (loads == 0)
            return loadNeighbours<size>(row, places + group * size);
        else
            return {pixels<loads>(row, group), pixels<loads>(row + 1, group)};
    }

    /// Fetches the source pixels of a group from memory.
    template <int loads>
    void fetch(const q_ulong *row, int group) const {
        if constexpr (loads == 0)
            willRead(row + places[group * size]);
        else
            for (int load = 0; load < loads; ++load)
                willRead(row + begins[group] + load * size);
    }

    /// Writes the source pixels of all columns, and fetches those of the row `ahead` pixels away.
    template <int loads>
    void writePixels(const q_ulong *row, q_ulong *to, Distance ahead) const {
        const int whole = columnCount / size;
        for (int group = 0; group < whole; ++group) {
            fetch<loads>(row + ahead, group);
            if constexpr (loads == 0)
                for (int x = group * size; x < group * size + size; ++x)
                    to[x] = row[places[x]];
            else
                pixels<loads>(row, group).store(to + group * size);
        }
        if constexpr (loads == 0)
            for (int x = whole * size; x < columnCount; ++x)
                to[x] = row[places[x]];
        else if (columnCount % size != 0)
            pixels<loads>(row, whole).storeFirst(to + whole * size, columnCount % size);
    }

private:
    int columnCount;
    int windowLoads = 0;
    alignas(widestBytes) std::int32_t places[mostColumns]; ///< source columns, or where in the window they lie
    std::int32_t begins[mostColumns / size];
};

} // namespace qmur

#endif
