#include "relief/tools/footprint.h"

#include "relief/grid/cellcode.h"
#include "relief/tools/falloff.h"
#include "relief/tools/tool.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <vector>

namespace marlowen {

namespace {

enum Cell : unsigned char { Outside, Inside, Outline };

constexpr double unreached = std::numeric_limits<double>::max();

/// Paths of the same steps in another order differ by less; different paths by far more.
constexpr double rounding = 1e-10;

/// Marks outline points, given from the centre of the footprint, in its rotated frame.
class OutlinePen
{
public:
    OutlinePen(unsigned char *footprint, int dimension, double angleDegrees)
        : m_footprint(footprint)
        , m_dimension(dimension)
        , m_cos(std::cos(angleDegrees * std::numbers::pi / 180.0))
        , m_sin(std::sin(angleDegrees * std::numbers::pi / 180.0))
    {
    }

    void mark(double x, double y)
    {
        const int centre = m_dimension / 2;
        const double column = std::trunc(m_cos * x - m_sin * y + centre);
        const double row = std::trunc(m_sin * x + m_cos * y + centre);
        if (column >= 0 && column < m_dimension && row >= 0 && row < m_dimension)
            m_footprint[static_cast<size_t>(row) * static_cast<size_t>(m_dimension) +
                        static_cast<size_t>(column)] = Outline;
    }

private:
    unsigned char *m_footprint;
    int m_dimension;
    double m_cos;
    double m_sin;
};

void traceSquare(OutlinePen &pen, double halfWidth, double halfHeight)
{
    const auto along = static_cast<int>(4.0 * halfWidth);
    for (int i = 0; i < along; ++i) {
        pen.mark(-halfWidth + 0.5 * i, -halfHeight);
        pen.mark(-halfWidth + 0.5 * i, halfHeight);
    }
    const auto up = static_cast<int>(4.0 * halfHeight);
    for (int i = 0; i < up; ++i) {
        pen.mark(-halfWidth, -halfHeight + 0.5 * i);
        pen.mark(halfWidth, -halfHeight + 0.5 * i);
    }
    pen.mark(halfWidth, halfHeight);
}

void traceRound(OutlinePen &pen, double radius, double halfHeight)
{
    const auto count = static_cast<int>(4.0 * std::numbers::pi * radius);
    for (int k = 0; k < count; ++k) {
        const double t = k * 2.0 * std::numbers::pi / (count + 1);
        pen.mark(radius * std::cos(t), halfHeight * std::sin(t));
    }
}

/// Turns every inside cell that a path of side steps joins to the array's border into outside.
class BorderFlood
{
public:
    BorderFlood(unsigned char *cells, int dimension)
        : m_cells(cells)
        , m_dimension(dimension)
    {
    }

    void run()
    {
        for (int i = 0; i < m_dimension; ++i) {
            _fillFrom(i, 0);
            _fillFrom(i, m_dimension - 1);
            _fillFrom(0, i);
            _fillFrom(m_dimension - 1, i);
        }
    }

private:
    unsigned char *_row(int row) { return m_cells + static_cast<ptrdiff_t>(row) * m_dimension; }

    void _fillFrom(int column, int row)
    {
        m_seeds.push_back({column, row});
        while (!m_seeds.empty()) {
            const Seed seed = m_seeds.back();
            m_seeds.pop_back();
            if (_row(seed.row)[seed.column] == Inside)
                _fillRun(seed.column, seed.row);
        }
    }

    void _fillRun(int column, int row)
    {
        unsigned char *cells = _row(row);
        int first = column;
        while (first > 0 && cells[first - 1] == Inside)
            --first;
        int end = column + 1;
        while (end < m_dimension && cells[end] == Inside)
            ++end;
        std::memset(cells + first, Outside, static_cast<size_t>(end - first));
        for (const int next : {row - 1, row + 1})
            if (next >= 0 && next < m_dimension)
                _seedRuns(next, first, end);
    }

    /// One seed for every run of inside cells that begins in, or reaches into, columns
    /// first..end-1.
    void _seedRuns(int row, int first, int end)
    {
        const unsigned char *cells = _row(row);
        for (int column = first; column < end; ++column) {
            const void *hit =
                std::memchr(cells + column, Inside, static_cast<size_t>(end - column));
            if (!hit)
                return;
            column = static_cast<int>(static_cast<const unsigned char *>(hit) - cells);
            m_seeds.push_back({column, row});
            while (column < end && cells[column] == Inside)
                ++column;
        }
    }

