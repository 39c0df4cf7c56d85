#pragma once

#include "relief/strokes/dab.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace marlowen {

/// The heights of a relief around one of its rows. Samples beyond the relief are those of its edge.
struct HeightField
{
    const float *cells; ///< the row's first cell; the float after the relief's last one can be read
    int row;
    int width;
    int height;
};

/// Where some cells take their heights from. The loop that computes it is a vector loop; the one
/// that reads the heights, which lie anywhere, is another.
struct SamplePlaces
{
    static constexpr int most = 128;

    int above[most];    ///< cell on the upper left of the place, counted from the field's first
    int below[most];    ///< the cell under that one, or the same in the last row
    float across[most]; ///< share of the cells on the right
    float down[most];   ///< share of the cells below

    /// The i-th place, in columns and rows of the relief.
    CELL_INLINE void set(int i, const HeightField &field, double column, double row)
    {
        const double x = std::min(std::max(column, 0.0), field.width - 1.0);
        const double y = std::min(std::max(row, 0.0), field.height - 1.0);
        const int x0 = static_cast<int>(x);
        const int y0 = static_cast<int>(y);
        above[i] = (y0 - field.row) * field.width + x0;
        below[i] = above[i] + (y0 < field.height - 1 ? field.width : 0);
        across[i] = static_cast<float>(x - x0);
        down[i] = static_cast<float>(y - y0);
    }
};

/// Four floats that stand in a register.
using FourFloats = float __attribute__((vector_size(16)));
using TwoPairs = double __attribute__((vector_size(16)));

/// Four cells, and the right neighbours of them.
struct NeighbourCells
{
    FourFloats left;
    FourFloats right;
};

/// A cell and its right neighbour. What is right of the last column has no share.
CELL_INLINE inline double cellPair(const float *cell)
{
    double pair;
    std::memcpy(&pair, cell, sizeof pair);
    return pair;
}

CELL_INLINE inline NeighbourCells cellPairs(const float *cells, const int *at)
{
    const TwoPairs first = {cellPair(cells + at[0]), cellPair(cells + at[1])};
    const TwoPairs second = {cellPair(cells + at[2]), cellPair(cells + at[3])};
    const auto low = reinterpret_cast<FourFloats>(first);
    const auto high = reinterpret_cast<FourFloats>(second);
    return {__builtin_shufflevector(low, high, 0, 2, 4, 6),
            __builtin_shufflevector(low, high, 1, 3, 5, 7)};
}

/// Bilinear samples at `count` places; the next ones up to a multiple of four are set as well.
CELL_INLINE inline void sampleHeights(const HeightField &field, const SamplePlaces &places,
                                      int count, float *samples)
{
    for (int i = 0; i < count; i += 4) {
        const NeighbourCells above = cellPairs(field.cells, places.above + i);
        const NeighbourCells below = cellPairs(field.cells, places.below + i);
        FourFloats across;
        FourFloats down;
        std::memcpy(&across, places.across + i, sizeof across);
        std::memcpy(&down, places.down + i, sizeof down);
        const FourFloats over = above.left + across * (above.right - above.left);
        const FourFloats under = below.left + across * (below.right - below.left);
        const FourFloats sample = over + down * (under - over);
        std::memcpy(samples + i, &sample, sizeof sample);
    }
}

/// What a span becomes when its cell i takes the height at placeOf(span, i); true when a stored
/// value will differ from what it was. Reads the relief alone.
template <typename Place>
CELL_INLINE inline bool sampleSpan(const HeightField &field, const CellSpan &span, float *painted,
                                   const Place &place)
{
    const HeightField local = field;
    const CellSpan all = span;
    const float *before = local.cells + all.column;
    SamplePlaces places;
    float samples[SamplePlaces::most];
    int changed = 0;
    for (int start = 0; start < all.count; start += SamplePlaces::most) {
        const int count = std::min(SamplePlaces::most, all.count - start);
        place(places, start, count);
        for (int i = count; i % 4 != 0; ++i)
            places.above[i] = places.below[i] = 0;
        sampleHeights(local, places, count, samples);
#pragma omp simd reduction(| : changed)
        for (int i = 0; i < count; ++i) {
            const int cell = start + i;
            const float stored = all.leavesAlone(cell, before[cell]) ? before[cell] : samples[i];
            changed |= static_cast<int>(stored != before[cell]);
            painted[cell] = stored;
        }
    }
    return changed != 0;
}

/// Calls sampleSpan() for a span, in a function of its own that is a CELL_LOOP.
using PaintSpan = std::function<bool(const HeightField &, const CellSpan &, float *painted)>;

/// Paints the heights from heights as they were before the dab. The rows of a large dab are shared
/// by all cores. True when a cell changed.
bool paintSamples(const Dab &dab, const PaintSpan &paintSpan);

} // namespace marlowen
