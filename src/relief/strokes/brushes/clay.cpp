#include "relief/strokes/dab.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Pulls the cells toward a plane, but only upward (`direction` 1) or downward (-1).
CELL_LOOP bool pullToPlane(const Dab &dab, double level, float direction)
{
    const double power = std::pow(dab.params().strength, 0.4);
    const auto plane = static_cast<float>(level);
    const auto k = static_cast<float>(power);
    const auto factor = static_cast<float>(dab.decayCubed * power);
    return paintHeights(dab, [=, &dab](const CellSpan &row) {
        const float *snapshot = rowUnder(dab, dab.relief.snapshotLayer(), row);
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float base = snapshot[i];
            const float target = span.weight[i] * (plane - base) * k + base;
            const float way = (target - height) * (span.unmasked[i] * factor);
            return std::max(0.0F, height + direction * std::max(0.0F, direction * way));
        };
    });
}

} // namespace

/// Fills up to a plane just above the mean of the footprint at the start of the stroke; inverted,
/// cuts down to one just below it.
bool dabClay(const Dab &dab)
{
    const double thickness = dab.params().strength * dab.relief.diagonal() * 0.02;
    return pullToPlane(dab, dab.plane + dab.direction * thickness, dab.direction);
}

/// Cuts down to the mean of the footprint at the start of the stroke; inverted, fills up to it.
bool dabScrape(const Dab &dab)
{
    return pullToPlane(dab, dab.plane, dab.direction);
}

} // namespace marlowen
