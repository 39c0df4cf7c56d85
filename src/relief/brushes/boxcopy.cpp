#include "relief/brushes/boxcopy.h"

#include <cstring>

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
    const auto length = static_cast<size_t>(box.width());
    float *values = dab.tool.buffers().copy.need(length * static_cast<size_t>(box.height()));
    const float *heights = dab.relief.heights().constData();
    for (int row = 0; row < box.height(); ++row)
        std::memcpy(values + static_cast<size_t>(row) * length,
                    heights + dab.relief.index(box.left(), box.top() + row),
                    length * sizeof(float));
    return {values, box.left(), box.top(), box.width(), box.height()};
}
