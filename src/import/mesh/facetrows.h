#pragma once

#include "files/mesh/modelplacement.h"

#include <span>

namespace marlowen {

/// A grid that facets are drawn into, row-major, and a band of its rows.
struct FacetGrid
{
    float *values;
    int columns;
    int rows;
    int firstRow; ///< of the band
    int endRow;   ///< behind its last row
};

/// Grids narrower than this can be drawn only as a single band: the cells of a facet are changed in
/// groups, which there go on in the next row.
inline constexpr int fewestColumnsOfBands = 8;

/// Places points of a mesh on the grid: cell (x, y), height z in cells.
struct CellPlacement
{
    ModelPlacement model;
    MeshPoint low;       ///< the point of the placed model that lies at cell (0, 0), height 0
    double cellsPerUnit; ///< model units
};

/// Rows of the grid that a triangle may reach, all between the first and the last.
struct RowReach
{
    int first;
    int last;
};
/// A triangle of more rows can be drawn in bands; others only as a whole, with a band that is the
/// whole grid.
inline constexpr int mostRowsAtOnce = 33;

/// Finds the rows of as many triangles as there are reaches, from number `first` on; the band does
/// not matter. Returns about what drawing these triangles costs, in half nanoseconds.
double findRows(const TriangleMesh &mesh, quint32 first, const CellPlacement &placement,
                const FacetGrid &grid, std::span<RowReach> reaches);

/// Raises a band of the grid to triangles, given by their numbers, where they are higher. The cells
/// do not depend on how the grid is cut into bands.
using DrawFacets = void (*)(const TriangleMesh &mesh, std::span<const quint32> numbers,
                            const CellPlacement &placement, const FacetGrid &grid);

/// For each set of instructions that this machine has, the fastest last; all draw the same.
std::span<const DrawFacets> drawFacetsHere();

} // namespace marlowen
