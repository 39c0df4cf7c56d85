#include "relief/strokes/dab.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace marlowen {

namespace {

/// Three rows of heights, weighed 1, 2, 1 sixteenths; rows off the relief weigh nothing.
struct RowsDown
{
    const float *above;
    const float *current;
    const float *below;
    float weightAbove;
    float weightBelow;
};

// Shares of the whole, since multiples of the largest heights are not floats. In this order equal
// heights add up to a sum that the division turns back into them: level ground stays level.
CELL_LOOP void sumDown(const RowsDown &rows, float *sums, int count)
{
    const RowsDown r = rows;
#pragma omp simd
    for (int i = 0; i < count; ++i)
        sums[i] = (r.weightAbove * r.above[i] + r.weightBelow * r.below[i]) + 0.125F * r.current[i];
}

/// Divides, rather than multiply by a share, since only a sixteenth is a float.
CELL_LOOP void meanAcross(const float *sums, float *means, int count, float weights)
{
#pragma omp simd
    for (int i = 0; i < count; ++i)
        means[i] = ((sums[i - 1] + sums[i + 1]) + 2.0F * sums[i]) / weights;
}

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
        , m_row(dab.box.top() - 1)
    {
        // One cell beyond the box on both sides, and one beyond that for sums without neighbours.
        const auto length = static_cast<size_t>(dab.box.width()) + 4;
        float *rows = dab.tool.buffers().copy.need(4 * length);
        m_above = rows;
        m_current = rows + length;
        m_sums = rows + 2 * length + 1;
        m_means = rows + 3 * length;
        if (m_row >= 0)
            _copy(m_current, m_row);
    }

    /// Means of a row from a column on. Rows are asked for from the top of the box down, each
    /// before it is changed.
    const float *at(int column, int row)
    {
        if (row != m_row)
            _advance(row);
        return m_means + (column - m_first);
    }

private:
    void _advance(int row)
    {
        m_row = row;
        std::swap(m_above, m_current);
        _copy(m_current, row);
        const bool hasAbove = row > 0;
        const bool hasBelow = row + 1 < m_relief.height();
        const float above = hasAbove ? 0.0625F : 0.0F;
        const float below = hasBelow ? 0.0625F : 0.0F;
        sumDown({hasAbove ? m_above : m_current, m_current,
                 hasBelow ? _heights(row + 1) : m_current, above, below},
                m_sums, m_count);
        m_sums[-1] = 0.0F;
        m_sums[m_count] = 0.0F;
        const float weightDown = 0.125F + above + below;
        meanAcross(m_sums, m_means, m_count, 4.0F * weightDown);
        _mendEdge(0, weightDown);
        _mendEdge(m_count - 1, weightDown);
    }

    const float *_heights(int row) const
    {
        return m_relief.heights().constData() + m_relief.index(m_first, row);
    }
    void _copy(float *to, int row) const
    {
        std::memcpy(to, _heights(row), static_cast<size_t>(m_count) * sizeof(float));
    }
    /// The mean of a cell in the relief's first or last column, which lacks neighbours.
    void _mendEdge(int i, float weightDown)
    {
        const int column = m_first + i;
        float across = 2.0F;
        across += column > 0 ? 1.0F : 0.0F;
        across += column + 1 < m_relief.width() ? 1.0F : 0.0F;
        m_means[i] = ((m_sums[i - 1] + m_sums[i + 1]) + 2.0F * m_sums[i]) / (across * weightDown);
    }

    const Relief &m_relief;
    int m_first; ///< column of the first cell of a row here
    int m_count;
    int m_row; ///< the row that the means are of
    float *m_above = nullptr;
    float *m_current = nullptr;
    float *m_sums = nullptr;
    float *m_means = nullptr;
};

/// `direction` 1 and -1 keep to cells that the mean would raise or lower; 0 to none.
CELL_LOOP bool smooth(const Dab &dab, float direction)
{
    const auto factor = static_cast<float>(dab.params().strength * dab.decayCubed);
    NeighbourMeans means(dab);
    return paintHeights(dab, [=, &means](const CellSpan &row) {
        const float *meanRow = means.at(row.column, row.row);
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float weight = factor * span.weight[i] * span.unmasked[i];
            const float way = meanRow[i] - height;
            return height + weight * (way * direction < 0.0F ? 0.0F : way);
        };
    });
}

} // namespace

/// Toward the mean of the cell and its neighbours, weighed 4, 2, 1; Raise and Lower keep to their
/// direction.
bool dabSmooth(const Dab &dab)
{
    const int mode = dab.params().mode;
    return smooth(dab, mode == Tool::Raise ? 1.0F : mode == Tool::Lower ? -1.0F : 0.0F);
}

} // namespace marlowen
