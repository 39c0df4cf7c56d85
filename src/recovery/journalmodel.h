#pragma once

#include "recovery/journalrecord.h"
#include "relief/history/sculptundo.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace marlowen {

struct JournalEvent;

/// What the records of a journal after its base are to each other: the history that they make when
/// they are done again, and what depends on what.
class JournalModel
{
public:
    struct Record
    {
        RecordHead head;
        int64_t begin = 0;
        int64_t end = 0;
        bool inForce = true;    ///< false while the event is taken back
        size_t firstNeeded = 0; ///< by an Undo or Redo: the earliest record of its group
    };

    /// Before the first record.
    void clear();
    /// A record was written. `serial` is that of its event in the workbench's history.
    void add(Record record, uint64_t serial = 0);
    /// Whether the history of the journal takes exactly these events next.
    bool undoes(std::span<const JournalEvent> events) const;
    bool redoes(std::span<const JournalEvent> events) const;

    const std::vector<Record> &records() const { return m_records; }
    /// The first record to keep when those before it become part of the base, so that at most
    /// `bytes` follow the base; the number of records when all must go. Nothing when the records
    /// cannot be taken apart.
    std::optional<size_t> cut(int64_t bytes) const;
    bool isCut(size_t record) const;
    /// The records before `first` are gone and the others moved by `shift` bytes.
    void dropBefore(size_t first, int64_t shift);
    /// The workbench's history was made from this journal: takes its serials.
    void takeSerials(const SculptUndo &history);

private:
    struct Entry
    {
        uint64_t serial;
        size_t record;
    };
    using Range = std::pair<size_t, size_t>; ///< of entries: first, end
    Range _groupToUndo() const;
    Range _groupToRedo() const;
    bool _matches(Range range, std::span<const JournalEvent> events) const;
    size_t _force(Range range, bool inForce);

    std::vector<Record> m_records;
    std::vector<Entry> m_entries; ///< of the history
    size_t m_cursor = 0;
    bool m_mixed = false; ///< an import was computed over events
};

} // namespace marlowen
