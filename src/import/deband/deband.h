#pragma once

#include "base/progress.h"
#include "relief/grid/floatgrid.h"

#include <optional>

namespace marlowen {

/// The smallest difference between two different values of a grid, 0 included when it occurs: 1 for
/// a picture of 8 bits a channel. 0 when all values are equal.
float levelOf(const GridView &values);

/// Takes the terraces out of source values v that were rounded to levels: the smoothest values r
/// with |r - v| <= strength / 2 levels and r not below the lowest v, where 0 (the background) stays
/// 0. Smoothest means the least sum of squared second differences along rows, columns and
/// diagonals; those that reach across a step of more than 8 levels or an empty cell are left out,
/// so edges stay as they are. Found on grids of falling coarseness by projected gradient steps with
/// momentum; the same input gives the same values on every machine. `strength` is 0..1. Takes about
/// five times the memory of the values. Nothing when the user cancelled.
std::optional<std::vector<float>> debanded(const GridView &values, double strength,
                                           Progress &progress);

} // namespace marlowen
