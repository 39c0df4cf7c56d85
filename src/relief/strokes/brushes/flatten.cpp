#include "relief/strokes/dab.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

CELL_LOOP static bool flatten(const Dab &dab, double level)
{
    const auto plane = static_cast<float>(level);
    const auto factor = static_cast<float>(std::pow(dab.params().strength, 0.4) * dab.decayCubed);
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float weight = std::min(1.0F, factor * span.weight[i] * span.unmasked[i]);
            return std::max(0.0F, (plane - height) * weight + height);
        };
    });
}

/// Toward the mean of the footprint at the start of the stroke.
bool dabFlatten(const Dab &dab)
{
    return flatten(dab, dab.plane);
}

} // namespace marlowen
