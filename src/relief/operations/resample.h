#pragma once

#include "relief/grid/relief.h"

#include <optional>

namespace marlowen {

class Progress;

/// One line of evenly spaced floats.
template <typename Float>
struct Line
{
    Float *values;
    int length;
    qsizetype stride;
};

/// Resamples a line of floats to another length (both at least 1): a copy at equal lengths, linear
/// interpolation between cell centres when it grows, the average over what each new cell covers
/// when it shrinks. The lines do not overlap.
void resample1D(Line<const float> source, Line<float> destination);

struct GridSize
{
    int width;
    int height;
};

/// Every row, then every column of the result; values between the two passes are floats. `layer`
/// holds `from` cells, row-major; the result holds `to` cells.
GridLayer resample2D(const GridLayer &layer, GridSize from, GridSize to);

/// As resample2D for heights, where 0.0 is an empty cell: a new cell less than half covered by
/// material is empty, and material at an edge keeps its height instead of fading toward zero.
GridLayer resampleHeights(const GridLayer &layer, GridSize from, GridSize to);

/// The relief's four layers at another size; the relief itself is left alone. Nothing when
/// `progress`, which may be null, was cancelled.
std::optional<Relief::Grid> resampledGrid(const Relief &relief, GridSize to, Progress *progress);

} // namespace marlowen
