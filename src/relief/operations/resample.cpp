#include "relief/operations/resample.h"

#include "base/progress.h"
#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace marlowen {

namespace {

/// What one new cell takes from the source line: `count` cells from `first`, their weights from
/// `weight` in the plan's list, to be divided by `total` when the line shrinks.
struct Taps
{
    int first;
    int count;
    size_t weight;
    double total;
};

/// The taps of every new cell of a line.
struct Plan
{
    std::vector<Taps> taps;
    std::vector<double> weights;
    bool averages = false; ///< weighted sums are still to be divided by their total
};

void addInterpolation(Plan &plan, double position, int sourceLength)
{
    const int first = static_cast<int>(position);
    const double fraction = position - first;
    const int count = first + 1 < sourceLength ? 2 : 1;
    plan.taps.push_back({first, count, plan.weights.size(), 1.0});
    plan.weights.push_back(count == 2 ? 1.0 - fraction : 1.0);
    if (count == 2)
        plan.weights.push_back(fraction);
}

void addAverage(Plan &plan, double start, double end, int sourceLength)
{
    const int first = static_cast<int>(start);
    const int last = std::min(sourceLength, static_cast<int>(std::ceil(end)));
    Taps taps{first, 0, plan.weights.size(), 0.0};
    for (int cell = first; cell < last; ++cell) {
        const double overlap =
            std::min(cell + 1.0, end) - std::max(static_cast<double>(cell), start);
        if (overlap <= 0.0)
            break;
        plan.weights.push_back(overlap);
        taps.total += overlap;
        ++taps.count;
    }
    plan.taps.push_back(taps);
}

Plan planLine(int sourceLength, int destinationLength)
{
    const double ratio = static_cast<double>(sourceLength) / destinationLength;
    Plan plan;
    plan.averages = ratio > 1.0;
    plan.taps.reserve(static_cast<size_t>(destinationLength));
    for (int i = 0; i < destinationLength; ++i) {
        if (plan.averages)
            addAverage(plan, i * ratio, (i + 1) * ratio, sourceLength);
        else
            addInterpolation(plan, std::clamp((i + 0.5) * ratio - 0.5, 0.0, sourceLength - 1.0),
                             sourceLength);
    }
    return plan;
}

void resampleLine(const Plan &plan, Line<const float> source, Line<float> destination)
{
    for (int i = 0; i < destination.length; ++i) {
        const Taps &taps = plan.taps[static_cast<size_t>(i)];
        const double *weights = plan.weights.data() + taps.weight;
        double sum = 0.0;
        for (int k = 0; k < taps.count; ++k)
            sum +=
                weights[k] * static_cast<double>(source.values[(taps.first + k) * source.stride]);
        const double value = plan.averages && taps.count > 0 ? sum / taps.total : sum;
        destination.values[i * destination.stride] = static_cast<float>(value);
    }
}

/// Rows that are resampled side by side, each in its own lane: cell after cell, `lanes` floats
/// each.
constexpr int lanes = 8;

/// Lays rows side by side; true when one of their cells is empty.
bool interleave(const float *rows, qsizetype stride, int count, float *columns)
{
    bool empties = false;
    for (qsizetype column = 0; column < stride; ++column) {
        for (int lane = 0; lane < count; ++lane) {
            const float value = rows[lane * stride + column];
            columns[column * lanes + lane] = value;
            empties |= value == 0.0F;
        }
    }
    return empties;
}

void storeLanes(const std::array<double, lanes> &sums, float *values, qsizetype stride)
{
    for (size_t lane = 0; lane < lanes; ++lane)
        values[static_cast<qsizetype>(lane) * stride] = static_cast<float>(sums[lane]);
}

/// One new row of every lane from the interleaved columns; share(weight, cell) is what a cell adds.
template <typename Share>
CELL_INLINE inline void sumLanes(const Plan &plan, const float *columns, float *out, Share share)
{
    const qsizetype stride = static_cast<qsizetype>(plan.taps.size());
    for (const Taps &taps : plan.taps) {
        const float *from = columns + static_cast<qsizetype>(taps.first) * lanes;
        std::array<double, lanes> sums{};
        for (int k = 0; k < taps.count; ++k, from += lanes) {
            const double weight = plan.weights[taps.weight + static_cast<size_t>(k)];
            for (size_t lane = 0; lane < lanes; ++lane)
                sums[lane] += share(weight, from[lane]);
        }
        if (plan.averages) {
            for (double &sum : sums)
                sum /= taps.total;
        }
        storeLanes(sums, out++, stride);
    }
}

CELL_LOOP void acrossLanes(const Plan &plan, const float *columns, float *out)
{
    sumLanes(plan, columns, out,
             [](double weight, float cell) { return weight * static_cast<double>(cell); });
}

/// As acrossLanes for the occupancy of the cells: 1 where they are not empty.
CELL_LOOP void coverLanes(const Plan &plan, const float *columns, float *out)
{
    sumLanes(plan, columns, out,
             [](double weight, float cell) { return cell != 0.0F ? weight : 0.0; });
}

CELL_LOOP void addRow(double *sums, const float *row, double weight, qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i)
        sums[i] += weight * static_cast<double>(row[i]);
}

