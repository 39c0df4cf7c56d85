#include "import/mesh/facetrows.h"

#include "import/mesh/facetedges.h"
#include "import/mesh/facetfours.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Facets whose lanes are found before they are drawn: four at a time.
constexpr size_t foursAtOnce = 8;
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
CELL_INLINE inline void fillSmall(const FacetGrid &grid, const FourFacets &facets, size_t lane,
                                  const Reach &reach)
{
    const int rows = reach.lastRow - reach.firstRow + 1;
    int column = reach.firstColumn;
    const bool wide = grid.columns >= fewestColumnsOfBands;
    for (; wide && column + laneCount <= reach.lastColumn; column += 2 * laneCount) {
        const int first = std::min(column, grid.columns - 2 * laneCount);
        fillGroups<2>(cellAt(grid, first, reach.firstRow), grid.columns, facets, lane,
                      {first, rows, column});
    }
    for (; column <= reach.lastColumn; column += laneCount) {
        const int first = wide ? std::min(column, grid.columns - laneCount) : column;
        fillGroups<1>(cellAt(grid, first, reach.firstRow), grid.columns, facets, lane,
                      {first, rows, column});
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

/// A facet of any size, its part in the band.
CELL_INLINE inline void fillRows(const FacetGrid &grid, FacetCorners &corners, Reach reach)
{
    reach.firstRow = std::max(reach.firstRow, grid.firstRow);
    reach.lastRow = std::min(reach.lastRow, grid.endRow - 1);
    if (reach.empty())
        return;
    const bool broad = isBroad(corners, doubleArea(corners));
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

} // namespace

CELL_LOOP double findRows(const TriangleMesh &mesh, quint32 first, const CellPlacement &placement,
                          const FacetGrid &grid, std::span<RowReach> reaches)
{
    const FourDoubles lastRow = FourDoubles{} + (grid.rows - 1);
    const size_t count = reaches.size();
    const MeshTriangle *start = mesh.triangles.data() + first;
    FourDoubles cost{};
    for (size_t i = 0; i < count; i += laneCount) {
        const FourCorners corners(mesh, fourFrom(i, count, [start](size_t n) { return start + n; }),
                                  placement);
        const FourReaches across(corners.x);
        const FourReaches along(corners.y);
        FourDoubles low, high;
        highest(along.low, FourDoubles{}, low);
        lowest(low, lastRow, low);
        highest(along.high + facetTolerance, FourDoubles{}, high);
        lowest(high, lastRow, high);
        const FourInts lows = __builtin_convertvector(low, FourInts);
        const FourInts highs = __builtin_convertvector(high, FourInts);
        for (size_t lane = 0; lane < std::min<size_t>(laneCount, count - i); ++lane)
            reaches[i + lane] = {lows[lane], highs[lane]};
        const FourDoubles rows = __builtin_convertvector(highs - lows + 1, FourDoubles);
        const FourDoubles columns = across.high - across.low + 1.0;
        const auto few = (columns <= double{smallColumns}) & (rows <= double{smallRows});
        const FourDoubles perRow =
            few ? FourDoubles{} + smallRowCost : FourDoubles{} + largeRowCost;
        cost += facetCost + rows * (columns + perRow);
    }
    return cost[0] + cost[1] + cost[2] + cost[3];
}

CELL_LOOP void drawFacets(const TriangleMesh &mesh, std::span<const quint32> numbers,
                          const CellPlacement &placement, const FacetGrid &grid)
{
    std::array<FourFacets, foursAtOnce> fours;
    for (; !numbers.empty();
         numbers = numbers.subspan(std::min(numbers.size(), laneCount * foursAtOnce))) {
        const size_t count = std::min(numbers.size(), laneCount * foursAtOnce);
        const auto triangle = [&](size_t n) { return mesh.triangles.data() + numbers[n]; };
        for (size_t i = 0; i < count; i += laneCount)
            fours[i / laneCount].find({mesh, fourFrom(i, count, triangle), placement}, grid);
        for (size_t i = 0; i < count; ++i) {
            const FourFacets &four = fours[i / laneCount];
            const size_t lane = i % laneCount;
            if (!four.raising[lane])
                continue;
            const Reach reach{four.firstColumn[lane], four.lastColumn[lane], four.firstRow[lane],
                              four.lastRow[lane]};
            // Groups of lanes may reach beyond the facet, not beyond the grid.
            const bool roomy = cellAt(grid, reach.lastColumn + laneCount, reach.lastRow) <=
                               cellAt(grid, 0, grid.rows);
            if (roomy && four.small[lane]) {
                fillSmall(grid, four, lane, reach);
            } else {
                FacetCorners corners = cornersOf(mesh, numbers[i], placement);
                fillRows(grid, corners, reach);
            }
        }
    }
}

} // namespace marlowen
