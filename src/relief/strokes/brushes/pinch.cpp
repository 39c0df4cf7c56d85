#include "relief/strokes/brushes/boxcopy.h"
#include "relief/strokes/dab.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

struct Pull
{
    QPointF centre;
    double cells;  ///< farthest that material moves
    double factor; ///< share of it at full weight
};

/// The heights that lie farther out than the cells of a span, on the line from the centre.
CELL_LOOP void gatherRow(const BoxCopy &before, const CellSpan &row, const Pull &pull,
                         float *samples)
{
    const BoxCopy copy = before;
    const CellSpan span = row;
    const Pull p = pull;
    const double dy = span.row - p.centre.y();
#pragma omp simd
    for (int i = 0; i < span.count; ++i) {
        const double dx = span.column + i - p.centre.x();
        const double distance = std::sqrt(dx * dx + dy * dy);
        const double weight = std::min(1.0, p.factor * span.weight[i] * span.unmasked[i]);
        // The cell at the centre has no direction to move in.
        const double shift = distance > 1e-6 ? p.cells * weight : 0.0;
        const double away = shift / std::max(distance, 1e-6);
        samples[i] = copy.sample(span.column + i + dx * away, span.row + dy * away);
    }
}

} // namespace

/// Gathers the heights toward the middle of the dab.
bool dabPinch(const Dab &dab)
{
    const double cells = 0.25 * dab.tool.radius();
    const Pull pull{dab.centre, cells, dab.params().strength * dab.decayCubed};
    const double reach = cells * std::min(1.0, pull.factor);
    const BoxCopy before = copyAround(dab, reach, reach);
    return paintSamples(
        dab, [&](const CellSpan &span, float *samples) { gatherRow(before, span, pull, samples); });
}

} // namespace marlowen
