#include "relief/brushes/brushes.h"
#include "relief/dab.h"

CELL_LOOP static bool setCells(const Dab &dab, double value)
{
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &, int, double) CELL_INLINE { return value; };
    });
}

bool dabErase(const Dab &dab)
{
    return setCells(dab, 0.0);
}

bool dabHeight(const Dab &dab)
{
    return setCells(dab, static_cast<double>(paintableHeight(dab.relief.sampleHeight)));
}
