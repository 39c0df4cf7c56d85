#include "relief/brushes/brushes.h"
#include "relief/dab.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

/// One row of the mean of every cell and its eight neighbours, as they were before the dab. The
/// weights 4, 2, 1 are the product of (1, 2, 1) across and (1, 2, 1) down, and so is their sum at
/// an edge of the relief, where neighbours are missing.
class NeighbourMeans
{
public:
    explicit NeighbourMeans(const Dab &dab)
        : m_relief(dab.relief)
        , m_first(std::max(0, dab.box.left() - 1))
        , m_count(std::min(dab.relief.width() - 1, dab.box.right() + 1) - m_first + 1)
    {
        // One cell beyond the box on both sides, and one beyond the relief's edge.
        const auto length = static_cast<size_t>(dab.box.width()) + 4;
        float *rows = dab.tool.buffers().copy.need(2 * length);
        m_above = rows;
        m_current = rows + length;
        double *sums = dab.tool.buffers().sums.need(2 * length);
        m_down = sums + 1;
        m_means = sums + length + 1;
        if (dab.box.top() > 0)
            _copy(m_current, dab.box.top() - 1);
    }

    /// Means of the row; rows are asked for from the top of the box down, before they are changed.
    CELL_INLINE void advance(int row)
    {
        std::swap(m_above, m_current);
        _copy(m_current, row);
        const bool hasAbove = row > 0;
        const bool hasBelow = row + 1 < m_relief.height();
        const float *above = hasAbove ? m_above : m_current;
        const float *below = hasBelow ? _row(row + 1) : m_current;
        _sumDown(above, below, hasAbove ? 1.0 : 0.0, hasBelow ? 1.0 : 0.0);
        _meanAcross(2.0 + (hasAbove ? 1.0 : 0.0) + (hasBelow ? 1.0 : 0.0));
    }

    const double *at(int column) const { return m_means + (column - m_first); }

private:
    const float *_row(int row) const
    {
        return m_relief.heights().constData() + m_relief.index(m_first, row);
    }
    void _copy(float *to, int row) const
    {
        std::memcpy(to, _row(row), static_cast<size_t>(m_count) * sizeof(float));
    }

    CELL_INLINE void _sumDown(const float *above, const float *below, double over, double under)
    {
        const float *current = m_current;
        double *down = m_down;
        const int count = m_count;
#pragma omp simd
        for (int i = 0; i < count; ++i)
            down[i] = over * above[i] + 2.0 * current[i] + under * below[i];
        down[-1] = 0.0;
        down[count] = 0.0;
    }

    CELL_INLINE void _meanAcross(double weightDown)
    {
        const double *down = m_down;
        double *means = m_means;
        const int count = m_count;
        const double share = 1.0 / (4.0 * weightDown);
#pragma omp simd
        for (int i = 0; i < count; ++i)
            means[i] = (down[i - 1] + 2.0 * down[i] + down[i + 1]) * share;
        _mendEdge(0, weightDown);
        _mendEdge(count - 1, weightDown);
    }

    /// The mean of a cell in the relief's first or last column, which lacks neighbours.
    void _mendEdge(int i, double weightDown)
    {
        const int column = m_first + i;
        double across = 2.0;
        across += column > 0 ? 1.0 : 0.0;
        across += column + 1 < m_relief.width() ? 1.0 : 0.0;
        m_means[i] = (m_down[i - 1] + 2.0 * m_down[i] + m_down[i + 1]) / (across * weightDown);
    }

    const Relief &m_relief;
    int m_first; ///< column of the first cell of a row here
    int m_count;
    float *m_above = nullptr;
    float *m_current = nullptr;
    double *m_down = nullptr;
    double *m_means = nullptr;
};

/// `direction` 1 and -1 keep to cells that the mean would raise or lower; 0 to none.
CELL_LOOP bool smooth(const Dab &dab, double direction)
{
    const double factor = dab.params().strength * dab.decayCubed;
    NeighbourMeans means(dab);
    int ready = dab.box.top() - 1;
    return paintHeights(dab, [=, &means, &ready](const CellSpan &row) CELL_INLINE {
        // A row of two spans is computed once.
        if (row.row != ready)
            means.advance(ready = row.row);
        const double *meanRow = means.at(row.column);
        return [=](const CellSpan &span, int i, double height) CELL_INLINE {
            const double weight = factor * span.weight[i] * span.unmasked[i];
            const double next = blend(meanRow[i], height, weight);
            return (next - height) * direction < 0.0 ? height : next;
        };
    });
}

} // namespace

bool dabSmooth(const Dab &dab)
{
    const int mode = dab.params().mode;
    return smooth(dab, mode == Tool::Raise ? 1.0 : mode == Tool::Lower ? -1.0 : 0.0);
}
