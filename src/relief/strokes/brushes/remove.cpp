#include "relief/strokes/dab.h"

#include <algorithm>
#include <limits>

namespace marlowen {

namespace {

/// Lowest filled (and, under a selection, selected) cell of the footprint; 0 when there is none,
/// which does not limit anything.
CELL_LOOP float lowestFilledCell(const Dab &dab)
{
    constexpr float none = std::numeric_limits<float>::max();
    const GridLayer &heights = dab.relief.heights();
    float lowest = none;
    Dab filled = dab;
    filled.skipEmpty = true;
    for (int row = dab.box.top(); row <= dab.box.bottom(); ++row) {
        for (const ColumnRun &run : dab.tool.buffers().runs) {
            const CellSpan span = cellsOf(filled, run, row);
            const float *height = rowUnder(dab, heights, span);
#pragma omp simd reduction(min : lowest)
            for (int i = 0; i < span.count; ++i)
                lowest = std::min(lowest, span.leavesAlone(i, height[i]) ? none : height[i]);
        }
    }
    return lowest == none ? 0.0F : lowest;
}

CELL_LOOP bool lower(const Dab &dab, float floor)
{
    const double strength = dab.params().strength;
    const auto fall = static_cast<float>(dab.relief.diagonal() * 0.001 * strength);
    const auto factor = static_cast<float>(strength * dab.decayCubed);
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float weight = factor * span.weight[i] * span.unmasked[i];
            // A floor above the cell does not lift it.
            const float way = std::min(0.0F, std::max(floor - height, -fall));
            return std::max(0.0F, height + weight * way);
        };
    });
}

} // namespace

/// Lowers by diag * 0.001 * s * w, down to 0, or to the lowest filled cell with the floor on.
bool dabRemove(const Dab &dab)
{
    return lower(dab, dab.params().ceilingOrFloor ? lowestFilledCell(dab) : 0.0F);
}

} // namespace marlowen
