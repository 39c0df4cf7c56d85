#include "recovery/recoveryjournal.h"

#include "import/importsource.h"
#include "workbench/workbench.h"

#include <bit>
#include <new>
#include <utility>

namespace marlowen {

namespace {

/// Cells of a selection that are read in one turn of the event loop: well under a millisecond.
constexpr qsizetype cellsAtOnce = 1 << 18;
constexpr std::chrono::milliseconds strokePause{50};
/// A disk that falls so far behind is treated as failed.
constexpr int64_t mostWaitingBytes = int64_t{1} << 30;

const ImportSource *openSource(Workbench &bench)
{
    return bench.session().active() ? dynamic_cast<const ImportSource *>(bench.relief()->source())
                                    : nullptr;
}

} // namespace

RecoveryJournal::RecoveryJournal(Workbench &bench)
    : RecoveryJournal(bench, Options())
{
}

RecoveryJournal::RecoveryJournal(Workbench &bench, Options options)
    : m_bench(bench)
    , m_options(std::move(options))
{
    m_retry.setInterval(m_options.retry);
    m_reading.setSingleShot(true);
    connect(&m_post, &QTimer::timeout, this, [this] {
        if (!m_writer || m_writer->post())
            m_post.stop();
    });
    connect(&m_retry, &QTimer::timeout, this, &RecoveryJournal::_retry);
    connect(&m_reading, &QTimer::timeout, this, &RecoveryJournal::_readSelectionSlice);
    connect(&m_bench, &Workbench::stepDone, this, &RecoveryJournal::_step);
    connect(&m_bench, &Workbench::selectionEdited, this, &RecoveryJournal::_selectionEdited);
}

RecoveryJournal::~RecoveryJournal()
{
    end(true);
}

void RecoveryJournal::end(bool keep)
{
    m_ended = true;
    m_retry.stop();
    m_reading.stop();
    m_post.stop();
    m_writer.reset();
    if (m_folder && !keep)
        m_folder->discard();
    m_folder.reset();
}

bool RecoveryJournal::waitUntilSafe(std::chrono::milliseconds longest)
{
    if (m_ended || m_off || !m_writer)
        return false;
    while (m_reading.isActive() && !m_bench.engine().stroking())
        _readSelectionSlice();
    return m_writer->waitUntilSafe(longest);
}

void RecoveryJournal::_step(const Step &step)
{
    if (m_ended || !m_following)
        return;
    if (m_baseNeeded && !m_off)
        return _begin(step.kind == Step::Opened || step.kind == Step::Saved);
    switch (step.kind) {
    case Step::Opened:
    case Step::Saved:
        return _begin(true);
    case Step::Stroke:
    case Step::Edit:
        return _writeEvents(JournalJob::Push, step.events);
    case Step::Undo:
        return _writeEvents(JournalJob::Undo, step.events);
    case Step::Redo:
        return _writeEvents(JournalJob::Redo, step.events);
    case Step::Import:
        return _writeImport();
    case Step::Accept: {
        JournalJob job;
        job.kind = JournalJob::Accept;
        return _add(std::move(job));
    }
    }
}

void RecoveryJournal::_writeEvents(JournalJob::Kind kind, Step::Events events)
{
    JournalJob job;
    job.kind = kind;
    bool resized = false;
    for (const std::unique_ptr<SculptUndoEvent> &event : events) {
        std::optional<JournalEvent> kept = journalEvent(*event);
        if (!kept)
            return _begin(false);
        resized = resized || kept->type == RecordType::Resize;
        job.events.push_back(std::move(*kept));
    }
    // A change without events can only be recorded as the whole relief.
    if (job.events.empty())
        return _begin(false);
    _add(std::move(job));
    // The selection came along, perhaps in the middle of being read.
    if (resized)
        _selectionEdited();
}

void RecoveryJournal::_writeImport()
{
    const ImportSource *source = openSource(m_bench);
    if (!source)
        return _begin(false);
    JournalJob job;
    job.kind = JournalJob::Import;
    const int recomputes = m_bench.session().recomputes();
    const ImportMeta meta{source->dirty, std::exchange(m_recomputes, recomputes) != recomputes,
                          source->showsBasRelief};
    job.meta = packed(meta) + packedSettings(source->settings());
    if (std::exchange(m_basReliefs, source->basReliefs) != source->basReliefs)
        job.basRelief = source->lastBasRelief;
    _add(std::move(job));
}

void RecoveryJournal::_noteImport()
{
    const ImportSource *source = openSource(m_bench);
    m_recomputes = m_bench.session().recomputes();
    m_basReliefs = source ? source->basReliefs : 0;
}

void RecoveryJournal::_add(JournalJob job)
{
    if (m_off || !m_writer)
        return;
    if (m_options.longestWait > m_options.longestWait.zero())
        m_writer->waitUntilWritten(m_options.longestWait);
    if (m_writer->waitingBytes() > mostWaitingBytes)
        return _setOff(tr("the disk is too slow"));
    if (!m_writer->add(std::move(job)))
        m_post.start(1);
}

/// Begins the journal anew with the present relief.
void RecoveryJournal::_begin(bool fresh)
{
    m_reading.stop();
    m_baseNeeded = false;
    const Relief *relief = m_bench.relief();
    if (!relief || !_prepareWriter())
        return;
    JournalJob job;
    job.fresh = fresh;
    try {
        job.base = std::make_shared<BaseState>(baseOf(*relief));
    } catch (const std::bad_alloc &) {
        return _setOff(tr("there is not enough memory"));
    }
    job.base->file = m_bench.file();
    job.base->modified = m_bench.isModified();
    _noteImport();
    if (!m_writer->add(std::move(job)))
        m_post.start(1);
}

bool RecoveryJournal::_prepareWriter()
{
    if (m_writer)
        return true;
    if (!m_folder)
        m_folder = RecoveryFolder::make(m_options.root);
    if (!m_folder) {
        _setOff(tr("its folder cannot be written"));
        return false;
    }
    _startWriter(
        std::make_unique<JournalKeeper>(m_folder->journal(), m_options.timing.compactGrids));
    return true;
}

void RecoveryJournal::_startWriter(std::unique_ptr<JournalKeeper> keeper)
{
    m_writer = std::make_unique<JournalWriter>(
        std::move(keeper), m_options.timing,
        [this](JournalWriter::News news, const QString &reason) {
            QMetaObject::invokeMethod(
                this, [this, news, reason] { _hear(news, reason); }, Qt::QueuedConnection);
        });
}

void RecoveryJournal::_hear(JournalWriter::News news, const QString &reason)
{
    if (m_ended)
        return;
    if (news == JournalWriter::News::Failed)
        return _setOff(reason);
    if (news == JournalWriter::News::BaseNeeded) {
        // A stroke may have begun meanwhile; its end makes up for it.
        m_baseNeeded = true;
        m_retry.start();
        return _retry();
    }
    m_retry.stop();
    if (std::exchange(m_off, false))
        emit stateChanged(true, {});
}

void RecoveryJournal::_setOff(const QString &reason)
{
    m_reading.stop();
    m_retry.start();
    if (!std::exchange(m_off, true))
        emit stateChanged(false, reason);
}

void RecoveryJournal::_retry()
{
    // A preview is not recorded.
    if (m_bench.engine().stroking() || m_bench.preview().active())
        return;
    // An older journal stays until the new one is whole.
    _begin(false);
}

void RecoveryJournal::takeOver(RecoveredWork work)
{
    m_reading.stop();
    m_writer.reset();
    if (m_folder)
        m_folder->discard();
    m_folder = std::move(work.folder);
    {
        const QScopedValueRollback quiet(m_following, false);
        m_bench.take(std::move(work.relief), work.file, &work.history);
    }
    auto keeper =
        std::make_unique<JournalKeeper>(m_folder->journal(), m_options.timing.compactGrids);
    const bool resumed = keeper->resume(work.journalEnd, m_bench.history());
    _startWriter(std::move(keeper));
    m_off = false;
    m_baseNeeded = false;
    if (resumed)
        _noteImport();
    else
        _begin(false);
}

void RecoveryJournal::_selectionEdited()
{
    if (m_off || m_ended || !m_writer)
        return;
    m_runs.clear();
    m_read = 0;
    m_reading.start(0);
}

void RecoveryJournal::_readSelectionSlice()
{
    // A stroke is not held up.
    if (m_bench.engine().stroking())
        return m_reading.start(strokePause);
    if (!_readSelection())
        return m_reading.start(0);
    m_reading.stop();
    JournalJob job;
    job.kind = JournalJob::Selection;
    job.meta = packed(static_cast<uint8_t>(m_bench.relief()->selectionActive));
    job.runs = std::exchange(m_runs, {});
    _add(std::move(job));
}

/// The next cells; true when all were read.
bool RecoveryJournal::_readSelection()
{
    const GridLayer &selection = m_bench.relief()->selectionLayer();
    if (!selection.written())
        return true;
    const qsizetype end = std::min(selection.size(), m_read + cellsAtOnce);
    const float *values = selection.constData();
    while (m_read < end) {
        const auto bits = std::bit_cast<uint32_t>(values[m_read]);
        const qsizetype first = m_read;
        while (m_read < end && std::bit_cast<uint32_t>(values[m_read]) == bits)
            ++m_read;
        const auto count = static_cast<uint32_t>(m_read - first);
        if (!m_runs.empty() && std::bit_cast<uint32_t>(m_runs.back().value) == bits)
            m_runs.back().count += count;
        else
            m_runs.push_back({count, values[first]});
    }
    return m_read == selection.size();
}

} // namespace marlowen
