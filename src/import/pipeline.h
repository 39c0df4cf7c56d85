#pragma once

#include "import/importsettings.h"
#include "import/valuerange.h"
#include "relief/grid/floatgrid.h"

namespace marlowen {

/// The steps between source values and heights: pure functions over row-major grids.

/// Rows and columns of zeros to add on each side.
struct Padding
{
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
    bool operator==(const Padding &) const = default;
};

/// A margin of 5 % of the figure's size in each axis, where the present gap is smaller. The
/// figure is the bounding box of the cells that are not 0, or the whole grid when that box is not
/// at least two cells each way.
Padding paddingFor(const FloatGrid &grid);
FloatGrid padded(FloatGrid grid, const Padding &padding);

/// Lowest and highest of the values, at least one.
ValueRange rangeOf(std::span<const float> values);

/// Flip, invert, raise or lower, depth, from source values (tilted or not) and their range. Writes
/// as many heights, none negative; without a flip, `heights` can be the source values.
void mapBase(const GridView &source, const ValueRange &range, const ImportSettings &settings,
             float *heights);

/// Removes `passes` cells (0..100) from every outline and from the border of the grid: a pass keeps
/// a cell only when it and its eight neighbours exist and are not 0.
void trim(const MutableGridView &heights, int passes);
/// `amount` passes of the 3 x 3 mean weighted 4-2-1, the last one blended by its fraction. With
/// keepZeros, cells of height 0 stay 0.
void smooth(const MutableGridView &heights, double amount, bool keepZeros);

/// A plane through the real centre of the grid, in source units.
struct TiltSlope
{
    double perColumn = 0.0; ///< height units a cell along X
    double perRow = 0.0;    ///< height units a cell along Y
    double scale = 1.0;     ///< source units a height unit
};
TiltSlope tiltSlope(const ImportSettings &settings, double sourceSpan);
/// Writes as many source values with the plane added, on all cores. Only values above 0 move, and
/// none falls below 0. Returns the lowest and highest of what it wrote.
ValueRange tilt(const GridView &source, const TiltSlope &slope, float *result);

} // namespace marlowen
