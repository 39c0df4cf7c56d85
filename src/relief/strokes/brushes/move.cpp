#include "relief/strokes/brushes/sampling.h"
#include "relief/strokes/dab.h"

#include <cmath>

namespace marlowen {

/// The heights that lie where the cells of a span come from.
CELL_LOOP static bool dragSpan(const HeightField &field, const CellSpan &span, QPointF shift,
                               float *painted)
{
    const HeightField heights = field;
    const CellSpan cells = span;
    const double dx = shift.x();
    const double dy = shift.y();
    const auto place = [=](SamplePlaces &places, int start, int count) CELL_INLINE {
#pragma omp simd
        for (int i = 0; i < count; ++i) {
            const int cell = start + i;
            const double weight = static_cast<double>(cells.weight[cell]) * cells.unmasked[cell];
            places.set(i, heights, cells.column + cell - dx * weight, cells.row - dy * weight);
        }
    };
    return sampleSpan(field, span, painted, place);
}

/// Drags the heights along with the pointer.
bool dabMove(const Dab &dab)
{
    if (std::abs(dab.shift.x()) < 1e-9 && std::abs(dab.shift.y()) < 1e-9)
        return false;
    return paintSamples(dab, [&](const HeightField &field, const CellSpan &span, float *painted) {
        return dragSpan(field, span, dab.shift, painted);
    });
}

} // namespace marlowen
