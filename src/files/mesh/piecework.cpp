#include "files/mesh/piecework.h"

#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <vector>

namespace marlowen {

namespace {

/// Pieces are taken over by one thread, so that more helpers would wait for it.
constexpr int mostHelpers = 3;

int helperCount()
{
    return std::clamp(QThread::idealThreadCount() - 1, 0, mostHelpers);
}

/// Pieces are numbered from 0; piece k is in slot k % slots.
class Pieces
{
public:
    explicit Pieces(const PieceSteps &steps)
        : m_steps(steps)
        , m_done(pieceSlots())
        , m_errors(pieceSlots())
    {
        m_pool.setMaxThreadCount(std::max(1, helperCount()));
    }

    ~Pieces()
    {
        {
            const std::lock_guard guard(m_mutex);
            m_ended = true;
        }
        m_filledOne.notify_all();
        m_pool.waitForDone();
    }

    void run()
    {
        while (true) {
            if (_firstIsDone())
                _take();
            else if (!m_lastIsFilled && m_filled - m_taken < m_done.size())
                _fill();
            else if (!_workOnOne() && m_taken == m_filled)
                return;
        }
    }

private:
    /// Whether the piece to be taken next is done. Waits for it when there is nothing else to do.
    bool _firstIsDone()
    {
        std::unique_lock lock(m_mutex);
        const auto done = [this] { return m_taken < m_filled && m_done[m_taken % m_done.size()]; };
        const bool full = m_lastIsFilled || m_filled - m_taken == m_done.size();
        if (full && m_begun == m_filled && m_taken < m_filled)
            m_doneOne.wait(lock, done);
        return done();
    }

    void _take()
    {
        const size_t slot = m_taken % m_done.size();
        if (m_errors[slot])
            std::rethrow_exception(m_errors[slot]);
        m_steps.take(slot);
        ++m_taken;
    }

    void _fill()
    {
        const size_t slot = m_filled % m_done.size();
        if (!m_steps.fill(slot)) {
            m_lastIsFilled = true;
            return;
        }
        {
            const std::lock_guard guard(m_mutex);
            m_done[slot] = false;
            ++m_filled;
        }
        // A file of a single piece needs no other thread.
        if (m_filled == 2) {
            for (int i = 0; i < helperCount(); ++i)
                m_pool.start([this] { _help(); });
        }
        m_filledOne.notify_one();
    }

    bool _workOnOne()
    {
        std::unique_lock lock(m_mutex);
        if (m_begun == m_filled)
            return false;
        _workOnNext(lock);
        return true;
    }

    void _help()
    {
        std::unique_lock lock(m_mutex);
        while (true) {
            m_filledOne.wait(lock, [this] { return m_ended || m_begun < m_filled; });
            if (m_ended)
                return;
            _workOnNext(lock);
        }
    }

    void _workOnNext(std::unique_lock<std::mutex> &lock)
    {
        const size_t slot = m_begun++ % m_done.size();
        lock.unlock();
        try {
            m_steps.work(slot);
        } catch (...) {
            m_errors[slot] = std::current_exception();
        }
        lock.lock();
        m_done[slot] = true;
        m_doneOne.notify_one();
    }

    const PieceSteps &m_steps;
    std::mutex m_mutex;
    std::condition_variable m_filledOne;
    std::condition_variable m_doneOne;
    std::vector<char> m_done; ///< of the slots
    std::vector<std::exception_ptr> m_errors;
    size_t m_begun = 0;  ///< pieces that a thread works on or has worked on
    size_t m_filled = 0; ///< pieces; changed by the calling thread alone, under the mutex
    size_t m_taken = 0;  ///< pieces; the calling thread's own
    bool m_lastIsFilled = false;
    bool m_ended = false;
    QThreadPool m_pool;
};

} // namespace

size_t pieceSlots()
{
    // So many that a thread rarely waits for another: each time it is woken up costs some 50 us,
    // and a multiple of that on a busy machine.
    return 2 * static_cast<size_t>(helperCount()) + 6;
}

void workThroughPieces(const PieceSteps &steps)
{
    Pieces(steps).run();
}

} // namespace marlowen
