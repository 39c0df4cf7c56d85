#pragma once

#include "import/bas/planefit.h"

namespace marlowen {

/// A surface over the filled cells of a mask, 0 in empty cells.
struct FilledSurface
{
    const FloatGrid &surface;
    const CellMask &filled;
};

/// Mean of the slope per cell over all filled cells; the slope of a cell takes the larger of the
/// differences to its two filled neighbours along each axis. Negative when the user cancelled.
double meanSlope(const FilledSurface &form, WorkMeter &meter);

/// How slopes are flattened: by 1 / sqrt(1 + slope / knee), so that steep ones lose most, but not
/// by more than the least gain.
struct Flattening
{
    float knee = 1.0F;
    float leastGain = 0.0F;
    float pull = 0.0F; ///< factor on the surface itself that is added (see flattenedSlopes)
};
/// For every filled cell the sum over its filled side neighbours of the flattened difference to
/// them, plus pull * surface: the right-hand side of solvePoisson(). False when the user cancelled.
bool flattenedSlopes(const FilledSurface &form, const Flattening &flattening, FloatGrid &sums,
                     WorkMeter &meter);

} // namespace marlowen
