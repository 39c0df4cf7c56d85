#pragma once

#include "base/progress.h"
#include "files/mesh/trianglemesh.h"
#include "import/mesh/facetrows.h"

namespace marlowen {

/// Raises a grid of zeros to all triangles of a mesh, where they are higher, on all cores: each
/// draws bands of rows of its own, so that the result does not depend on their number. The band of
/// `grid` does not matter. Takes a few megabytes for sorting the triangles into the bands. Returns
/// false when the user cancelled, with part of the triangles drawn; "Cancel" is looked at all the
/// time.
bool drawMesh(const TriangleMesh &mesh, const CellPlacement &placement, const FacetGrid &grid,
              Progress &progress);

} // namespace marlowen
