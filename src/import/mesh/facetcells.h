#pragma once

#include "import/mesh/facetplanes.h"
#include "import/mesh/facetrows.h"

#include <span>

namespace marlowen {

/// The loops over the cells of a facet, four cells at a time, for any machine. Compiled into the
/// loop over the facets, as facetlanes.h is.

CELL_INLINE inline float *cellAt(const FacetGrid &grid, int column, int row)
{
    return grid.values + static_cast<size_t>(row) * static_cast<size_t>(grid.columns) + column;
}

/// Raises cells in a row to the heights, where these are higher.
CELL_INLINE inline void raiseCells(float *cells, const FourDoubles &heights)
{
    FourFloats before;
    std::memcpy(&before, cells, sizeof(before));
    const FourFloats wanted = __builtin_convertvector(heights, FourFloats);
    const FourFloats raised = wanted > before ? wanted : before;
    std::memcpy(cells, &raised, sizeof(raised));
}

/// Grid points next to an edge that runs nearly along their row, within the tolerance of the edge
/// but not near its crossing.
CELL_INLINE inline void fillBesideEdge(const FacetGrid &grid, const Edge &edge, int firstRow,
                                       int lastRow)
{
    const double run = std::abs(edge.high.x - edge.low.x);
    if (edge.height <= 0.0 || run < steepest * edge.height)
        return;
    const double reach = facetTolerance * run / edge.height;
    const double left = std::min(edge.low.x, edge.high.x);
    const double right = std::max(edge.low.x, edge.high.x);
    lastRow = std::min(lastRow, floorInt(edge.high.y));
    for (int r = std::max(firstRow, ceilInt(edge.low.y)); r <= lastRow; ++r) {
        const double x = crossing(edge, r).x;
        const int first = ceilInt(std::max({0.0, left, x - reach}));
        const int last = floorInt(std::min({grid.columns - 1.0, right, x + reach}));
        float *row = cellAt(grid, 0, r);
        for (int c = first; c <= last; ++c) {
            const double share = (c - edge.low.x) / (edge.high.x - edge.low.x);
            raise(row[c], edge.low.z * (1.0 - share) + edge.high.z * share);
        }
    }
}

CELL_INLINE inline void fillBesideEdges(const FacetGrid &grid, const FourPlanes &planes,
                                        size_t lane)
{
    const auto flat = [&](FourPlanes::EdgeNumber edge)
                          CELL_INLINE { return planes.reach[edge][lane] > leastFlatReach; };
    if (!flat(FourPlanes::Whole) && !flat(FourPlanes::Lower) && !flat(FourPlanes::Upper))
        return;
    const Edges edges = planes.edges(lane);
    for (const Edge *edge : {&edges.whole, &edges.lower, &edges.upper}) {
        if (edge->reach > leastFlatReach)
            fillBesideEdge(grid, *edge, planes.firstRow[lane], planes.lastRow[lane]);
    }
}

/// Raises cells `first`..`last` of a row to a plane; `height` is that over the first. The row ends
/// before `end`.
CELL_INLINE inline void fillPlane(float *first, float *last, const float *end, double height,
                                  double perColumn)
{
    const double step = perColumn * laneCount;
    FourDoubles heights = height + perColumn * fourCounts;
    for (; first + laneCount <= last + 1; first += laneCount) {
        raiseCells(first, heights);
        heights += step;
    }
    if (first + laneCount <= end) {
        const FourDoubles left = static_cast<double>(last - first) - fourCounts;
        raiseCells(first, left >= 0.0 ? heights : FourDoubles{});
        return;
    }
    for (size_t i = 0; first <= last; ++first, ++i)
        *first = std::max(*first, static_cast<float>(heights[i]));
}

/// As fillPlane(), in a given number of steps, all within the row: rows of different lengths then
/// take the same way through the processor. Raises the cells from `first` to `first + last`.
CELL_INLINE inline void fillPlaneIn(int steps, float *first, double last, double height,
                                    double perColumn)
{
    const double step = perColumn * laneCount;
    FourDoubles heights = height + perColumn * fourCounts;
    FourDoubles left = last - fourCounts;
    for (int i = 0; i < steps; ++i) {
        raiseCells(first, left >= 0.0 ? heights : FourDoubles{});
        heights += step;
        left -= double{laneCount};
        first += laneCount;
    }
}

/// A broad facet: its plane, between the edges.
CELL_INLINE inline void fillBroad(const FacetGrid &grid, const FourPlanes &planes, size_t lane)
{
    /// Rows of facets up to this size are all drawn as if they had the full number of columns.
    constexpr int fewColumns = 24;
    const Edges edges = planes.edges(lane);
    const FacetPoint &a = edges.whole.low;
    const double perColumn = planes.perColumn[lane];
    const double perRow = planes.perRow[lane];
    const int lastRow = planes.lastRow[lane];
    const int across = planes.lastColumn[lane] - planes.firstColumn[lane];
    const int steps = across < fewColumns ? (across + laneCount) / laneCount : 0;
    const int most = steps * laneCount;
    for (int row = planes.firstRow[lane]; row <= lastRow; row += laneCount) {
        const FourInts below = row + FourInts{0, 1, 2, 3};
        const FourDoubles y =
            __builtin_convertvector(below < lastRow ? below : FourInts{} + lastRow, FourDoubles);
        FourRows ends;
        findRowEnds(edges, y, grid.columns, ends);
        const FourDoubles heights = a.z + perColumn * (ends.first - a.x) + perRow * (y - a.y);
        const FourDoubles lasts = ends.last - ends.first;
        const FourInts firsts = __builtin_convertvector(ends.first, FourInts);
        for (int i = 0; i < laneCount && row + i <= lastRow; ++i) {
            const int first = firsts[i];
            float *cells = cellAt(grid, first, row + i);
            // With the tolerance along the edges a row can be longer than its facet.
            if (lasts[i] < most && first + most <= grid.columns)
                fillPlaneIn(steps, cells, lasts[i], heights[i], perColumn);
            else if (lasts[i] >= 0.0)
                fillPlane(cells, cells + static_cast<int>(lasts[i]),
                          cellAt(grid, grid.columns, row + i), heights[i], perColumn);
        }
    }
    fillBesideEdges(grid, planes, lane);
}

/// Farther from an edge than any point of a grid.
inline constexpr double farOutside = 1e300;

/// Groups of four columns of a small facet, from `first` on: every cell is asked for its side of
/// the edges. Cells before column `least` are left as they are. More groups keep the processor
/// busier.
template <int groups, bool uneven>
CELL_INLINE inline void fillGroups(const FacetGrid &grid, const FourFacets &facets, size_t which,
                                   int first, int least)
{
    const auto &[a, b, c] = facets.sides;
    const FourSlopes &plane = facets.height;
    FourDoubles as[groups], bs[groups], cs[groups], heights[groups];
    const auto start =
        [which](const FourSlopes &of, const FourDoubles &columns, FourDoubles &values)
            CELL_INLINE { values = of.first[which] + of.perColumn[which] * columns; };
    const double reachA = a.reach[which], reachB = b.reach[which], reachC = c.reach[which];
    const int from = facets.firstColumn[which];
    const FourDoubles firstColumns = static_cast<double>(first - from) + fourCounts;
#pragma GCC unroll 2
    for (int g = 0; g < groups; ++g) {
        const FourDoubles columns = firstColumns + double(g * laneCount);
        start(a.distance, columns, as[g]);
        start(b.distance, columns, bs[g]);
        start(c.distance, columns, cs[g]);
        start(plane, columns, heights[g]);
        if (!uneven) {
            as[g] -= reachA;
            bs[g] -= reachB;
            cs[g] -= reachC;
        }
        const auto wanted =
            (columns >= double(least - from)) & (columns < double(grid.columns - from));
        as[g] = wanted ? as[g] : FourDoubles{} + farOutside;
    }
    const double endA = uneven ? reachA : 0.0, endB = uneven ? reachB : 0.0,
                 endC = uneven ? reachC : 0.0;
    const double stepA = a.distance.perRow[which];
    const double stepB = b.distance.perRow[which];
    const double stepC = c.distance.perRow[which];
    const double za = a.height[which], zb = b.height[which], zc = c.height[which];
    const double rise = plane.perRow[which];
    float *cells = cellAt(grid, first, facets.firstRow[which]);
    const int stride = grid.columns;
    const int rows = facets.lastRow[which] - facets.firstRow[which] + 1;
    for (int r = 0; r < rows; ++r, cells += stride) {
#pragma GCC unroll 2
        for (int g = 0; g < groups; ++g) {
            const auto inside = (as[g] < endA) & (bs[g] < endB) & (cs[g] < endC);
            if (uneven)
                heights[g] = as[g] * za + bs[g] * zb + cs[g] * zc;
            raiseCells(cells + g * laneCount, inside ? heights[g] : FourDoubles{});
            as[g] += stepA;
            bs[g] += stepB;
            cs[g] += stepC;
            heights[g] += rise;
        }
    }
}

/// A small facet, in whole groups of four columns.
template <bool uneven>
CELL_INLINE inline void fillSmall(const FacetGrid &grid, const FourFacets &facets, size_t which)
{
    // A group begins earlier where it would end beyond the row; but in a narrow grid its last
    // columns lie in the next row.
    const int mostFirst = std::max(grid.columns - laneCount, 0);
    const bool narrow = grid.columns < fewestColumnsOfBands;
    const int last = facets.lastColumn[which];
    int column = facets.firstColumn[which];
    for (; column + laneCount <= std::min(last, mostFirst); column += 2 * laneCount)
        fillGroups<2, uneven>(grid, facets, which, column, column);
    for (; column <= last; column += laneCount) {
        const int first = narrow ? column : std::min(column, mostFirst);
        fillGroups<1, uneven>(grid, facets, which, first, column);
    }
}

/// How facets that are found out about are drawn.
struct CellsByFour
{
    CELL_INLINE static void small(const FacetGrid &grid, std::span<const FourFacets> fours,
                                  BatchPart part)
    {
        for (; part; part &= part - 1) {
            const auto [four, lane] = firstOf(part);
            fillSmall<false>(grid, fours[four], lane);
        }
    }
    CELL_INLINE static void broad(const FacetGrid &grid, std::span<const FourPlanes> planes,
                                  size_t count)
    {
        for (size_t i = 0; i < count; ++i)
            fillBroad(grid, planes[i / laneCount], i % laneCount);
    }
};

} // namespace marlowen
