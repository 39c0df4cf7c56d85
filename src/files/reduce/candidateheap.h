#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace marlowen {

/// The triangles that wait to be refined, the one with the largest key first. Every triangle is in
/// it at most once and can be moved or taken out by its number.
class CandidateHeap
{
public:
    bool empty() const { return m_entries.empty(); }
    uint32_t top() const { return m_entries.front().triangle; }
    uint64_t topKey() const { return m_entries.front().key; }

    /// Puts a triangle in, or moves it to a new key.
    void set(uint32_t triangle, uint64_t key)
    {
        if (triangle >= m_places.size())
            m_places.resize(triangle + 1, nowhere);
        if (m_places[triangle] == nowhere) {
            m_places[triangle] = static_cast<uint32_t>(m_entries.size());
            m_entries.push_back({key, triangle});
        }
        settle(m_places[triangle], {key, triangle});
    }

    /// Takes a triangle out; nothing happens when it is not there.
    void remove(uint32_t triangle)
    {
        if (triangle >= m_places.size() || m_places[triangle] == nowhere)
            return;
        const uint32_t place = m_places[triangle];
        m_places[triangle] = nowhere;
        const Entry last = m_entries.back();
        m_entries.pop_back();
        if (last.triangle != triangle)
            settle(place, last);
    }

    void reserve(size_t triangles)
    {
        m_entries.reserve(triangles);
        m_places.reserve(triangles);
    }

private:
    struct Entry
    {
        uint64_t key;
        uint32_t triangle;
    };
    static constexpr uint32_t nowhere = 0xFFFFFFFF;

    void put(size_t place, const Entry &entry)
    {
        m_entries[place] = entry;
        m_places[entry.triangle] = static_cast<uint32_t>(place);
    }

    /// Writes the entry at a free place and moves it up or down to where it belongs.
    void settle(size_t place, const Entry &entry)
    {
        while (place > 0 && m_entries[(place - 1) / 2].key < entry.key) {
            put(place, m_entries[(place - 1) / 2]);
            place = (place - 1) / 2;
        }
        for (size_t child = 2 * place + 1; child < m_entries.size(); child = 2 * place + 1) {
            if (child + 1 < m_entries.size() && m_entries[child].key < m_entries[child + 1].key)
                ++child;
            if (m_entries[child].key <= entry.key)
                break;
            put(place, m_entries[child]);
            place = child;
        }
        put(place, entry);
    }

    std::vector<Entry> m_entries;
    std::vector<uint32_t> m_places; ///< of every triangle, or `nowhere`
};

} // namespace marlowen
