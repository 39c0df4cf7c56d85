#include "relief/resample.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

void _addInterpolation(Plan &plan, double position, int sourceLength)
{
    const int first = static_cast<int>(position);
    const double fraction = position - first;
    const int count = first + 1 < sourceLength ? 2 : 1;
    plan.taps.push_back({first, count, plan.weights.size(), 1.0});
    plan.weights.push_back(count == 2 ? 1.0 - fraction : 1.0);
    if (count == 2)
        plan.weights.push_back(fraction);
}

void _addAverage(Plan &plan, double start, double end, int sourceLength)
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

Plan _planLine(int sourceLength, int destinationLength)
{
    const double ratio = static_cast<double>(sourceLength) / destinationLength;
    Plan plan;
    plan.averages = ratio > 1.0;
    plan.taps.reserve(static_cast<size_t>(destinationLength));
    for (int i = 0; i < destinationLength; ++i) {
        if (plan.averages)
            _addAverage(plan, i * ratio, (i + 1) * ratio, sourceLength);
        else
            _addInterpolation(plan, std::clamp((i + 0.5) * ratio - 0.5, 0.0, sourceLength - 1.0),
                              sourceLength);
    }
    return plan;
}

void _resampleLine(const Plan &plan, Line<const float> source, Line<float> destination)
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

} // namespace

void resample1D(Line<const float> source, Line<float> destination)
{
    _resampleLine(_planLine(source.length, destination.length), source, destination);
}

GridLayer resample2D(const GridLayer &layer, GridSize from, GridSize to)
{
    GridLayer result(static_cast<qsizetype>(to.width) * to.height);
    if (!layer.written())
        return result;
    const Plan across = _planLine(from.width, to.width);
    const Plan down = _planLine(from.height, to.height);
    std::vector<float> rows(static_cast<size_t>(to.width) * static_cast<size_t>(from.height));
    for (int row = 0; row < from.height; ++row) {
        _resampleLine(across,
                      {layer.constData() + static_cast<qsizetype>(row) * from.width, from.width, 1},
                      {rows.data() + static_cast<qsizetype>(row) * to.width, to.width, 1});
    }
    for (int column = 0; column < to.width; ++column) {
        _resampleLine(down, {rows.data() + column, from.height, to.width},
                      {result.data() + column, to.height, to.width});
    }
    return result;
}

GridLayer resampleHeights(const GridLayer &layer, GridSize from, GridSize to)
{
    GridLayer result = resample2D(layer, from, to);
    if (!layer.written())
        return result;
    GridLayer occupancy(layer.size());
    for (qsizetype i = 0; i < layer.size(); ++i)
        occupancy.data()[i] = layer.constData()[i] != 0.0F ? 1.0F : 0.0F;
    const GridLayer covered = resample2D(occupancy, from, to);
    float *heights = result.data();
    for (qsizetype i = 0; i < result.size(); ++i)
        heights[i] = covered.constData()[i] >= 0.5F ? heights[i] / covered.constData()[i] : 0.0F;
    return result;
}

Relief::Grid resampledGrid(const Relief &relief, int newWidth, int newHeight)
{
    const GridSize from{relief.width(), relief.height()};
    const GridSize to{newWidth, newHeight};
    return {newWidth,
            newHeight,
            resampleHeights(relief.heights(), from, to),
            resample2D(relief.selectionLayer(), from, to),
            resample2D(relief.maskLayer(), from, to),
            resampleHeights(relief.referenceLayer(), from, to)};
}
