#include "relief/strokes/dab.h"

#include <algorithm>

namespace marlowen {

namespace {

/// `direction` is 1 to raise, -1 to lower. Each dab moves a cell by two fifths of its difference to
/// the stamp's level; a cell already beyond the level is set to it.
CELL_LOOP bool stamp(const Dab &dab, float direction)
{
    const auto depth = static_cast<float>(dab.relief.diagonal() * 0.04 * dab.params().strength);
    const float signedDepth = direction * depth;
    return paintHeights(dab, [=, &dab](const CellSpan &row) {
        const float *snapshot = rowUnder(dab, dab.relief.snapshotLayer(), row);
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float offset = signedDepth * span.weight[i] * span.unmasked[i];
            const float level = std::max(0.0F, snapshot[i] + offset);
            const float way = level - height;
            const float next = way * direction >= 0.0F ? height + way * 0.4F : level;
            return std::max(0.0F, next);
        };
    });
}

} // namespace

/// Presses the alpha image into the heights that the stroke began with, in the tool's direction.
bool dabStamp(const Dab &dab)
{
    return stamp(dab, dab.direction);
}

} // namespace marlowen
