#pragma once

#include "import/bas/planefit.h"

namespace marlowen {

/// Finds the surface f over the filled cells with
///     sum over filled side neighbours n of (f - f_n) + screening * f = rhs
/// by a multigrid method. Empty cells take no part: nothing flows across an outline. `surface`
/// holds the first guess, 0 in empty cells, and gets the solution; the screening is above 0, the
/// inverse square of the length in cells beyond which the surface follows rhs / screening. False
/// when the user cancelled, with the surface left half done.
bool solvePoisson(FloatGrid &surface, const FloatGrid &rhs, const CellMask &filled, float screening,
                  WorkMeter &meter);

/// Cells that solvePoisson will spend, in units of the cells of the grid.
constexpr double poissonPasses = 14.5;

} // namespace marlowen
