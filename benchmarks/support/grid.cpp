#include "grid.h"

#include "support/random.h"

namespace bench {

Grid::Grid(int rowCount, int columnCount) : rows(rowCount), columns(columnCount) {
    test::Random random(static_cast<std::uint64_t>(rows * 1000 + columns));
    const auto place = [&random](int index, int count) {
        const int whole = index * extent / (count - 1);
        const int reach = extent / (count - 1) / 4;
        return static_cast<float>(index == 0 || index == count - 1 ? whole : whole + random.between(-reach, reach));
    };
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            const float x = place(column, columns);
            const float y = place(row, rows);
            points.push_back({x, y, static_cast<float>(random.between(0, 50)), 0});
        }
}

std::array<std::size_t, 4> Grid::cornersOf(int row, int column) const {
    const auto first = static_cast<std::size_t>(row * columns + column);
    const auto below = first + static_cast<std::size_t>(columns);
    return {first, first + 1, below + 1, below};
}

std::vector<std::array<std::size_t, 3>> Grid::triangles() const {
    std::vector<std::array<std::size_t, 3>> all;
    for (int row = 0; row < rows - 1; ++row)
        for (int column = 0; column < columns - 1; ++column) {
            const auto [a, b, c, d] = cornersOf(row, column);
            all.push_back({a, b, d});
            all.push_back({d, b, c});
        }
    return all;
}

} // namespace bench
