#include "relief/operations/resample.h"

#include "base/rowsharing.h"
#include "base/workmeter.h"
#include "relief/operations/columnpass.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace marlowen {

namespace {

/// A layer to be resampled; in one of heights empty cells are kept apart from covered ones. The
/// result holds zeros at first.
struct LayerJob
{
    const GridLayer *layer;
    bool covers;
    GridLayer *result;
};

/// How all layers of a relief are resampled.
struct Plan
{
    GridSize from;
    GridSize to;
    LinePlan across;
    LinePlan down;
};

/// New rows that a thread makes at a time: enough source rows that those at the ends, which the
/// next band computes again, count little.
int bandRows(const GridSize &from, const GridSize &to)
{
    constexpr double sourceRows = 8.0 * rowLanes - 2.0;
    const double rows = sourceRows * to.height / from.height;
    const double most = std::max(1.0, to.height / 8.0);
    return static_cast<int>(std::clamp(rows, 1.0, most));
}

/// The layers that were written, row by row, all of them in one sharing: false when the user
/// cancelled.
bool resampleLayers(const Plan &plan, std::vector<LayerJob> jobs, Progress &progress)
{
    std::erase_if(jobs, [](const LayerJob &job) { return !job.layer->written(); });
    std::vector<float *> results;
    for (const LayerJob &job : jobs)
        results.push_back(job.result->data());
    const int band = bandRows(plan.from, plan.to);
    const int bands = (plan.to.height + band - 1) / band;
    const int count = bands * static_cast<int>(jobs.size());
    const double cells = std::max(static_cast<double>(plan.from.width) * plan.from.height,
                                  static_cast<double>(plan.to.width) * plan.to.height);
    const auto bandCells = static_cast<qsizetype>(std::ceil(cells / bands));

    Borrowed<ColumnPass> passes;
    WorkMeter meter(progress, static_cast<double>(bandCells) * count);
    return meter.rows(count, bandCells, [&](int first, int end) {
        std::unique_ptr<ColumnPass> pass = passes.take();
        for (int i = first; i < end; ++i) {
            const auto index = static_cast<size_t>(i / bands);
            const GridView layer{jobs[index].layer->constData(), plan.from.width, plan.from.height};
            const CellRange rows{i % bands * band,
                                 std::min(plan.to.height, (i % bands + 1) * band)};
            pass->begin({layer, &plan.across, jobs[index].covers}, plan.down, rows);
            pass->makeRows(rows,
                           results[index] + static_cast<qsizetype>(rows.first) * plan.to.width);
        }
        passes.giveBack(std::move(pass));
    });
}

Plan planGrid(const GridSize &from, const GridSize &to)
{
    return {from, to, planLine(from.width, to.width), planLine(from.height, to.height)};
}

GridLayer newLayer(const GridSize &size)
{
    return GridLayer(static_cast<qsizetype>(size.width) * size.height);
}

GridLayer resampledLayer(const GridLayer &layer, const Plan &plan, bool covers)
{
    Progress silent;
    GridLayer result = newLayer(plan.to);
    resampleLayers(plan, {{&layer, covers, &result}}, silent);
    return result;
}

} // namespace

void resample1D(Line<const float> source, Line<float> destination)
{
    const LinePlan plan = planLine(source.length, destination.length);
    for (int i = 0; i < destination.length; ++i) {
        const Taps &taps = plan[i];
        const double *weights = plan.weightsOf(taps);
        double sum = 0.0;
        for (int k = 0; k < taps.count; ++k)
            sum +=
                weights[k] * static_cast<double>(source.values[(taps.first + k) * source.stride]);
        const double value = plan.averages && taps.count > 0 ? sum / taps.total : sum;
        destination.values[i * destination.stride] = static_cast<float>(value);
    }
}

GridLayer resample2D(const GridLayer &layer, GridSize from, GridSize to)
{
    return resampledLayer(layer, planGrid(from, to), false);
}

GridLayer resampleHeights(const GridLayer &layer, GridSize from, GridSize to)
{
    return resampledLayer(layer, planGrid(from, to), true);
}

std::optional<Relief::Grid> resampledGrid(const Relief &relief, GridSize to, Progress *progress)
{
    Progress silent;
    Relief::Grid grid{to.width, to.height, newLayer(to), newLayer(to), newLayer(to), newLayer(to)};
    const std::vector<LayerJob> jobs = {{&relief.heights(), true, &grid.heights},
                                        {&relief.selectionLayer(), false, &grid.selection},
                                        {&relief.maskLayer(), false, &grid.mask},
                                        {&relief.referenceLayer(), true, &grid.reference}};
    const Plan plan = planGrid({relief.width(), relief.height()}, to);
    if (!resampleLayers(plan, jobs, progress ? *progress : silent))
        return std::nullopt;
    return grid;
}

} // namespace marlowen
