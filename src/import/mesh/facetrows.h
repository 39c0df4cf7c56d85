#pragma once

#include "files/mesh/modelplacement.h"

namespace marlowen {

/// A grid that facets are drawn into, row-major.
struct FacetGrid
{
    float *values;
    int columns;
    int rows;
};

/// Places points of a mesh on the grid: cell (x, y), height z in cells.
struct CellPlacement
{
    ModelPlacement model;
    MeshPoint low;       ///< the point of the placed model that lies at cell (0, 0), height 0
    double cellsPerUnit; ///< model units
};

/// Raises the grid to the triangles from number `first` on, where they are higher; stops after
/// enough work for one step of progress. Returns the number of the next triangle.
size_t drawFacets(const TriangleMesh &mesh, size_t first, const CellPlacement &placement,
                  const FacetGrid &grid);

} // namespace marlowen
