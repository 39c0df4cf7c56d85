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

/// Numbers that are worked on together, one in each lane.
inline constexpr int laneCount = 4;
using FourDoubles = double __attribute__((vector_size(32)));
using FourFloats = float __attribute__((vector_size(16)));
using FourInts = int __attribute__((vector_size(16)));
/// Not 0 where something holds.
using FourMasks = decltype(FourDoubles{} < FourDoubles{});
inline constexpr FourDoubles fourCounts{0, 1, 2, 3};

CELL_INLINE inline void nearestWhole(const FourDoubles &values, FourDoubles &result)
{
    // Adding and taking off 1.5 * 2^52 rounds to the nearest whole number.
    const FourDoubles rounder = FourDoubles{} + 6755399441055744.0;
    result = (values + rounder) - rounder;
}

/// The whole numbers of 0 and more from `low` on, and those below `count` up to `high`.
CELL_INLINE inline void wholeBetween(FourDoubles &low, FourDoubles &high, int count)
{
    FourDoubles up, down;
    nearestWhole(low, up);
    nearestWhole(high, down);
    up = up < low ? up + 1.0 : up;
    down = down > high ? down - 1.0 : down;
    low = up > 0.0 ? up : FourDoubles{};
    high = down < count - 1.0 ? down : FourDoubles{} + (count - 1.0);
}

CELL_INLINE inline void lowest(const FourDoubles &a, const FourDoubles &b, FourDoubles &result)
{
    result = b < a ? b : a;
}

CELL_INLINE inline void highest(const FourDoubles &a, const FourDoubles &b, FourDoubles &result)
{
    result = a < b ? b : a;
}

} // namespace marlowen
