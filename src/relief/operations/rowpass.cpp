#include "relief/operations/rowpass.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <cstring>

namespace marlowen {

namespace {

constexpr size_t lanes = rowLanes;

/// Four floats that stand in a register.
using Four = float __attribute__((vector_size(16)));
using FourBits = int __attribute__((vector_size(16)));

CELL_INLINE inline Four loadFour(const float *values)
{
    Four four;
    std::memcpy(&four, values, sizeof four);
    return four;
}

CELL_INLINE inline void storeFour(float *values, const Four &four)
{
    std::memcpy(values, &four, sizeof four);
}

/// Turns four rows of four into four columns.
CELL_INLINE inline void transpose(Four (&rows)[4])
{
    const Four low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Four high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Four low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Four high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

bool isFilled(float cell)
{
    return cell != 0.0F;
}

using Rows = std::array<const float *, lanes>;

/// Cells that are looked at together.
constexpr int scanStep = 32;

/// True when one of `scanStep` cells is not 0.
CELL_INLINE inline bool anyFilled(const float *cells)
{
    FourBits any{};
#pragma GCC unroll 8
    for (int i = 0; i < scanStep; i += 4) {
        FourBits bits;
        std::memcpy(&bits, cells + i, sizeof bits);
        any |= bits;
    }
    return ((any[0] | any[1]) | (any[2] | any[3])) != 0;
}

/// How many cells there are before the first that is not 0, or a few less; `count` when all are.
int zerosBefore(const float *cells, int count)
{
    int first = 0;
    while (first + scanStep <= count && !anyFilled(cells + first))
        first += scanStep;
    if (first + scanStep <= count || std::any_of(cells + first, cells + count, isFilled))
        return first;
    return count;
}

/// The same behind the last one.
int zerosAfter(const float *cells, int count)
{
    int end = count;
    while (end >= scanStep && !anyFilled(cells + end - scanStep))
        end -= scanStep;
    if (end >= scanStep || std::any_of(cells, cells + end, isFilled))
        return count - end;
    return count;
}

/// The columns beyond which the rows are 0, or a few more; none when all of them are.
CellRange filledColumns(const Rows &rows, int width)
{
    CellRange filled{width, 0};
    for (const float *row : rows) {
        filled.first = zerosBefore(row, filled.first);
        filled.end = width - zerosAfter(row + filled.end, width - filled.end);
    }
    return filled;
}

/// Lays cells of rows side by side in lanes; true when none of the cells is empty.
bool toLanes(const Rows &rows, CellRange columns, float *lanesOut)
{
    int column = columns.first;
    FourBits empties{};
    for (; column + 4 <= columns.end; column += 4) {
#pragma GCC unroll 2
        for (size_t half = 0; half < lanes; half += 4) {
            Four block[4];
#pragma GCC unroll 4
            for (size_t i = 0; i < 4; ++i)
                block[i] = loadFour(rows[half + i] + column);
            transpose(block);
            float *out = lanesOut + static_cast<size_t>(column) * lanes + half;
#pragma GCC unroll 4
            for (size_t i = 0; i < 4; ++i) {
                empties |= block[i] == Four{};
                storeFour(out + i * lanes, block[i]);
            }
        }
    }
    bool empty = (empties[0] | empties[1] | empties[2] | empties[3]) != 0;
    for (; column < columns.end; ++column) {
        for (size_t lane = 0; lane < lanes; ++lane) {
            const float value = rows[lane][column];
            lanesOut[static_cast<size_t>(column) * lanes + lane] = value;
            empty |= value == 0.0F;
        }
    }
    return !empty;
}

/// Lays cells of rows side by side in lanes. Returns columns without empty cells: the longest run
/// of steps that has none.
CellRange toLanesInSteps(const Rows &rows, CellRange columns, float *lanesOut)
{
    CellRange longest;
    CellRange run{columns.first, columns.first};
    for (int first = columns.first; first < columns.end; first += scanStep) {
        const CellRange step{first, std::min(first + scanStep, columns.end)};
        run.end = step.end;
        if (!toLanes(rows, step, lanesOut))
            run.first = step.end;
        if (run.count() > longest.count())
            longest = run;
    }
    return longest;
}

/// Lays lanes of some cells back into lines, `stride` apart, from their column `columns.first` on.
void fromLanes(const float *lanesIn, CellRange columns, float *lines, size_t stride)
{
    int column = columns.first;
    for (; column + 4 <= columns.end; column += 4, lanesIn += 4 * lanes) {
#pragma GCC unroll 2
        for (size_t half = 0; half < lanes; half += 4) {
            Four block[4];
#pragma GCC unroll 4
            for (size_t i = 0; i < 4; ++i)
                block[i] = loadFour(lanesIn + i * lanes + half);
            transpose(block);
#pragma GCC unroll 4
            for (size_t i = 0; i < 4; ++i)
                storeFour(lines + (half + i) * stride + column, block[i]);
        }
    }
    for (; column < columns.end; ++column, lanesIn += lanes) {
        for (size_t lane = 0; lane < lanes; ++lane)
            lines[lane * stride + static_cast<size_t>(column)] = lanesIn[lane];
    }
}

/// New cells that are computed in lanes before they are laid back into lines.
constexpr int chunkCells = 64;

struct Chunk
{
    alignas(64) float values[chunkCells * lanes];
    alignas(64) float covered[chunkCells * lanes];
};

/// Some new cells of every lane; with Covers also how far each is covered.
template <bool Averages, bool Covers>
CELL_INLINE inline void sumLanes(const LinePlan &plan, CellRange cells, const float *columns,
                                 Chunk &out)
{
    const Taps *taps = plan.taps.data();
    const double *allWeights = plan.weights.data();
    float *values = out.values;
    float *covered = out.covered;
    for (int cell = cells.first; cell < cells.end; ++cell, values += lanes, covered += lanes) {
        const double *weights = allWeights + taps[cell].weight;
        const float *from = columns + static_cast<size_t>(taps[cell].first) * lanes;
        const double total = taps[cell].total;
        double sums[lanes] = {};
        double shares[lanes] = {};
        for (int k = 0; k < taps[cell].count; ++k, from += lanes) {
            const double weight = weights[k];
            for (size_t lane = 0; lane < lanes; ++lane)
                sums[lane] += weight * static_cast<double>(from[lane]);
            if constexpr (Covers) {
                for (size_t lane = 0; lane < lanes; ++lane)
                    shares[lane] += from[lane] != 0.0F ? weight : 0.0;
            }
        }
        for (size_t lane = 0; lane < lanes; ++lane)
            values[lane] = static_cast<float>(Averages ? sums[lane] / total : sums[lane]);
        if constexpr (Covers) {
            for (size_t lane = 0; lane < lanes; ++lane)
                covered[lane] = static_cast<float>(Averages ? shares[lane] / total : shares[lane]);
        }
    }
}

/// Without what is left of a group of lanes at an end; at the end of the line there is none.
CellRange wholeGroups(CellRange columns, int length)
{
    const int first = (columns.first + rowLanes - 1) / rowLanes * rowLanes;
    const int end = columns.end == length ? length : columns.end / rowLanes * rowLanes;
    return first < end ? CellRange{first, end} : CellRange{};
}

using SumFunction = void (*)(const LinePlan &, CellRange, const float *, Chunk &);

CELL_LOOP void averageLanes(const LinePlan &plan, CellRange cells, const float *columns, Chunk &out)
{
    sumLanes<true, false>(plan, cells, columns, out);
}

CELL_LOOP void averageCovered(const LinePlan &plan, CellRange cells, const float *columns,
                              Chunk &out)
{
    sumLanes<true, true>(plan, cells, columns, out);
}

CELL_LOOP void mixLanes(const LinePlan &plan, CellRange cells, const float *columns, Chunk &out)
{
    sumLanes<false, false>(plan, cells, columns, out);
}

CELL_LOOP void mixCovered(const LinePlan &plan, CellRange cells, const float *columns, Chunk &out)
{
    sumLanes<false, true>(plan, cells, columns, out);
}

SumFunction sumFunction(bool averages, bool covers)
{
    if (averages)
        return covers ? averageCovered : averageLanes;
    return covers ? mixCovered : mixLanes;
}

} // namespace

void RowPass::begin(const Job &job, CellRange rows)
{
    m_job = job;
    m_rows = rows;
    m_columns.need(static_cast<size_t>(job.layer.width) * lanes);
    for (WideRows &block : m_blocks) {
        block.rows = {};
        block.stride = paddedCells(job.across->length());
        block.values.need(block.stride * lanes);
        if (job.covers)
            block.covered.need(block.stride * lanes);
    }
}

const WideRows &RowPass::blockOf(int row)
{
    const int index = (row - m_rows.first) / rowLanes;
    WideRows &block = m_blocks[static_cast<size_t>(index % 2)];
    const int firstRow = m_rows.first + index * rowLanes;
    if (block.rows.isEmpty() || block.rows.first != firstRow)
        _load(block, firstRow);
    return block;
}

void RowPass::_load(WideRows &block, int firstRow)
{
    const LinePlan &plan = *m_job.across;
    block.rows = {firstRow, std::min(firstRow + rowLanes, m_rows.end)};
    Rows rows;
    for (int lane = 0; lane < rowLanes; ++lane)
        rows[static_cast<size_t>(lane)] =
            m_job.layer.row(std::min(firstRow + lane, block.rows.end - 1));
    block.columns = plan.reached(filledColumns(rows, m_job.layer.width));
    block.full = m_job.covers ? CellRange{} : CellRange{0, plan.length()};
    if (block.columns.isEmpty())
        return;
    const CellRange filled = toLanesInSteps(rows, plan.sources(block.columns), m_columns.data());
    if (m_job.covers)
        block.full = wholeGroups(plan.within(filled), plan.length());
    if (block.columns.count() < plan.length())
        _clearAround(block);
    for (const CellRange &part : block.parts())
        _sum(block, part);
}

/// Sums the new cells of some columns, which are all full or all not.
void RowPass::_sum(WideRows &block, CellRange columns)
{
    const LinePlan &plan = *m_job.across;
    const bool covers = !block.full.contains(columns);
    const SumFunction sum = sumFunction(plan.averages, covers);
    Chunk chunk;
    for (int first = columns.first; first < columns.end; first += chunkCells) {
        const CellRange cells{first, std::min(first + chunkCells, columns.end)};
        sum(plan, cells, m_columns.data(), chunk);
        fromLanes(chunk.values, cells, block.values.data(), block.stride);
        if (covers)
            fromLanes(chunk.covered, cells, block.covered.data(), block.stride);
    }
}

/// Sets what lies beside the block's columns to 0.
void RowPass::_clearAround(WideRows &block) const
{
    const auto first = static_cast<size_t>(block.columns.first);
    const auto end = static_cast<size_t>(block.columns.end);
    for (size_t lane = 0; lane < lanes; ++lane) {
        for (float *lines : {block.values.data(), m_job.covers ? block.covered.data() : nullptr}) {
            if (!lines)
                continue;
            float *line = lines + lane * block.stride;
            std::fill(line, line + first, 0.0F);
            std::fill(line + end, line + block.stride, 0.0F);
        }
    }
}

} // namespace marlowen
