#include "relief/brushes/boxcopy.h"
#include "relief/brushes/brushes.h"
#include "relief/dab.h"

#include <cmath>

CELL_LOOP static bool drag(const Dab &dab, const BoxCopy &before)
{
    const double dx = dab.shift.x();
    const double dy = dab.shift.y();
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, float) CELL_INLINE {
            const double weight = static_cast<double>(span.weight[i]) * span.unmasked[i];
            return static_cast<float>(
                before.sample(span.column + i - dx * weight, span.row - dy * weight));
        };
    });
}

bool dabMove(const Dab &dab)
{
    const double dx = std::abs(dab.shift.x());
    const double dy = std::abs(dab.shift.y());
    if (dx < 1e-9 && dy < 1e-9)
        return false;
    return drag(dab, copyAround(dab, dx, dy));
}
