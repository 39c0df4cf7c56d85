#pragma once

#include "files/reduce/gridtriangulation.h"
#include "relief/grid/floatgrid.h"

namespace marlowen {

/// What the grid points on a triangle say about it, those on its edges and corners included.
struct FacetScan
{
    float error = 0.0F;     ///< largest |height - plane| in cells, infinite where it is NaN
    uint32_t candidate = 0; ///< the cell of that error, never a corner; without meaning at error 0
    bool anyHeight = false; ///< some height is not 0
    bool anyEmpty = false;  ///< some height is 0
};

struct ScanRule
{
    double tolerance = 0.0; ///< cells; errors well below it may be rounding
    int stride = 1;         ///< looks at every stride-th column and row; 1 is exact
};

/// Looks at the grid points of a triangle, which must not be flat. The corners always count.
FacetScan scanFacet(const GridView &grid, const CellTriangle &triangle, const ScanRule &rule);

} // namespace marlowen
