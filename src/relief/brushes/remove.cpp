#include "relief/brushes/brushes.h"
#include "relief/dab.h"

#include <algorithm>
#include <limits>

namespace {

/// Lowest filled (and, under a selection, selected) cell of the footprint; 0 when there is none,
/// which is no floor at all.
CELL_LOOP float lowestFilledCell(const Dab &dab)
{
    constexpr float none = std::numeric_limits<float>::max();
    const GridLayer &heights = dab.relief.heights();
    float lowest = none;
    Dab filled = dab;
    filled.skipEmpty = true;
    for (int row = dab.box.top(); row <= dab.box.bottom(); ++row) {
        for (const ColumnRun &run : dab.tool.buffers().runs) {
            const CellSpan span = gatedSpan(filled, run, row, heights);
            const float *height = rowUnder(dab, heights, span);
#pragma omp simd reduction(min : lowest)
            for (int i = 0; i < span.count; ++i)
                lowest = std::min(lowest, span.weight[i] < 0.0F ? none : height[i]);
        }
    }
    return lowest == none ? 0.0F : lowest;
}

CELL_LOOP bool lower(const Dab &dab, double floor)
{
    const double strength = dab.params().strength;
    const double fall = dab.relief.diagonal() * 0.001 * strength;
    const double factor = strength * dab.decayCubed;
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, double height) CELL_INLINE {
            const double weight = factor * span.weight[i] * span.unmasked[i];
            // A floor above the cell does not lift it.
            const double target = std::min(height, std::max(floor, height - fall));
            return std::max(0.0, blend(target, height, weight));
        };
    });
}

} // namespace

bool dabRemove(const Dab &dab)
{
    return lower(dab,
                 dab.params().ceilingOrFloor ? static_cast<double>(lowestFilledCell(dab)) : 0.0);
}
