#include "relief/brushes/brushes.h"
#include "relief/brushes/plane.h"
#include "relief/dab.h"

#include <algorithm>
#include <cmath>

CELL_LOOP static bool flatten(const Dab &dab, double plane)
{
    const double factor = std::pow(dab.params().strength, 0.4) * dab.decayCubed;
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, double height) CELL_INLINE {
            const double weight = std::min(1.0, factor * span.weight[i] * span.unmasked[i]);
            return std::max(0.0, (plane - height) * weight + height);
        };
    });
}

bool dabFlatten(const Dab &dab)
{
    return flatten(dab, footprintMean(dab));
}
