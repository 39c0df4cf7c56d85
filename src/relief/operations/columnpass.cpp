#include "relief/operations/columnpass.h"

#include "relief/grid/cellcode.h"

#include <algorithm>

namespace marlowen {

namespace {

constexpr int lanes = rowLanes;

/// Two wide rows with their weights; the cover of each where it matters.
struct Pair
{
    const float *rows[2];
    const float *covered[2];
    double weights[2];
};

CELL_LOOP void mixRows(float *out, const Pair &pair, CellRange columns)
{
    const Pair p = pair;
#pragma omp simd
    for (int i = columns.first; i < columns.end; ++i)
        out[i] = static_cast<float>(static_cast<double>(p.rows[0][i]) * p.weights[0] +
                                    static_cast<double>(p.rows[1][i]) * p.weights[1]);
}

/// What is less than half covered is empty; the rest gets the height of its covered part.
CELL_INLINE inline float uncovered(float height, float covered)
{
    return covered >= 0.5F ? height / covered : 0.0F;
}

CELL_LOOP void mixCovered(float *out, const Pair &pair, CellRange columns)
{
    const Pair p = pair;
#pragma omp simd
    for (int i = columns.first; i < columns.end; ++i) {
        const auto height = static_cast<float>(static_cast<double>(p.rows[0][i]) * p.weights[0] +
                                               static_cast<double>(p.rows[1][i]) * p.weights[1]);
        const auto covered =
            static_cast<float>(static_cast<double>(p.covered[0][i]) * p.weights[0] +
                               static_cast<double>(p.covered[1][i]) * p.weights[1]);
        out[i] = uncovered(height, covered);
    }
}

/// Rows that follow each other, `stride` apart (0: one row for all), with a weight for each.
struct WeighedRows
{
    const float *first;
    size_t stride;
    const double *weights;
    int count;
};

/// Adds the rows to the sums, whole groups of lanes.
CELL_LOOP void addRows(double *sums, const WeighedRows &rows, CellRange columns)
{
    const WeighedRows r = rows;
    for (int i = columns.first / lanes * lanes; i < columns.end; i += lanes) {
        double group[lanes];
        for (int lane = 0; lane < lanes; ++lane)
            group[lane] = sums[i + lane];
        const float *row = r.first + i;
        for (int k = 0; k < r.count; ++k, row += r.stride) {
            const double weight = r.weights[k];
            for (int lane = 0; lane < lanes; ++lane)
                group[lane] += weight * static_cast<double>(row[lane]);
        }
        for (int lane = 0; lane < lanes; ++lane)
            sums[i + lane] = group[lane];
    }
}

CELL_LOOP void divideRow(float *out, const double *sums, double total, CellRange columns)
{
#pragma omp simd
    for (int i = columns.first; i < columns.end; ++i)
        out[i] = static_cast<float>(sums[i] / total);
}

struct CoveredSums
{
    const double *heights;
    const double *covered;
    double total;
};

CELL_LOOP void divideCovered(float *out, const CoveredSums &sums, CellRange columns)
{
    const CoveredSums s = sums;
#pragma omp simd
    for (int i = columns.first; i < columns.end; ++i)
        out[i] = uncovered(static_cast<float>(s.heights[i] / s.total),
                           static_cast<float>(s.covered[i] / s.total));
}

} // namespace

void ColumnPass::begin(const RowPass::Job &job, const LinePlan &down, CellRange rows)
{
    m_rows.begin(job, down.sources(rows));
    m_down = &down;
    m_covers = job.covers;
    m_padded = paddedCells(job.across->length());
    std::fill_n(m_zeros.need(m_padded), m_padded, 0.0F);
    std::fill_n(m_ones.need(m_padded), m_padded, 1.0F);
    m_sums.need(m_padded);
    m_coverSums.need(m_padded);
}

void ColumnPass::makeRow(int row, float *out)
{
    if (m_down->averages)
        _average((*m_down)[row], out);
    else
        _mix((*m_down)[row], out);
}

void ColumnPass::_mix(const Taps &taps, float *out)
{
    const double *weights = m_down->weightsOf(taps);
    const bool single = taps.count == 1;
    Pair pair{{}, {}, {weights[0], single ? 0.0 : weights[1]}};
    CellRange columns;
    bool full = true;
    for (int i = 0; i < 2; ++i) {
        const int row = taps.first + (single ? 0 : i);
        const WideRows &block = m_rows.blockOf(row);
        if (block.columns.isEmpty()) {
            pair.rows[i] = m_zeros.data();
            pair.covered[i] = m_zeros.data();
            full = false;
            continue;
        }
        pair.rows[i] = block.values.data() + block.line(row);
        pair.covered[i] = block.full ? m_ones.data() : block.covered.data() + block.line(row);
        full = full && block.full;
        columns = united(columns, block.columns);
    }
    if (m_covers && !full)
        mixCovered(out, pair, columns);
    else
        mixRows(out, pair, columns);
}

void ColumnPass::_average(const Taps &taps, float *out)
{
    m_columns = {};
    m_allFull = true;
    m_fullSum = 0.0;
    const double *weights = m_down->weightsOf(taps);
    const int end = taps.first + taps.count;
    for (int row = taps.first; row < end;) {
        const WideRows &block = m_rows.blockOf(row);
        const CellRange rows{row, std::min(end, block.rows.end)};
        _add(block, rows, weights);
        weights += rows.count();
        row = rows.end;
    }
    if (m_allFull)
        divideRow(out, m_sums.data(), taps.total, m_columns);
    else
        divideCovered(out, {m_sums.data(), m_coverSums.data(), taps.total}, m_columns);
}

/// Adds rows of a block to the sums.
void ColumnPass::_add(const WideRows &block, CellRange rows, const double *weights)
{
    if (m_covers && m_allFull && !block.full) {
        std::fill(m_coverSums.data() + m_columns.first, m_coverSums.data() + m_columns.end,
                  m_fullSum);
        m_allFull = false;
    }
    if (block.columns.isEmpty())
        return;
    _widen(block.columns);
    const size_t line = block.line(rows.first);
    addRows(m_sums.data(), {block.values.data() + line, block.stride, weights, rows.count()},
            block.columns);
    if (!m_covers)
        return;
    if (m_allFull) {
        for (int k = 0; k < rows.count(); ++k)
            m_fullSum += weights[k];
        return;
    }
    const WeighedRows covered =
        block.full ? WeighedRows{m_ones.data(), 0, weights, rows.count()}
                   : WeighedRows{block.covered.data() + line, block.stride, weights, rows.count()};
    addRows(m_coverSums.data(), covered, block.columns);
}

/// Sets the sums of the columns that come to those that are set: to 0, as no row before had any.
void ColumnPass::_widen(CellRange columns)
{
    const CellRange wide = united(m_columns, columns);
    for (double *sums : {m_sums.data(), m_allFull ? nullptr : m_coverSums.data()}) {
        if (!sums)
            continue;
        if (m_columns.isEmpty()) {
            std::fill(sums + wide.first, sums + wide.end, 0.0);
            continue;
        }
        std::fill(sums + wide.first, sums + m_columns.first, 0.0);
        std::fill(sums + m_columns.end, sums + wide.end, 0.0);
    }
    m_columns = wide;
}

} // namespace marlowen
