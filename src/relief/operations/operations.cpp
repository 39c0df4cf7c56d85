#include "relief/operations/operations.h"

#include "relief/history/undoevents.h"
#include "relief/operations/resample.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlowen {

namespace {

void record(const EditRun &run, std::unique_ptr<SculptUndoEvent> event)
{
    run.undo->push(std::move(event));
    if (run.closeGroup)
        run.undo->markGroupEnd();
}

Patch wholePatch(const Relief &relief, const GridLayer &layer)
{
    return copyPatch(layer, relief.width(), relief.rect());
}

/// Runs `change` on the mask and records it over the whole relief.
template <typename Change>
void changeMask(Relief &relief, const EditRun &run, Change change)
{
    // A stroke on the mask ends with the state it began with as its own way back.
    if (relief.tool())
        return;
    GridLayer &mask = relief.maskLayer();
    Patch before = run.undo ? wholePatch(relief, mask) : Patch();
    change(mask);
    relief.appearanceChanged = true;
    if (run.undo)
        record(run, std::make_unique<SculptMaskEvent>(relief, std::move(before),
                                                      wholePatch(relief, mask)));
}

/// Cells from first to last, both included; none when last < first.
struct Span
{
    int first;
    int last;
};

/// The cells along one axis between the lowest and the highest coordinate, clipped to the axis.
Span cropSpan(double lowest, double highest, int length)
{
    constexpr double limit = 1e9;
    const auto cell = [&](double coordinate) {
        const double whole = std::trunc(std::clamp(coordinate, -limit, limit));
        return static_cast<int>(whole + length * 0.5);
    };
    return {std::max(0, cell(lowest)), std::min(length - 1, cell(highest))};
}

/// Bounding box of the points that are finite; false when there is none.
bool boundingBox(const QList<QPointF> &points, QPointF &low, QPointF &high)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    low = {infinity, infinity};
    high = {-infinity, -infinity};
    for (const QPointF &point : points) {
        if (!std::isfinite(point.x()) || !std::isfinite(point.y()))
            continue;
        low = {std::min(low.x(), point.x()), std::min(low.y(), point.y())};
        high = {std::max(high.x(), point.x()), std::max(high.y(), point.y())};
    }
    return low.x() <= high.x();
}

void emptyOutside(Relief &relief, Span columns, Span rows)
{
    float *heights = relief.heights().data();
    for (int row = 0; row < relief.height(); ++row) {
        float *line = heights + relief.index(0, row);
        if (row < rows.first || row > rows.last || columns.last < columns.first) {
            std::fill_n(line, relief.width(), 0.0F);
            continue;
        }
        std::fill(line, line + columns.first, 0.0F);
        std::fill(line + columns.last + 1, line + relief.width(), 0.0F);
    }
}

} // namespace

bool resize(Relief &relief, int newWidth, int newHeight, const EditRun &run)
{
    const bool same = newWidth == relief.width() && newHeight == relief.height();
    if (newWidth < 2 || newHeight < 2 || same || relief.tool())
        return false;
    std::optional<Relief::Grid> grid = resampledGrid(relief, {newWidth, newHeight}, run.progress);
    if (!grid)
        return false;
    SculptResizeEvent::State before{
        {}, relief.rangeMinimum, relief.rangeMaximum, relief.selectionActive};
    before.grid = relief.replaceGrid(std::move(*grid));
    if (run.undo)
        record(run, std::make_unique<SculptResizeEvent>(relief, std::move(before)));
    return true;
}

void setZScale(Relief &relief, double value, const EditRun &run)
{
    if (value == relief.zScale || !std::isfinite(value))
        return;
    if (run.undo)
        record(run, std::make_unique<SculptZScaleEvent>(relief, relief.zScale, value));
    relief.zScale = value;
    relief.appearanceChanged = true;
}

void cropApply(Relief &relief, const QList<QPointF> &outline, const EditRun &run)
{
    QPointF low;
    QPointF high;
    if (relief.tool() || !boundingBox(outline, low, high))
        return;
    relief.snapshotLayer().copyFrom(relief.heights());
    emptyOutside(relief, cropSpan(low.x(), high.x(), relief.width()),
                 cropSpan(low.y(), high.y(), relief.height()));
    relief.frameRegion += relief.rect();
    relief.heightsChanged = true;
    if (run.undo)
        record(run, std::make_unique<SculptModifyEvent>(relief,
                                                        wholePatch(relief, relief.snapshotLayer()),
                                                        wholePatch(relief, relief.heights())));
}

void clearMask(Relief &relief, const EditRun &run)
{
    changeMask(relief, run, [](GridLayer &mask) { mask.clear(); });
}

void invertMask(Relief &relief, const EditRun &run)
{
    changeMask(relief, run, [](GridLayer &mask) {
        float *values = mask.data();
        const qsizetype count = mask.size();
        for (qsizetype i = 0; i < count; ++i)
            values[i] = 1.0F - values[i];
    });
}

} // namespace marlowen
