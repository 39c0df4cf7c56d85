#include "relief/strokes/brushes/boxcopy.h"

#include <cstring>

namespace marlowen {

namespace {

int cellsBeyond(double reach)
{
    // One more for the bilinear sample's far neighbour and one for rounding.
    return static_cast<int>(std::min(std::ceil(reach), 1e8)) + 2;
}

} // namespace

BoxCopy copyAround(const Dab &dab, double columns, double rows)
{
    const int x = cellsBeyond(columns);
    const int y = cellsBeyond(rows);
    const QRect box = dab.box.adjusted(-x, -y, x, y) & dab.relief.rect();
    const int stride = box.width() + 1;
    const auto length = static_cast<size_t>(stride);
    float *values = dab.tool.buffers().copy.need(length * static_cast<size_t>(box.height() + 1));
    const GridLayer &heights = dab.relief.heights();
    for (int row = 0; row <= box.height(); ++row) {
        const int source = std::min(box.top() + row, box.bottom());
        float *copy = values + static_cast<size_t>(row) * length;
        std::memcpy(copy, heights.constData() + dab.relief.index(box.left(), source),
                    (length - 1) * sizeof(float));
        copy[length - 1] = copy[length - 2];
    }
    return {values, box.left(), box.top(), box.width(), box.height(), stride};
}

CELL_LOOP static bool paintRows(const Dab &dab, const SampleRow &sampleRow)
{
    float *samples = dab.tool.buffers().samples.data();
    return paintHeights(dab, [&](const CellSpan &row) {
        sampleRow(row, samples);
        return [samples](const CellSpan &, int i, float) CELL_INLINE { return samples[i]; };
    });
}

bool paintSamples(const Dab &dab, const SampleRow &sampleRow)
{
    return paintRows(dab, sampleRow);
}

} // namespace marlowen
