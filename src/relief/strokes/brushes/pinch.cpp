#include "relief/strokes/brushes/sampling.h"
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
CELL_LOOP bool gatherSpan(const HeightField &field, const CellSpan &span, const Pull &pull,
                          float *painted)
{
    const HeightField heights = field;
    const CellSpan cells = span;
    const Pull p = pull;
    const double dy = span.row - p.centre.y();
    const auto place = [=](SamplePlaces &places, int start, int count) CELL_INLINE {
#pragma omp simd
        for (int i = 0; i < count; ++i) {
            const int cell = start + i;
            const double dx = cells.column + cell - p.centre.x();
            const double distance = std::sqrt(dx * dx + dy * dy);
            const double weight =
                std::min(1.0, p.factor * cells.weight[cell] * cells.unmasked[cell]);
            // The cell at the centre has no direction to move in.
            const double shift = distance > 1e-6 ? p.cells * weight : 0.0;
            const double away = shift / std::max(distance, 1e-6);
            places.set(i, heights, cells.column + cell + dx * away, cells.row + dy * away);
        }
    };
    return sampleSpan(field, span, painted, place);
}

} // namespace

/// Gathers the heights toward the middle of the dab.
bool dabPinch(const Dab &dab)
{
    const Pull pull{dab.centre, 0.25 * dab.tool.radius(), dab.params().strength * dab.decayCubed};
    return paintSamples(dab, [&](const HeightField &field, const CellSpan &span, float *painted) {
        return gatherSpan(field, span, pull, painted);
    });
}

} // namespace marlowen
