#include "relief/grid/relieflayers.h"

#include <cmath>
#include <utility>

namespace marlowen {

ReliefLayers::ReliefLayers(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_heights(cells())
    , m_selection(cells())
    , m_mask(cells())
    , m_work(cells())
    , m_snapshot(cells())
    , m_reference(cells())
{
}

double ReliefLayers::diagonal() const
{
    const double w = m_width;
    const double h = m_height;
    return std::sqrt(w * w + h * h);
}

QPoint ReliefLayers::cellOf(QPointF point) const
{
    const double column = m_width * 0.5 + point.x();
    const double row = m_height * 0.5 + point.y();
    constexpr double limit = 1e9;
    // Written so that NaN fails as well.
    if (!(std::abs(column) < limit && std::abs(row) < limit))
        return {-1, -1};
    return {static_cast<int>(column), static_cast<int>(row)};
}

ReliefLayers::Grid ReliefLayers::exchangeGrid(Grid grid)
{
    Grid old{m_width,
             m_height,
             std::exchange(m_heights, std::move(grid.heights)),
             std::exchange(m_selection, std::move(grid.selection)),
             std::exchange(m_mask, std::move(grid.mask)),
             std::exchange(m_reference, std::move(grid.reference))};
    m_width = grid.width;
    m_height = grid.height;
    m_work = GridLayer(cells());
    m_snapshot = GridLayer(cells());
    return old;
}

} // namespace marlowen
