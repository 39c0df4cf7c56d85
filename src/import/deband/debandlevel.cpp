#include "import/deband/debandlevel.h"

#include "import/deband/debandblocks.h"
#include "import/deband/debandinterpolation.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace marlowen {
namespace {

/// Directions of the second differences, as flags.
enum Direction : uint8_t { Along = 1, Across = 2, Falling = 4, Rising = 8, Valid = 0x80 };
constexpr size_t directions = 4;

/// The largest eigenvalue of the sum of squared second differences is 48; longer steps diverge.
constexpr float stepLength = 1.0F / 48.0F;

/// The momentum of step k is (k + this) / (k + this + 3). A large number suits levels that begin
/// near their goal: what is left there are broad forms, which plain steps hardly move.
constexpr int momentumStart = 149;

/// Values and validity of a row with a cell of zeros before and after.
struct MarkRow
{
    std::vector<float> values;
    std::vector<uint8_t> valid;
};

struct MarkRows
{
    const float *above;
    const float *here;
    const float *below;
    const uint8_t *validAbove;
    const uint8_t *valid;
    const uint8_t *validBelow;
};

/// Pointers begin with the border.
CELL_LOOP void markRow(const MarkRows &rows, float step, uint8_t *flags, int count)
{
    const MarkRows r = rows;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const float here = r.here[i + 1];
        const auto joined = [here, step](float one, float two, int valid) {
            const int close =
                (std::fabs(one - here) <= step ? 1 : 0) & (std::fabs(two - here) <= step ? 1 : 0);
            return close & valid;
        };
        const int along = joined(r.here[i], r.here[i + 2], r.valid[i] & r.valid[i + 2]);
        const int across =
            joined(r.above[i + 1], r.below[i + 1], r.validAbove[i + 1] & r.validBelow[i + 1]);
        const int falling =
            joined(r.above[i], r.below[i + 2], r.validAbove[i] & r.validBelow[i + 2]);
        const int rising =
            joined(r.above[i + 2], r.below[i], r.validAbove[i + 2] & r.validBelow[i]);
        const int all =
            along * Along + across * Across + falling * Falling + rising * Rising + Valid;
        flags[i] = static_cast<uint8_t>(r.valid[i + 1] * all);
    }
}

/// Three rows of values to be smoothed, beginning with the border.
struct ValueRows
{
    const float *above;
    const float *here;
    const float *below;
};

CELL_LOOP void differencesOfRow(const ValueRows &rows, const uint8_t *flags, float *const *out,
                                int count)
{
    const ValueRows r = rows;
    float *along = out[0];
    float *across = out[1];
    float *falling = out[2];
    float *rising = out[3];
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const float twice = 2.0F * r.here[i + 1];
        const float a = (r.here[i] + r.here[i + 2]) - twice;
        const float b = (r.above[i + 1] + r.below[i + 1]) - twice;
        const float c = (r.above[i] + r.below[i + 2]) - twice;
        const float d = (r.above[i + 2] + r.below[i]) - twice;
        const int f = flags[i];
        along[i] = (f & Along) != 0 ? a : 0.0F;
        across[i] = (f & Across) != 0 ? b : 0.0F;
        falling[i] = (f & Falling) != 0 ? c : 0.0F;
        rising[i] = (f & Rising) != 0 ? d : 0.0F;
    }
}

/// The rows that one row of a step reads: second differences begin with the border.
struct StepRow
{
    std::array<std::array<const float *, directions>, 3> differences; ///< above, here, below
    const float *start; ///< values to step from, beginning with the border
    const float *values;
    const float *reach;
    const uint8_t *flags;
};

