#include "files/mesh/cornerweld.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <new>

namespace marlowen {

namespace {

constexpr size_t fewestSlots = 1024;
/// Corners whose slots are asked for together, long before they are looked at: the slots lie all
/// over the table.
constexpr size_t togetherCorners = 32;

MeshPoint pointOf(const WeldCorner &corner)
{
    return {corner[0], corner[1], corner[2]};
}

} // namespace

CornerWeld::CornerWeld(LargeVector<MeshPoint> &positions, size_t expected)
    : m_positions(positions)
{
    // Room that is never used is never touched; a copy of the whole array would be.
    m_positions.reserve(expected + expected / 8);
    _grow(std::bit_ceil(std::max(fewestSlots, expected + expected / 2)));
}

void CornerWeld::_grow(size_t slotCount)
{
    const size_t bytes = slotCount * sizeof(Slot);
    // Fresh memory is zero already; a vector would write the zeros once more.
    std::unique_ptr<Slot[], Free> grown(static_cast<Slot *>(std::calloc(slotCount, sizeof(Slot))));
    if (!grown)
        throw std::bad_alloc();
    if (bytes >= 2 * largePageBytes)
        wishLargePages(grown.get(), bytes);
    const size_t mask = slotCount - 1;
    for (size_t i = 0; i < m_slotCount; ++i) {
        if (m_slots[i].placeAndOne == 0)
            continue;
        size_t slot = m_slots[i].hash & mask;
        while (grown[slot].placeAndOne != 0)
            slot = (slot + 1) & mask;
        grown[slot] = m_slots[i];
    }
    m_slots = std::move(grown);
    m_slotCount = slotCount;
}

quint32 CornerWeld::_place(const WeldCorner &corner, quint32 hash)
{
    const size_t mask = m_slotCount - 1;
    const MeshPoint point = pointOf(corner);
    size_t slot = hash & mask;
    for (; m_slots[slot].placeAndOne != 0; slot = (slot + 1) & mask) {
        const quint32 place = m_slots[slot].placeAndOne - 1;
        if (m_slots[slot].hash == hash && m_positions[place] == point)
            return place;
    }
    const size_t place = m_positions.size();
    if (place >= std::numeric_limits<quint32>::max() - 1)
        throw std::bad_alloc();
    m_slots[slot] = {hash, static_cast<quint32>(place + 1)};
    m_positions.push_back(point);
    return static_cast<quint32>(place);
}

void CornerWeld::weld(std::span<const WeldCorner> corners, const quint32 *hashes, quint32 *places)
{
    const size_t most = m_positions.size() + corners.size();
    if (3 * m_slotCount < 4 * most)
        _grow(std::bit_ceil(2 * most));
    const size_t mask = m_slotCount - 1;
    for (size_t first = 0; first < corners.size(); first += togetherCorners) {
        const size_t end = std::min(corners.size(), first + togetherCorners);
        for (size_t i = first; i < end; ++i)
            __builtin_prefetch(&m_slots[hashes[i] & mask]);
        for (size_t i = first; i < end; ++i) {
            const Slot &slot = m_slots[hashes[i] & mask];
            if (slot.hash == hashes[i])
                __builtin_prefetch(m_positions.data() + slot.placeAndOne);
        }
        for (size_t i = first; i < end; ++i)
            places[i] = _place(corners[i], hashes[i]);
    }
}

} // namespace marlowen
