#include "relief/operations/columnpass.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>

namespace marlowen {

namespace {

constexpr int lanes = rowLanes;

/// New rows that are mixed together out of the same two, so that these are read once.
constexpr int mostMixed = 4;

/// Two wide rows, and `count` new rows to mix out of them.
struct Mixture
{
    const float *rows[2];
    const float *covered[2]; ///< read where not both rows are full
    CellRange full[2];
    double weights[mostMixed][2];
    float *out[mostMixed];
    int count;
};

template <int count>
CELL_INLINE inline void mixCells(const Mixture &mixture, CellRange columns)
{
    const Mixture m = mixture;
#pragma omp simd
    for (int i = columns.first; i < columns.end; ++i) {
        const auto first = static_cast<double>(m.rows[0][i]);
        const auto second = static_cast<double>(m.rows[1][i]);
#pragma GCC unroll 4
        for (int k = 0; k < count; ++k)
            m.out[k][i] = static_cast<float>(first * m.weights[k][0] + second * m.weights[k][1]);
    }
}

CELL_LOOP void mixOneRow(const Mixture &mixture, CellRange columns)
{
    mixCells<1>(mixture, columns);
}

CELL_LOOP void mixTwoRows(const Mixture &mixture, CellRange columns)
{
    mixCells<2>(mixture, columns);
}

CELL_LOOP void mixThreeRows(const Mixture &mixture, CellRange columns)
{
    mixCells<3>(mixture, columns);
}

CELL_LOOP void mixFourRows(const Mixture &mixture, CellRange columns)
{
    mixCells<4>(mixture, columns);
}

/// What is less than half covered is empty; the rest gets the height of its covered part.
CELL_INLINE inline float uncovered(float height, float covered)
{
    return covered >= 0.5F ? height / covered : 0.0F;
}

/// One of the new rows.
CELL_LOOP void mixCovered(const Mixture &mixture, int index, CellRange columns)
{
    const Mixture m = mixture;
    const double weights[2] = {m.weights[index][0], m.weights[index][1]};
    float *out = m.out[index];
#pragma omp simd
    for (int i = columns.first; i < columns.end; ++i) {
        const auto height = static_cast<float>(static_cast<double>(m.rows[0][i]) * weights[0] +
                                               static_cast<double>(m.rows[1][i]) * weights[1]);
        const auto covered = static_cast<float>(static_cast<double>(m.covered[0][i]) * weights[0] +
                                                static_cast<double>(m.covered[1][i]) * weights[1]);
        out[i] = uncovered(height, covered);
    }
}

/// Mixes all the new rows of some columns, in each of which a row is full throughout or nowhere.
void mixPiece(const Mixture &mixture, CellRange columns, const float *ones)
{
    static constexpr std::array mixers{mixOneRow, mixTwoRows, mixThreeRows, mixFourRows};
    Mixture piece = mixture;
    int fullRows = 0;
    for (int i = 0; i < 2; ++i) {
        if (mixture.full[i].contains(columns)) {
            piece.covered[i] = ones;
            ++fullRows;
        }
    }
    if (fullRows == 2)
        return mixers[static_cast<size_t>(piece.count - 1)](piece, columns);
    for (int k = 0; k < piece.count; ++k)
        mixCovered(piece, k, columns);
}

/// The first columns of a range up to where one of the rows becomes full or ends being so.
CellRange pieceOf(const Mixture &mixture, CellRange columns)
{
    CellRange piece = columns;
    for (const CellRange &full : mixture.full) {
        for (const int edge : {full.first, full.end}) {
            if (edge > piece.first)
                piece.end = std::min(piece.end, edge);
        }
    }
    return piece;
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
    m_length = job.across->length();
    const size_t padded = paddedCells(m_length);
    std::fill_n(m_zeros.need(padded), padded, 0.0F);
    std::fill_n(m_ones.need(padded), padded, 1.0F);
    m_sums.need(padded);
    m_coverSums.need(padded);
}

void ColumnPass::makeRows(CellRange rows, float *out)
{
    const LinePlan &down = *m_down;
    for (int row = rows.first; row < rows.end;) {
        const Taps &taps = down[row];
        int end = row + 1;
        if (down.averages) {
            _average(taps, out);
        } else {
            while (end < std::min(rows.end, row + mostMixed) && down[end].first == taps.first)
                ++end;
            _mix({row, end}, out);
        }
        out += static_cast<qsizetype>(end - row) * m_length;
        row = end;
    }
}

/// Mixes rows that take from the same two, or all from the last one.
void ColumnPass::_mix(CellRange rows, float *out)
{
    const Taps &taps = (*m_down)[rows.first];
    Mixture mixture{};
    mixture.count = rows.count();
    for (int k = 0; k < mixture.count; ++k) {
        const double *weights = m_down->weightsOf((*m_down)[rows.first + k]);
        mixture.weights[k][0] = weights[0];
        mixture.weights[k][1] = taps.count == 1 ? 0.0 : weights[1];
        mixture.out[k] = out + static_cast<qsizetype>(k) * m_length;
    }
    CellRange columns;
    for (int i = 0; i < 2; ++i) {
        const int row = taps.first + (taps.count == 1 ? 0 : i);
        const WideRows &block = m_rows.blockOf(row);
        const bool empty = block.columns.isEmpty();
        mixture.rows[i] = empty ? m_zeros.data() : block.values.data() + block.line(row);
        mixture.covered[i] = empty ? m_zeros.data() : block.covered.data() + block.line(row);
        mixture.full[i] = block.full;
        columns = united(columns, block.columns);
    }
    while (!columns.isEmpty()) {
        const CellRange piece = pieceOf(mixture, columns);
        mixPiece(mixture, piece, m_ones.data());
        columns.first = piece.end;
    }
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
    const bool full = block.full.contains({0, m_length});
    if (m_covers && m_allFull && !full) {
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
    for (const CellRange &part : block.parts()) {
        const bool ones = block.full.contains(part);
        addRows(m_coverSums.data(),
                {ones ? m_ones.data() : block.covered.data() + line, ones ? 0 : block.stride,
                 weights, rows.count()},
                part);
    }
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
