#include "relief/strokes/dab.h"

#include <algorithm>

namespace marlowen {

namespace {

/// -1 in place of the weights of cells whose value is 0.
CELL_LOOP void dropZeros(float *gated, const float *weights, const float *values, int count)
{
#pragma omp simd
    for (int i = 0; i < count; ++i)
        gated[i] = values[i] == 0.0F ? -1.0F : weights[i];
}

CELL_LOOP void subtractFromOne(float *result, const float *values, int count)
{
#pragma omp simd
    for (int i = 0; i < count; ++i)
        result[i] = 1.0F - values[i];
}

/// Weights scaled by a pressure below 1; cells outside the footprint keep their negative weight.
CELL_LOOP void weaken(float *weakened, const float *weights, float pressure, int count)
{
#pragma omp simd
    for (int i = 0; i < count; ++i)
        weakened[i] = weights[i] < 0.0F ? weights[i] : weights[i] * pressure;
}

/// A bound of a dab's box as a cell; the clamp keeps distant bounds representable.
int truncated(double bound)
{
    return static_cast<int>(std::clamp(std::trunc(bound), -1e9, 1e9));
}

} // namespace

QPointF dabCentre(const Relief &relief, QPointF point)
{
    return {relief.width() * 0.5 + point.x(), relief.height() * 0.5 + point.y()};
}

QRect dabBox(const Relief &relief, QPointF centre, double radius)
{
    const QRect box(QPoint(truncated(centre.x() - radius), truncated(centre.y() - radius)),
                    QPoint(truncated(centre.x() + radius), truncated(centre.y() + radius)));
    return box & relief.rect();
}

float paintableHeight(float height)
{
    return std::isfinite(height) ? std::max(height, 0.0F) : 0.0F;
}

void mapColumns(const Dab &dab)
{
    // Rounding half away from zero leaves a gap at the centre when it lies half way between two
    // columns: the box then falls into two runs.
    const int reach = dab.weights->reach;
    std::vector<ColumnRun> &runs = dab.tool.buffers().runs;
    runs.clear();
    for (int column = dab.box.left(); column <= dab.box.right(); ++column) {
        const int foot = static_cast<int>(std::round(column - dab.centre.x())) + reach;
        const bool follows = !runs.empty() && runs.back().foot + runs.back().count == foot;
        if (follows)
            ++runs.back().count;
        else
            runs.push_back({column, 1, foot});
    }
}

CellSpan cellsOf(const Dab &dab, const ColumnRun &run, int row, SpanBuffers &buffers)
{
    const FootprintWeights &weights = *dab.weights;
    CellSpan span;
    span.row = row;
    const int footRow = static_cast<int>(std::round(row - dab.centre.y())) + weights.reach;
    if (footRow < 0 || footRow >= weights.side())
        return span;
    const FootprintWeights::Extent extent = weights.rows[footRow];
    const int first = std::max(run.foot, extent.first);
    const int last = std::min(run.foot + run.count - 1, extent.last);
    if (last < first)
        return span;

    const Relief &relief = dab.relief;
    span.column = run.column + first - run.foot;
    span.count = last - first + 1;
    span.cell = relief.index(span.column, row);
    span.foot = static_cast<qsizetype>(footRow) * weights.side() + first;
    span.weight = weights.values + span.foot;
    span.skipped = dab.skipEmpty ? 0.0F : -1.0F;
    if (dab.skipUnselected) {
        const float *selected = rowUnder(dab, relief.selectionLayer(), span);
        dropZeros(buffers.gated.data(), span.weight, selected, span.count);
        span.weight = buffers.gated.data();
    }
    if (dab.pressure != 1.0F) {
        weaken(buffers.gated.data(), span.weight, dab.pressure, span.count);
        span.weight = buffers.gated.data();
    }
    span.unmasked = dab.tool.buffers().ones.data();
    if (dab.maskWeakens && relief.maskLayer().written()) {
        subtractFromOne(buffers.unmasked.data(), rowUnder(dab, relief.maskLayer(), span),
                        span.count);
        span.unmasked = buffers.unmasked.data();
    }
    return span;
}

} // namespace marlowen
