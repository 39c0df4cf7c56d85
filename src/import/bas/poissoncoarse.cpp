#include "import/bas/coarserow.h"
#include "import/bas/poissonlevels.h"

#include "relief/grid/cellcode.h"

#include <algorithm>

namespace marlowen {
namespace {

/// Pointers to the cells of a row of a coarse level, without the border.
struct CoarseCells
{
    const float *above;
    const float *here;
    const float *below;
    const float *rhs;
    const float *east;
    const float *south;
    const float *southAbove;
    const float *mass;
};

CoarseCells cellsOf(const CoarseProblem &problem, int y)
{
    return {problem.correction.row(y - 1) + 1, problem.correction.row(y) + 1,
            problem.correction.row(y + 1) + 1, problem.rhs.row(y) + 1,
            problem.east.row(y) + 1,           problem.south.row(y) + 1,
            problem.south.row(y - 1) + 1,      problem.mass.row(y) + 1};
}

/// Relaxes a row of which cells.here is a copy.
CELL_LOOP void relaxCoarse(const CoarseCells &cells, float *here, int count, float screening,
                           int colour)
{
    const CoarseCells c = cells;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float around = (c.southAbove[x] * c.above[x] + c.south[x] * c.below[x]) +
                             (c.east[x - 1] * c.here[x - 1] + c.east[x] * c.here[x + 1]);
        const float diagonal =
            (c.southAbove[x] + c.south[x]) + (c.east[x - 1] + c.east[x]) + screening * c.mass[x];
        const float empty = c.mass[x] > 0.0F ? 0.0F : 1.0F;
        const float value = (c.rhs[x] + around) / (diagonal + empty);
        const float change = static_cast<float>((x ^ colour ^ 1) & 1) * (value - c.here[x]);
        here[x] = c.here[x] + (1.0F - empty) * change;
    }
}

CELL_LOOP void addCoarseRest(const CoarseCells &cells, float *sums, int count, float screening)
{
    const CoarseCells c = cells;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float around = (c.southAbove[x] * c.above[x] + c.south[x] * c.below[x]) +
                             (c.east[x - 1] * c.here[x - 1] + c.east[x] * c.here[x + 1]);
        const float diagonal =
            (c.southAbove[x] + c.south[x]) + (c.east[x - 1] + c.east[x]) + screening * c.mass[x];
        sums[x] += c.rhs[x] + around - diagonal * c.here[x];
    }
}

CELL_LOOP void mixCoarseRows(const CoarseCells &cells, const float *otherMass, float *values,
                             float *shares, int count)
{
    const float *here = cells.here;
    const float *other = cells.above;
    const float *mass = cells.mass;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        values[x] = 0.75F * here[x] + 0.25F * other[x];
        shares[x] = (mass[x] > 0.0F ? 0.75F : 0.0F) + (otherMass[x] > 0.0F ? 0.25F : 0.0F);
    }
}

/// Both fine cells of every coarse one; `values` and `shares` begin with the border.
CELL_LOOP void mixCoarseColumns(const float *values, const float *shares, float *row, int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float value = 0.75F * values[x + 1];
        const float share = 0.75F * shares[x + 1];
        const float left = share + 0.25F * shares[x];
        const float right = share + 0.25F * shares[x + 2];
        row[2 * x] = (value + 0.25F * values[x]) / (left > 0.0F ? left : 1.0F);
        row[2 * x + 1] = (value + 0.25F * values[x + 2]) / (right > 0.0F ? right : 1.0F);
    }
}

CELL_LOOP void addToFilled(const float *correction, const float *mass, float *values, int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x)
        values[x] += mass[x] > 0.0F ? correction[x] : 0.0F;
}

} // namespace

bool relaxByColours(int rows, int width, const RowRelaxer &relaxRow, WorkMeter &meter)
{
    // The second colour of the first and last row of a band needs the neighbouring bands and waits.
    std::vector<uint8_t> waiting(static_cast<size_t>(rows));
    const auto band = [&](int first, int end) {
        std::vector<float> bordered(static_cast<size_t>(width) + 2);
        for (int y = first; y < end; ++y) {
            relaxRow(y, 0, bordered);
            if (y >= first + 2)
                relaxRow(y - 1, 1, bordered);
        }
        waiting[static_cast<size_t>(first)] = 1;
        waiting[static_cast<size_t>(end - 1)] = 1;
    };
    if (!meter.rows(rows, width, band))
        return false;
    std::vector<float> bordered(static_cast<size_t>(width) + 2);
    for (int y = 0; y < rows; ++y) {
        if (waiting[static_cast<size_t>(y)])
            relaxRow(y, 1, bordered);
    }
    return true;
}

