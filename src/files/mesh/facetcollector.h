#pragma once

#include "files/mesh/facetpiece.h"
#include "files/mesh/meshproblems.h"

namespace marlowen {

/// Turns the facets of an STL file into triangles that share their corners.
class FacetCollector
{
public:
    /// `expected` facets are about to come, a hint that the size of the file bears out.
    FacetCollector(TriangleMesh &mesh, MeshProblems &problems, size_t expected);

    /// The facets of a piece. Throws std::bad_alloc.
    void take(const FacetPiece &piece);

    /// One facet. A facet that is not finite, or has two equal corners, is a problem and left out.
    void add(const FacetPiece::Facet &facet);
    /// Takes the facets added since the last call; to be called at the end.
    void flush();

private:
    TriangleMesh &m_mesh;
    MeshProblems &m_problems;
    CornerWeld m_weld;
    FacetPiece m_added;
    std::vector<quint32> m_places; ///< of the corners of a piece
};

} // namespace marlowen
