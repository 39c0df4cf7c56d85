#pragma once

#include "recovery/basestate.h"
#include "recovery/journalreader.h"
#include "relief/history/sculptundo.h"
#include "relief/history/undoevents.h"

#include <memory>
#include <vector>

namespace marlowen {

class ImportSource;

/// Does the steps of a journal again, record by record. Not tied to a thread.
class Replay
{
public:
    /// Without a history the steps only change the relief.
    explicit Replay(bool keepHistory)
        : m_keepHistory(keepHistory)
    {
    }

    /// Applies the record at the reader's position. False when it is damaged or does not fit the
    /// state; the records before it stay applied. Throws std::bad_alloc.
    bool take(JournalReader &reader);
    /// Runs the computations that were deferred. After the last record; harmless before.
    void finish();

    /// Where the last whole step ended in the file.
    int64_t goodEnd() const { return m_goodEnd; }
    /// Whole steps after the base.
    int steps() const { return m_steps; }
    const BaseState &base() const { return m_base; }

    std::unique_ptr<Relief> relief; ///< null before the base
    SculptUndo history;             ///< its events refer to the relief

private:
    struct Event
    {
        RecordHead head;
        Patch patch;
        SizeMeta size;
        double zScale = 1.0;
        QString name;
    };

    bool _takeBase(JournalReader &reader);
    bool _takeEvent(JournalReader &reader);
    bool _takePatch(JournalReader &reader, Event &event) const;
    bool _takeSelection(JournalReader &reader);
    bool _takeImport(JournalReader &reader);
    bool _takeOther(JournalReader &reader);
    void _stepEnded(const JournalReader &reader);
    bool _apply(Event &event);
    void _applyPatch(Event &event);
    ImportSource *_source() const;

    bool m_keepHistory;
    BaseState m_base; ///< without its layers
    int64_t m_goodEnd = 0;
    int m_steps = 0;
    std::vector<Event> m_events; ///< of the step being read
    bool m_recompute = false;    ///< the heights do not follow the import settings yet
};

} // namespace marlowen
