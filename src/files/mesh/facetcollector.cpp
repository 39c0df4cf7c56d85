#include "files/mesh/facetcollector.h"

namespace marlowen {

FacetCollector::FacetCollector(TriangleMesh &mesh, MeshProblems &problems, size_t expected)
    : m_mesh(mesh)
    , m_problems(problems)
    , m_weld(mesh.positions, expected / 2)
{
    m_mesh.triangles.reserve(expected);
}

void FacetCollector::take(const FacetPiece &piece)
{
    m_places.resize(piece.corners().size());
    m_weld.weld(piece.corners(), piece.hashes().data(), m_places.data());
    const quint32 *const places = m_places.data();
    const size_t before = m_mesh.triangles.size();
    m_mesh.triangles.resize(before + piece.triangles().size());
    MeshTriangle *next = m_mesh.triangles.data() + before;
    for (const auto &[a, b, c] : piece.triangles())
        *next++ = {places[a], places[b], places[c]};
}

void FacetCollector::add(const FacetPiece::Facet &facet)
{
    const FacetFault fault = m_added.add(facet);
    if (fault != FacetFault::None)
        m_problems.add(facetProblem(fault));
    else if (m_added.triangles().size() == FacetPiece::mostFacets)
        flush();
}

void FacetCollector::flush()
{
    take(m_added);
    m_added.clear();
}

} // namespace marlowen
