#include "files/mesh/cornerweld.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace marlowen {

namespace {

constexpr quint32 vacant = std::numeric_limits<quint32>::max();
/// Set in a place that is the number of an open corner. Positions stay below it.
constexpr quint32 openFlag = quint32{1} << 31;
constexpr size_t fewestSlots = 1024;
constexpr size_t recentCorners = 8192;

size_t hashOf(const CornerWeld::Corner &corner)
{
    const auto bits = [&](size_t i) {
        return static_cast<quint64>(std::bit_cast<quint32>(corner[i]));
    };
    quint64 hash = (bits(0) | bits(1) << 32) * 0x9E3779B97F4A7C15U;
    hash = (hash ^ hash >> 32 ^ bits(2)) * 0xD6E8FEB86659FD93U;
    return static_cast<size_t>(hash ^ hash >> 29);
}

/// Adding 0 turns -0.0 into 0.0, which has other bits.
CornerWeld::Corner withoutMinusZero(const CornerWeld::Corner &corner)
{
    return {corner[0] + 0.0F, corner[1] + 0.0F, corner[2] + 0.0F};
}

CornerWeld::Corner narrowed(const MeshPoint &point)
{
    return {static_cast<float>(point[0]), static_cast<float>(point[1]),
            static_cast<float>(point[2])};
}

} // namespace

CornerWeld::CornerWeld(LargeVector<MeshPoint> &positions, size_t expected)
    : m_positions(positions)
    , m_recent(recentCorners, Recent{{}, vacant})
{
    // Room that is never used is never touched; a copy of the whole array would be.
    m_positions.reserve(expected + expected / 8);
    m_slots.assign(std::bit_ceil(std::max(fewestSlots, expected + expected / 2)), vacant);
    m_open.reserve(longestRun);
}

void CornerWeld::_grow(size_t slots)
{
    m_slots.assign(slots, vacant);
    const size_t mask = slots - 1;
    for (size_t place = 0; place < m_positions.size(); ++place) {
        size_t slot = hashOf(narrowed(m_positions[place])) & mask;
        while (m_slots[slot] != vacant)
            slot = (slot + 1) & mask;
        m_slots[slot] = static_cast<quint32>(place);
    }
}

quint32 CornerWeld::_lookUp(const Corner &corner, size_t hash)
{
    const size_t mask = m_slots.size() - 1;
    const MeshPoint point{corner[0], corner[1], corner[2]};
    size_t slot = hash & mask;
    for (; m_slots[slot] != vacant; slot = (slot + 1) & mask) {
        if (m_positions[m_slots[slot]] == point)
            return m_slots[slot];
    }
    if (m_positions.size() >= openFlag)
        throw std::bad_alloc();
    m_slots[slot] = static_cast<quint32>(m_positions.size());
    m_positions.push_back(point);
    return m_slots[slot];
}

/// The place of a corner that was met lately; else its number among the open corners, flagged.
quint32 CornerWeld::_recentPlace(const Corner &corner)
{
    const size_t hash = hashOf(corner);
    Recent &recent = m_recent[hash % recentCorners];
    if (recent.corner != corner || recent.place == vacant) {
        recent = {corner, static_cast<quint32>(m_open.size()) | openFlag};
        m_open.push_back({corner, hash, 0});
        // The slots lie all over the table: they are asked for long before they are looked at.
        __builtin_prefetch(&m_slots[hash & (m_slots.size() - 1)]);
    }
    return recent.place;
}

/// Each corner's place or flagged number: that of the same corner of the facet before, else of one
/// met lately.
void CornerWeld::_placeLately(std::span<const Corner> corners, quint32 *places)
{
    std::array<Corner, 3> before{};
    std::array<quint32, 3> placesBefore{vacant, vacant, vacant};
    for (size_t first = 0; first < corners.size(); first += 3) {
        std::array<Corner, 3> facet;
        std::array<quint32, 3> found;
        for (size_t i = 0; i < 3; ++i) {
            facet[i] = withoutMinusZero(corners[first + i]);
            found[i] = vacant;
            for (size_t k = 0; k < 3; ++k)
                found[i] = before[k] == facet[i] ? placesBefore[k] : found[i];
            if (found[i] == vacant)
                found[i] = _recentPlace(facet[i]);
            places[first + i] = found[i];
        }
        before = facet;
        placesBefore = found;
    }
}

void CornerWeld::weld(std::span<const Corner> corners, quint32 *places)
{
    Q_ASSERT(corners.size() <= longestRun && corners.size() % 3 == 0);
    if (3 * m_slots.size() < 4 * (m_positions.size() + corners.size()))
        _grow(std::bit_ceil(2 * (m_positions.size() + corners.size())));
    m_open.clear();
    _placeLately(corners, places);
    for (quint32 number = 0; number < m_open.size(); ++number) {
        Open &open = m_open[number];
        open.place = _lookUp(open.corner, open.hash);
        Recent &recent = m_recent[open.hash % recentCorners];
        if (recent.place == (number | openFlag))
            recent.place = open.place;
    }
    for (size_t i = 0; i < corners.size(); ++i)
        places[i] = (places[i] & openFlag) ? m_open[places[i] & ~openFlag].place : places[i];
}

} // namespace marlowen
