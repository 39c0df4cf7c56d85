#include "base/rowsharing.h"

#include <QRunnable>
#include <QSemaphore>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <exception>

namespace marlowen {
namespace {

/// One call of shareRows(), shared by the threads that work on it.
struct Run
{
    const RowBands &bands;
    const std::function<void(int, int)> &work;
    std::atomic<int> next = 0;
    std::atomic<int> done = 0;
    std::atomic<bool> stopped = false;
    std::mutex mutex;
    std::exception_ptr failure;
};

/// Works on the next band; false when there is none.
bool doBand(Run &run)
{
    if (run.stopped)
        return false;
    const int first = run.next.fetch_add(run.bands.bandRows);
    if (first >= run.bands.rows)
        return false;
    const int end = std::min(run.bands.rows, first + run.bands.bandRows);
    try {
        run.work(first, end);
    } catch (...) {
        const std::lock_guard lock(run.mutex);
        run.failure = std::current_exception();
        run.stopped = true;
    }
    run.done += end - first;
    return true;
}

class Helper : public QRunnable
{
public:
    explicit Helper(Run &run)
        : m_run(run)
    {
        setAutoDelete(false);
    }
    void run() override
    {
        while (doBand(m_run)) {
        }
        m_finished.release();
    }
    void wait() { m_finished.acquire(); }

private:
    Run &m_run;
    QSemaphore m_finished;
};

int helpersFor(const RowBands &bands)
{
    const int count = (bands.rows + bands.bandRows - 1) / bands.bandRows;
    return bands.alone ? 0 : std::max(0, std::min(QThread::idealThreadCount(), count) - 1);
}

} // namespace

bool shareRows(const RowBands &bands, const std::function<void(int, int)> &work,
               const std::function<bool(int)> &goOn)
{
    Run run{bands, work, {}, {}, {}, {}, {}};
    QThreadPool &pool = *QThreadPool::globalInstance();
    std::vector<std::unique_ptr<Helper>> helpers;
    for (int count = helpersFor(bands); count > 0; --count) {
        helpers.push_back(std::make_unique<Helper>(run));
        pool.start(helpers.back().get());
    }
    while (doBand(run)) {
        if (goOn && !goOn(run.done))
            run.stopped = true;
    }
    for (const std::unique_ptr<Helper> &helper : helpers) {
        if (!pool.tryTake(helper.get())) // it has begun
            helper->wait();
    }
    if (run.failure)
        std::rethrow_exception(run.failure);
    return !run.stopped;
}

} // namespace marlowen
