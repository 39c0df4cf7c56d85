#pragma once

#include "import/bas/planefit.h"

namespace marlowen {

/// Turns the slopes of a surface back that run against those of a reference: wherever two filled
/// neighbours differ in the reference, they are moved toward each other, both by the same amount,
/// until they differ the same way by at least `share` of that. What is as it should be stays, and
/// the change is the least in squares that the moves lead to. (Projections onto convex sets in
/// turn, a few rounds of them: most slopes are turned, not all.)
///
/// `surface` is changed in place, its empty cells stay. False when the user cancelled.
bool keepSlopeSigns(const GridView &reference, const CellMask &filled, float share,
                    FloatGrid &surface, WorkMeter &meter);

/// Passes over the grid that keepSlopeSigns takes, for the progress.
constexpr double slopeOrderPasses = 3.0;

} // namespace marlowen
