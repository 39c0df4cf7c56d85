#include "import/mesh/facetrows.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// What lies this near a grid point counts as on it, in cells.
constexpr double tolerance = 1e-6;
/// Along a row an edge that runs nearly with it comes within the tolerance earlier. Up to this
/// slope the height there is taken from where the edge crosses the row.
constexpr double steepest = 8.0;
/// Work of one step: triangles, and cells of their boxes.
constexpr size_t stepTriangles = 8192;
constexpr double stepCells = 4e6;

struct Point
{
    double x, y, z;
};

/// Part of a row: from a to b, with the reach of the tolerance at both ends.
struct Span
{
    double x, z;
    double reach;
};

CELL_INLINE inline double snapped(double value)
{
    // Adding and taking off 1.5 * 2^52 rounds to the nearest whole number.
    constexpr double rounder = 6755399441055744.0;
    const double whole = (value + rounder) - rounder;
    return std::abs(value - whole) <= tolerance ? whole : value;
}

CELL_INLINE inline int floorInt(double value)
{
    const int truncated = static_cast<int>(value);
    return truncated - (value < truncated ? 1 : 0);
}

CELL_INLINE inline int ceilInt(double value)
{
    const int truncated = static_cast<int>(value);
    return truncated + (value > truncated ? 1 : 0);
}

CELL_INLINE inline Point placed(const MeshPoint &point, const CellPlacement &placement)
{
    const auto along = [&](size_t i) {
        const double value = point[placement.model.axis[i]] * placement.model.factor[i];
        return (value - placement.low[i]) * placement.cellsPerUnit;
    };
    return {snapped(along(0)), snapped(along(1)), along(2)};
}

CELL_INLINE inline void raise(float &cell, double height)
{
    const float value = static_cast<float>(height);
    cell = cell > value ? cell : value;
}

/// Raises the cells of a row between two points of a facet.
CELL_INLINE inline void fillSpan(float *row, int columns, Span a, Span b)
{
    if (b.x < a.x)
        std::swap(a, b);
    const int first = std::max(0, ceilInt(a.x - a.reach));
    const int last = std::min(columns - 1, floorInt(b.x + b.reach));
    if (b.x - a.x <= 2.0 * tolerance) {
        for (int c = first; c <= last; ++c)
            raise(row[c], std::max(a.z, b.z));
        return;
    }
    const double inverse = 1.0 / (b.x - a.x);
    const auto heightAt = [&](int c) {
        const double x = std::min(std::max(static_cast<double>(c), a.x), b.x);
        return (a.z * (b.x - x) + b.z * (x - a.x)) * inverse;
    };
    if (last - first < 8) {
        for (int c = first; c <= last; ++c)
            raise(row[c], heightAt(c));
        return;
    }
#pragma omp simd
    for (int c = first; c <= last; ++c)
        raise(row[c], heightAt(c));
}

/// An edge from the lower to the upper end.
struct Edge
{
    Point low, high;
    double height; ///< along y; 0 where the edge lies along a row
    double reach;
};

CELL_INLINE inline Edge edgeOf(const Point &low, const Point &high)
{
    const double height = high.y - low.y;
    const double run = std::abs(high.x - low.x);
    const double slope = run < steepest * height ? run / height : steepest;
    return {low, high, height, tolerance * std::max(1.0, slope)};
}

/// Where an edge that is no part of a row crosses it.
CELL_INLINE inline Span crossing(const Edge &edge, double y)
{
    const double above = edge.high.y - y;
    const double below = y - edge.low.y;
    // Divided, not multiplied by the inverse: a corner on a grid point must stay there.
    return {(edge.low.x * above + edge.high.x * below) / edge.height,
            (edge.low.z * above + edge.high.z * below) / edge.height, edge.reach};
}

