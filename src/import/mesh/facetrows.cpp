#include "import/mesh/facetrows.h"

#include "import/mesh/facetedges.h"
#include "import/mesh/facetfours.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Facets whose lanes are found before they are drawn: four at a time.
constexpr size_t foursAtOnce = 8;
/// Rows of facets up to this size are all drawn as if they had the full number of columns.
constexpr int fewColumns = 24;
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

CELL_INLINE inline Reach reachOf(const FourFacets &facets, size_t which)
{
    return {facets.firstColumn[which], facets.lastColumn[which], facets.firstRow[which],
            facets.lastRow[which]};
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

/// Groups of lanes may reach beyond a facet, not beyond the grid.
CELL_INLINE inline bool isRoomy(const FacetGrid &grid, const Reach &reach)
{
    return cellAt(grid, reach.lastColumn + laneCount, reach.lastRow) <= cellAt(grid, 0, grid.rows);
}

/// A broad facet, its corners in the order of y: its plane, between the edges.
template <int lanes>
CELL_INLINE inline void fillBroad(const FacetGrid &grid, const FacetCorners &corners, double area,
                                  const Reach &reach)
{
    const auto &[a, b, c] = corners;
    const double perColumn = ((b.z - a.z) * (c.y - a.y) - (c.z - a.z) * (b.y - a.y)) / area;
    const double perRow = ((c.z - a.z) * (b.x - a.x) - (b.z - a.z) * (c.x - a.x)) / area;
    const Edges edges = edgesOf(corners);
    const int steps = (reach.lastColumn - reach.firstColumn + lanes) / lanes;
    const bool few = reach.lastColumn - reach.firstColumn < fewColumns;
    for (int row = reach.firstRow; row <= reach.lastRow; row += laneCount) {
        const FourInts below = row + FourInts{0, 1, 2, 3};
        const FourDoubles y = __builtin_convertvector(
            below < reach.lastRow ? below : FourInts{} + reach.lastRow, FourDoubles);
        const FourRows ends = fourRows(edges, y, grid.columns);
        const FourDoubles heights =
            a.z + perColumn * (__builtin_convertvector(ends.first, FourDoubles) - a.x) +
            perRow * (y - a.y);
        const FourDoubles lasts = __builtin_convertvector(ends.last - ends.first, FourDoubles);
        for (int lane = 0; lane < laneCount && row + lane <= reach.lastRow; ++lane) {
            const int first = ends.first[lane];
            const int last = ends.last[lane];
            float *cells = cellAt(grid, first, row + lane);
            if (few && first + steps * lanes <= grid.columns)
                fillPlaneIn<lanes>(steps, cells, lasts[lane], heights[lane], perColumn);
            else if (first <= last)
                fillPlane<lanes>(cells, cells + (last - first),
                                 cellAt(grid, grid.columns, row + lane), heights[lane], perColumn);
        }
    }
    fillBesideEdges(grid, edges, reach);
}

/// A broad facet of few cells: every cell of its box is asked for its side of the edges, in whole
/// groups of four columns.
template <int lanes>
CELL_INLINE inline void fillSmall(const FacetGrid &grid, const FourFacets &facets, size_t which,
                                  const Reach &reach)
{
    const int rows = reach.lastRow - reach.firstRow + 1;
    const int columns = (reach.lastColumn - reach.firstColumn + laneCount) / laneCount * laneCount;
    const int end = reach.firstColumn + columns;
    const bool wide = grid.columns >= 2 * lanes;
    int column = reach.firstColumn;
    for (; wide && column + lanes < end; column += 2 * lanes) {
        const int first = std::min(column, grid.columns - 2 * lanes);
        fillGroups<lanes, 2>(cellAt(grid, first, reach.firstRow), grid.columns, facets, which,
                             {first, rows, column, end});
    }
    if (wide && column < end) {
        const int first = std::min(column, grid.columns - lanes);
        fillGroups<lanes, 1>(cellAt(grid, first, reach.firstRow), grid.columns, facets, which,
                             {first, rows, column, end});
    }
    for (; !wide && column < end; column += laneCount) {
        // A narrow grid: what reaches beyond the row goes on in the next one.
        const int first = grid.columns >= fewestColumnsOfBands
                              ? std::min(column, grid.columns - laneCount)
                              : column;
        fillGroups<laneCount, 1>(cellAt(grid, first, reach.firstRow), grid.columns, facets, which,
                                 {first, rows, column, end});
    }
}

/// Without jumps, which would be taken at random.
CELL_INLINE inline void sortByY(FacetCorners &corners)
{
    const auto [a, b, c] = corners;
    const size_t ba = b.y < a.y ? 1 : 0;
    const size_t ca = c.y < a.y ? 1 : 0;
    const size_t cb = c.y < b.y ? 1 : 0;
    corners[ba + ca] = a;
    corners[1 - ba + cb] = b;
    corners[2 - ca - cb] = c;
}

/// A facet of any size, its part in the band.
template <int lanes>
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
        fillBroad<lanes>(grid, corners, doubleArea(corners), reach);
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

/// Some facets at a time: those of few cells first, so that the processor rarely guesses wrong.
template <int lanes>
CELL_INLINE inline void drawAll(const TriangleMesh &mesh, std::span<const quint32> numbers,
                                const CellPlacement &placement, const FacetGrid &grid)
{
    std::array<FourFacets, foursAtOnce> fours;
    for (; !numbers.empty();
         numbers = numbers.subspan(std::min(numbers.size(), laneCount * foursAtOnce))) {
        const size_t count = std::min(numbers.size(), laneCount * foursAtOnce);
        const auto triangle = [&](size_t n) { return mesh.triangles.data() + numbers[n]; };
        for (size_t i = 0; i < count; i += laneCount)
            fours[i / laneCount].find({mesh, fourFrom(i, count, triangle), placement}, grid);
        std::array<quint8, laneCount * foursAtOnce> others;
        size_t otherCount = 0;
        for (size_t i = 0; i < count; ++i) {
            const FourFacets &four = fours[i / laneCount];
            const size_t lane = i % laneCount;
            const Reach reach = reachOf(four, lane);
            const bool bySides = four.small[lane] && isRoomy(grid, reach);
            others[otherCount] = static_cast<quint8>(i);
            otherCount += four.raising[lane] && !bySides ? 1 : 0;
            if (four.raising[lane] && bySides)
                fillSmall<lanes>(grid, four, lane, reach);
        }
        for (const quint8 i : std::span(others).first(otherCount)) {
            FacetCorners corners = cornersOf(mesh, numbers[i], placement);
            fillRows<lanes>(grid, corners, reachOf(fours[i / laneCount], i % laneCount));
        }
    }
}

CELL_LOOP void drawByFour(const TriangleMesh &mesh, std::span<const quint32> numbers,
                          const CellPlacement &placement, const FacetGrid &grid)
{
    drawAll<laneCount>(mesh, numbers, placement, grid);
}

#ifdef WIDE_CELL_LOOP
WIDE_CELL_LOOP void drawByEight(const TriangleMesh &mesh, std::span<const quint32> numbers,
                                const CellPlacement &placement, const FacetGrid &grid)
{
    drawAll<2 * laneCount>(mesh, numbers, placement, grid);
}
#endif

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

void drawFacets(const TriangleMesh &mesh, std::span<const quint32> numbers,
                const CellPlacement &placement, const FacetGrid &grid)
{
#ifdef WIDE_CELL_LOOP
    static const bool wide =
        __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
    if (wide) {
        drawByEight(mesh, numbers, placement, grid);
        return;
    }
#endif
    drawByFour(mesh, numbers, placement, grid);
}

} // namespace marlowen
