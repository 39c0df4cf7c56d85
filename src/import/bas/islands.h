#pragma once

#include "import/bas/planefit.h"

namespace marlowen {

/// Mean value of each island: filled cells that hang together by their sides, numbered in the order
/// of their first cells.
std::vector<double> islandMeans(const FloatGrid &values, const CellMask &filled);

/// Shifts every island so that its mean becomes the one given; `means` is the result of
/// islandMeans() for the same mask.
void setIslandMeans(FloatGrid &values, const CellMask &filled, const std::vector<double> &means);

} // namespace marlowen
