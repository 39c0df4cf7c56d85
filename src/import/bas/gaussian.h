#pragma once

#include "base/workmeter.h"
#include "relief/grid/floatgrid.h"

namespace marlowen {

/// Blurs a grid in place with a Gaussian of this standard deviation in cells; values
/// beyond the border are 0. Below a fifth of a cell the grid is not changed. False when the user
/// cancelled.
bool blur(FloatGrid &grid, float sigmaCells, WorkMeter &meter);

} // namespace marlowen
