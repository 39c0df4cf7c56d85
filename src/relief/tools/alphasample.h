#pragma once

#include "relief/grid/cellcode.h"
#include "relief/grid/floatgrid.h"

#include <cmath>

namespace marlowen {

/// A pixel's index along one axis, which runs modulo the side or stops at the image's edge.
CELL_INLINE inline int alphaIndex(double index, double side, bool wrap)
{
    const double turned = wrap ? index - side * std::floor(index / side) : index;
    const double low = turned > 0.0 ? turned : 0.0;
    return static_cast<int>(low < side - 1.0 ? low : side - 1.0);
}

/// alphaSample() of a square image for finite (u, v), to be compiled into the loops that call it.
CELL_INLINE inline double alphaAt(const GridView &image, double u, double v, bool wrap)
{
    const double side = image.width;
    const double x = u * side - 0.5;
    const double y = v * side - 0.5;
    const double left = std::floor(x);
    const double top = std::floor(y);
    const int x0 = alphaIndex(left, side, wrap);
    const int x1 = alphaIndex(left + 1.0, side, wrap);
    const int y0 = alphaIndex(top, side, wrap) * image.width;
    const int y1 = alphaIndex(top + 1.0, side, wrap) * image.width;
    const double fx = x - left;
    const double fy = y - top;
    const double upper = image.values[y0 + x0] * (1.0 - fx) + image.values[y0 + x1] * fx;
    const double lower = image.values[y1 + x0] * (1.0 - fx) + image.values[y1 + x1] * fx;
    const double value = upper * (1.0 - fy) + lower * fy;
    const bool inside = static_cast<bool>(static_cast<int>(u >= 0.0) & static_cast<int>(u <= 1.0) &
                                          static_cast<int>(v >= 0.0) & static_cast<int>(v <= 1.0));
    return wrap || inside ? value : 0.0;
}

} // namespace marlowen