    struct Seed
    {
        int column;
        int row;
    };
    unsigned char *m_cells;
    int m_dimension;
    std::vector<Seed> m_seeds;
};

/// The cells of a row of the map that are not outside lie in first .. end - 1.
struct RowExtent
{
    int first = 0;
    int end = 0;
    bool solid = false; ///< all of them are not outside
};

RowExtent extentOf(const unsigned char *cells, int count)
{
    int first = 0;
    while (first < count && cells[first] == Outside)
        ++first;
    int end = count;
    while (end > first && cells[end - 1] == Outside)
        --end;
    const auto length = static_cast<size_t>(end - first);
    return {first, end, std::memchr(cells + first, Outside, length) == nullptr};
}

/// A distance as a step to a neighbour sees it: no path leads through the outside.
CELL_INLINE inline double passable(double distance)
{
    return distance == 0.0 ? unreached : distance;
}

/// Relaxes a cell on the left or right edge of the map against the row visited before it; `inward`
/// is the step to its neighbour in the array, 0 when there is none.
bool relaxEdge(double &value, const double *passed, int inward)
{
    double best = passable(passed[0]) + 1.0;
    if (inward != 0)
        best = std::min(best, passable(passed[inward]) + std::numbers::sqrt2);
    const double old = value;
    value = std::min(best, old);
    return old - value > rounding;
}

/// Relaxes `count` cells of a row, none of them on an edge of the map, against the row visited
/// before it. Outside cells keep their 0, which no distance is below.
CELL_LOOP bool relaxAcross(double *row, const double *passed, int count)
{
    int changed = 0;
#pragma omp simd reduction(| : changed)
    for (int x = 0; x < count; ++x) {
        const double left = passable(passed[x - 1]);
        const double right = passable(passed[x + 1]);
        const double diagonal = (left < right ? left : right) + std::numbers::sqrt2;
        const double side = passable(passed[x]) + 1.0;
        const double best = side < diagonal ? side : diagonal;
        const double old = row[x];
        const double relaxed = best < old ? best : old;
        changed |= static_cast<int>(old - relaxed > rounding);
        row[x] = relaxed;
    }
    return changed != 0;
}

/// True when a step along the row shortens the path to one of cells 1 .. count - 1; `back` leads
/// from a cell to the one before it.
CELL_LOOP bool canRelaxAlong(const double *row, const double *back, int count)
{
    int can = 0;
#pragma omp simd reduction(| : can)
    for (int x = 0; x < count; ++x)
        can |= static_cast<int>(row[x] - passable(back[x]) > 1.0 + rounding);
    return can != 0;
}

/// Relaxes the cells of a row against each other, one after the other. Only rows with outside cells
/// in their extent have to look for them: each addition waits for the one before it, and a test in
/// between would lengthen that chain.
template <int Step, bool Solid>
void relaxChain(double *row, RowExtent extent)
{
    double *cell = row + (Step > 0 ? extent.first : extent.end - 1);
    double previous = unreached;
    for (int i = extent.first; i < extent.end; ++i, cell += Step) {
        const double next = previous + 1.0;
        const double best = next < *cell ? next : *cell;
        *cell = best;
        previous = Solid ? best : passable(best);
    }
}

/// Relaxes the cells of a row along it, `step` +1 or -1, if that leads anywhere.
bool relaxAlong(double *row, RowExtent extent, int step)
{
    const double *cells = row + extent.first + (step > 0 ? 1 : 0);
    if (!canRelaxAlong(cells, cells - step, extent.end - extent.first - 1))
        return false;
    if (extent.solid)
        step > 0 ? relaxChain<1, true>(row, extent) : relaxChain<-1, true>(row, extent);
    else
        step > 0 ? relaxChain<1, false>(row, extent) : relaxChain<-1, false>(row, extent);
    return true;
}

CELL_LOOP void beginRow(double *row, const unsigned char *cells, int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const double inside = cells[x] == Outline ? 1.0 : unreached;
        row[x] = cells[x] == Outside ? 0.0 : inside;
    }
}

class DistanceSweeps
{
public:
    DistanceSweeps(double *map, const unsigned char *footprint, int dimension)
        : m_map(map)
        , m_dimension(dimension)
        , m_extents(static_cast<size_t>(dimension))
    {
        for (int y = 0; y < dimension; ++y) {
            const ptrdiff_t start = static_cast<ptrdiff_t>(y) * dimension;
            beginRow(map + start, footprint + start, dimension);
            m_extents[static_cast<size_t>(y)] = extentOf(footprint + start, dimension);
        }
    }

    /// One pass over the map, rows downward and columns rightward when `step` is 1, the other way
    /// when it is -1. Each cell is relaxed against the four neighbours passed before it; a pass in
    /// either direction settles everything a straight path can reach. True when a cell changed.
    bool run(int step)
    {
        bool changed = false;
        for (int i = 0; i < m_dimension; ++i) {
            const int y = step > 0 ? i : m_dimension - 1 - i;
            double *row = m_map + static_cast<ptrdiff_t>(y) * m_dimension;
            const RowExtent extent = m_extents[static_cast<size_t>(y)];
            if (extent.first == extent.end)
                continue;
            if (i > 0)
                changed |= _relaxRow(row, row - static_cast<ptrdiff_t>(step) * m_dimension, extent);
            changed |= relaxAlong(row, extent, step);
        }
        return changed;
    }

private:
    bool _relaxRow(double *row, const double *passed, RowExtent extent) const
    {
        const int last = m_dimension - 1;
        const int first = std::max(extent.first, 1);
        const int end = std::min(extent.end, last);
        bool changed = false;
        if (end > first)
            changed |= relaxAcross(row + first, passed + first, end - first);
        const int inward = last > 0 ? 1 : 0;
        changed |= relaxEdge(row[0], passed, inward);
        if (last > 0)
            changed |= relaxEdge(row[last], passed + last, -inward);
        return changed;
    }

    double *m_map;
    int m_dimension;
    std::vector<RowExtent> m_extents;
};

} // namespace

void buildFootprint(BasicGridView<unsigned char> footprint, const ToolParams &params, double radius)
{
    std::ranges::fill(footprint.span(), static_cast<unsigned char>(Inside));
    if (alphaShapes(params))
        return;
    OutlinePen pen(footprint.values, footprint.width, params.angle);
    if (params.form == Tool::Square)
        traceSquare(pen, radius, radius / params.aspect);
    else
        traceRound(pen, radius, radius / params.aspect);
    BorderFlood(footprint.values, footprint.width).run();
}

int chamferDistances(BasicGridView<double> map, FootprintView footprint)
{
    DistanceSweeps sweeps(map.values, footprint.values, map.width);
    // Both directions in turn: two sweeps settle a convex shape, a third changes
    // nothing.
    const int limit = std::max(1, (map.width + 1) / 2);
    int count = 0;
    bool changed = true;
    while (changed && count < limit)
        changed = sweeps.run(count++ % 2 == 0 ? 1 : -1);
    return count;
}

} // namespace marlowen
