#include "import/workmeter.h"

#include <QSemaphore>
#include <QThread>

#include <algorithm>

namespace marlowen {
namespace {

/// Cells of a band: small enough for the cache and for a prompt "Cancel".
constexpr qsizetype bandCells = 65536;
/// Less work than this is done by the calling thread alone.
constexpr qsizetype sharedCells = 4 * bandCells;
constexpr double cellsBetweenLooks = 200000.0;

} // namespace

/// One call of rows(), shared by the threads that work on it.
struct WorkMeter::Run
{
    int count;
    int bandRows;
    qsizetype cellsPerRow;
    const std::function<void(int, int)> &work;
    std::atomic<int> next = 0;
    std::atomic<qsizetype> done = 0;
};

WorkMeter::WorkMeter(Progress &progress, double cells)
    : m_progress(progress)
    , m_total(cells)
{
    m_pool.setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
}

bool WorkMeter::rows(int count, qsizetype cellsPerRow, const std::function<void(int, int)> &work)
{
    const qsizetype cells = cellsPerRow * count;
    const qsizetype band = std::max<qsizetype>(1, bandCells / std::max<qsizetype>(1, cellsPerRow));
    Run run{count, static_cast<int>(std::min<qsizetype>(band, count)), cellsPerRow, work};
    const int helpers =
        cells >= sharedCells && QThread::idealThreadCount() > 1 ? m_pool.maxThreadCount() : 0;
    QSemaphore finished;
    for (int i = 0; i < helpers; ++i) {
        m_pool.start([this, &run, &finished] {
            _drain(run, false);
            finished.release();
        });
    }
    _drain(run, true);
    finished.acquire(helpers);
    m_spent += static_cast<double>(cells);
    _report(0); // the helpers may have left this thread without a band
    return !m_cancelled;
}

void WorkMeter::_drain(Run &run, bool reports)
{
    while (!m_cancelled) {
        const int first = run.next.fetch_add(run.bandRows);
        if (first >= run.count)
            return;
        const int end = std::min(run.count, first + run.bandRows);
        run.work(first, end);
        run.done += (end - first) * run.cellsPerRow;
        if (reports)
            _report(run.done);
    }
}

void WorkMeter::_report(qsizetype doneNow)
{
    const double spent = m_spent + static_cast<double>(doneNow);
    if (spent < m_nextLook)
        return;
    m_nextLook = spent + cellsBetweenLooks;
    m_progress.advance(std::min(1.0, spent / m_total));
    if (m_progress.cancelled())
        m_cancelled = true;
}

} // namespace marlowen
