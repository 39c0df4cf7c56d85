#pragma once

#include "relief/strokes/dab.h"

#include <algorithm>
#include <functional>

namespace marlowen {

/// Heights as they were before the dab, as far as it can reach; samples are clamped to the relief's
/// edge. The last column and the last row are there twice, so that every cell has a right and a
/// lower neighbour.
struct BoxCopy
{
    const float *values = nullptr; ///< (height + 1) rows of `stride`
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    int stride = 0; ///< width + 1

    /// Bilinear between the four cells around a position in columns and rows of the relief.
    CELL_INLINE float sample(double column, double row) const
    {
        const double x = std::min(std::max(column - left, 0.0), width - 1.0);
        const double y = std::min(std::max(row - top, 0.0), height - 1.0);
        const int x0 = static_cast<int>(x);
        const int y0 = static_cast<int>(y);
        const auto fx = static_cast<float>(x - x0);
        const auto fy = static_cast<float>(y - y0);
        const int cell = y0 * stride + x0;
        const int under = cell + stride;
        const float above = values[cell] + fx * (values[cell + 1] - values[cell]);
        const float below = values[under] + fx * (values[under + 1] - values[under]);
        return above + fy * (below - above);
    }
};

/// Copies the dab's box and `columns` and `rows` beyond it on each side, clipped to the relief.
BoxCopy copyAround(const Dab &dab, double columns, double rows);

/// Fills one new height for every cell of a span.
using SampleRow = std::function<void(const CellSpan &span, float *samples)>;

/// Paints the heights with samples. They are taken in a loop of their own, which the conditions of
/// the painting loop would take apart. True when a cell changed.
bool paintSamples(const Dab &dab, const SampleRow &sampleRow);

} // namespace marlowen
