#pragma once

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace marlowen {

/// Pieces of drawing a facet that work on several cells at once. They are compiled into the loop
/// over the facets.

/// A point this near a grid point counts as on it, in cells.
inline constexpr double facetTolerance = 1e-6;

/// A point of a facet: column and row of the grid, height in cells.
struct FacetPoint
{
    double x, y, z;
};
using FacetCorners = std::array<FacetPoint, 3>;

using FourDoubles = double __attribute__((vector_size(32)));
using FourFloats = float __attribute__((vector_size(16)));
using FourInts = int __attribute__((vector_size(16)));
inline constexpr int laneCount = 4;

CELL_INLINE inline FourInts floorOf(const FourDoubles &values)
{
    const FourInts whole = __builtin_convertvector(values, FourInts);
    const auto above = __builtin_convertvector(whole, FourDoubles) > values;
    return whole + __builtin_convertvector(above, FourInts);
}

CELL_INLINE inline FourInts ceilOf(const FourDoubles &values)
{
    const FourInts whole = __builtin_convertvector(values, FourInts);
    const auto below = __builtin_convertvector(whole, FourDoubles) < values;
    return whole - __builtin_convertvector(below, FourInts);
}

/// Raises four cells in a row to the heights, where these are higher.
CELL_INLINE inline void raiseFour(float *cells, const FourDoubles &heights)
{
    FourFloats before;
    std::memcpy(&before, cells, sizeof(before));
    const FourFloats wanted = __builtin_convertvector(heights, FourFloats);
    const FourFloats raised = wanted > before ? wanted : before;
    std::memcpy(cells, &raised, sizeof(raised));
}

/// One edge of a facet. The side of it that a point lies on, times the edge's length, is 0 on the
/// edge and positive inside the facet.
struct FacetEdge
{
    double fromX, fromY;
    double perRow;    ///< change of the side to the next row
    double perColumn; ///< change from the next column
    double least;     ///< side of points that count as inside

    CELL_INLINE void sides(double column, double row, FourDoubles &result) const
    {
        const FourDoubles columns = FourDoubles{column, column + 1.0, column + 2.0, column + 3.0};
        result = perRow * (row - fromY) - perColumn * (columns - fromX);
    }
};

CELL_INLINE inline FacetEdge facetEdge(const FacetPoint &from, const FacetPoint &to)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    return {from.x, from.y, dx, dy, -facetTolerance * std::max(std::abs(dx), std::abs(dy))};
}

/// Twice the area of a facet as seen from above; positive when it turns counter-clockwise.
CELL_INLINE inline double doubleArea(const FacetCorners &f)
{
    return (f[1].x - f[0].x) * (f[2].y - f[0].y) - (f[1].y - f[0].y) * (f[2].x - f[0].x);
}

/// Whether all three altitudes of a facet, as seen from above, are at least a quarter of a cell:
/// then the height over a point next to it follows from its plane.
CELL_INLINE inline bool isBroad(const FacetCorners &f, double area)
{
    const auto squared = [&f](size_t i, size_t j) {
        const double dx = f[i].x - f[j].x;
        const double dy = f[i].y - f[j].y;
        return dx * dx + dy * dy;
    };
    const double longest = std::max({squared(0, 1), squared(1, 2), squared(2, 0)});
    return area * area > longest * 0.0625;
}

/// A broad facet that turns counter-clockwise: the edges opposite to its corners, and what their
/// sides add to the height.
struct FacetSides
{
    std::array<FacetEdge, 3> edges;
    std::array<double, 3> heights;
};

CELL_INLINE inline FacetSides facetSides(const FacetCorners &f, double inverseArea)
{
    return {{facetEdge(f[1], f[2]), facetEdge(f[2], f[0]), facetEdge(f[0], f[1])},
            {f[0].z * inverseArea, f[1].z * inverseArea, f[2].z * inverseArea}};
}

struct LanePlace
{
    int column, row;
    int rows;
    int firstColumn; ///< of the facet: cells before are left as they are
};

/// Farther from an edge than any point of a grid.
inline constexpr double outside = 1e300;

/// Raises `rows` rows of a number of groups of four cells to a facet; `cells` is the first of them.
/// All cells must lie in the grid. More groups keep the processor busier.
template <int groups>
CELL_INLINE inline void fillGroups(float *cells, int stride, const FacetSides &facet,
                                   const LanePlace &place)
{
    const auto &[a, b, c] = facet.edges;
    const auto [za, zb, zc] = facet.heights;
    FourDoubles as[groups], bs[groups], cs[groups];
#pragma GCC unroll 2
    for (int g = 0; g < groups; ++g) {
        a.sides(place.column + g * laneCount, place.row, as[g]);
        b.sides(place.column + g * laneCount, place.row, bs[g]);
        c.sides(place.column + g * laneCount, place.row, cs[g]);
        if (place.column < place.firstColumn) {
            const FourInts columns = place.column + g * laneCount + FourInts{0, 1, 2, 3};
            as[g] = __builtin_convertvector(columns, FourDoubles) < place.firstColumn
                        ? FourDoubles{} - outside
                        : as[g];
        }
    }
    for (int r = 0; r < place.rows; ++r, cells += stride) {
#pragma GCC unroll 2
        for (int g = 0; g < groups; ++g) {
            const FourDoubles height = as[g] * za + bs[g] * zb + cs[g] * zc;
            const auto inside = (as[g] >= a.least) & (bs[g] >= b.least) & (cs[g] >= c.least);
            raiseFour(cells + g * laneCount, inside ? height : FourDoubles{});
            as[g] += a.perRow;
            bs[g] += b.perRow;
            cs[g] += c.perRow;
        }
    }
}

/// Raises cells `first`..`last` of a row to a plane; `height` is that over the first. The row ends
/// before `end`.
CELL_INLINE inline void fillPlane(float *first, float *last, float *end, double height,
                                  double perColumn)
{
    FourDoubles heights = height + perColumn * FourDoubles{0.0, 1.0, 2.0, 3.0};
    for (; first + laneCount <= last + 1; first += laneCount) {
        raiseFour(first, heights);
        heights += perColumn * laneCount;
    }
    if (first + laneCount <= end) {
        const FourDoubles lane{0.0, 1.0, 2.0, 3.0};
        raiseFour(first, lane <= static_cast<double>(last - first) ? heights : FourDoubles{});
        return;
    }
    for (size_t i = 0; first <= last; ++first, ++i)
        *first = std::max(*first, static_cast<float>(heights[i]));
}

} // namespace marlowen
