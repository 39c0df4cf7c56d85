#pragma once

#include "files/mesh/cornerweld.h"

#include <array>
#include <span>
#include <vector>

namespace marlowen {

/// What is wrong with a facet.
enum class FacetFault : quint8 { None, NotFinite, FewCorners };

/// The text of the problem.
const char *facetProblem(FacetFault fault);

/// Some facets of an STL file, welded among themselves without knowing what stands before them.
class FacetPiece
{
public:
    using Facet = std::array<WeldCorner, 3>;
    /// Three numbers of corners of the piece.
    using Triangle = std::array<quint16, 3>;
    static constexpr size_t mostFacets = 8192;
    /// Of a facet in a binary file. Its corners begin at recordCorners.
    static constexpr size_t recordBytes = 50;
    static constexpr size_t recordCorners = 12;

    /// One facet, unless it has a fault. At most mostFacets may be added before clear().
    /// Throws std::bad_alloc.
    FacetFault add(const Facet &facet);
    /// The facets of whole records, and the faults of those that are left out.
    void addRecords(std::span<const char> records, std::vector<FacetFault> &faults);
    void clear();

    /// The corners, each once, in the order in which the facets name them first; with their hashes.
    const std::vector<WeldCorner> &corners() const { return m_corners; }
    const std::vector<quint32> &hashes() const { return m_hashes; }
    const std::vector<Triangle> &triangles() const { return m_triangles; }

private:
    using Corners = std::array<WeldBits, 3>;

    void _makeTable();
    FacetFault _add(const char *corners);
    FacetFault _addMinusZeros(const Corners &bits);
    FacetFault _addUsable(const Corners &bits);
    quint16 _number(const WeldBits &corner);
    quint16 _append(const WeldBits &corner, quint32 hash);

    std::vector<WeldCorner> m_corners;
    std::vector<quint32> m_hashes;
    std::vector<Triangle> m_triangles;
    std::vector<quint16> m_slots; ///< the table: number of a corner plus 1, or 0
    Corners m_last;               ///< the corners added last
    Triangle m_lastNumbers{};
};

} // namespace marlowen
