#pragma once

#include "recovery/journalfile.h"
#include "recovery/journaljob.h"
#include "recovery/journalmodel.h"

#include <memory>

namespace marlowen {

class Compaction;

/// One journal on the disk: writes jobs down and keeps it small. Not tied to a thread; every call
/// blocks for as long as the disk takes.
class JournalKeeper
{
public:
    /// `path` is the journal's file. A journal whose steps take more than `compactGrids` times the
    /// heights of its base wants to be compacted.
    JournalKeeper(QString path, double compactGrids);
    ~JournalKeeper();

    /// Continues an existing journal, whose good part ends at `end` and made this history.
    bool resume(int64_t end, const SculptUndo &history);

    enum class Written {
        Yes,
        No,        ///< error() says why; the earlier records stay
        BaseNeeded ///< the step leads to a state that only a base can describe
    };
    Written write(const JournalJob &job);
    bool sync();
    QString error() const { return m_file.error().isEmpty() ? m_error : m_file.error(); }

    bool wantsCompaction() const;
    /// Bytes of the steps behind the base.
    int64_t stepBytes() const { return m_file.size() - m_baseEnd; }
    /// Makes the oldest steps part of the base, a slice of it each call, until wantsCompaction() is
    /// false. Between two calls jobs may be written.
    void compactSlice();

private:
    Written _writeBase(const JournalJob &job);
    Written _writeStep(const JournalJob &job);
    Written _writeStates(const JournalJob &job);
    bool _append(const RecordHead &head, const QByteArray &meta, JournalFile::Parts data,
                 uint64_t serial = 0);
    bool _appendEvent(const JournalEvent &event, uint8_t flags);
    void _startCompaction();
    void _finishCompaction();
    bool _swapIn();

    QString m_path;
    double m_compactGrids;
    JournalFile m_file;
    JournalModel m_model;
    QString m_error;
    int64_t m_baseEnd = 0;
    int64_t m_gridBytes = 0; ///< of the base's heights
    int64_t m_compactAbove = 0;
    std::unique_ptr<Compaction> m_compaction;
};

} // namespace marlowen
