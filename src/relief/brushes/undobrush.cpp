#include "relief/brushes/brushes.h"
#include "relief/dab.h"

CELL_LOOP static bool revert(const Dab &dab)
{
    const double factor = dab.params().strength * dab.decayCubed;
    return paintHeights(dab, [=, &dab](const CellSpan &row) {
        const float *reference = rowUnder(dab, dab.relief.referenceLayer(), row);
        return [=](const CellSpan &span, int i, double height) CELL_INLINE {
            const double weight = factor * span.weight[i] * span.unmasked[i];
            return blend(static_cast<double>(reference[i]), height, weight);
        };
    });
}

bool dabUndo(const Dab &dab)
{
    return revert(dab);
}
