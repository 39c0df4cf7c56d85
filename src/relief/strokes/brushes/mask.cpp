#include "relief/strokes/dab.h"

#include <algorithm>

namespace marlowen {

CELL_LOOP static bool paintMask(const Dab &dab, float step)
{
    return paintCells(dab, dab.relief.maskLayer(), [=](const CellSpan &) {
        return [=](const CellSpan &span, int i, float mask) CELL_INLINE {
            return std::min(std::max(mask + step * span.weight[i], 0.0F), 1.0F);
        };
    });
}

/// Paints the mask; Lower removes it.
bool dabMask(const Dab &dab)
{
    const auto step = static_cast<float>(dab.params().strength + 0.15);
    return paintMask(dab, dab.params().mode == Tool::Lower ? -step : step);
}

} // namespace marlowen
