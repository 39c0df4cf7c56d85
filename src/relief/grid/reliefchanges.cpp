#include "relief/grid/reliefchanges.h"

#include "relief/grid/heightscan.h"
#include "relief/grid/relief.h"

#include <algorithm>
#include <utility>

namespace marlowen {

namespace {

constexpr int mostRectangles = 256;

}

int ReliefChanges::addView()
{
    m_readers.emplace_back();
    return static_cast<int>(m_readers.size()) - 1;
}

void ReliefChanges::removeView(int view)
{
    m_readers[static_cast<size_t>(view)].used = false;
}

void ReliefChanges::setRelief(Relief *relief)
{
    m_relief = relief;
    m_rangeStale = m_extentStale = true;
    _spread(true, {});
}

void ReliefChanges::collect()
{
    if (!m_relief)
        return;
    const QRegion cells = std::exchange(m_relief->frameRegion, {});
    const bool heights = std::exchange(m_relief->heightsChanged, false);
    const bool appearance = std::exchange(m_relief->appearanceChanged, false);
    if (heights || !cells.isEmpty())
        m_rangeStale = true;
    if (heights && cells.isEmpty())
        m_extentStale = true;
    else
        _growExtent(cells);
    _spread(appearance || (heights && cells.isEmpty()), cells);
}

void ReliefChanges::collectStroke()
{
    if (m_relief && m_relief->frameRegion.isEmpty())
        m_relief->heightsChanged = false;
    else if (m_relief)
        m_relief->appearanceChanged = false;
    collect();
}

PendingCells ReliefChanges::take(int view)
{
    collect();
    return std::exchange(m_readers[static_cast<size_t>(view)].pending, PendingCells{false, {}});
}

bool ReliefChanges::pending(int view) const
{
    const PendingCells &pending = m_readers[static_cast<size_t>(view)].pending;
    return pending.full || !pending.cells.isEmpty();
}

HeightRange ReliefChanges::heightRange()
{
    if (!m_relief)
        return {};
    if (m_rangeStale) {
        const GridLayer &heights = m_relief->heights();
        m_range = scanHeights({heights.constData(), static_cast<size_t>(heights.size())});
        m_rangeStale = false;
    }
    m_extent = m_range;
    m_extentStale = false;
    return m_range;
}

HeightRange ReliefChanges::extent()
{
    return m_extentStale ? heightRange() : m_extent;
}

void ReliefChanges::_growExtent(const QRegion &cells)
{
    if (m_extentStale)
        return;
    for (const QRect &rect : cells & m_relief->rect()) {
        for (int row = rect.top(); row <= rect.bottom(); ++row) {
            const float *first =
                m_relief->heights().constData() + m_relief->index(rect.left(), row);
            const HeightRange some = scanHeights({first, static_cast<size_t>(rect.width())});
            m_extent.minimum = std::min(m_extent.minimum, some.minimum);
            m_extent.maximum = std::max(m_extent.maximum, some.maximum);
        }
    }
}

void ReliefChanges::notify()
{
    collect();
    emit changed();
}

void ReliefChanges::_spread(bool full, const QRegion &cells)
{
    for (Reader &reader : m_readers) {
        if (!reader.used || reader.pending.full)
            continue;
        if (full)
            reader.pending = {true, {}};
        else
            reader.pending.cells += cells;
        // A view that is hidden must not gather a mosaic.
        if (reader.pending.cells.rectCount() > mostRectangles)
            reader.pending.cells = reader.pending.cells.boundingRect();
    }
}

} // namespace marlowen
