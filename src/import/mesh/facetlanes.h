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

/// Twice the area of a facet as seen from above; positive when it turns counter-clockwise.
CELL_INLINE inline double doubleArea(const FacetCorners &f)
{
    return (f[1].x - f[0].x) * (f[2].y - f[0].y) - (f[1].y - f[0].y) * (f[2].x - f[0].x);
}

/// Of the square of the altitudes, see isBroad().
inline constexpr double broadness = 0.0625;

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
    return area * area > longest * broadness;
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
