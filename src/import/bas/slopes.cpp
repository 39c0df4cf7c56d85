#include "import/bas/slopes.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace marlowen {
namespace {

/// A row of a surface and of its mask with a cell of zeros before and after.
struct BorderedRow
{
    std::vector<float> heights;
    std::vector<float> filled;
};

/// Three rows in turn, of which the middle one is worked on.
class RowWindow
{
public:
    /// The rows before and at `first` are loaded; moveTo(first) comes next.
    RowWindow(const FilledSurface &form, int first)
        : m_form(form)
    {
        for (BorderedRow &row : m_rows) {
            row.heights.resize(form.surface.columns() + 2);
            row.filled.resize(form.surface.columns() + 2);
        }
        _load(first - 1);
        _load(first);
    }

    /// Makes y the middle row; rows must come in order.
    void moveTo(int y) { _load(y + 1); }
    const BorderedRow &row(int y) const { return m_rows[static_cast<size_t>(y + 3) % 3]; }

private:
    void _load(int y)
    {
        BorderedRow &row = m_rows[static_cast<size_t>(y + 3) % 3];
        const bool exists = y >= 0 && y < m_form.surface.height;
        const size_t columns = m_form.surface.columns();
        for (size_t x = 0; x < columns; ++x)
            row.filled[x + 1] = exists && m_form.filled[static_cast<size_t>(y) * columns + x];
        if (exists)
            std::copy_n(m_form.surface.row(y), columns, row.heights.begin() + 1);
    }

    const FilledSurface &m_form;
    std::array<BorderedRow, 3> m_rows;
};

struct RowPointers
{
    RowPointers(const RowWindow &window, int y)
        : above(window.row(y - 1).heights.data())
        , here(window.row(y).heights.data())
        , below(window.row(y + 1).heights.data())
        , filledAbove(window.row(y - 1).filled.data())
        , filled(window.row(y).filled.data())
        , filledBelow(window.row(y + 1).filled.data())
    {
    }
    const float *above;
    const float *here;
    const float *below;
    const float *filledAbove;
    const float *filled;
    const float *filledBelow;
};

/// Slopes of the cells of a row; all pointers but the result begin with the border.
CELL_LOOP void slopesOfRow(const RowPointers &row, float *slopes, int count)
{
    const RowPointers r = row;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const int x = i + 1;
        const float here = r.here[x];
        const float left = std::fabs(here - r.here[x - 1]) * r.filled[x - 1];
        const float right = std::fabs(here - r.here[x + 1]) * r.filled[x + 1];
        const float above = std::fabs(here - r.above[x]) * r.filledAbove[x];
        const float below = std::fabs(here - r.below[x]) * r.filledBelow[x];
        const float dx = left > right ? left : right;
        const float dy = above > below ? above : below;
        slopes[i] = std::sqrt(dx * dx + dy * dy) * r.filled[x];
    }
}

CELL_LOOP void gainsOfRow(const float *slopes, const Flattening &flattening, float *gains,
                          int count)
{
    const float knee = flattening.knee;
    const float least = flattening.leastGain;
    const float rest = 1.0F - least;
#pragma omp simd
    for (int i = 0; i < count; ++i)
        gains[i] = least + rest * std::sqrt(knee / (knee + slopes[i]));
}

/// Gains of the rows around a row, beginning with the border.
struct GainRows
{
    const float *above;
    const float *here;
    const float *below;
};

CELL_LOOP void sumDifferences(const RowPointers &row, const GainRows &gains, float pull,
                              float *sums, int count)
{
    const RowPointers r = row;
    const GainRows g = gains;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const int x = i + 1;
        const float here = r.here[x];
        const float gain = g.here[x];
        const float left = (gain + g.here[x - 1]) * (here - r.here[x - 1]) * r.filled[x - 1];
        const float right = (gain + g.here[x + 1]) * (here - r.here[x + 1]) * r.filled[x + 1];
        const float above = (gain + g.above[x]) * (here - r.above[x]) * r.filledAbove[x];
        const float below = (gain + g.below[x]) * (here - r.below[x]) * r.filledBelow[x];
        const float sum = 0.5F * ((left + right) + (above + below));
        sums[i] = (sum + pull * here) * r.filled[x];
    }
}

} // namespace

double meanSlope(const FilledSurface &form, WorkMeter &meter)
{
    // Sums of rows, added in their order: the threads must not matter.
    std::vector<double> sums(static_cast<size_t>(form.surface.height));
    const bool done = meter.rows(form.surface.height, form.surface.width, [&](int first, int end) {
        RowWindow window(form, first);
        std::vector<float> slopes(form.surface.columns());
        for (int y = first; y < end; ++y) {
            window.moveTo(y);
            slopesOfRow(RowPointers(window, y), slopes.data(), form.surface.width);
            sums[static_cast<size_t>(y)] = std::accumulate(slopes.begin(), slopes.end(), 0.0);
        }
    });
    if (!done)
        return -1.0;
    const qsizetype cells = std::count(form.filled.begin(), form.filled.end(), 1);
    return cells > 0 ? std::accumulate(sums.begin(), sums.end(), 0.0) / static_cast<double>(cells)
                     : 0.0;
}

namespace {

/// Gains of three rows in turn, with the border.
class GainWindow
{
public:
    GainWindow(const FilledSurface &form, const Flattening &flattening, int first)
        : m_form(form)
        , m_ahead(form, first - 1)
        , m_flattening(flattening)
        , m_slopes(form.surface.columns())
    {
        m_gains.fill(std::vector<float>(form.surface.columns() + 2));
        _compute(first - 1);
        _compute(first);
    }

    /// The gains around row y; rows must come in order.
    GainRows around(int y)
    {
        _compute(y + 1);
        return {_row(y - 1), _row(y), _row(y + 1)};
    }

private:
    float *_row(int y) { return m_gains[static_cast<size_t>(y + 3) % 3].data(); }

    void _compute(int y)
    {
        m_ahead.moveTo(y);
        slopesOfRow(RowPointers(m_ahead, y), m_slopes.data(), m_form.surface.width);
        gainsOfRow(m_slopes.data(), m_flattening, _row(y) + 1, m_form.surface.width);
    }

    const FilledSurface &m_form;
    RowWindow m_ahead;
    const Flattening &m_flattening;
    std::vector<float> m_slopes;
    std::array<std::vector<float>, 3> m_gains;
};

} // namespace

bool flattenedSlopes(const FilledSurface &form, const Flattening &flattening, FloatGrid &sums,
                     WorkMeter &meter)
{
    const int width = form.surface.width;
    return meter.rows(form.surface.height, width, [&](int first, int end) {
        RowWindow window(form, first);
        GainWindow gains(form, flattening, first);
        for (int y = first; y < end; ++y) {
            window.moveTo(y);
            sumDifferences(RowPointers(window, y), gains.around(y), flattening.pull, sums.row(y),
                           width);
        }
    });
}

} // namespace marlowen
