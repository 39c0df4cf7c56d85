#include "import/mesh/facetrows.h"

#include "import/mesh/facetedges.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Boxes up to this size are drawn cell by cell, larger ones row by row.
constexpr int smallColumns = 16;
constexpr int smallRows = mostRowsAtOnce - 1;
/// What drawing costs, in half nanoseconds beside one for each cell of the box.
constexpr double facetCost = 64.0;
constexpr double smallRowCost = 8.0;
constexpr double largeRowCost = 64.0;

CELL_INLINE inline double snapped(double value)
{
    // Adding and taking off 1.5 * 2^52 rounds to the nearest whole number.
    constexpr double rounder = 6755399441055744.0;
    const double whole = (value + rounder) - rounder;
    return std::abs(value - whole) <= facetTolerance ? whole : value;
}

CELL_INLINE inline double placedAlong(const MeshPoint &point, const CellPlacement &placement,
                                      size_t axis)
{
    const double value = point[placement.model.axis[axis]] * placement.model.factor[axis];
    return (value - placement.low[axis]) * placement.cellsPerUnit;
}

CELL_INLINE inline FacetPoint placed(const MeshPoint &point, const CellPlacement &placement)
{
    return {placedAlong(point, placement, 0), placedAlong(point, placement, 1),
            placedAlong(point, placement, 2)};
}

/// A corner within the tolerance of a row or column is moved onto it.
CELL_INLINE inline void snap(FacetCorners &corners)
{
    for (FacetPoint &corner : corners) {
        corner.x = snapped(corner.x);
        corner.y = snapped(corner.y);
    }
}

/// Rows and columns that a facet may reach, within the grid.
struct Reach
{
    int firstColumn, lastColumn, firstRow, lastRow;
    bool empty() const { return firstColumn > lastColumn || firstRow > lastRow; }
};

