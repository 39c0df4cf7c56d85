#pragma once

#include "recovery/basestate.h"
#include "recovery/journalrecord.h"
#include "relief/history/undoevents.h"

#include <memory>
#include <optional>
#include <vector>

namespace marlowen {

/// What a journal keeps of one undo event. Patches are shared with the history, not copied.
struct JournalEvent
{
    RecordType type = RecordType::Heights;
    std::shared_ptr<const Patch> before;
    std::shared_ptr<const Patch> after;
    SizeMeta newSize;
    double zBefore = 1.0;
    double zAfter = 1.0;
    QString name;
    uint64_t serial = 0;
    bool groupEnd = false;
};

/// Nothing for a kind of event that journals do not know.
std::optional<JournalEvent> journalEvent(const SculptUndoEvent &event);

/// One thing for a journal to write down.
struct JournalJob
{
    enum Kind { Base, Push, Undo, Redo, Selection, Import, Accept };

    Kind kind = Base;
    bool fresh = false;               ///< Base: what the journal holds is not wanted any more
    std::shared_ptr<BaseState> base;  ///< Base
    std::vector<JournalEvent> events; ///< Push, Undo, Redo; oldest first
    QByteArray meta;                  ///< Selection, Import
    std::vector<EqualRun> runs;       ///< Selection
    std::vector<float> basRelief;     ///< Import

    /// Memory that the job holds, shared or not.
    int64_t bytes() const;
};

} // namespace marlowen
