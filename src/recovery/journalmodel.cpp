#include "recovery/journalmodel.h"

#include "recovery/journaljob.h"

#include <algorithm>

namespace marlowen {

void JournalModel::clear()
{
    m_records.clear();
    m_entries.clear();
    m_cursor = 0;
    m_mixed = false;
}

void JournalModel::add(Record record, uint64_t serial)
{
    const RecordHead &head = record.head;
    const size_t index = m_records.size();
    if (head.isEvent()) {
        m_entries.resize(m_cursor);
        m_entries.push_back({serial, index});
        m_cursor = m_entries.size();
        if (head.has(Unrecorded) && head.has(EndsStep)) {
            m_entries.clear();
            m_cursor = 0;
        }
    } else if (head.type == RecordType::Undo) {
        const Range range = _groupToUndo();
        record.firstNeeded = _force(range, false);
        m_cursor = range.first;
    } else if (head.type == RecordType::Redo) {
        const Range range = _groupToRedo();
        record.firstNeeded = _force(range, true);
        m_cursor = range.second;
    } else if (head.type == RecordType::Import) {
        m_mixed = m_mixed || !m_entries.empty();
    }
    m_records.push_back(record);
}

size_t JournalModel::_force(Range range, bool inForce)
{
    size_t first = m_records.size();
    for (size_t entry = range.first; entry < range.second; ++entry) {
        m_records[m_entries[entry].record].inForce = inForce;
        first = std::min(first, m_entries[entry].record);
    }
    return first;
}

JournalModel::Range JournalModel::_groupToUndo() const
{
    size_t first = m_cursor;
    while (first > 0 &&
           (first == m_cursor || !m_records[m_entries[first - 1].record].head.has(EndsStep)))
        --first;
    return {first, m_cursor};
}

JournalModel::Range JournalModel::_groupToRedo() const
{
    size_t end = m_cursor;
    while (end < m_entries.size() &&
           (end == m_cursor || !m_records[m_entries[end - 1].record].head.has(EndsStep)))
        ++end;
    return {m_cursor, end};
}

bool JournalModel::undoes(std::span<const JournalEvent> events) const
{
    return _matches(_groupToUndo(), events);
}

bool JournalModel::redoes(std::span<const JournalEvent> events) const
{
    return _matches(_groupToRedo(), events);
}

bool JournalModel::_matches(Range range, std::span<const JournalEvent> events) const
{
    if (events.empty() || range.second - range.first != events.size())
        return false;
    for (size_t i = 0; i < events.size(); ++i) {
        if (m_entries[range.first + i].serial != events[i].serial)
            return false;
    }
    return true;
}

std::optional<size_t> JournalModel::cut(int64_t bytes) const
{
    if (m_mixed || m_records.empty())
        return {};
    for (size_t record = 1; record < m_records.size(); ++record) {
        if (m_records.back().end - m_records[record].begin <= bytes && isCut(record))
            return record;
    }
    return m_records.back().head.has(EndsStep) ? std::optional(m_records.size()) : std::nullopt;
}

bool JournalModel::isCut(size_t record) const
{
    if (m_mixed || record == 0 || !m_records[record - 1].head.has(EndsStep))
        return false;
    return std::all_of(m_records.begin() + static_cast<std::ptrdiff_t>(record), m_records.end(),
                       [record](const Record &later) {
                           const bool steps = later.head.type == RecordType::Undo ||
                                              later.head.type == RecordType::Redo;
                           return !steps || later.firstNeeded >= record;
                       });
}

void JournalModel::dropBefore(size_t first, int64_t shift)
{
    m_records.erase(m_records.begin(), m_records.begin() + static_cast<std::ptrdiff_t>(first));
    for (Record &record : m_records) {
        record.begin += shift;
        record.end += shift;
        record.firstNeeded -= std::min(first, record.firstNeeded);
    }
    const auto kept = std::ranges::find_if(
        m_entries, [first](const Entry &entry) { return entry.record >= first; });
    const auto gone = static_cast<size_t>(kept - m_entries.begin());
    m_entries.erase(m_entries.begin(), kept);
    m_cursor -= std::min(gone, m_cursor);
    for (Entry &entry : m_entries)
        entry.record -= first;
}

void JournalModel::takeSerials(const SculptUndo &history)
{
    const SculptUndo::Events events = history.all();
    // The history may have dropped its oldest events.
    const size_t count = std::min(events.size(), m_entries.size());
    for (size_t i = 1; i <= count; ++i)
        m_entries[m_entries.size() - i].serial = events[events.size() - i]->serial;
}

} // namespace marlowen
