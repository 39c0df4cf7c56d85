#pragma once

#include "relief/dab.h"

#include <algorithm>

/// Heights as they were before the dab, as far as it can reach; samples are clamped to the relief's
/// edge.
struct BoxCopy
{
    const float *values = nullptr;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    /// Bilinear between the four cells around a position in columns and rows of the relief.
    CELL_INLINE double sample(double column, double row) const
    {
        const double x = std::min(std::max(column - left, 0.0), width - 1.0);
        const double y = std::min(std::max(row - top, 0.0), height - 1.0);
        const int x0 = static_cast<int>(x);
        const int y0 = static_cast<int>(y);
        const int right = std::min(x0 + 1, width - 1) - x0;
        const int down = y0 < height - 1 ? width : 0;
        const int cell = y0 * width + x0;
        const double fx = x - x0;
        const double fy = y - y0;
        const double upper = values[cell] * (1.0 - fx) + values[cell + right] * fx;
        const double lower = values[cell + down] * (1.0 - fx) + values[cell + down + right] * fx;
        return upper * (1.0 - fy) + lower * fy;
    }
};

/// Copies the dab's box and `columns` and `rows` beyond it on each side, clipped to the relief.
BoxCopy copyAround(const Dab &dab, double columns, double rows);
