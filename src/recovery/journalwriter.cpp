#include "recovery/journalwriter.h"

#include <algorithm>

#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace marlowen {

namespace {

/// On a busy machine a thread that is woken may take the processor from the thread that woke it,
/// here the one of the window. This one waits instead.
void giveWayToOthers()
{
    const sched_param none{};
    sched_setscheduler(0, SCHED_BATCH, &none);
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 5);
}

} // namespace

JournalWriter::JournalWriter(std::unique_ptr<JournalKeeper> keeper, JournalTiming timing, Tell tell)
    : m_timing(timing)
    , m_tell(std::move(tell))
    , m_keeper(std::move(keeper))
    , m_thread([this] { _run(); })
{
}

JournalWriter::~JournalWriter()
{
    {
        const std::scoped_lock lock(m_mutex);
        _takeOver();
        m_stop = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

bool JournalWriter::add(JournalJob job)
{
    m_waitingBytes += job.bytes();
    m_outbox.push_back(std::move(job));
    return post();
}

bool JournalWriter::post()
{
    {
        const std::unique_lock lock(m_mutex, std::try_to_lock);
        if (!lock)
            return false;
        _takeOver();
    }
    m_wake.notify_all();
    return true;
}

/// With the mutex held.
void JournalWriter::_takeOver()
{
    for (JournalJob &job : m_outbox) {
        if (job.kind == JournalJob::Base) {
            for (const JournalJob &gone : m_jobs)
                m_waitingBytes -= gone.bytes();
            m_jobs.clear();
        }
        m_jobs.push_back(std::move(job));
    }
    m_outbox.clear();
}

bool JournalWriter::waitUntilWritten(std::chrono::milliseconds longest)
{
    std::unique_lock lock(m_mutex);
    _takeOver();
    m_wake.notify_all();
    return m_done.wait_for(lock, longest, [this] { return m_jobs.empty() && !m_busy; });
}

bool JournalWriter::waitUntilSafe(std::chrono::milliseconds longest)
{
    std::unique_lock lock(m_mutex);
    _takeOver();
    m_hurry = true;
    m_wake.notify_all();
    const bool safe = m_done.wait_for(
        lock, longest, [this] { return m_jobs.empty() && !m_busy && (m_synced || m_dead); });
    m_hurry = false;
    return safe && !m_dead;
}

void JournalWriter::_run()
{
    giveWayToOthers();
    std::unique_lock lock(m_mutex);
    while (true) {
        std::optional<JournalJob> job = _nextJob(lock);
        if (!job && m_stop)
            return;
        m_busy = job.has_value();
        const bool hurry = m_hurry && !job;
        lock.unlock();
        const Clock::time_point now = Clock::now();
        const std::optional<Clock::time_point> due = _syncTime();
        if (job)
            _write(*job);
        else if (due && (hurry || now >= *due))
            _sync();
        else if (_compactsNow(now))
            m_keeper->compactSlice();
        // Patches with no other owner are freed here, while no other thread waits.
        job.reset();
        lock.lock();
        m_busy = false;
        m_done.notify_all();
    }
}

/// The job that waited longest; nothing when there is something else to do first.
std::optional<JournalJob> JournalWriter::_nextJob(std::unique_lock<std::mutex> &lock)
{
    const auto due = _syncTime();
    const bool compacts = m_keeper->wantsCompaction();
    const auto something = [&] { return !m_jobs.empty() || m_stop || (m_hurry && !m_synced); };
    if (compacts && !something())
        m_wake.wait_until(lock, std::max(Clock::now(), m_lastWrite + m_timing.pause), something);
    else if (due)
        m_wake.wait_until(lock, *due, something);
    else
        m_wake.wait(lock, something);
    const bool overdue = due && m_unsyncedSince + m_timing.sync <= Clock::now();
    if (m_jobs.empty() || (overdue && !m_stop))
        return {};
    JournalJob job = std::move(m_jobs.front());
    m_jobs.pop_front();
    m_waitingBytes -= job.bytes();
    return job;
}

bool JournalWriter::_compactsNow(Clock::time_point now) const
{
    return m_keeper->wantsCompaction() && now >= m_lastWrite + m_timing.pause;
}

std::optional<JournalWriter::Clock::time_point> JournalWriter::_syncTime() const
{
    if (m_synced)
        return {};
    return std::min(m_lastWrite + m_timing.rest, m_unsyncedSince + m_timing.sync);
}

void JournalWriter::_write(const JournalJob &job)
{
    if (m_dead && job.kind != JournalJob::Base)
        return;
    JournalKeeper::Written written = JournalKeeper::Written::No;
    try {
        written = m_keeper->write(job);
    } catch (const std::bad_alloc &) {
        // As a full disk.
    }
    m_lastWrite = Clock::now();
    if (m_synced)
        m_unsyncedSince = m_lastWrite;
    {
        const std::scoped_lock lock(m_mutex);
        m_synced = false;
        m_dead = written != JournalKeeper::Written::Yes;
    }
    if (written == JournalKeeper::Written::No)
        m_tell(News::Failed, m_keeper->error());
    else if (written == JournalKeeper::Written::BaseNeeded)
        m_tell(News::BaseNeeded, {});
    else if (job.kind == JournalJob::Base)
        m_tell(News::BaseWritten, {});
}

void JournalWriter::_sync()
{
    const bool synced = m_keeper->sync();
    const std::scoped_lock lock(m_mutex);
    m_synced = true;
    if (synced || m_dead)
        return;
    m_dead = true;
    m_tell(News::Failed, m_keeper->error());
}

} // namespace marlowen