CELL_LOOP void sumPairs(std::span<const float> values, std::span<float> sums)
{
    const float *in = values.data();
    float *out = sums.data();
    const int count = static_cast<int>(values.size());
    const int pairs = count / 2;
#pragma omp simd
    for (int x = 0; x < pairs; ++x)
        out[x] = in[2 * x] + in[2 * x + 1];
    if (count % 2 != 0)
        out[pairs] = in[count - 1];
}

CoarseRow::CoarseRow(const CoarseProblem &coarse)
    : m_coarse(coarse)
    , m_values(coarse.mass.grid.columns())
    , m_shares(m_values.size())
    , m_row(2 * m_values.size())
{
}

std::span<const float> CoarseRow::compute(int y)
{
    const int row = y / 2;
    const int other = y % 2 == 0 ? row - 1 : row + 1;
    CoarseCells cells{};
    cells.here = m_coarse.correction.row(row);
    cells.above = m_coarse.correction.row(other);
    cells.mass = m_coarse.mass.row(row);
    mixCoarseRows(cells, m_coarse.mass.row(other), m_values.data(), m_shares.data(),
                  m_coarse.mass.grid.width);
    mixCoarseColumns(m_values.data(), m_shares.data(), m_row.data(), m_coarse.mass.width);
    return m_row;
}

bool CoarseLevel::relax(WorkMeter &meter)
{
    const auto relaxRow = [this](int y, int colour, std::vector<float> &bordered) {
        float *here = m_problem.correction.row(y) + 1;
        std::copy_n(here, width(), bordered.data() + 1);
        CoarseCells cells = cellsOf(m_problem, y);
        cells.here = bordered.data() + 1;
        relaxCoarse(cells, here, width(), m_screening, (y + colour) & 1);
    };
    return relaxByColours(height(), width(), relaxRow, meter);
}

bool CoarseLevel::restrictTo(CoarseProblem &coarse, WorkMeter &meter)
{
    return meter.rows(coarse.rhs.height, 2 * width(), [&](int first, int end) {
        std::vector<float> sums(static_cast<size_t>(width()));
        for (int row = first; row < end; ++row) {
            std::fill(sums.begin(), sums.end(), 0.0F);
            for (int y = 2 * row; y < std::min(2 * row + 2, height()); ++y)
                addCoarseRest(cellsOf(m_problem, y), sums.data(), width(), m_screening);
            sumPairs(sums, {coarse.rhs.row(row) + 1, (sums.size() + 1) / 2});
        }
    });
}

bool CoarseLevel::correctFrom(const CoarseProblem &coarse, WorkMeter &meter)
{
    return meter.rows(height(), width(), [&](int first, int end) {
        CoarseRow correction(coarse);
        for (int y = first; y < end; ++y)
            addToFilled(correction.compute(y).data(), m_problem.mass.row(y) + 1,
                        m_problem.correction.row(y) + 1, width());
    });
}

bool CoarseLevel::coarsen(CoarseProblem &coarse, WorkMeter &meter) const
{
    const auto addRow = [&](int y) {
        const CoarseCells here = cellsOf(m_problem, y);
        float *mass = coarse.mass.row(y / 2) + 1;
        float *east = coarse.east.row(y / 2) + 1;
        float *south = coarse.south.row(y / 2) + 1;
        for (int x = 0; x < width(); ++x) {
            mass[x / 2] += here.mass[x];
            east[x / 2] += x % 2 != 0 ? 0.5F * here.east[x] : 0.0F;
            south[x / 2] += y % 2 != 0 ? 0.5F * here.south[x] : 0.0F;
        }
    };
    return meter.rows((height() + 1) / 2, 2 * width(), [&](int first, int end) {
        for (int y = 2 * first; y < std::min(2 * end, height()); ++y)
            addRow(y);
    });
}

} // namespace marlowen
