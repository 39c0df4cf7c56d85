#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace marlowen {

/// Rows of a grid, and how they are handed out.
struct RowBands
{
    int rows;
    int bandRows;       ///< rows that a thread takes at a time, at least 1
    bool alone = false; ///< by the calling thread alone: waking others takes some 50 microseconds
};

/// Calls work(first, end) for bands that cover the rows 0..rows, several at a time on all cores,
/// and returns when all are done: what it does to a row must not depend on rows of other bands. It
/// does not wait for a thread that is busy elsewhere, so that it may be called from any thread.
///
/// `goOn` may be empty. It is called on the calling thread after each band done there, with the
/// number of rows done by all; once it says false no further band begins, and so does the result.
/// An exception of the work ends it in the same way and leaves through the caller.
bool shareRows(const RowBands &bands, const std::function<void(int, int)> &work,
               const std::function<bool(int)> &goOn = {});

/// Objects that the threads of shareRows() borrow, a band at a time: as many are made as are in use
/// at once, and they are kept.
template <typename T>
class Borrowed
{
public:
    std::unique_ptr<T> take()
    {
        const std::lock_guard lock(m_mutex);
        if (m_free.empty())
            return std::make_unique<T>();
        std::unique_ptr<T> object = std::move(m_free.back());
        m_free.pop_back();
        return object;
    }
    void giveBack(std::unique_ptr<T> object)
    {
        const std::lock_guard lock(m_mutex);
        m_free.push_back(std::move(object));
    }

private:
    std::mutex m_mutex;
    std::vector<std::unique_ptr<T>> m_free;
};

} // namespace marlowen
