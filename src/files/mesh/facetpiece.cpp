#include "files/mesh/facetpiece.h"

#include <algorithm>

namespace marlowen {

namespace {

/// A power of two with room for three corners of every facet.
constexpr size_t slotCount = 4 * FacetPiece::mostFacets;
static_assert(3 * FacetPiece::mostFacets < 65535, "numbers of corners have 16 bits");

/// Sign bits of two floats beside each other.
constexpr quint64 signs = 0x8000000080000000U;
/// Added to the bits without the signs, it sets the sign where they are those of no finite number.
constexpr quint64 toSigns = 0x0080000000800000U;

/// What to know of the nine coordinates of a facet.
struct Coordinates
{
    explicit Coordinates(const std::array<WeldBits, 3> &corners)
    {
        const auto &[a, b, c] = corners;
        look(a.xy);
        look(b.xy);
        look(c.xy);
        look(a.z | quint64{b.z} << 32);
        look(c.z);
    }
    void look(quint64 pair)
    {
        const quint64 magnitudes = pair & ~signs;
        notFinite |= magnitudes + toSigns;
        minusZero |= pair & ~(magnitudes + ~signs);
    }
    bool anyNotFinite() const { return (notFinite & signs) != 0; }
    bool anyMinusZero() const { return (minusZero & signs) != 0; }

    quint64 notFinite = 0; ///< in the sign bits
    quint64 minusZero = 0;
};

WeldBits withoutMinusZero(const WeldBits &bits)
{
    constexpr quint32 minusZero = 0x80000000U;
    WeldBits result = bits;
    if (static_cast<quint32>(bits.xy) == minusZero)
        result.xy ^= minusZero;
    if (static_cast<quint32>(bits.xy >> 32) == minusZero)
        result.xy ^= quint64{minusZero} << 32;
    if (bits.z == minusZero)
        result.z = 0;
    return result;
}

} // namespace

const char *facetProblem(FacetFault fault)
{
    return fault == FacetFault::NotFinite ? "STL: facet with a coordinate that is not finite"
                                          : "STL: facet with fewer than three different corners";
}

void FacetPiece::_makeTable()
{
    if (m_slots.empty())
        m_slots.resize(slotCount);
}

FacetFault FacetPiece::add(const Facet &facet)
{
    _makeTable();
    return _add(reinterpret_cast<const char *>(facet.data()));
}

void FacetPiece::addRecords(std::span<const char> records, std::vector<FacetFault> &faults)
{
    _makeTable();
    for (size_t at = 0; at < records.size(); at += recordBytes) {
        const FacetFault fault = _add(records.data() + at + recordCorners);
        if (fault != FacetFault::None)
            faults.push_back(fault);
    }
}

/// The nine floats lie anywhere.
__attribute__((always_inline)) inline FacetFault FacetPiece::_add(const char *corners)
{
    const Corners bits{WeldBits(corners), WeldBits(corners + sizeof(WeldCorner)),
                       WeldBits(corners + 2 * sizeof(WeldCorner))};
    const Coordinates coordinates(bits);
    if (coordinates.anyNotFinite())
        return FacetFault::NotFinite;
    if (coordinates.anyMinusZero())
        return _addMinusZeros(bits);
    return _addUsable(bits);
}

FacetFault FacetPiece::_addMinusZeros(const Corners &bits)
{
    const auto &[a, b, c] = bits;
    return _addUsable({withoutMinusZero(a), withoutMinusZero(b), withoutMinusZero(c)});
}

__attribute__((always_inline)) inline FacetFault FacetPiece::_addUsable(const Corners &bits)
{
    const auto &[a, b, c] = bits;
    if (a == b || b == c || c == a)
        return FacetFault::FewCorners;
    Q_ASSERT(m_triangles.size() < mostFacets);
    // Put together in a register: read back from three places just written they would be late.
    const quint64 first = _number(a);
    const quint64 second = _number(b);
    const quint64 third = _number(c);
    const quint64 numbers = first | second << 16 | third << 32;
    Triangle added;
    std::memcpy(added.data(), &numbers, sizeof(added));
    m_triangles.push_back(added);
    m_lastNumbers = added;
#pragma GCC unroll 3
    for (size_t i = 0; i < bits.size(); ++i) {
        m_last[i].xy = bits[i].xy;
        m_last[i].z = bits[i].z;
    }
    return FacetFault::None;
}

__attribute__((always_inline)) inline quint16 FacetPiece::_number(const WeldBits &corner)
{
    // Most facets share an edge with the facet before them.
#pragma GCC unroll 3
    for (size_t i = 0; i < m_last.size(); ++i) {
        if (m_last[i] == corner)
            return m_lastNumbers[i];
    }
    const quint32 hash = weldHash(corner);
    const quint16 *const table = m_slots.data();
    for (size_t slot = hash % slotCount; table[slot] != 0; slot = (slot + 1) % slotCount) {
        const auto number = static_cast<quint16>(table[slot] - 1);
        if (WeldBits(m_corners[number].data()) == corner)
            return number;
    }
    return _append(corner, hash);
}

quint16 FacetPiece::_append(const WeldBits &corner, quint32 hash)
{
    size_t slot = hash % slotCount;
    while (m_slots[slot] != 0)
        slot = (slot + 1) % slotCount;
    const auto number = static_cast<quint16>(m_corners.size());
    m_slots[slot] = static_cast<quint16>(number + 1);
    WeldCorner values;
    std::memcpy(values.data(), &corner.xy, sizeof(corner.xy));
    std::memcpy(&values[2], &corner.z, sizeof(corner.z));
    m_corners.push_back(values);
    m_hashes.push_back(hash);
    return number;
}

void FacetPiece::clear()
{
    std::fill(m_slots.begin(), m_slots.end(), quint16{0});
    m_corners.clear();
    m_hashes.clear();
    m_triangles.clear();
    m_last = {};
}

} // namespace marlowen
