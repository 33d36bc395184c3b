/// \file
/// Rows of a picture side by side in a register, so that what runs along a row runs along all of them at once.
#ifndef Q_MUR_WALKS_ABREAST_H
#define Q_MUR_WALKS_ABREAST_H

#include "base/lanes.h"
#include "base/surface.h"

namespace qmur {

/// Four columns of as many rows as a register of that many bytes has pixels: in `columns`, a column's pixels from the
/// top to the bottom; in memory, four pixels of each row.
template <int bytes>
struct Tile {
    static constexpr int rows = bytes / 4;
    static constexpr int width = 4;
    using Column = Numbers<rows>;

    Column columns[width];

    static Tile load(const q_ulong *first, Distance pitch) {
        Tile tile;
        for (int row = 0; row < 4; ++row)
            tile.columns[row] =
                loadSixteens<Column>(first + row * pitch, pitch * 4 * static_cast<Distance>(sizeof(q_ulong)));
        tile.transpose();
        return tile;
    }

    /// Only the first `count` columns exist.
    static Tile loadPart(const q_ulong *first, Distance pitch, int count) {
        q_ulong pixels[width][rows] = {};
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < count; ++column)
                pixels[column][row] = first[row * pitch + column];
        Tile tile;
        for (int column = 0; column < width; ++column)
            tile.columns[column] = Column::load(pixels[column]);
        return tile;
    }

    void store(q_ulong *first, Distance pitch) {
        transpose();
        for (int row = 0; row < 4; ++row)
            storeSixteens(first + row * pitch, pitch * 4 * static_cast<Distance>(sizeof(q_ulong)), columns[row]);
    }

    void storePart(q_ulong *first, Distance pitch, int count) const {
        for (int column = 0; column < count; ++column) {
            q_ulong pixels[rows];
            columns[column].store(pixels);
            for (int row = 0; row < rows; ++row)
                first[row * pitch + column] = pixels[row];
        }
    }

private:
    /// Rows become columns and columns rows, within each 16 bytes.
    void transpose() {
        const auto upper = [](Column a, Column b) { return as<std::uint64_t>(interleavedLow(a, b)); };
        const auto lower = [](Column a, Column b) { return as<std::uint64_t>(interleavedHigh(a, b)); };
        const auto first = upper(columns[0], columns[1]);
        const auto second = upper(columns[2], columns[3]);
        const auto third = lower(columns[0], columns[1]);
        const auto fourth = lower(columns[2], columns[3]);
        columns[0] = as<std::uint32_t>(interleavedLow(first, second));
        columns[1] = as<std::uint32_t>(interleavedHigh(first, second));
        columns[2] = as<std::uint32_t>(interleavedLow(third, fourth));
        columns[3] = as<std::uint32_t>(interleavedHigh(third, fourth));
    }
};

} // namespace qmur

#endif
