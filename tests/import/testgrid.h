#pragma once

#include "relief/grid/floatgrid.h"

namespace marlowen {

/// A grid whose cells hold `valueAt(x, y)`.
template <typename Value>
FloatGrid gridOf(int width, int height, Value valueAt)
{
    FloatGrid grid(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            grid.row(y)[x] = static_cast<float>(valueAt(x, y));
    return grid;
}

} // namespace marlowen