CELL_LOOP void stepRow(const StepRow &row, float lowest, float *next, int count)
{
    const float *along = row.differences[1][0];
    const float *across = row.differences[1][1];
    const float *falling = row.differences[1][2];
    const float *rising = row.differences[1][3];
    const float *acrossAbove = row.differences[0][1];
    const float *fallingAbove = row.differences[0][2];
    const float *risingAbove = row.differences[0][3];
    const float *acrossBelow = row.differences[2][1];
    const float *fallingBelow = row.differences[2][2];
    const float *risingBelow = row.differences[2][3];
    const float *start = row.start;
    const float *values = row.values;
    const uint8_t *flags = row.flags;
    const float *reach = row.reach;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const int x = i + 1;
        const float own = (along[x] + across[x]) + (falling[x] + rising[x]);
        const float straight = (along[x - 1] + along[x + 1]) + (acrossAbove[x] + acrossBelow[x]);
        const float slanted =
            (fallingAbove[x - 1] + fallingBelow[x + 1]) + (risingAbove[x + 1] + risingBelow[x - 1]);
        const float moved = start[x] - stepLength * ((straight + slanted) - 2.0F * own);
        const float value = values[i];
        const float low = value - reach[i] > lowest ? value - reach[i] : lowest;
        const float high = value + reach[i];
        const float raised = moved > low ? moved : low;
        const float kept = raised < high ? raised : high;
        next[i] = flags[i] != 0 ? kept : value;
    }
}

CELL_LOOP void extrapolateRow(const float *now, const float *before, float momentum, float *out,
                              int count)
{
#pragma omp simd
    for (int i = 0; i < count; ++i)
        out[i] = now[i] + momentum * (now[i] - before[i]);
}

/// The rows that a band of a step needs, computed in their order.
class StepWindow
{
public:
    explicit StepWindow(int width)
    {
        m_starts.fill(std::vector<float>(static_cast<size_t>(width) + 2));
        for (auto &row : m_differences)
            row.fill(std::vector<float>(static_cast<size_t>(width) + 2));
    }
    float *start(int y) { return m_starts[slot(y, m_starts.size())].data(); }
    std::vector<float> &difference(int y, size_t direction)
    {
        return m_differences[slot(y, m_differences.size())][direction];
    }

private:
    static size_t slot(int y, size_t count)
    {
        return static_cast<size_t>(y + 2 * static_cast<int>(count)) % count;
    }
    std::array<std::vector<float>, 4> m_starts;
    std::array<std::array<std::vector<float>, directions>, 3> m_differences;
};

/// The start values of a row: two interpolated values a coarse cell, and the row's own values.
struct BeginRow
{
    const float *interpolated;
    const float *coarseValid;
    const float *values;
    const float *reach;
    const uint8_t *flags;
};

CELL_LOOP void beginRow(const BeginRow &row, float lowest, float *now, int count)
{
    for (int x = 0; x < count; ++x) {
        const float value = row.values[x];
        const float low = std::max(lowest, value - row.reach[x]);
        const float begun = std::min(std::max(row.interpolated[x], low), value + row.reach[x]);
        now[x] = row.flags[x] != 0 && row.coarseValid[x / 2] > 0.0F ? begun : value;
    }
}

} // namespace

DebandLevel::DebandLevel(DebandCells cells, const DebandLimits &limits, WorkMeter &meter)
    : m_values(std::move(cells.values))
    , m_reach(std::move(cells.reach))
    , m_flags(std::move(cells.valid))
    , m_limits(limits)
    , m_now(m_values)
{
    _markDifferences(meter);
}

const uint8_t *DebandLevel::_flags(int y) const
{
    return m_flags.data() + static_cast<size_t>(y) * m_values.columns();
}

void DebandLevel::_markDifferences(WorkMeter &meter)
{
    const std::vector<uint8_t> valid = m_flags;
    meter.rows(height(), width(), [&](int first, int end) {
        std::array<MarkRow, 3> rows;
        for (MarkRow &row : rows) {
            row.values.resize(m_values.columns() + 2);
            row.valid.resize(m_values.columns() + 2);
        }
        const auto load = [&](int y) {
            MarkRow &row = rows[static_cast<size_t>(y + 3) % 3];
            if (y < 0 || y >= height()) {
                std::fill(row.valid.begin(), row.valid.end(), uint8_t{0});
                return;
            }
            std::copy_n(m_values.row(y), width(), row.values.begin() + 1);
            std::copy_n(valid.begin() + static_cast<std::ptrdiff_t>(y) * width(), width(),
                        row.valid.begin() + 1);
        };
        load(first - 1);
        load(first);
        for (int y = first; y < end; ++y) {
            load(y + 1);
            const MarkRow &above = rows[static_cast<size_t>(y + 2) % 3];
            const MarkRow &here = rows[static_cast<size_t>(y + 3) % 3];
            const MarkRow &below = rows[static_cast<size_t>(y + 4) % 3];
            markRow({above.values.data(), here.values.data(), below.values.data(),
                     above.valid.data(), here.valid.data(), below.valid.data()},
                    m_limits.step, m_flags.data() + static_cast<size_t>(y) * m_values.columns(),
                    width());
        }
    });
}

