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
inline constexpr int laneCount = 4;

/// Raises four cells in a row to the heights, where these are higher.
CELL_INLINE inline void raiseFour(float *cells, const FourDoubles &heights)
{
    FourFloats before;
    std::memcpy(&before, cells, sizeof(before));
    const FourFloats wanted = __builtin_convertvector(heights, FourFloats);
    const FourFloats raised = wanted > before ? wanted : before;
    std::memcpy(cells, &raised, sizeof(raised));
}

/// The side of an edge that grid points lie on, times the edge's length: 0 on the edge, positive
/// inside the facet.
struct EdgeSides
{
    FourDoubles sides; ///< of four neighbouring columns
    double perRow;     ///< change to the next row
    double perColumn;
    double least; ///< of points that count as inside
};

CELL_INLINE inline EdgeSides edgeSides(const FacetPoint &from, const FacetPoint &to, double column,
                                       double row)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const FourDoubles columns = FourDoubles{column, column + 1.0, column + 2.0, column + 3.0};
    return {dx * (row - from.y) - dy * (columns - from.x), dx, -dy,
            -facetTolerance * std::max(std::abs(dx), std::abs(dy))};
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

/// Raises `rows` rows of four cells to a broad facet that turns counter-clockwise; `cells` is the
/// first of them, at the given column and row. All cells must lie in the grid.
CELL_INLINE inline void fillFour(float *cells, int stride, const FacetCorners &f,
                                 double inverseArea, const std::array<int, 3> &place)
{
    const auto [column, row, rows] = place;
    EdgeSides a = edgeSides(f[1], f[2], column, row);
    EdgeSides b = edgeSides(f[2], f[0], column, row);
    EdgeSides c = edgeSides(f[0], f[1], column, row);
    const double za = f[0].z * inverseArea;
    const double zb = f[1].z * inverseArea;
    const double zc = f[2].z * inverseArea;
    for (int r = 0; r < rows; ++r, cells += stride) {
        const FourDoubles height = a.sides * za + b.sides * zb + c.sides * zc;
        const auto inside = (a.sides >= a.least) & (b.sides >= b.least) & (c.sides >= c.least);
        raiseFour(cells, inside ? height : FourDoubles{});
        a.sides += a.perRow;
        b.sides += b.perRow;
        c.sides += c.perRow;
    }
}

/// Raises cells `first`..`last` of a row to a plane; `height` is that over the first. Cells up to
/// `end` may be looked at.
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
