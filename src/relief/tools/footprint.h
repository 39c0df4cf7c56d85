#pragma once

#include "relief/tools/toolparams.h"

namespace marlowen {

/// Fills dimension x dimension bytes, row-major, with the footprint of a tool: 0 outside, 1 inside,
/// 2 outline. The middle is cell (dimension / 2, dimension / 2); parts of the outline that lie
/// beyond the array are dropped.
void buildFootprint(unsigned char *footprint, int dimension, const ToolParams &params,
                    double radius);

/// Distance of every cell from the outline by steps to any of the eight neighbours (1 to the sides,
/// sqrt(2) diagonally) that avoid the outside: outside 0, outline 1, cells no outline reaches the
/// largest double. Returns the number of sweeps over the map.
int chamferDistances(double *map, const unsigned char *footprint, int dimension);

} // namespace marlowen
