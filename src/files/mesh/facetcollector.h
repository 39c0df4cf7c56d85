#pragma once

#include "files/mesh/cornerweld.h"
#include "files/mesh/meshproblems.h"
#include "files/mesh/trianglemesh.h"

namespace marlowen {

/// Turns the facets of an STL file into triangles that share their corners, run by run.
class FacetCollector
{
public:
    /// `expected` facets are about to come, a hint that the size of the file bears out.
    FacetCollector(TriangleMesh &mesh, MeshProblems &problems, size_t expected);

    /// One facet. A facet that is not finite, or has two equal corners, is a problem and left out.
    void add(const std::array<CornerWeld::Corner, 3> &facet);
    /// Welds the facets added since the last call; to be called at the end.
    void flush();

private:
    TriangleMesh &m_mesh;
    MeshProblems &m_problems;
    CornerWeld m_weld;
    std::array<std::array<CornerWeld::Corner, 3>, CornerWeld::longestRun / 3> m_facets;
    size_t m_count = 0; ///< of the facets that wait to be welded
};

} // namespace marlowen
