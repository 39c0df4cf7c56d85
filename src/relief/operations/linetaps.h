#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace marlowen {

/// What one new cell of a resampled line takes from the source line: `count` cells from `first`,
/// their weights from `weight` in the plan's list, to be divided by `total` when the line shrinks.
struct Taps
{
    int first;
    int count;
    size_t weight;
    double total;
};

/// Cells first..end of a line, `end` excluded.
struct CellRange
{
    int first = 0;
    int end = 0;

    bool isEmpty() const { return first >= end; }
    int count() const { return end - first; }
    bool contains(CellRange other) const { return first <= other.first && other.end <= end; }
};

/// The smallest range with all cells of both.
inline CellRange united(CellRange a, CellRange b)
{
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() ? b : a;
    return {std::min(a.first, b.first), std::max(a.end, b.end)};
}

/// The cells that both have; none as an empty range.
inline CellRange intersected(CellRange a, CellRange b)
{
    const CellRange both{std::max(a.first, b.first), std::min(a.end, b.end)};
    return both.isEmpty() ? CellRange{} : both;
}

/// The taps of every new cell of a line.
struct LinePlan
{
    std::vector<Taps> taps;
    std::vector<double> weights;
    bool averages = false; ///< weighted sums are still to be divided by their total

    int length() const { return static_cast<int>(taps.size()); }
    const Taps &operator[](int cell) const { return taps[static_cast<size_t>(cell)]; }
    const double *weightsOf(const Taps &cell) const { return weights.data() + cell.weight; }
    /// The source cells that some new cells take from; at least one of them.
    CellRange sources(CellRange cells) const;
    /// The new cells that take from some source cells.
    CellRange reached(CellRange sources) const;
    /// Those of them that take from no others.
    CellRange within(CellRange sources) const;
};

/// Plans a line of another length, both at least 1: linear interpolation between cell centres when
/// it grows or stays, the average over what each new cell covers when it shrinks.
LinePlan planLine(int sourceLength, int destinationLength);

} // namespace marlowen