CELL_LOOP void divideRow(float *out, const double *sums, double total, qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i)
        out[i] = static_cast<float>(sums[i] / total);
}

CELL_LOOP void mixRows(float *out, std::array<const float *, 2> rows, std::array<double, 2> weights,
                       qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i)
        out[i] = static_cast<float>(static_cast<double>(rows[0][i]) * weights[0] +
                                    static_cast<double>(rows[1][i]) * weights[1]);
}

/// What is less than half covered becomes empty; the rest gets the height of its covered part.
CELL_LOOP void uncoverRow(float *heights, const float *covered, qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i)
        heights[i] = covered[i] >= 0.5F ? heights[i] / covered[i] : 0.0F;
}

/// A row after the row pass, and how far each of its cells is covered: null when it all is.
struct WideRow
{
    const float *values;
    const float *covered;
};

/// The row pass, a block of `lanes` rows at a time. The last two blocks are kept: the column pass
/// asks for rows in rising order but for the one that two new rows share.
class RowPass
{
public:
    RowPass(const GridLayer &layer, GridSize from, const Plan &across, bool covers)
        : m_layer(layer)
        , m_from(from)
        , m_across(across)
        , m_covers(covers)
        , m_columns(static_cast<size_t>(from.width) * lanes)
    {
        for (Block &block : m_blocks) {
            block.values.resize(across.taps.size() * lanes);
            if (covers)
                block.covered.resize(across.taps.size() * lanes);
        }
    }

    WideRow row(int index)
    {
        Block &block = m_blocks[static_cast<size_t>(index / lanes % 2)];
        if (block.firstRow != index / lanes * lanes)
            _load(block, index / lanes * lanes);
        const size_t start = static_cast<size_t>(index % lanes) * m_across.taps.size();
        return {block.values.data() + start,
                block.empties ? block.covered.data() + start : nullptr};
    }

private:
    struct Block
    {
        int firstRow = -1;
        bool empties = false;
        std::vector<float> values;
        std::vector<float> covered;
    };

    void _load(Block &block, int firstRow)
    {
        const float *rows = m_layer.constData() + static_cast<qsizetype>(firstRow) * m_from.width;
        const int count = std::min(lanes, m_from.height - firstRow);
        block.firstRow = firstRow;
        block.empties = interleave(rows, m_from.width, count, m_columns.data()) && m_covers;
        acrossLanes(m_across, m_columns.data(), block.values.data());
        if (block.empties)
            coverLanes(m_across, m_columns.data(), block.covered.data());
    }

    const GridLayer &m_layer;
    GridSize m_from;
    const Plan &m_across;
    bool m_covers;
    std::vector<float> m_columns;
    std::array<Block, 2> m_blocks;
};

/// The column pass: one new row after the other, from the wide rows it covers.
class ColumnPass
{
public:
    ColumnPass(RowPass &rows, const Plan &down, int width)
        : m_rows(rows)
        , m_down(down)
        , m_sums(static_cast<size_t>(width))
        , m_coverSums(static_cast<size_t>(width))
        , m_ones(static_cast<size_t>(width), 1.0F)
        , m_covered(static_cast<size_t>(width))
    {
    }

    void makeRow(const Taps &taps, float *out)
    {
        const double *weights = m_down.weights.data() + taps.weight;
        if (m_down.averages)
            _average(taps, weights, out);
        else
            _interpolate(taps, weights, out);
    }

private:
    qsizetype _width() const { return static_cast<qsizetype>(m_sums.size()); }

