#include "files/mesh/facetcollector.h"

#include <cmath>

namespace marlowen {

namespace {

bool isFinite(const CornerWeld::Corner &corner)
{
    // The sum of three zeros is 0 unless one of them came of an infinity or a NaN.
    return corner[0] * 0.0F + corner[1] * 0.0F + corner[2] * 0.0F == 0.0F;
}

} // namespace

FacetCollector::FacetCollector(TriangleMesh &mesh, MeshProblems &problems, size_t expected)
    : m_mesh(mesh)
    , m_problems(problems)
    , m_weld(mesh.positions, expected / 2)
{
    m_mesh.triangles.reserve(expected);
}

void FacetCollector::add(const std::array<CornerWeld::Corner, 3> &facet)
{
    const auto &[a, b, c] = facet;
    if (!isFinite(a) || !isFinite(b) || !isFinite(c)) {
        m_problems.add("STL: facet with a coordinate that is not finite");
        return;
    }
    if (a == b || b == c || c == a) {
        m_problems.add("STL: facet with fewer than three different corners");
        return;
    }
    m_facets[m_count++] = facet;
    if (m_count == m_facets.size())
        flush();
}

void FacetCollector::flush()
{
    std::array<quint32, CornerWeld::longestRun> places;
    m_weld.weld({m_facets[0].data(), 3 * m_count}, places.data());
    for (size_t i = 0; i < 3 * m_count; i += 3)
        m_mesh.triangles.push_back({places[i], places[i + 1], places[i + 2]});
    m_count = 0;
}

} // namespace marlowen
