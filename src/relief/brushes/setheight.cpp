#include "relief/brushes/brushes.h"
#include "relief/dab.h"

CELL_LOOP static bool setCells(const Dab &dab, float value)
{
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &, int, float) CELL_INLINE { return value; };
    });
}

bool dabErase(const Dab &dab)
{
    return setCells(dab, 0.0F);
}

bool dabHeight(const Dab &dab)
{
    return setCells(dab, paintableHeight(dab.relief.sampleHeight));
}
