#pragma once

#include "render/camera/camera.h"
#include "render/meshes/facetscene.h"

#include <cstdint>
#include <vector>

namespace marlowen {

/// A picture of a mesh with one sample a pixel.
struct FacetPicture
{
    FacetFrame frame; ///< of the mesh
    /// From the frame to -1..1 along the sides of the picture; no perspective.
    Matrix toPicture = identityMatrix();
    QSize pixels;
};

/// The corners of the facets that lie over the middle of a pixel, or nearly so, in the order of the
/// mesh. The others change nothing in the picture; of a model with millions of facets they are
/// most. Works on all cores.
std::vector<uint32_t> facetsOverPixels(const TriangleMesh &mesh, const FacetPicture &picture);

} // namespace marlowen
