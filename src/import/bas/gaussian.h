#pragma once

#include "base/workmeter.h"
#include "relief/grid/floatgrid.h"

namespace marlowen {

/// Blurs a grid in place with a Gaussian of this standard deviation in cells; beyond the border
/// there are zeros. Below a fifth of a cell nothing is done. False when the user cancelled.
bool blur(FloatGrid &grid, float sigmaCells, WorkMeter &meter);

} // namespace marlowen