    void _interpolate(const Taps &taps, const double *weights, float *out)
    {
        const WideRow above = m_rows.row(taps.first);
        if (taps.count == 1) {
            std::copy_n(above.values, _width(), out);
            if (above.covered)
                uncoverRow(out, above.covered, _width());
            return;
        }
        const WideRow below = m_rows.row(taps.first + 1);
        mixRows(out, {above.values, below.values}, {weights[0], weights[1]}, _width());
        if (!above.covered && !below.covered)
            return;
        const float *ones = m_ones.data();
        mixRows(m_covered.data(),
                {above.covered ? above.covered : ones, below.covered ? below.covered : ones},
                {weights[0], weights[1]}, _width());
        uncoverRow(out, m_covered.data(), _width());
    }

    void _average(const Taps &taps, const double *weights, float *out)
    {
        std::fill(m_sums.begin(), m_sums.end(), 0.0);
        double fullSoFar = 0.0;
        bool full = true;
        for (int k = 0; k < taps.count; ++k) {
            const WideRow row = m_rows.row(taps.first + k);
            addRow(m_sums.data(), row.values, weights[k], _width());
            if (full && row.covered)
                std::fill(m_coverSums.begin(), m_coverSums.end(), fullSoFar);
            full = full && !row.covered;
            if (full)
                fullSoFar += weights[k];
            else
                addRow(m_coverSums.data(), row.covered ? row.covered : m_ones.data(), weights[k],
                       _width());
        }
        divideRow(out, m_sums.data(), taps.total, _width());
        if (full)
            return;
        divideRow(m_covered.data(), m_coverSums.data(), taps.total, _width());
        uncoverRow(out, m_covered.data(), _width());
    }

    RowPass &m_rows;
    const Plan &m_down;
    std::vector<double> m_sums;
    std::vector<double> m_coverSums;
    std::vector<float> m_ones;
    std::vector<float> m_covered;
};

/// A layer to be resampled; in one of heights empty cells are kept apart from covered ones.
struct LayerJob
{
    const GridLayer &layer;
    GridSize from;
    GridSize to;
    bool covers;
};

/// What resampling a layer reports: shares of the whole, the first `done` of which are over.
struct LayerProgress
{
    Progress &progress;
    double done = 0.0;
    double share = 1.0;
};

constexpr int rowsPerReport = 64;

/// An incomplete layer when the progress was cancelled.
GridLayer resampleLayer(const LayerJob &job, const LayerProgress &report)
{
    const GridSize from = job.from;
    const GridSize to = job.to;
    GridLayer result(static_cast<qsizetype>(to.width) * to.height);
    if (!job.layer.written())
        return result;
    const Plan across = planLine(from.width, to.width);
    const Plan down = planLine(from.height, to.height);
    RowPass rows(job.layer, from, across, job.covers);
    ColumnPass columns(rows, down, to.width);
    float *out = result.data();
    for (int row = 0; row < to.height; ++row, out += to.width) {
        if (row % rowsPerReport == 0) {
            if (report.progress.cancelled())
                break;
            report.progress.advance(report.done + report.share * row / to.height);
        }
        columns.makeRow(down.taps[static_cast<size_t>(row)], out);
    }
    return result;
}

} // namespace

void resample1D(Line<const float> source, Line<float> destination)
{
    resampleLine(planLine(source.length, destination.length), source, destination);
}

GridLayer resample2D(const GridLayer &layer, GridSize from, GridSize to)
{
    Progress silent;
    return resampleLayer({layer, from, to, false}, {silent});
}

GridLayer resampleHeights(const GridLayer &layer, GridSize from, GridSize to)
{
    Progress silent;
    return resampleLayer({layer, from, to, true}, {silent});
}

std::optional<Relief::Grid> resampledGrid(const Relief &relief, GridSize to, Progress *progress)
{
    Progress silent;
    Progress &shown = progress ? *progress : silent;
    const GridSize from{relief.width(), relief.height()};
    constexpr double share = 0.25;
    Relief::Grid grid{
        to.width,
        to.height,
        resampleLayer({relief.heights(), from, to, true}, {shown, 0.0, share}),
        resampleLayer({relief.selectionLayer(), from, to, false}, {shown, share, share}),
        resampleLayer({relief.maskLayer(), from, to, false}, {shown, 2.0 * share, share}),
        resampleLayer({relief.referenceLayer(), from, to, true}, {shown, 3.0 * share, share})};
    if (shown.cancelled())
        return std::nullopt;
    return grid;
}

} // namespace marlowen
