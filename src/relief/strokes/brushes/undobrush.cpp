#include "relief/strokes/dab.h"

namespace marlowen {

CELL_LOOP static bool revert(const Dab &dab)
{
    const auto factor = static_cast<float>(dab.params().strength * dab.decayCubed);
    return paintHeights(dab, [=, &dab](const CellSpan &row) {
        const float *reference = rowUnder(dab, dab.relief.referenceLayer(), row);
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float weight = factor * span.weight[i] * span.unmasked[i];
            return height + weight * (reference[i] - height);
        };
    });
}

/// Toward the reference heights.
bool dabUndo(const Dab &dab)
{
    return revert(dab);
}

} // namespace marlowen
