#pragma once

#include "files/mesh/modelplacement.h"
#include "render/camera/camera.h"

#include <cstdint>
#include <vector>

namespace marlowen {

/// A model on its way into the preview, without OpenGL.
///
/// Vertices are kept in the model's frame: the middle of its box is the origin, the longest half
/// side 1, for any size of its numbers. The scene shows it turned and scaled so that its
/// longest side is `facetSceneSide`.

inline constexpr double facetSceneSide = 1000.0;

/// Where the vertices of a model lie: (point - middle) / half.
struct FacetFrame
{
    MeshPoint middle{};
    double half = 1.0; ///< model units; above 0

    std::array<float, 3> at(const MeshPoint &point) const
    {
        return {static_cast<float>((point[0] - middle[0]) / half),
                static_cast<float>((point[1] - middle[1]) / half),
                static_cast<float>((point[2] - middle[2]) / half)};
    }
};

/// The frame of a model with this box, which is finite.
FacetFrame frameOf(const ModelBox &box);

/// x, y, z of every position of the mesh in the frame.
std::vector<float> facetVertices(const TriangleMesh &mesh, const FacetFrame &frame);

/// The place of a placed model in the scene.
struct FacetScene
{
    Matrix placement = identityMatrix(); ///< from the frame into the scene
    /// About the model, its middle in the origin. Never without width or height.
    SceneBox box;
    double perUnit = 1.0; ///< scene units in a unit of the placed model
};
FacetScene sceneOf(const ModelBox &fileBox, const ModelPlacement &placement);

/// Fewer facets that look alike from afar: positions in the frame and three corners a facet.
struct CoarseFacets
{
    std::vector<float> positions;
    std::vector<uint32_t> corners;
};

/// Merges the corners that fall into the same of many small cubes. Gives at most `most` facets, not
/// less than 1000.
CoarseFacets coarsened(const TriangleMesh &mesh, const FacetFrame &frame, size_t most);

} // namespace marlowen
