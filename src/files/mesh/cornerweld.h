#pragma once

#include "files/mesh/trianglemesh.h"

#include <array>
#include <bit>
#include <cstdlib>
#include <memory>
#include <span>

namespace marlowen {

/// A corner of a facet as STL files have it.
using WeldCorner = std::array<float, 3>;

/// Whether two finite corners without -0.0 have the same values.
inline bool isSame(const WeldCorner &a, const WeldCorner &b)
{
    const auto differ = [&](size_t i) {
        return std::bit_cast<quint32>(a[i]) ^ std::bit_cast<quint32>(b[i]);
    };
    return (differ(0) | differ(1) | differ(2)) == 0;
}

/// The number by which tables find a corner without -0.0.
inline quint32 weldHash(const WeldCorner &corner)
{
    const auto bits = [&](size_t i) {
        return static_cast<quint64>(std::bit_cast<quint32>(corner[i]));
    };
    quint64 hash = (bits(0) | bits(1) << 32) * 0x9E3779B97F4A7C15U;
    hash = (hash ^ hash >> 32 ^ bits(2)) * 0xD6E8FEB86659FD93U;
    return static_cast<quint32>(hash >> 32);
}

/// Corners with the same three values become one position. Corners are finite and without -0.0.
class CornerWeld
{
public:
    /// New positions go to the end of `positions`, which outlives this and belongs to it meanwhile.
    /// `expected` is how many there may be in the end, a hint.
    CornerWeld(LargeVector<MeshPoint> &positions, size_t expected);

    /// Writes the place of each corner in the positions. The corners differ from each other;
    /// `hashes` are theirs. Throws std::bad_alloc.
    void weld(std::span<const WeldCorner> corners, const quint32 *hashes, quint32 *places);

private:
    /// Of the table; all zeros when vacant.
    struct Slot
    {
        quint32 hash;
        quint32 placeAndOne;
    };
    struct Free
    {
        void operator()(Slot *table) const { std::free(table); }
    };

    quint32 _place(const WeldCorner &corner, quint32 hash);
    void _grow(size_t slotCount);

    LargeVector<MeshPoint> &m_positions;
    std::unique_ptr<Slot[], Free> m_slots;
    size_t m_slotCount = 0; ///< a power of two
};

} // namespace marlowen
