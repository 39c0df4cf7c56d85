#pragma once

#include "files/mesh/trianglemesh.h"

#include <array>
#include <span>
#include <vector>

namespace marlowen {

/// Corners with the same three values become one position. -0.0 is 0.0; a corner that is not finite
/// must not be given.
class CornerWeld
{
public:
    using Corner = std::array<float, 3>;
    /// The most corners of one run.
    static constexpr size_t longestRun = 768;

    /// New positions go to the end of `positions`, which outlives this and belongs to it meanwhile.
    /// `expected` is how many there may be in the end, a hint.
    CornerWeld(LargeVector<MeshPoint> &positions, size_t expected);

    /// Writes the place of each corner in the positions; three corners are a facet. Long runs are
    /// faster than short ones, as are facets that share corners with the one before.
    /// Throws std::bad_alloc.
    void weld(std::span<const Corner> corners, quint32 *places);

private:
    /// A corner that was met lately and its place, or its number among the open corners.
    struct Recent
    {
        Corner corner;
        quint32 place;
    };
    /// A corner of the run that must be looked up in the table.
    struct Open
    {
        Corner corner;
        size_t hash;
        quint32 place;
    };

    void _placeLately(std::span<const Corner> corners, quint32 *places);
    quint32 _recentPlace(const Corner &corner);
    quint32 _lookUp(const Corner &corner, size_t hash);
    void _grow(size_t slots);

    LargeVector<MeshPoint> &m_positions;
    LargeVector<quint32> m_slots; ///< the table: a place, or `vacant`; a power of two of them
    std::vector<Recent> m_recent;
    std::vector<Open> m_open;
};

} // namespace marlowen
