#include "files/mesh/cornerweld.h"

#include <algorithm>
#include <bit>
#include <new>

namespace marlowen {

namespace {

constexpr size_t fewestSlots = 1024;
/// Slots are named by 32 bits; a quarter of them stays vacant.
constexpr size_t mostSlots = size_t{1} << 32;
constexpr size_t mostPlaces = mostSlots / 4 * 3;
/// How far ahead of a corner its slot and then its position are asked for: they lie all over the
/// memory.
constexpr size_t slotAhead = 48;
constexpr size_t positionAhead = 16;

MeshPoint pointOf(const WeldCorner &corner)
{
    return {corner[0], corner[1], corner[2]};
}

quint32 hashOf(const MeshPoint &point)
{
    const WeldCorner corner{static_cast<float>(point[0]), static_cast<float>(point[1]),
                            static_cast<float>(point[2])};
    return weldHash(WeldBits(corner.data()));
}

} // namespace

CornerWeld::CornerWeld(LargeVector<MeshPoint> &positions, size_t expected)
    : m_positions(positions)
{
    const size_t room = std::min(expected, mostPlaces);
    // Room that is never used is never touched; a copy of the whole array would be.
    m_positions.reserve(room + room / 8);
    _grow(std::min(mostSlots, std::bit_ceil(std::max(fewestSlots, room + room / 2))));
}

void CornerWeld::_grow(size_t slotCount)
{
    const size_t bytes = slotCount * sizeof(quint32);
    // Fresh memory is zero already; a vector would write the zeros once more.
    std::unique_ptr<quint32[], Free> grown(
        static_cast<quint32 *>(std::calloc(slotCount, sizeof(quint32))));
    if (!grown)
        throw std::bad_alloc();
    if (bytes >= 2 * largePageBytes)
        wishLargePages(grown.get(), bytes);
    m_slots = std::move(grown);
    m_placeBits = static_cast<quint32>(slotCount - 1);
    for (size_t place = 0; place < m_positions.size(); ++place) {
        const quint32 hash = hashOf(m_positions[place]);
        quint32 slot = hash & m_placeBits;
        while (m_slots[slot] != 0)
            slot = (slot + 1) & m_placeBits;
        m_slots[slot] = (hash & ~m_placeBits) | static_cast<quint32>(place + 1);
    }
}

inline quint32 CornerWeld::_place(const WeldCorner &corner, quint32 hash)
{
    const MeshPoint point = pointOf(corner);
    quint32 slot = hash & m_placeBits;
    for (; m_slots[slot] != 0; slot = (slot + 1) & m_placeBits) {
        const quint32 place = (m_slots[slot] & m_placeBits) - 1;
        if (_mayBe(m_slots[slot], hash) && m_positions[place] == point)
            return place;
    }
    const auto place = static_cast<quint32>(m_positions.size());
    m_slots[slot] = (hash & ~m_placeBits) | (place + 1);
    m_positions.push_back(point);
    return place;
}

void CornerWeld::weld(std::span<const WeldCorner> corners, const quint32 *hashes, quint32 *places)
{
    const size_t most = m_positions.size() + corners.size();
    if (most > mostPlaces)
        throw std::bad_alloc();
    if (3 * (size_t{m_placeBits} + 1) < 4 * most)
        _grow(std::min(mostSlots, std::bit_ceil(2 * most)));
    const size_t count = corners.size();
    // Inline: as functions that return nothing and change nothing they would be left out.
    for (size_t i = 0; i < std::min(count, slotAhead); ++i)
        __builtin_prefetch(&m_slots[hashes[i] & m_placeBits]);
    for (size_t i = 0; i < count; ++i) {
        if (i + slotAhead < count)
            __builtin_prefetch(&m_slots[hashes[i + slotAhead] & m_placeBits]);
        if (i + positionAhead < count) {
            const quint32 slot = m_slots[hashes[i + positionAhead] & m_placeBits];
            if (_mayBe(slot, hashes[i + positionAhead]))
                __builtin_prefetch(m_positions.data() + (slot & m_placeBits));
        }
        places[i] = _place(corners[i], hashes[i]);
    }
}

} // namespace marlowen
