#pragma once

#include "recovery/journalfile.h"
#include "recovery/journalmodel.h"
#include "recovery/journalreader.h"
#include "recovery/replay.h"

namespace marlowen {

/// Writes a second journal while the first one is still written to: the records before a cut go
/// into its base, the others are copied.
class Compaction
{
public:
    /// `cut` is a cut of the model; `target` is the file to write.
    Compaction(const QString &journal, const QString &target, size_t cut);

    enum class State {
        Working,
        Ready, ///< everything but what follows copied() is in the target, and on the disk
        Failed
    };
    /// One record, or one piece of the rest.
    State slice(const JournalModel &model, const JournalFile &journal);

    size_t cut() const { return m_cut; }
    JournalFile &target() { return m_target; }
    /// End of the copied records in the old journal, and of the base in the new one.
    int64_t copied() const { return m_copied; }
    int64_t baseEnd() const { return m_baseEnd; }

private:
    State _replayOne(const JournalModel &model);
    State _writeBase();
    State _copy(const JournalFile &journal);

    QString m_targetPath;
    size_t m_cut;
    size_t m_at = 0;
    bool m_hasBase = false;
    JournalReader m_reader;
    Replay m_replay{false};
    bool m_readable; ///< after what it is found out with
    int m_steps = 0;
    JournalFile m_target;
    int64_t m_baseEnd = 0;
    int64_t m_copied = 0;
};

} // namespace marlowen
