#pragma once

#include "import/mesh/facetlanes.h"

#include <utility>

namespace marlowen {

/// The edges of a facet and where the rows of the grid meet them. Compiled into the loop over the
/// facets, as facetlanes.h is.

/// Along a row an edge that runs nearly with it comes within the tolerance earlier. Up to this
/// slope the height there is taken from where the edge crosses the row.
inline constexpr double steepest = 8.0;
/// Edges with a smaller reach along a row are not that flat.
inline constexpr double leastFlatReach = steepest * facetTolerance * 0.999;

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

CELL_INLINE inline void raise(float &cell, double height)
{
    const float value = static_cast<float>(height);
    cell = cell > value ? cell : value;
}

/// Part of a row: from a to b, with the reach of the tolerance at both ends.
struct Span
{
    double x, z;
    double reach;
};

/// Raises the cells of a row between two points of a facet.
CELL_INLINE inline void fillSpan(float *row, int columns, Span a, Span b)
{
    if (b.x < a.x)
        std::swap(a, b);
    const int first = std::max(0, ceilInt(a.x - a.reach));
    const int last = std::min(columns - 1, floorInt(b.x + b.reach));
    if (b.x - a.x <= 2.0 * facetTolerance) {
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
    FacetPoint low, high;
    double height; ///< along y; 0 where the edge lies along a row
    double reach;  ///< of the tolerance along a row, no more than `steepest` times it
};

/// Where an edge that is not part of a row crosses it.
CELL_INLINE inline Span crossing(const Edge &edge, double y)
{
    const double above = edge.high.y - y;
    const double below = y - edge.low.y;
    // Divided, not multiplied by the inverse: a corner on a grid point must stay there.
    return {(edge.low.x * above + edge.high.x * below) / edge.height,
            (edge.low.z * above + edge.high.z * below) / edge.height, edge.reach};
}

/// The three edges of a facet whose corners are in the order of y.
struct Edges
{
    Edge whole, lower, upper;
};

/// Where a row meets the two lower or the two upper edges.
CELL_INLINE inline std::array<Span, 2> rowEnds(const Edges &edges, double y)
{
    const FacetPoint &middle = edges.upper.low;
    const Edge &side = y < middle.y ? edges.lower : edges.upper;
    return {crossing(edges.whole, y),
            side.height > 0.0 ? crossing(side, y) : Span{middle.x, middle.z, facetTolerance}};
}

/// Edges that four rows meet, each row its own.
struct FourEdges
{
    FourDoubles lowX, lowY, highX, highY, height, reach;
};

/// The lower or the upper of two edges that meet in the middle corner.
CELL_INLINE inline FourEdges sideEdges(const Edges &edges, const FourDoubles &y)
{
    const auto &[whole, lower, upper] = edges;
    const auto below = y < upper.low.y;
    const auto pick = [&below](double low, double high, FourDoubles &result) {
        result = below ? FourDoubles{} + low : FourDoubles{} + high;
    };
    FourEdges side;
    pick(lower.low.x, upper.low.x, side.lowX);
    pick(lower.low.y, upper.low.y, side.lowY);
    pick(lower.high.x, upper.high.x, side.highX);
    pick(lower.high.y, upper.high.y, side.highY);
    pick(lower.height, upper.height, side.height);
    pick(lower.reach, upper.reach, side.reach);
    return side;
}

/// First and last columns of four rows of a facet.
struct FourRows
{
    FourDoubles first, last;
};

/// As rowEnds(), of four rows, with the reach of the tolerance and not beyond the grid.
CELL_INLINE inline void findRowEnds(const Edges &edges, const FourDoubles &y, int columns,
                                    FourRows &rows)
{
    const Edge &whole = edges.whole;
    const FourEdges side = sideEdges(edges, y);
    const auto slopes = side.height > 0.0;
    const FourDoubles a =
        (whole.low.x * (whole.high.y - y) + whole.high.x * (y - whole.low.y)) / whole.height;
    const FourDoubles crossed =
        (side.lowX * (side.highY - y) + side.highX * (y - side.lowY)) / side.height;
    const FourDoubles b = slopes ? crossed : FourDoubles{} + edges.upper.low.x;
    const FourDoubles reachA = FourDoubles{} + whole.reach;
    const FourDoubles reachB = slopes ? side.reach : FourDoubles{} + facetTolerance;
    const auto turned = b < a;
    rows.first = (turned ? b : a) - (turned ? reachB : reachA);
    rows.last = (turned ? a : b) + (turned ? reachA : reachB);
    wholeBetween(rows.first, rows.last, columns);
}

} // namespace marlowen
