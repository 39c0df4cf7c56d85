#pragma once

#include "recovery/journaljob.h"
#include "recovery/journalkeeper.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace marlowen {

/// When a journal is flushed and compacted.
struct JournalTiming
{
    std::chrono::milliseconds rest{1500};  ///< without a step, until the journal is synced
    std::chrono::milliseconds sync{10000}; ///< at most so long unsynced while steps go on
    std::chrono::milliseconds pause{500};  ///< without a step, before a compaction continues
    double compactGrids = 3.0;             ///< see JournalKeeper
};

/// Writes a journal on a separate thread, so that editing never waits for the disk.
class JournalWriter
{
public:
    using Clock = std::chrono::steady_clock;
    enum class News {
        BaseWritten,
        Failed,    ///< no step is written until the next base
        BaseNeeded ///< the same, and one is needed now
    };
    /// Called on the writer's thread, with the reason of a failure.
    using Tell = std::function<void(News news, const QString &reason)>;

    /// The keeper must not be used elsewhere any more.
    JournalWriter(std::unique_ptr<JournalKeeper> keeper, JournalTiming timing, Tell tell);
    /// Writes the waiting jobs, then ends the thread.
    ~JournalWriter();

    /// Never waits, not even for the thread: when that is in the way the job stays here and false
    /// is returned; post() tries again. A base takes the place of everything that waits. This and
    /// what follows is for one thread, that of the one who works.
    bool add(JournalJob job);
    bool post();
    /// Waits until nothing waits; false after `longest`.
    bool waitUntilWritten(std::chrono::milliseconds longest);
    /// The same until all of it is on the disk too; false also when something could not be written.
    bool waitUntilSafe(std::chrono::milliseconds longest);
    /// Bytes of the jobs that wait.
    int64_t waitingBytes() const { return m_waitingBytes; }

private:
    void _takeOver();
    void _run();
    std::optional<JournalJob> _nextJob(std::unique_lock<std::mutex> &lock);
    bool _compactsNow(Clock::time_point now) const;
    std::optional<Clock::time_point> _syncTime() const;
    void _write(const JournalJob &job);
    void _sync();

    const JournalTiming m_timing;
    const Tell m_tell;

    std::deque<JournalJob> m_outbox; ///< added, not handed to the thread yet
    std::atomic<int64_t> m_waitingBytes = 0;

    std::mutex m_mutex;
    std::condition_variable m_wake; ///< the thread: there is something to do
    std::condition_variable m_done; ///< those who wait: something was done
    std::deque<JournalJob> m_jobs;
    bool m_busy = false;
    bool m_hurry = false; ///< sync as soon as nothing waits
    bool m_stop = false;
    bool m_synced = true;
    bool m_dead = false; ///< no step is written until the next base

    // Only the thread's:
    std::unique_ptr<JournalKeeper> m_keeper;
    Clock::time_point m_lastWrite{};
    Clock::time_point m_unsyncedSince{};
    std::thread m_thread;
};

} // namespace marlowen
