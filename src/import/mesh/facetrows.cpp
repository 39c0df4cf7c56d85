#include "import/mesh/facetrows.h"

#include "import/mesh/facetlanes.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr double tolerance = facetTolerance;
/// Along a row an edge that runs nearly with it comes within the tolerance earlier. Up to this
/// slope the height there is taken from where the edge crosses the row.
constexpr double steepest = 8.0;
/// Boxes up to this size are drawn cell by cell, larger ones row by row.
constexpr int smallColumns = 16;
constexpr int smallRows = 32;
/// Work of one step: triangles, and cells of their boxes.
constexpr size_t stepTriangles = 8192;
constexpr double stepCells = 4e6;

using Point = FacetPoint;

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
    return {along(0), along(1), along(2)};
}

/// A corner within the tolerance of a row or column is moved onto it.
CELL_INLINE inline void snap(FacetCorners &corners)
{
    for (Point &corner : corners) {
        corner.x = snapped(corner.x);
        corner.y = snapped(corner.y);
    }
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

/// Where an edge that is not part of a row crosses it.
CELL_INLINE inline Span crossing(const Edge &edge, double y)
{
    const double above = edge.high.y - y;
    const double below = y - edge.low.y;
    // Divided, not multiplied by the inverse: a corner on a grid point must stay there.
    return {(edge.low.x * above + edge.high.x * below) / edge.height,
            (edge.low.z * above + edge.high.z * below) / edge.height, edge.reach};
}

/// Grid points next to an edge that runs nearly along their row, within the tolerance of the edge
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
CELL_INLINE inline void fillAlongRow(float *row, int columns, const FacetCorners &corners)
{
    const auto end = [&](size_t i) { return Span{corners[i].x, corners[i].z, tolerance}; };
    fillSpan(row, columns, end(0), end(1));
    fillSpan(row, columns, end(1), end(2));
    fillSpan(row, columns, end(2), end(0));
}

/// Rows and columns that a facet may reach, within the grid.
struct Reach
{
    int firstColumn, lastColumn, firstRow, lastRow;
    bool empty() const { return firstColumn > lastColumn || firstRow > lastRow; }
};

CELL_INLINE inline float *cellAt(const FacetGrid &grid, int column, int row)
{
    return grid.values + static_cast<size_t>(row) * static_cast<size_t>(grid.columns) + column;
}

/// The three edges of a facet whose corners are in the order of y.
struct Edges
{
    Edge whole, lower, upper;
};

CELL_INLINE inline Edges edgesOf(const FacetCorners &corners)
{
    return {edgeOf(corners[0], corners[2]), edgeOf(corners[0], corners[1]),
            edgeOf(corners[1], corners[2])};
}

/// Where a row meets the two lower or the two upper edges.
CELL_INLINE inline std::array<Span, 2> rowEnds(const Edges &edges, double y)
{
    const Point &middle = edges.upper.low;
    const Edge &side = y < middle.y ? edges.lower : edges.upper;
    return {crossing(edges.whole, y),
            side.height > 0.0 ? crossing(side, y) : Span{middle.x, middle.z, tolerance}};
}

CELL_INLINE inline void fillBesideEdges(const FacetGrid &grid, const Edges &edges)
{
    for (const Edge *edge : {&edges.whole, &edges.lower, &edges.upper}) {
        if (edge->reach > steepest * tolerance * 0.999)
            fillBesideEdge(grid, *edge);
    }
}

/// A facet of any shape, its corners in the order of y: every row from where it meets the edges.
CELL_INLINE inline void fillNarrow(const FacetGrid &grid, const FacetCorners &corners,
                                   const Reach &reach)
{
    if (corners[0].y == corners[2].y) {
        fillAlongRow(cellAt(grid, 0, reach.firstRow), grid.columns, corners);
        return;
    }
    const Edges edges = edgesOf(corners);
    for (int r = reach.firstRow; r <= reach.lastRow; ++r) {
        const auto [a, b] = rowEnds(edges, r);
        fillSpan(cellAt(grid, 0, r), grid.columns, a, b);
    }
    fillBesideEdges(grid, edges);
}

/// A broad facet, its corners in the order of y: its plane, between the edges.
CELL_INLINE inline void fillBroad(const FacetGrid &grid, const FacetCorners &corners, double area,
                                  const Reach &reach)
{
    const auto &[a, b, c] = corners;
    const double perColumn = ((b.z - a.z) * (c.y - a.y) - (c.z - a.z) * (b.y - a.y)) / area;
    const double perRow = ((c.z - a.z) * (b.x - a.x) - (b.z - a.z) * (c.x - a.x)) / area;
    float *const end =
        grid.values + static_cast<size_t>(grid.columns) * static_cast<size_t>(grid.rows);
    const Edges edges = edgesOf(corners);
    for (int r = reach.firstRow; r <= reach.lastRow; ++r) {
        auto [left, right] = rowEnds(edges, r);
        if (right.x < left.x)
            std::swap(left, right);
        const int first = std::max(0, ceilInt(left.x - left.reach));
        const int last = std::min(grid.columns - 1, floorInt(right.x + right.reach));
        if (first <= last)
            fillPlane(cellAt(grid, first, r), cellAt(grid, last, r), end,
                      a.z + perColumn * (first - a.x) + perRow * (r - a.y), perColumn);
    }
    fillBesideEdges(grid, edges);
}

/// A broad facet of few cells: every cell of its box is asked for its side of the edges.
CELL_INLINE inline void fillSmall(const FacetGrid &grid, FacetCorners &corners, double area,
                                  const Reach &reach)
{
    if (area < 0.0)
        std::swap(corners[1], corners[2]);
    const int rows = reach.lastRow - reach.firstRow + 1;
    for (int column = reach.firstColumn; column <= reach.lastColumn; column += laneCount)
        fillFour(cellAt(grid, column, reach.firstRow), grid.columns, corners, 1.0 / std::abs(area),
                 {column, reach.firstRow, rows});
}

CELL_INLINE inline void sortByY(FacetCorners &corners)
{
    auto &[a, b, c] = corners;
    if (b.y < a.y)
        std::swap(a, b);
    if (c.y < b.y)
        std::swap(b, c);
    if (b.y < a.y)
        std::swap(a, b);
}

CELL_INLINE inline Reach reachOf(const FacetCorners &f, const FacetGrid &grid)
{
    const auto low = [](double a, double b, double c) {
        return ceilInt(std::min(std::min(a, b), c) - tolerance);
    };
    const auto high = [](double a, double b, double c) {
        return floorInt(std::max(std::max(a, b), c) + tolerance);
    };
    return {std::max(0, low(f[0].x, f[1].x, f[2].x)),
            std::min(grid.columns - 1, high(f[0].x, f[1].x, f[2].x)),
            std::max(0, low(f[0].y, f[1].y, f[2].y)),
            std::min(grid.rows - 1, high(f[0].y, f[1].y, f[2].y))};
}

/// Returns about how many cells were looked at.
CELL_INLINE inline double drawFacet(const FacetGrid &grid, FacetCorners corners)
{
    const Reach reach = reachOf(corners, grid);
    const bool raises = corners[0].z > 0.0 || corners[1].z > 0.0 || corners[2].z > 0.0;
    if (!raises || reach.empty())
        return 0.0;
    const int columns = reach.lastColumn - reach.firstColumn + 1;
    const int rows = reach.lastRow - reach.firstRow + 1;
    const double area = doubleArea(corners);
    const bool broad = isBroad(corners, area);
    // The last group of lanes may reach beyond the row, not beyond the grid.
    const bool roomy =
        cellAt(grid, reach.lastColumn + laneCount, reach.lastRow) <= cellAt(grid, 0, grid.rows);
    if (broad && roomy && columns <= smallColumns && rows <= smallRows) {
        fillSmall(grid, corners, area, reach);
        return static_cast<double>(columns) * rows;
    }
    snap(corners);
    sortByY(corners);
    if (broad)
        fillBroad(grid, corners, doubleArea(corners), reach);
    else
        fillNarrow(grid, corners, reach);
    return static_cast<double>(columns) * rows;
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
