#pragma once

#include "base/workmeter.h"
#include "relief/grid/floatgrid.h"

#include <cstdint>
#include <vector>

namespace marlowen {

/// Planes fitted to overlapping windows of filled cells. Windows stand on nodes, the centres of
/// blocks of spacing x spacing cells, and reach 7.5 nodes to each side; distances and slopes are in
/// nodes.

/// Which cells of a grid are filled: 1 or 0 a cell, in the order of the grid.
using CellMask = std::vector<uint8_t>;

/// Heights of about 0..1, 0 in empty cells.
struct FilledHeights
{
    const FloatGrid &heights;
    const CellMask &filled;
    int spacing = 2;
};

/// Several grids over the nodes.
struct NodeGrids
{
    NodeGrids(int columns, int rows, int count)
        : grids(static_cast<size_t>(count), FloatGrid(columns, rows))
    {
    }
    float *row(int grid, int y) { return grids[static_cast<size_t>(grid)].row(y); }
    const float *row(int grid, int y) const { return grids[static_cast<size_t>(grid)].row(y); }
    int columns() const { return grids[0].width; }
    int rows() const { return grids[0].height; }
    std::vector<FloatGrid> grids;
};

/// Grids that sumRows fills.
constexpr int planeSums = 6;
/// Sums along the rows of every window. False when the user cancelled.
bool sumRows(const FilledHeights &input, NodeGrids &sums, WorkMeter &meter);

/// The model of a window: height = gain * height + level + slope * distance from the node. Windows
/// whose cells lie on a plane, ripples of less than about 7 nodes left out, have a gain of 0 and a
/// large weight; those with a deviation above the threshold (twice that at an outline) tend to a
/// gain of 1, a level of 0 and a small weight. All parts but the weight are stored multiplied by
/// it, so that models are blended by adding them.
enum ModelPart { Weight, Gain, Level, SlopeX, SlopeY, modelParts };
/// Fits the windows; `model` has modelParts grids. False when the user cancelled.
bool fitPlanes(const NodeGrids &sums, float threshold, NodeGrids &model, WorkMeter &meter);

} // namespace marlowen
