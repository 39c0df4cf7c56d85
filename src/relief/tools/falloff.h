#pragma once

#include "relief/tools/footprint.h"
#include "relief/tools/tool.h"

#include <span>

namespace marlowen {

/// True when an alpha image is loaded that gives the tool its shape in place of an outline (any
/// mode but Tile).
bool alphaShapes(const ToolParams &params);

/// Weight 0..1 of a footprint cell, from its distance to the outline, the falloff profile, the
/// hardness and the alpha image. Cells off the map count as its centre.
double falloffWeight(const ToolParams &params, DistanceView map, int column, int row);

/// A footprint and its distance map, of one size.
struct FootprintMap
{
    FootprintView footprint;
    DistanceView distance;
};

/// Memory for the weights of the cells within a reach of the middle: (2 reach + 1) squared values
/// and one extent a row (see FootprintWeights).
struct WeightTarget
{
    MutableGridView weights;
    std::span<FootprintWeights::Extent> extents;
};

/// falloffWeight() of every cell within the target's reach. Weights are computed in doubles and
/// kept as floats: their error of 6e-8 is below what a 32-bit height can show.
void computeWeights(const ToolParams &params, const FootprintMap &map, const WeightTarget &target);

} // namespace marlowen