/// Grid points beside an edge that runs nearly along their row, within the tolerance of the edge
/// but not near its crossing.
CELL_INLINE inline void fillBesideEdge(const FacetGrid &grid, const Edge &edge)
{
    const double run = std::abs(edge.high.x - edge.low.x);
    if (edge.height <= 0.0 || run < steepest * edge.height)
        return;
    const double reach = tolerance * run / edge.height;
    const double left = std::min(edge.low.x, edge.high.x);
    const double right = std::max(edge.low.x, edge.high.x);
    const int lastRow = std::min(grid.rows - 1, floorInt(edge.high.y));
    for (int r = std::max(0, ceilInt(edge.low.y)); r <= lastRow; ++r) {
        const double x = crossing(edge, r).x;
        const int first = ceilInt(std::max({0.0, left, x - reach}));
        const int last = floorInt(std::min({grid.columns - 1.0, right, x + reach}));
        float *row = grid.values + static_cast<size_t>(r) * static_cast<size_t>(grid.columns);
        for (int c = first; c <= last; ++c) {
            const double share = (c - edge.low.x) / (edge.high.x - edge.low.x);
            raise(row[c], edge.low.z * (1.0 - share) + edge.high.z * share);
        }
    }
}

/// A facet that is a line as seen from y: the outline of its three edges.
CELL_INLINE inline void fillAlongRow(float *row, int columns, const std::array<Point, 3> &corners)
{
    const auto end = [&](size_t i) { return Span{corners[i].x, corners[i].z, tolerance}; };
    fillSpan(row, columns, end(0), end(1));
    fillSpan(row, columns, end(1), end(2));
    fillSpan(row, columns, end(2), end(0));
}

/// Corners in the order of y, over at least one row.
CELL_INLINE inline void fillFacet(const FacetGrid &grid, const std::array<Point, 3> &corners,
                                  int firstRow, int lastRow)
{
    const auto rowAt = [&grid](int r) {
        return grid.values + static_cast<size_t>(r) * static_cast<size_t>(grid.columns);
    };
    const auto &[low, middle, high] = corners;
    if (low.y == high.y) {
        fillAlongRow(rowAt(firstRow), grid.columns, corners);
        return;
    }
    const Edge whole = edgeOf(low, high);
    const Edge lower = edgeOf(low, middle);
    const Edge upper = edgeOf(middle, high);
    for (int r = firstRow; r <= lastRow; ++r) {
        const double y = r;
        const Edge &side = y < middle.y ? lower : upper;
        const Span other =
            side.height > 0.0 ? crossing(side, y) : Span{middle.x, middle.z, tolerance};
        fillSpan(rowAt(r), grid.columns, crossing(whole, y), other);
    }
    for (const Edge *edge : {&whole, &lower, &upper}) {
        if (edge->reach > steepest * tolerance * 0.999)
            fillBesideEdge(grid, *edge);
    }
}

/// Returns about how many cells were looked at.
CELL_INLINE inline double drawFacet(const FacetGrid &grid, std::array<Point, 3> corners)
{
    auto &[a, b, c] = corners;
    const double left = std::min({a.x, b.x, c.x});
    const double right = std::max({a.x, b.x, c.x});
    const bool raised = a.z > 0.0 || b.z > 0.0 || c.z > 0.0;
    if (!raised || ceilInt(left - tolerance) > floorInt(right + tolerance))
        return 0.0;
    if (b.y < a.y)
        std::swap(a, b);
    if (c.y < b.y)
        std::swap(b, c);
    if (b.y < a.y)
        std::swap(a, b);
    const int firstRow = std::max(0, ceilInt(a.y));
    const int lastRow = std::min(grid.rows - 1, floorInt(c.y));
    if (firstRow > lastRow)
        return 0.0;
    fillFacet(grid, corners, firstRow, lastRow);
    return (right - left + 1.0) * (lastRow - firstRow + 1.0);
}

} // namespace

CELL_LOOP size_t drawFacets(const TriangleMesh &mesh, size_t first, const CellPlacement &placement,
                            const FacetGrid &grid)
{
    const size_t end = std::min(mesh.triangles.size(), first + stepTriangles);
    double cells = 0.0;
    size_t number = first;
    for (; number < end && cells < stepCells; ++number) {
        const MeshTriangle &triangle = mesh.triangles[number];
        cells += drawFacet(grid, {placed(mesh.corner(triangle, 0), placement),
                                  placed(mesh.corner(triangle, 1), placement),
                                  placed(mesh.corner(triangle, 2), placement)});
    }
    return number;
}

} // namespace marlowen
