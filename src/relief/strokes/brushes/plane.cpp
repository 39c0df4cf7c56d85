#include "relief/strokes/brushes/plane.h"

#include "relief/strokes/dab.h"

namespace marlowen {

namespace {

struct Sum
{
    double heights = 0.0;
    qint64 cells = 0;
};

CELL_LOOP Sum sumFootprint(const Dab &dab)
{
    const GridLayer &snapshot = dab.relief.snapshotLayer();
    Sum sum;
    for (int row = dab.box.top(); row <= dab.box.bottom(); ++row) {
        for (const ColumnRun &run : dab.tool.buffers().runs) {
            const CellSpan span = cellsOf(dab, run, row);
            const float *height = rowUnder(dab, snapshot, span);
            double heights = 0.0;
            int cells = 0;
#pragma omp simd reduction(+ : heights, cells)
            for (int i = 0; i < span.count; ++i) {
                const bool left = span.leavesAlone(i, height[i]);
                heights += static_cast<double>(left ? 0.0F : height[i]);
                cells += static_cast<int>(!left);
            }
            sum.heights += heights;
            sum.cells += cells;
        }
    }
    return sum;
}

} // namespace

double footprintMean(const Dab &dab)
{
    const Sum sum = sumFootprint(dab);
    if (sum.cells > 0)
        return sum.heights / static_cast<double>(sum.cells);
    const Relief &relief = dab.relief;
    const QPointF centre(std::trunc(dab.centre.x()), std::trunc(dab.centre.y()));
    if (centre.x() < 0 || centre.x() >= relief.width() || centre.y() < 0 ||
        centre.y() >= relief.height())
        return 0.0;
    const qsizetype cell = relief.index(static_cast<int>(centre.x()), static_cast<int>(centre.y()));
    return static_cast<double>(relief.snapshotLayer().constData()[cell]);
}

} // namespace marlowen
