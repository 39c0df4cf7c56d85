#include "base/workmeter.h"

#include "base/rowsharing.h"

#include <algorithm>

namespace marlowen {
namespace {

/// Cells of a band: small enough for the cache and for a prompt "Cancel".
constexpr qsizetype bandCells = 65536;
/// Less work than this is done by the calling thread alone.
constexpr qsizetype sharedCells = 4 * bandCells;
constexpr double cellsBetweenLooks = 200000.0;

} // namespace

WorkMeter::WorkMeter(Progress &progress, double cells)
    : m_progress(progress)
    , m_total(cells)
{
}

bool WorkMeter::rows(int count, qsizetype cellsPerRow, const std::function<void(int, int)> &work)
{
    const qsizetype cells = cellsPerRow * count;
    const qsizetype band = std::max<qsizetype>(1, bandCells / std::max<qsizetype>(1, cellsPerRow));
    const RowBands bands{count,
                         static_cast<int>(std::clamp<qsizetype>(band, 1, std::max(1, count))),
                         cells < sharedCells};
    if (!m_cancelled) {
        shareRows(bands, work, [&](int done) {
            return _report(static_cast<double>(done) * static_cast<double>(cellsPerRow));
        });
    }
    m_spent += static_cast<double>(cells);
    return _report(0.0); // the others may have left this thread without a band
}

/// False once the user cancelled.
bool WorkMeter::_report(double cellsNow)
{
    const double spent = m_spent + cellsNow;
    if (!m_cancelled && spent >= m_nextLook) {
        m_nextLook = spent + cellsBetweenLooks;
        m_progress.advance(std::min(1.0, spent / m_total));
        m_cancelled = m_progress.cancelled();
    }
    return !m_cancelled;
}

} // namespace marlowen