bool DebandLevel::_step(float momentum, WorkMeter &meter)
{
    const FloatGrid &before = m_before.values.empty() ? m_now : m_before;
    const bool done = meter.rows(height(), width(), [&](int first, int end) {
        StepWindow window(width());
        const auto start = [&](int y) {
            if (y >= 0 && y < height())
                extrapolateRow(m_now.row(y), before.row(y), momentum, window.start(y) + 1, width());
        };
        const auto differences = [&](int y) {
            std::array<float *, directions> out;
            for (size_t d = 0; d < directions; ++d)
                out[d] = window.difference(y, d).data() + 1;
            if (y >= 0 && y < height())
                differencesOfRow({window.start(y - 1), window.start(y), window.start(y + 1)},
                                 _flags(y), out.data(), width());
            else
                for (float *row : out)
                    std::fill_n(row, width(), 0.0F);
        };
        for (int y = first - 2; y <= first + 1; ++y)
            start(y);
        differences(first - 1);
        differences(first);
        for (int y = first; y < end; ++y) {
            start(y + 2);
            differences(y + 1);
            StepRow row{{}, window.start(y), m_values.row(y), _reach(y), _flags(y)};
            for (int side = 0; side < 3; ++side)
                for (size_t d = 0; d < directions; ++d)
                    row.differences[static_cast<size_t>(side)][d] =
                        window.difference(y + side - 1, d).data();
            stepRow(row, m_limits.lowest, m_next.row(y), width());
        }
    });
    std::swap(m_before, m_now);
    std::swap(m_now, m_next);
    return done;
}

bool DebandLevel::smooth(int steps, WorkMeter &meter)
{
    m_next = FloatGrid(width(), height());
    for (int k = 1; k <= steps; ++k) {
        // The first step looks at no earlier values, so its momentum does nothing.
        if (k == 2)
            m_next = FloatGrid(width(), height());
        const auto place = static_cast<float>(k + momentumStart);
        if (!_step(place / (place + 3.0F), meter))
            return false;
    }
    return true;
}

DebandLevel DebandLevel::coarser(WorkMeter &meter) const
{
    const int columns = (width() + 1) / 2;
    const int rows = (height() + 1) / 2;
    DebandCells cells{FloatGrid(columns, rows), FloatGrid(columns, rows), {}};
    cells.valid.resize(cells.values.values.size());
    meter.rows(rows, 2 * width(), [&](int first, int end) {
        BlockJoiner joiner(width());
        for (int y = first; y < end; ++y) {
            const int above = 2 * y;
            const int below = std::min(2 * y + 1, height() - 1);
            uint8_t *valid = cells.valid.data() + static_cast<size_t>(y) * cells.values.columns();
            joiner.join({{m_values.row(above), m_values.row(below)},
                         {_reach(above), _reach(below)},
                         {_flags(above), _flags(below)}},
                        m_limits.step, {cells.values.row(y), cells.reach.row(y), valid});
        }
    });
    return DebandLevel(std::move(cells), m_limits, meter);
}

bool DebandLevel::beginFrom(const DebandLevel &coarse, WorkMeter &meter)
{
    return meter.rows(height(), width(), [&](int first, int end) {
        DebandInterpolation rows(coarse.width());
        for (int y = first; y < end; ++y) {
            const int own = y / 2;
            const int near = y % 2 == 0 ? own - 1 : own + 1;
            const int far = 2 * own - near;
            const auto row = [&coarse](int at) -> LevelRow {
                if (at < 0 || at >= coarse.height())
                    return {nullptr, nullptr};
                return {coarse.m_now.row(at), coarse._flags(at)};
            };
            rows.interpolate({row(own), row(near), row(far)}, m_limits.step);
            beginRow({rows.values(), rows.valid(), m_values.row(y), _reach(y), _flags(y)},
                     m_limits.lowest, m_now.row(y), width());
        }
    });
}

} // namespace marlowen
