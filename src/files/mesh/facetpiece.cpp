#include "files/mesh/facetpiece.h"

#include <algorithm>

namespace marlowen {

namespace {

/// A power of two with room for three corners of every facet.
constexpr size_t slotCount = 4 * FacetPiece::mostFacets;
static_assert(3 * FacetPiece::mostFacets < 65535, "numbers of corners have 16 bits");

bool isFinite(const WeldCorner &corner)
{
    // The sum of three zeros is 0 unless one of them came of an infinity or a NaN.
    return corner[0] * 0.0F + corner[1] * 0.0F + corner[2] * 0.0F == 0.0F;
}

/// Adding 0 turns -0.0 into 0.0, which has other bits.
WeldCorner withoutMinusZero(const WeldCorner &corner)
{
    return {corner[0] + 0.0F, corner[1] + 0.0F, corner[2] + 0.0F};
}

} // namespace

const char *facetProblem(FacetFault fault)
{
    return fault == FacetFault::NotFinite ? "STL: facet with a coordinate that is not finite"
                                          : "STL: facet with fewer than three different corners";
}

FacetFault FacetPiece::add(const Facet &facet)
{
    if (!isFinite(facet[0]) || !isFinite(facet[1]) || !isFinite(facet[2]))
        return FacetFault::NotFinite;
    const WeldCorner a = withoutMinusZero(facet[0]);
    const WeldCorner b = withoutMinusZero(facet[1]);
    const WeldCorner c = withoutMinusZero(facet[2]);
    if (isSame(a, b) || isSame(b, c) || isSame(c, a))
        return FacetFault::FewCorners;
    Q_ASSERT(m_triangles.size() < mostFacets);
    if (m_slots.empty())
        m_slots.resize(slotCount);
    const quint16 first = _number(a);
    const quint16 second = _number(b);
    const quint16 third = _number(c);
    m_triangles.push_back({first, second, third});
    return FacetFault::None;
}

inline quint16 FacetPiece::_number(const WeldCorner &corner)
{
    quint16 *const table = m_slots.data();
    const WeldCorner *const corners = m_corners.data();
    const quint32 hash = weldHash(corner);
    size_t slot = hash % slotCount;
    for (; table[slot] != 0; slot = (slot + 1) % slotCount) {
        const auto number = static_cast<quint16>(table[slot] - 1);
        if (isSame(corners[number], corner))
            return number;
    }
    const auto number = static_cast<quint16>(m_corners.size());
    table[slot] = static_cast<quint16>(number + 1);
    m_corners.push_back(corner);
    m_hashes.push_back(hash);
    return number;
}

void FacetPiece::clear()
{
    std::fill(m_slots.begin(), m_slots.end(), quint16{0});
    m_corners.clear();
    m_hashes.clear();
    m_triangles.clear();
}

} // namespace marlowen