/// Grid points next to an edge that runs nearly along their row, within the tolerance of the edge
/// but not near its crossing.
CELL_INLINE inline void fillBesideEdge(const FacetGrid &grid, const Edge &edge, const Reach &within)
{
    const double run = std::abs(edge.high.x - edge.low.x);
    if (edge.height <= 0.0 || run < steepest * edge.height)
        return;
    const double reach = facetTolerance * run / edge.height;
    const double left = std::min(edge.low.x, edge.high.x);
    const double right = std::max(edge.low.x, edge.high.x);
    const int lastRow = std::min(within.lastRow, floorInt(edge.high.y));
    for (int r = std::max(within.firstRow, ceilInt(edge.low.y)); r <= lastRow; ++r) {
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
    const auto end = [&](size_t i) { return Span{corners[i].x, corners[i].z, facetTolerance}; };
    fillSpan(row, columns, end(0), end(1));
    fillSpan(row, columns, end(1), end(2));
    fillSpan(row, columns, end(2), end(0));
}

CELL_INLINE inline float *cellAt(const FacetGrid &grid, int column, int row)
{
    return grid.values + static_cast<size_t>(row) * static_cast<size_t>(grid.columns) + column;
}

CELL_INLINE inline void fillBesideEdges(const FacetGrid &grid, const Edges &edges,
                                        const Reach &within)
{
    for (const Edge *edge : {&edges.whole, &edges.lower, &edges.upper}) {
        if (edge->reach > steepest * facetTolerance * 0.999)
            fillBesideEdge(grid, *edge, within);
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
    fillBesideEdges(grid, edges, reach);
}

/// A broad facet, its corners in the order of y: its plane, between the edges.
CELL_INLINE inline void fillBroad(const FacetGrid &grid, const FacetCorners &corners, double area,
                                  const Reach &reach)
{
    const auto &[a, b, c] = corners;
    const double perColumn = ((b.z - a.z) * (c.y - a.y) - (c.z - a.z) * (b.y - a.y)) / area;
    const double perRow = ((c.z - a.z) * (b.x - a.x) - (b.z - a.z) * (c.x - a.x)) / area;
    const Edges edges = edgesOf(corners);
    for (int row = reach.firstRow; row <= reach.lastRow; row += laneCount) {
        const FourInts below = row + FourInts{0, 1, 2, 3};
        const FourInts numbers = below < reach.lastRow ? below : FourInts{} + reach.lastRow;
        const FourRows ends =
            fourRows(edges, __builtin_convertvector(numbers, FourDoubles), grid.columns);
        for (int lane = 0; lane < laneCount && row + lane <= reach.lastRow; ++lane) {
            const int r = row + lane;
            const int first = ends.first[lane];
            const int last = ends.last[lane];
            if (first <= last)
                fillPlane(cellAt(grid, first, r), cellAt(grid, last, r),
                          cellAt(grid, grid.columns, r),
                          a.z + perColumn * (first - a.x) + perRow * (r - a.y), perColumn);
        }
    }
    fillBesideEdges(grid, edges, reach);
}

/// A broad facet of few cells: every cell of its box is asked for its side of the edges.
CELL_INLINE inline void fillSmall(const FacetGrid &grid, FacetCorners &corners, double area,
                                  const Reach &reach)
{
    if (area < 0.0)
        std::swap(corners[1], corners[2]);
    const int rows = reach.lastRow - reach.firstRow + 1;
    const FacetSides sides = facetSides(corners, 1.0 / std::abs(area));
    int column = reach.firstColumn;
    const bool wide = grid.columns >= fewestColumnsOfBands;
    for (; wide && column + laneCount <= reach.lastColumn; column += 2 * laneCount) {
        const int first = std::min(column, grid.columns - 2 * laneCount);
        fillGroups<2>(cellAt(grid, first, reach.firstRow), grid.columns, sides,
                      {first, reach.firstRow, rows, column});
    }
    for (; column <= reach.lastColumn; column += laneCount) {
        const int first = wide ? std::min(column, grid.columns - laneCount) : column;
        fillGroups<1>(cellAt(grid, first, reach.firstRow), grid.columns, sides,
                      {first, reach.firstRow, rows, column});
    }
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
        return ceilInt(std::min(std::min(a, b), c) - facetTolerance);
    };
    const auto high = [](double a, double b, double c) {
        return floorInt(std::max(std::max(a, b), c) + facetTolerance);
    };
    return {std::max(0, low(f[0].x, f[1].x, f[2].x)),
            std::min(grid.columns - 1, high(f[0].x, f[1].x, f[2].x)),
            std::max(0, low(f[0].y, f[1].y, f[2].y)),
            std::min(grid.rows - 1, high(f[0].y, f[1].y, f[2].y))};
}

CELL_INLINE inline bool isSmall(const Reach &reach)
{
    return reach.lastColumn - reach.firstColumn < smallColumns &&
           reach.lastRow - reach.firstRow < smallRows;
}

CELL_INLINE inline void drawFacet(const FacetGrid &grid, FacetCorners corners)
{
    Reach reach = reachOf(corners, grid);
    const bool raises = corners[0].z > 0.0 || corners[1].z > 0.0 || corners[2].z > 0.0;
    if (!raises || reach.empty())
        return;
    const double area = doubleArea(corners);
    const bool broad = isBroad(corners, area);
    // Groups of lanes may reach beyond the facet, not beyond the grid.
    const bool roomy =
        cellAt(grid, reach.lastColumn + laneCount, reach.lastRow) <= cellAt(grid, 0, grid.rows);
    if (broad && roomy && isSmall(reach)) {
        fillSmall(grid, corners, area, reach);
        return;
    }
    reach.firstRow = std::max(reach.firstRow, grid.firstRow);
    reach.lastRow = std::min(reach.lastRow, grid.endRow - 1);
    if (reach.empty())
        return;
    snap(corners);
    sortByY(corners);
    if (broad)
        fillBroad(grid, corners, doubleArea(corners), reach);
    else
        fillNarrow(grid, corners, reach);
}

CELL_INLINE inline FacetCorners cornersOf(const TriangleMesh &mesh, size_t number,
                                          const CellPlacement &placement)
{
    const MeshTriangle &triangle = mesh.triangles[number];
    return {placed(mesh.corner(triangle, 0), placement),
            placed(mesh.corner(triangle, 1), placement),
            placed(mesh.corner(triangle, 2), placement)};
}

/// The lowest and highest of the corners along an axis of the grid.
struct AxisReach
{
    double low, high;
};

CELL_INLINE inline AxisReach axisReach(const TriangleMesh &mesh, const MeshTriangle &triangle,
                                       const CellPlacement &placement, size_t axis)
{
    const double a = placedAlong(mesh.corner(triangle, 0), placement, axis);
    const double b = placedAlong(mesh.corner(triangle, 1), placement, axis);
    const double c = placedAlong(mesh.corner(triangle, 2), placement, axis);
    return {std::min(std::min(a, b), c), std::max(std::max(a, b), c)};
}

} // namespace

CELL_LOOP double findRows(const TriangleMesh &mesh, quint32 first, const CellPlacement &placement,
                          const FacetGrid &grid, std::span<RowReach> reaches)
{
    const double lastRow = grid.rows - 1;
    double cost = 0.0;
    for (RowReach &reach : reaches) {
        const MeshTriangle &triangle = mesh.triangles[first++];
        const AxisReach x = axisReach(mesh, triangle, placement, 0);
        const AxisReach y = axisReach(mesh, triangle, placement, 1);
        reach = {static_cast<int>(std::min(std::max(y.low, 0.0), lastRow)),
                 static_cast<int>(std::min(std::max(y.high + facetTolerance, 0.0), lastRow))};
        const int rows = reach.last - reach.first + 1;
        const double columns = x.high - x.low + 1.0;
        const bool small = columns <= smallColumns && rows <= smallRows;
        cost += facetCost + rows * (columns + (small ? smallRowCost : largeRowCost));
    }
    return cost;
}

CELL_LOOP void drawFacets(const TriangleMesh &mesh, std::span<const quint32> numbers,
                          const CellPlacement &placement, const FacetGrid &grid)
{
    for (const quint32 number : numbers)
        drawFacet(grid, cornersOf(mesh, number, placement));
}

} // namespace marlowen
