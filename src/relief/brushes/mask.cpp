#include "relief/brushes/brushes.h"
#include "relief/dab.h"

#include <algorithm>

CELL_LOOP static bool paintMask(const Dab &dab, double step)
{
    return paintCells(dab, dab.relief.maskLayer(), [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, double mask) CELL_INLINE {
            return std::min(std::max(mask + step * span.weight[i], 0.0), 1.0);
        };
    });
}

bool dabMask(const Dab &dab)
{
    const double step = dab.params().strength + 0.15;
    return paintMask(dab, dab.params().mode == Tool::Lower ? -step : step);
}
