#pragma once

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

/// As CELL_LOOP, for machines that work on eight doubles at once.
#if defined(__x86_64__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
#define WIDE_CELL_LOOP __attribute__((noinline, target("avx512f,avx512vl,avx512dq,avx512bw")))
#endif

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
template <int count>
struct Lanes;
template <>
struct Lanes<4>
{
    using Doubles = double __attribute__((vector_size(32)));
    using Floats = float __attribute__((vector_size(16)));
    using Ints = int __attribute__((vector_size(16)));
    static constexpr Doubles count{0, 1, 2, 3};
    static constexpr Doubles countInFour = count;
};
template <>
struct Lanes<8>
{
    using Doubles = double __attribute__((vector_size(64)));
    using Floats = float __attribute__((vector_size(32)));
    static constexpr Doubles count{0, 1, 2, 3, 4, 5, 6, 7};
    static constexpr Doubles countInFour{0, 1, 2, 3, 0, 1, 2, 3};
};
inline constexpr int laneCount = 4;
using FourDoubles = Lanes<laneCount>::Doubles;
using FourInts = Lanes<laneCount>::Ints;

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

/// Keeps the selections of lanes before from being joined with those behind: the compiler takes
/// eight lanes to pieces when it has to join masks.
template <int lanes>
CELL_INLINE inline void keepApart([[maybe_unused]] typename Lanes<lanes>::Doubles &values)
{
#ifdef WIDE_CELL_LOOP
    if constexpr (lanes > laneCount)
        asm("" : "+v"(values));
#endif
}

/// Raises cells in a row to the heights, where these are higher.
template <int lanes>
CELL_INLINE inline void raiseCells(float *cells, const typename Lanes<lanes>::Doubles &heights)
{
    using Floats = typename Lanes<lanes>::Floats;
    Floats before;
    std::memcpy(&before, cells, sizeof(before));
    const Floats wanted = __builtin_convertvector(heights, Floats);
    const Floats raised = wanted > before ? wanted : before;
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

/// Heights of a plane along a row, some cells at a time. They do not depend on how many.
template <int lanes>
class PlaneHeights
{
public:
    using Doubles = typename Lanes<lanes>::Doubles;

    CELL_INLINE PlaneHeights(double height, double perColumn)
        : m_step(perColumn * laneCount)
        , m_heights(height + perColumn * Lanes<lanes>::countInFour)
    {
        if (lanes > laneCount)
            m_heights += Lanes<lanes>::count >= double{laneCount} ? Doubles{} + m_step : Doubles{};
    }
    CELL_INLINE void next()
    {
        for (int i = 0; i < lanes; i += laneCount)
            m_heights += m_step;
    }
    CELL_INLINE void raise(float *cells) const { raiseCells<lanes>(cells, m_heights); }
    /// Only the cells with `left` not below 0.
    CELL_INLINE void raise(float *cells, const Doubles &left) const
    {
        raiseCells<lanes>(cells, left >= 0.0 ? m_heights : Doubles{});
    }
    CELL_INLINE double operator[](size_t lane) const { return m_heights[lane]; }

private:
    double m_step;
    Doubles m_heights;
};

/// Raises cells `first`..`last` of a row to a plane; `height` is that over the first. The row ends
/// before `end`.
template <int lanes>
CELL_INLINE inline void fillPlane(float *first, float *last, float *end, double height,
                                  double perColumn)
{
    PlaneHeights<lanes> heights(height, perColumn);
    for (; first + lanes <= last + 1; first += lanes) {
        heights.raise(first);
        heights.next();
    }
    if (first + lanes <= end) {
        heights.raise(first, static_cast<double>(last - first) - Lanes<lanes>::count);
        return;
    }
    for (size_t i = 0; first <= last; ++first, ++i)
        *first = std::max(*first, static_cast<float>(heights[i]));
}

/// As fillPlane(), in a given number of steps, all within the row: rows of different lengths then
/// take the same way through the processor. Raises the cells from `first` to `first + last`.
template <int lanes>
CELL_INLINE inline void fillPlaneIn(int steps, float *first, double last, double height,
                                    double perColumn)
{
    using Doubles = typename Lanes<lanes>::Doubles;
    PlaneHeights<lanes> heights(height, perColumn);
    Doubles left = last - Lanes<lanes>::count;
    for (int i = 0; i < steps; ++i) {
        heights.raise(first, left);
        heights.next();
        left -= double{lanes};
        first += lanes;
    }
}

} // namespace marlowen
