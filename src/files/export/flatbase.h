#pragma once

#include "files/export/pulse.h"
#include "files/reduce/gridtriangulation.h"

namespace marlowen {

/// Covers the same part of a grid with fewer triangles: cells that lie inside are taken out, one
/// after the other, and the hole around each is filled anew; the cells of the border stay. The
/// triangles must meet edge to edge, counter-clockwise, and so do those that are returned; none has
/// an area of zero. When it is cancelled, some are missing.
std::vector<CellTriangle> withoutInnerCells(std::vector<CellTriangle> triangles, int width,
                                            Pulse &pulse);

} // namespace marlowen
