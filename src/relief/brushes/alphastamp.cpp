#include "relief/brushes/brushes.h"
#include "relief/dab.h"

#include <algorithm>

namespace {

/// `direction` is 1 to raise, -1 to lower. Each dab goes two fifths of the way to the stamp's
/// level; a cell already beyond it is set to it.
CELL_LOOP bool stamp(const Dab &dab, double direction)
{
    const double depth = direction * dab.relief.diagonal() * 0.04 * dab.params().strength;
    return paintHeights(dab, [=, &dab](const CellSpan &row) {
        const float *snapshot = rowUnder(dab, dab.relief.snapshotLayer(), row);
        return [=](const CellSpan &span, int i, double height) CELL_INLINE {
            const double offset = depth * span.weight[i] * span.unmasked[i];
            const double level = std::max(0.0, snapshot[i] + offset);
            const double way = level - height;
            const double next = way * direction >= 0.0 ? height + way * 0.4 : level;
            return std::max(0.0, next);
        };
    });
}

} // namespace

bool dabStampRaise(const Dab &dab)
{
    return stamp(dab, 1.0);
}

bool dabStampLower(const Dab &dab)
{
    return stamp(dab, -1.0);
}

bool dabStampClay(const Dab &dab)
{
    return stamp(dab, dab.relief.invert ? -1.0 : 1.0);
}
