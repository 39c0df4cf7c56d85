#include "relief/brushes/brushes.h"
#include "relief/dab.h"

#include <algorithm>
#include <limits>

namespace {

/// Highest of the footprint's cells; the box's first cell counts too.
CELL_LOOP float highestCell(const Dab &dab)
{
    const GridLayer &heights = dab.relief.heights();
    float highest = dab.relief.heightAt(dab.box.left(), dab.box.top());
    Dab all = dab;
    all.skipEmpty = all.skipUnselected = false;
    for (int row = dab.box.top(); row <= dab.box.bottom(); ++row) {
        for (const ColumnRun &run : dab.tool.buffers().runs) {
            const CellSpan span = gatedSpan(all, run, row, heights);
            const float *height = rowUnder(dab, heights, span);
#pragma omp simd reduction(max : highest)
            for (int i = 0; i < span.count; ++i)
                highest = std::max(highest, span.weight[i] < 0.0F ? highest : height[i]);
        }
    }
    return highest;
}

CELL_LOOP bool deposit(const Dab &dab, double ceiling)
{
    const double strength = dab.params().strength;
    const double rise = dab.relief.diagonal() * 0.001 * strength;
    const double factor = strength * dab.decayCubed;
    return paintHeights(dab, [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, double height) CELL_INLINE {
            const double weight = factor * span.weight[i] * span.unmasked[i];
            return blend(std::min(height + rise, ceiling), height, weight);
        };
    });
}

} // namespace

bool dabDeposit(const Dab &dab)
{
    const bool capped = dab.params().ceilingOrFloor;
    return deposit(dab, capped ? static_cast<double>(highestCell(dab))
                               : std::numeric_limits<double>::infinity());
}
