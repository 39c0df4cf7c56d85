#include "relief/strokes/brushes/sampling.h"

#include "base/rowsharing.h"

namespace marlowen {

namespace {

/// Rows that a thread works on at a time.
constexpr int bandRows = 16;
/// Dabs of fewer cells are over before another thread has begun.
constexpr int sharedCells = 150 * 150;

/// Computes the new heights of a dab's spans and puts them in their place when all are there.
class SampledDab
{
public:
    SampledDab(const Dab &dab, const PaintSpan &paintSpan)
        : m_dab(dab)
        , m_runs(dab.tool.buffers().runs)
        , m_paintSpan(paintSpan)
        , m_painted(dab.tool.buffers().painted.need(_cells()))
        , m_spans(dab.tool.buffers().spans.need(_rows() * m_runs.size()))
    {
    }

    void compute(int firstRow, int endRow)
    {
        StrokeBuffers &buffers = m_dab.tool.buffers();
        const auto side = static_cast<size_t>(m_dab.tool.weights().side());
        std::unique_ptr<SpanBuffers> rows = buffers.spanBuffers.take();
        rows->gated.need(side);
        rows->unmasked.need(side);
        for (int row = firstRow; row < endRow; ++row) {
            for (size_t run = 0; run < m_runs.size(); ++run)
                _compute(row, run, *rows);
        }
        buffers.spanBuffers.giveBack(std::move(rows));
    }

    /// True when a cell changed.
    bool store()
    {
        float *heights = m_dab.relief.heights().data();
        bool changed = false;
        for (int row = 0; row < m_dab.box.height(); ++row) {
            for (size_t run = 0; run < m_runs.size(); ++run) {
                const PaintedSpan &span = m_spans[_index(row, run)];
                if (!span.changed)
                    continue;
                std::memcpy(heights + m_dab.relief.index(span.column, m_dab.box.top() + row),
                            _painted(row, span.column),
                            static_cast<size_t>(span.count) * sizeof(float));
                changed = true;
            }
        }
        return changed;
    }

private:
    size_t _rows() const { return static_cast<size_t>(m_dab.box.height()); }
    size_t _cells() const { return _rows() * static_cast<size_t>(m_dab.box.width()); }
    size_t _index(int row, size_t run) const
    {
        return static_cast<size_t>(row) * m_runs.size() + run;
    }
    float *_painted(int row, int column) const
    {
        return m_painted + static_cast<qsizetype>(row) * m_dab.box.width() + column -
               m_dab.box.left();
    }

    void _compute(int row, size_t run, SpanBuffers &buffers)
    {
        const Relief &relief = m_dab.relief;
        const int reliefRow = m_dab.box.top() + row;
        const CellSpan span = cellsOf(m_dab, m_runs[run], reliefRow, buffers);
        bool changed = false;
        if (span.count > 0) {
            const float *cells = relief.heights().constData() + relief.index(0, reliefRow);
            const HeightField field{cells, reliefRow, relief.width(), relief.height()};
            changed = m_paintSpan(field, span, _painted(row, span.column));
        }
        m_spans[_index(row, run)] = {span.column, span.count, changed};
    }

    const Dab &m_dab;
    const std::vector<ColumnRun> &m_runs;
    const PaintSpan &m_paintSpan;
    float *m_painted;
    PaintedSpan *m_spans;
};

} // namespace

bool paintSamples(const Dab &dab, const PaintSpan &paintSpan)
{
    SampledDab sampled(dab, paintSpan);
    const bool alone = dab.box.width() * dab.box.height() < sharedCells;
    shareRows({dab.box.height(), bandRows, alone},
              [&](int first, int end) { sampled.compute(first, end); });
    return sampled.store();
}

} // namespace marlowen
