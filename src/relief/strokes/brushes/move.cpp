#include "relief/strokes/brushes/boxcopy.h"
#include "relief/strokes/dab.h"

#include <cmath>

namespace marlowen {

/// The heights that lie where the cells of a span come from.
CELL_LOOP static void dragRow(const BoxCopy &before, const CellSpan &row, QPointF shift,
                              float *samples)
{
    const BoxCopy copy = before;
    const CellSpan span = row;
    const double dx = shift.x();
    const double dy = shift.y();
#pragma omp simd
    for (int i = 0; i < span.count; ++i) {
        const double weight = static_cast<double>(span.weight[i]) * span.unmasked[i];
        samples[i] = copy.sample(span.column + i - dx * weight, span.row - dy * weight);
    }
}

/// Drags the heights along with the pointer.
bool dabMove(const Dab &dab)
{
    const double dx = std::abs(dab.shift.x());
    const double dy = std::abs(dab.shift.y());
    if (dx < 1e-9 && dy < 1e-9)
        return false;
    const BoxCopy before = copyAround(dab, dx, dy);
    return paintSamples(dab, [&](const CellSpan &span, float *samples) {
        dragRow(before, span, dab.shift, samples);
    });
}

} // namespace marlowen
