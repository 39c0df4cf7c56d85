#include "relief/operations/placement.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace marlowen {

namespace {

constexpr int rim = 2;
/// No level is made that would be smaller.
constexpr int smallestSide = 8;
/// Squared distance of a cell whose row or column has no empty cell.
constexpr float farOff = 1e18F;

FloatGrid withRim(const GridView &heights)
{
    FloatGrid grid(heights.width + 2 * rim, heights.height + 2 * rim);
    for (int row = 0; row < heights.height; ++row)
        std::copy_n(heights.row(row), heights.width, grid.row(row + rim) + rim);
    return grid;
}

/// Half as many cells each way: the mean of four that are filled, where at least two are.
FloatGrid halved(const FloatGrid &fine)
{
    const int width = (fine.width - 2 * rim + 1) / 2;
    const int height = (fine.height - 2 * rim + 1) / 2;
    FloatGrid grid(width + 2 * rim, height + 2 * rim);
    for (int row = 0; row < height; ++row) {
        const float *below = fine.row(2 * row + rim) + rim;
        const float *above = fine.row(2 * row + 1 + rim) + rim;
        float *line = grid.row(row + rim) + rim;
        for (int column = 0; column < width; ++column) {
            const float cells[] = {below[2 * column], below[2 * column + 1], above[2 * column],
                                   above[2 * column + 1]};
            const auto filled = std::count_if(std::begin(cells), std::end(cells),
                                              [](float cell) { return cell != 0.0F; });
            const float sum = (cells[0] + cells[1]) + (cells[2] + cells[3]);
            line[column] = filled >= 2 ? sum / static_cast<float>(filled) : 0.0F;
        }
    }
    return grid;
}

/// For every cell the squared distance to the nearest empty cell in its column.
FloatGrid columnDistances(const FloatGrid &heights)
{
    FloatGrid grid(heights.width, heights.height);
    const auto sweep = [&](int row, int before) {
        const float *filled = heights.row(row);
        const float *last = before < 0 || before >= grid.height ? nullptr : grid.row(before);
        float *line = grid.row(row);
        for (int column = 0; column < grid.width; ++column) {
            const float next = last ? last[column] + 1.0F : farOff;
            line[column] = filled[column] == 0.0F ? 0.0F : std::min(line[column], next);
        }
    };
    std::ranges::fill(grid.values, farOff);
    for (int row = 0; row < grid.height; ++row)
        sweep(row, row - 1);
    for (int row = grid.height - 1; row >= 0; --row)
        sweep(row, row + 1);
    for (float &distance : grid.values)
        distance = std::min(distance * distance, farOff);
    return grid;
}

/// The lower envelope of parabolas over the cells of one row: P. Felzenszwalb and D. Huttenlocher,
/// "Distance transforms of sampled functions", Theory of Computing 8 (2012).
class Envelope
{
public:
    explicit Envelope(int width)
        : m_cells(static_cast<size_t>(width))
        , m_from(static_cast<size_t>(width))
        , m_row(static_cast<size_t>(width))
    {
    }

    /// Replaces the squared distances along columns by distances in the plane.
    void spread(float *line)
    {
        std::copy_n(line, m_row.size(), m_row.begin());
        size_t count = 0;
        for (size_t cell = 0; cell < m_row.size(); ++cell) {
            while (count > 0 && _meeting(m_cells[count - 1], cell) <= m_from[count - 1])
                --count;
            m_cells[count] = cell;
            m_from[count] = count > 0 ? _meeting(m_cells[count - 1], cell)
                                      : -std::numeric_limits<double>::infinity();
            ++count;
        }
        for (size_t cell = 0, at = 0; cell < m_row.size(); ++cell) {
            while (at + 1 < count && m_from[at + 1] < static_cast<double>(cell))
                ++at;
            const double away = static_cast<double>(cell) - static_cast<double>(m_cells[at]);
            line[cell] = static_cast<float>(
                std::sqrt(away * away + static_cast<double>(m_row[m_cells[at]])));
        }
    }

private:
    /// Where the parabola of `cell` falls below that of `before`.
    double _meeting(size_t before, size_t cell) const
    {
        const auto lift = [this](size_t at) {
            const auto x = static_cast<double>(at);
            return static_cast<double>(m_row[at]) + x * x;
        };
        return (lift(cell) - lift(before)) / (2.0 * static_cast<double>(cell - before));
    }

    std::vector<size_t> m_cells;
    std::vector<double> m_from;
    std::vector<float> m_row;
};

/// The values of a cell next to the outline, from its filled neighbours: their mean height, and the
/// distance to the nearest.
struct Beside
{
    float height = 0.0F;
    float distance = 0.0F;
};

Beside besideOutline(const FloatGrid &heights, int column, int row)
{
    float sum = 0.0F;
    int filled = 0;
    float nearest = static_cast<float>(rim);
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const float height = heights.row(row + dy)[column + dx];
            if (height == 0.0F)
                continue;
            sum += height;
            ++filled;
            nearest = std::min(nearest, dx != 0 && dy != 0 ? std::numbers::sqrt2_v<float> : 1.0F);
        }
    }
    return {filled > 0 ? sum / static_cast<float>(filled) : 0.0F, nearest};
}

/// The outline runs half-way between filled and empty cells.
PlacedPattern::Level levelOf(const FloatGrid &heights)
{
    PlacedPattern::Level level{heights, columnDistances(heights)};
    Envelope envelope(heights.width);
    for (int row = 0; row < heights.height; ++row)
        envelope.spread(level.distance.row(row));
    for (float &distance : level.distance.values)
        distance -= 0.5F;
    for (int row = 1; row + 1 < heights.height; ++row) {
        for (int column = 1; column + 1 < heights.width; ++column) {
            if (heights.row(row)[column] != 0.0F)
                continue;
            const Beside beside = besideOutline(heights, column, row);
            level.heights.row(row)[column] = beside.height;
            level.distance.row(row)[column] = 0.5F - beside.distance;
        }
    }
    return level;
}

} // namespace

PlacedPattern::PlacedPattern(GridView heights, double zScale)
    : m_width(heights.width)
    , m_height(heights.height)
    , m_zScale(zScale)
{
    FloatGrid grid = withRim(heights);
    m_levels.push_back(levelOf(grid));
    while (std::min(grid.width, grid.height) - 2 * rim >= 2 * smallestSide) {
        grid = halved(grid);
        m_levels.push_back(levelOf(grid));
    }
}

} // namespace marlowen
