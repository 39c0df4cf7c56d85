#pragma once

#include "recovery/foundwork.h"
#include "recovery/journalwriter.h"
#include "workbench/step.h"

#include <QObject>
#include <QScopedValueRollback>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

namespace marlowen {

class Workbench;

/// Keeps the unsaved work of one workbench in a journal, so that it survives the end of the process
/// at any moment. Costs the one who works
/// next to nothing: a step hands its patches to a thread that writes them; only the beginning (a
/// relief opened or saved) copies the relief.
///
/// When nothing can be written (no room, a folder that is read-only) it is off, says so once
/// through stateChanged(), and tries again from time to time.
class RecoveryJournal : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        QString root = recoveryRoot();
        JournalTiming timing = {};
        std::chrono::milliseconds retry{10000}; ///< between two attempts while it is off
        /// How long a step may wait for the step before it to be written. A hand is always slower
        /// than the disk; a script that is not can be made to lose no more than its last step.
        std::chrono::milliseconds longestWait{0};
    };
    /// The workbench outlives the journal.
    explicit RecoveryJournal(Workbench &bench);
    RecoveryJournal(Workbench &bench, Options options);
    ~RecoveryJournal() override;

    /// Gives recovered work to the workbench and continues its journal. The caller has asked
    /// about unsaved work.
    void takeOver(RecoveredWork work);
    /// Whether steps are being kept; true also while there is no relief.
    bool isOn() const { return !m_off; }
    /// Waits until everything up to now is on the disk; false when it is not.
    bool waitUntilSafe(std::chrono::milliseconds longest);
    /// Ends the journal for good: deletes it when the work is not wanted any more.
    void end(bool keep);

signals:
    /// Off with the reason, or on again.
    void stateChanged(bool on, const QString &reason);

private:
    void _step(const Step &step);
    void _writeEvents(JournalJob::Kind kind, Step::Events events);
    void _writeImport();
    void _begin(bool fresh);
    bool _prepareWriter();
    void _startWriter(std::unique_ptr<JournalKeeper> keeper);
    void _add(JournalJob job);
    void _hear(JournalWriter::News news, const QString &reason);
    void _setOff(const QString &reason);
    void _retry();
    void _selectionEdited();
    bool _readSelection();
    void _readSelectionSlice();
    void _noteImport();

    Workbench &m_bench;
    const Options m_options;
    std::optional<RecoveryFolder> m_folder;
    std::unique_ptr<JournalWriter> m_writer;
    bool m_off = false;
    bool m_ended = false;
    bool m_baseNeeded = false; ///< the writer waits for the whole relief
    bool m_following = true;   ///< false while recovered work is handed over
    QTimer m_retry;
    QTimer m_post; ///< while the writer did not take a job

    QTimer m_reading; ///< of the selection
    std::vector<EqualRun> m_runs;
    qsizetype m_read = 0; ///< cells

    int m_recomputes = 0; ///< of the import when it was last written
    int m_basReliefs = 0; ///< the same
};

} // namespace marlowen
