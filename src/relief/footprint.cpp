#include "relief/footprint.h"

#include "relief/cellcode.h"
#include "relief/falloff.h"
#include "relief/tool.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <vector>

namespace {

enum Cell : unsigned char { Outside, Inside, Outline };

constexpr double unreached = std::numeric_limits<double>::max();

/// Marks outline points, given from the middle of the footprint, in its rotated frame.
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

/// Relaxes a cell on the left or right edge against the row visited before it; `inward` is the step
/// to its neighbour in the array.
bool relaxEdge(double &value, const double *passed, ptrdiff_t inward, int dimension)
{
    double best = *passed + 1.0;
    if (dimension > 1)
        best = std::min(best, passed[inward] + std::numbers::sqrt2);
    if (best >= value)
        return false;
    value = best;
    return true;
}

/// Relaxes cells 1 .. count - 2 of a row against the row visited before it. Outside cells keep
/// `unreached`, so that no path leads through them.
CELL_LOOP bool relaxAcross(double *row, const double *passed, const unsigned char *cells, int count)
{
    int changed = 0;
#pragma omp simd reduction(| : changed)
    for (int x = 1; x < count - 1; ++x) {
        const double diagonal = std::min(passed[x - 1], passed[x + 1]) + std::numbers::sqrt2;
        const double best = std::min(passed[x] + 1.0, diagonal);
        const double old = row[x];
        const double relaxed = (cells[x] != Outside) & (best < old) ? best : old;
        changed |= static_cast<int>(relaxed != old);
        row[x] = relaxed;
    }
    return changed != 0;
}

/// Relaxes the cells of a row against each other, one after the other, `step` +1 or -1.
bool relaxAlong(double *row, const unsigned char *cells, int count, int step)
{
    int changed = 0;
    double previous = unreached;
    for (int i = 0, x = step > 0 ? 0 : count - 1; i < count; ++i, x += step) {
        const double old = row[x];
        const double best = std::min(old, previous + 1.0);
        previous = cells[x] == Outside ? unreached : best;
        changed |= static_cast<int>(previous != old);
        row[x] = previous;
    }
    return changed != 0;
}

/// One pass over the map, rows downward and columns rightward when `step` is 1, the other way when
/// it is -1. Each cell is relaxed against the four neighbours passed before it; a pass in either
/// direction settles everything a straight path can reach.
bool sweep(double *map, const unsigned char *footprint, int dimension, int step)
{
    bool changed = false;
    for (int i = 0; i < dimension; ++i) {
        const ptrdiff_t y = step > 0 ? i : dimension - 1 - i;
        double *row = map + y * dimension;
        const unsigned char *cells = footprint + y * dimension;
        if (i > 0) {
            const double *passed = row - step * static_cast<ptrdiff_t>(dimension);
            const int last = dimension - 1;
            changed |= relaxAcross(row, passed, cells, dimension);
            if (cells[0] != Outside)
                changed |= relaxEdge(row[0], passed, 1, dimension);
            if (cells[last] != Outside)
                changed |= relaxEdge(row[last], passed + last, -1, dimension);
        }
        changed |= relaxAlong(row, cells, dimension, step);
    }
    return changed;
}

} // namespace

void buildFootprint(unsigned char *footprint, int dimension, const ToolParams &params,
                    double radius)
{
    std::memset(footprint, Inside, static_cast<size_t>(dimension) * static_cast<size_t>(dimension));
    if (alphaShapes(params))
        return;
    OutlinePen pen(footprint, dimension, params.angle);
    if (params.form == Tool::Square)
        traceSquare(pen, radius, radius / params.aspect);
    else
        traceRound(pen, radius, radius / params.aspect);
    BorderFlood(footprint, dimension).run();
}

int chamferDistances(double *map, const unsigned char *footprint, int dimension)
{
    const ptrdiff_t count = static_cast<ptrdiff_t>(dimension) * dimension;
    for (ptrdiff_t i = 0; i < count; ++i)
        map[i] = footprint[i] == Outline ? 1.0 : unreached;

    // Both directions in turn: a path that bends with its direction is settled by one sweep, so
    // that only shapes with coves need more than these two and the one that finds nothing to do.
    const int limit = std::max(1, (dimension + 1) / 2);
    int sweeps = 0;
    bool changed = true;
    while (changed && sweeps < limit)
        changed = sweep(map, footprint, dimension, sweeps++ % 2 == 0 ? 1 : -1);

    for (ptrdiff_t i = 0; i < count; ++i)
        if (footprint[i] == Outside)
            map[i] = 0.0;
    return sweeps;
}
