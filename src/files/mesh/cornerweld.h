#pragma once

#include "files/mesh/trianglemesh.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>

namespace marlowen {

/// A corner of a facet as STL files have it.
using WeldCorner = std::array<float, 3>;

/// Its bits. Those of finite corners without -0.0 are the same exactly where the values are.
struct WeldBits
{
    quint64 xy = ~quint64{0}; ///< no number, and so no corner's
    quint32 z = ~quint32{0};

    WeldBits() = default;
    /// Of twelve bytes.
    explicit WeldBits(const void *corner)
    {
        std::memcpy(&xy, corner, sizeof(xy));
        std::memcpy(&z, static_cast<const char *>(corner) + sizeof(xy), sizeof(z));
    }
    bool operator==(const WeldBits &) const = default;
};

/// The number by which tables find a corner without -0.0.
inline quint32 weldHash(const WeldBits &corner)
{
    quint64 hash = corner.xy * 0x9E3779B97F4A7C15U;
    hash = (hash ^ hash >> 32 ^ corner.z) * 0xD6E8FEB86659FD93U;
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
    struct Free
    {
        void operator()(quint32 *table) const { std::free(table); }
    };

    bool _mayBe(quint32 slot, quint32 hash) const { return ((slot ^ hash) & ~m_placeBits) == 0; }
    quint32 _place(const WeldCorner &corner, quint32 hash);
    void _grow(size_t slotCount);

    LargeVector<MeshPoint> &m_positions;
    /// The table, a power of two of slots. A corner lies in the slot that the low bits of its hash
    /// name, or behind it. A slot has the place plus 1 in these bits and the other bits of the hash
    /// above them; all zeros when vacant.
    std::unique_ptr<quint32[], Free> m_slots;
    quint32 m_placeBits = 0;
};

} // namespace marlowen
