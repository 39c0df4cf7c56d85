#include "relief/strokes/dab.h"

#include <algorithm>
#include <limits>

namespace marlowen {

namespace {

/// Highest of the footprint's cells; the box's first cell counts as well.
CELL_LOOP float highestCell(const Dab &dab)
{
    const GridLayer &heights = dab.relief.heights();
    float highest = dab.relief.heightAt(dab.box.left(), dab.box.top());
    Dab all = dab;
    all.skipEmpty = all.skipUnselected = false;
    for (int row = dab.box.top(); row <= dab.box.bottom(); ++row) {
        for (const ColumnRun &run : dab.tool.buffers().runs) {
            const CellSpan span = cellsOf(all, run, row);
            const float *height = rowUnder(dab, heights, span);
#pragma omp simd reduction(max : highest)
            for (int i = 0; i < span.count; ++i)
                highest = std::max(highest, span.weight[i] < 0.0F ? 0.0F : height[i]);
        }
    }
    return highest;
}

CELL_LOOP bool raise(const Dab &dab, float ceiling)
{
    const double strength = dab.params().strength;
    const auto rise = static_cast<float>(dab.relief.diagonal() * 0.001 * strength);
    const auto factor = static_cast<float>(strength * dab.decayCubed);
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float weight = factor * span.weight[i] * span.unmasked[i];
            return height + weight * std::min(rise, ceiling - height);
        };
    });
}

} // namespace

/// Raises by diag * 0.001 * s * w, up to the highest cell of the footprint with the ceiling on.
bool dabDeposit(const Dab &dab)
{
    const bool capped = dab.params().ceilingOrFloor;
    return raise(dab, capped ? highestCell(dab) : std::numeric_limits<float>::max());
}

} // namespace marlowen
