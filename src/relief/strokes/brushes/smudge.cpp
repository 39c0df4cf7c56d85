#include "relief/strokes/dab.h"

#include <algorithm>
#include <cstring>

namespace marlowen {

namespace {

/// The heights picked up by a stroke, by mirror image and footprint cell; negative for none.
struct Material : BrushState
{
    WarmBuffer<float> heights[4];
    bool pickedUp[4] = {};

    void beginStroke() override { std::fill_n(pickedUp, 4, false); }
};

/// Remembers the heights of the box by the footprint cell they lie under. Heights are never
/// negative, so that a negative value can stand for a footprint cell that lies off the relief.
void pickUp(const Dab &dab, float *material)
{
    const FootprintWeights &weights = dab.tool.weights();
    const int side = weights.side();
    std::fill_n(material, static_cast<qsizetype>(side) * side, -1.0F);
    for (int row = dab.box.top(); row <= dab.box.bottom(); ++row) {
        const int footRow = static_cast<int>(std::round(row - dab.centre.y())) + weights.reach;
        const float *heights = dab.relief.heights().constData() + dab.relief.index(0, row);
        for (const ColumnRun &run : dab.tool.buffers().runs)
            std::memcpy(material + static_cast<qsizetype>(footRow) * side + run.foot,
                        heights + run.column, static_cast<size_t>(run.count) * sizeof(float));
    }
}

/// `direction` 1 and -1 keep to cells that the material would raise or lower; 0 to none.
CELL_LOOP bool layDown(const Dab &dab, const float *material, float direction)
{
    const auto factor = static_cast<float>(dab.params().strength * dab.decayCubed);
    return paintHeights(dab, [=](const CellSpan &row) {
        const float *carriedRow = material + row.foot;
        return [=](const CellSpan &span, int i, float height) CELL_INLINE {
            const float carried = carriedRow[i];
            const float way = carried < 0.0F ? 0.0F : carried - height;
            const float weight = factor * span.weight[i] * span.unmasked[i];
            return height + weight * (way * direction < 0.0F ? 0.0F : way);
        };
    });
}

} // namespace

/// Applies the heights under the first dab of the stroke all along it.
bool dabSmudge(const Dab &dab)
{
    const auto side = static_cast<size_t>(dab.tool.weights().side());
    auto &carried = dab.tool.brushState<Material>();
    float *material = carried.heights[dab.image].need(side * side);
    if (!carried.pickedUp[dab.image]) {
        pickUp(dab, material);
        carried.pickedUp[dab.image] = true;
        return false;
    }
    const int mode = dab.params().mode;
    return layDown(dab, material, mode == Tool::Raise ? 1.0F : mode == Tool::Lower ? -1.0F : 0.0F);
}

} // namespace marlowen
