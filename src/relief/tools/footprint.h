#pragma once

#include "relief/grid/floatgrid.h"
#include "relief/tools/toolparams.h"

namespace marlowen {

/// The values of a footprint array: square, its middle at cell (width / 2, width / 2).
using FootprintView = BasicGridView<const unsigned char>;
using DistanceView = BasicGridView<const double>;

/// Fills a square array with the footprint of a tool: 0 outside, 1 inside, 2 outline. Parts of the
/// outline that lie beyond the array are dropped.
void buildFootprint(BasicGridView<unsigned char> footprint, const ToolParams &params,
                    double radius);

/// Distance of every cell from the outline by steps to any of the eight neighbours (1 to the sides,
/// sqrt(2) diagonally) that avoid the outside: outside 0, outline 1, cells no outline reaches the
/// largest double. Returns the number of sweeps over the map.
int chamferDistances(BasicGridView<double> map, FootprintView footprint);

} // namespace marlowen
