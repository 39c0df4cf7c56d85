#include "relief/brushes/boxcopy.h"
#include "relief/brushes/brushes.h"
#include "relief/dab.h"

#include <algorithm>
#include <cmath>

CELL_LOOP static bool gather(const Dab &dab, const BoxCopy &before, double pull)
{
    const double factor = dab.params().strength * dab.decayCubed;
    const double cx = dab.centre.x();
    const double cy = dab.centre.y();
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const double dx = span.column + i - cx;
            const double dy = span.row - cy;
            const double distance = std::sqrt(dx * dx + dy * dy);
            const double weight = std::min(1.0, factor * span.weight[i] * span.unmasked[i]);
            const double away = pull * weight / std::max(distance, 1e-6);
            const double sampled = before.sample(span.column + i + dx * away, span.row + dy * away);
            return distance > 1e-6 ? static_cast<float>(sampled) : height;
        };
    });
}

bool dabPinch(const Dab &dab)
{
    const double pull = 0.25 * dab.tool.radius();
    return gather(dab, copyAround(dab, pull, pull), pull);
}
