#include "relief/brushes/brushes.h"
#include "relief/brushes/plane.h"
#include "relief/dab.h"

#include <algorithm>
#include <cmath>

namespace {

/// Pulls the cells toward a plane, but only upward (`direction` 1) or downward (-1).
CELL_LOOP bool pullToPlane(const Dab &dab, double plane, double direction)
{
    const double k = std::pow(dab.params().strength, 0.4);
    const double factor = dab.decayCubed * k;
    return paintHeights(dab, [=, &dab](const CellSpan &row) {
        const float *snapshot = rowUnder(dab, dab.relief.snapshotLayer(), row);
        return [=](const CellSpan &span, int i, double height) CELL_INLINE {
            const double base = snapshot[i];
            const double level = span.weight[i] * (plane - base) * k + base;
            const double next = (level - height) * (span.unmasked[i] * factor) + height;
            return (next - height) * direction > 0.0 ? std::max(0.0, next) : height;
        };
    });
}

} // namespace

bool dabClay(const Dab &dab)
{
    const double thickness = dab.params().strength * dab.relief.diagonal() * 0.02;
    const double mean = footprintMean(dab);
    if (dab.relief.invert)
        return pullToPlane(dab, mean - thickness, -1.0);
    return pullToPlane(dab, mean + thickness, 1.0);
}

bool dabScrape(const Dab &dab)
{
    return pullToPlane(dab, footprintMean(dab), dab.relief.invert ? 1.0 : -1.0);
}
