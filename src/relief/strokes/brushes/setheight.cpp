#include "relief/strokes/dab.h"

namespace marlowen {

CELL_LOOP static bool setCells(const Dab &dab, float value)
{
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &, int, float) CELL_INLINE { return value; };
    });
}

/// Empties the cells.
bool dabErase(const Dab &dab)
{
    return setCells(dab, 0.0F);
}

/// Sets the cells to the sampled height.
bool dabHeight(const Dab &dab)
{
    return setCells(dab, paintableHeight(dab.relief.sampleHeight));
}

} // namespace marlowen
