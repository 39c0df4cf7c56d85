#include "relief/strokes/sculptengine.h"

#include "base/sessionlog.h"
#include "relief/grid/cellcode.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/history/undoevents.h"
#include "relief/strokes/brushes/plane.h"
#include "relief/strokes/dab.h"
#include "relief/strokes/strokepath.h"
#include "relief/tools/tooltable.h"

#include <algorithm>
#include <optional>
#include <span>

namespace marlowen {

namespace {

/// Adds a rectangle. Regions of many rectangles make every further union slower, so that they fall
/// back to their bounding rectangle.
void unite(QRegion &region, const QRect &rect)
{
    constexpr int manyRectangles = 32;
    region += rect;
    if (region.rectCount() > manyRectangles)
        region = region.boundingRect();
}

bool paintsMask(int type)
{
    const ToolRow *row = toolRow(type);
    return row && row->has(PaintsMask);
}

/// The layer that a tool works on.
GridLayer &paintedLayer(Relief &relief, int type)
{
    return paintsMask(type) ? relief.maskLayer() : relief.heights();
}

/// Columns and rows from the centre beyond which no dab touches the relief.
QPointF reachOf(const Relief &relief, const Tool &tool)
{
    const double beyond = tool.radius() + 2.0;
    return {relief.width() * 0.5 + beyond, relief.height() * 0.5 + beyond};
}

/// Cube of the share of strength left at this point of the stroke; none when the stroke has run
/// out. With a decay distance of 0 only the first dab acts, at full strength.
std::optional<double> decayCubed(const Tool &tool)
{
    if (!tool.params().useDecay)
        return 1.0;
    const double distance = tool.radius() * tool.params().decayLength * 100.0;
    if (distance <= 0.0)
        return tool.path.dabbed ? std::nullopt : std::optional(1.0);
    if (tool.path.travelled >= distance)
        return std::nullopt;
    const double decay = 1.0 - tool.path.travelled / distance;
    return decay * decay * decay;
}

/// Which way the dabs of an acting row move heights. A tool whose inverse acts in its place is not
/// reversed a second time.
float directionOf(const ToolRow &row, bool inverted)
{
    if (row.effect == ToolEffect::None)
        return 0.0F;
    const bool turned = inverted && row.has(Inverts) && row.inverse == Tool::None;
    return (row.effect == ToolEffect::Raise) != turned ? 1.0F : -1.0F;
}

/// The size of a dab in Tool::sizeLevels. Tools that carry material by footprint cell keep theirs.
int sizeLevel(const ToolRow &row, double share)
{
    if (row.has(DabsAtCells))
        return Tool::sizeLevels;
    return std::clamp(static_cast<int>(std::ceil(share * Tool::sizeLevels)), 1, Tool::sizeLevels);
}

double radiusAt(const Tool &tool, int level)
{
    if (level == Tool::sizeLevels)
        return tool.radius();
    return std::max(1.0, tool.radius() * level / Tool::sizeLevels);
}

/// Sets the selected cells of a row; the first and last of them, or none.
CELL_LOOP bool fillRow(float *heights, const float *selection, int count, float value)
{
    int any = 0;
#pragma omp simd reduction(| : any)
    for (int i = 0; i < count; ++i) {
        const bool selected = selection[i] != 0.0F;
        heights[i] = selected ? value : heights[i];
        any |= static_cast<int>(selected);
    }
    return any != 0;
}

/// Columns of the first and the last selected cell of a row that has one.
QRect selectedExtent(const float *selection, int count, int row)
{
    int first = 0;
    while (selection[first] == 0.0F)
        ++first;
    int last = count - 1;
    while (selection[last] == 0.0F)
        --last;
    return {first, row, last - first + 1, 1};
}

} // namespace

void SculptEngine::attach(Relief *relief, SculptUndo *undo)
{
    if (stroking())
        endStroke({}, false);
    m_relief = relief;
    m_undo = undo;
}

void SculptEngine::prepare(const ToolParams &params)
{
    if (!m_relief || stroking() || m_relief->snapshotLayer().written())
        return;
    m_relief->snapshotLayer().copyFrom(m_relief->heights());
    // The next stroke reuses its buffers.
    const Tool tool(params, {}, m_relief->diagonal());
}

bool SculptEngine::stroking() const
{
    return m_relief && m_relief->tool();
}

Tool *SculptEngine::_currentTool()
{
    if (!stroking())
        return nullptr;
    // Replacing the grid has cleared the snapshot, so the heights at the stroke's start are lost.
    if (m_relief->snapshotLayer().constData() != m_snapshot)
        m_relief->takeTool();
    return m_relief->tool();
}

void SculptEngine::beginStroke(const ToolParams &params, StrokePoint point, bool)
{
    if (stroking())
        endStroke({}, false);
    if (!m_relief || !usablePoint(point))
        return;
    const ToolRow *row = toolRow(params.type);
    if (params.type == Tool::Sample) {
        const QPoint cell = m_relief->cellOf(point);
        const bool hit = m_relief->contains(cell.x(), cell.y());
        m_relief->sampleHeight = hit ? m_relief->heightAt(cell.x(), cell.y()) : 0.0F;
        return;
    }
    if (params.type == Tool::Magic) {
        const ToolParams usable = usableParams(params);
        magicSelect(*m_relief, {point, usable.tolerance, usable.continuous}, m_modifier);
        return;
    }
    if (row && row->kind == ToolKind::Shape)
        return;

    m_relief->setTool(std::make_unique<Tool>(params, point, m_relief->diagonal()));
    m_relief->strokeRegion = {};
    m_relief->snapshotLayer().copyFrom(paintedLayer(*m_relief, params.type));
    m_snapshot = m_relief->snapshotLayer().constData();
    if (params.type == Tool::Fill)
        _fill();
    else
        applyAt(point);
}

void SculptEngine::addStrokePoint(StrokePoint point, bool finalPoint)
{
    Tool *tool = _currentTool();
    if (tool && tool->params().type != Tool::Fill) // the press has filled already
        tool->addPoint(point, finalPoint, reachOf(*m_relief, *tool));
}

void SculptEngine::flush()
{
    if (!_currentTool())
        return;
    _applyPending(false);
    m_relief->heightsChanged = true;
}

void SculptEngine::_applyPending(bool all)
{
    Tool &tool = *m_relief->tool();
    std::vector<StrokePoint> points;
    points.swap(tool.path.pending);
    if (!tool.params().smoothToolPaths) {
        for (const StrokePoint &point : points)
            applyAt(point);
        return;
    }
    const auto group = static_cast<size_t>(tool.params().smoothLength);
    std::span<const StrokePoint> rest(points);
    while (rest.size() >= group) {
        for (const StrokePoint &point : smoothPath(rest.first(group)))
            applyAt(point);
        rest = rest.subspan(group - 1);
    }
    if (all) {
        for (const StrokePoint &point : smoothPath(rest))
            applyAt(point);
        rest = {};
    }
    tool.path.pending.assign(rest.begin(), rest.end());
}

void SculptEngine::applyAt(StrokePoint point)
{
    Tool *tool = _currentTool();
    if (!tool || !usablePoint(point))
        return;
    const QPointF shift = point - tool->path.lastApplied;
    for (int image = 0; image < 4; ++image) {
        const bool mirrorX = image & 1;
        const bool mirrorY = image & 2;
        if ((mirrorX && !m_relief->symmetryX) || (mirrorY && !m_relief->symmetryY))
            continue;
        const auto mirrored = [=](QPointF p) {
            return QPointF(mirrorX ? -p.x() : p.x(), mirrorY ? -p.y() : p.y());
        };
        _dabAt({mirrored(point), point.pressure, point.size}, mirrored(shift), image);
    }
    tool->path.dabbed = true;
    tool->path.travelled += std::sqrt(shift.x() * shift.x() + shift.y() * shift.y());
    tool->path.lastApplied = point;
}

void SculptEngine::_dabAt(StrokePoint point, QPointF shift, int image)
{
    Tool &tool = *m_relief->tool();
    const ToolRow *row = actingRow(toolRow(tool.params().type), m_relief->invert);
    if (!row || (!row->dab && row->kind == ToolKind::Click && row->type != Tool::Magic)) {
        logWarning() << "Unhandled tool type: " << tool.params().type << "\n";
        return;
    }
    const DabFunction function = tool.stamping() && row->stamp ? row->stamp : row->dab;
    const std::optional<double> decay = row->has(Decays) ? decayCubed(tool) : 1.0;
    const QPointF centre = dabCentre(*m_relief, point);
    const int size = sizeLevel(*row, point.size);
    const QRect box = dabBox(*m_relief, centre, radiusAt(tool, size));
    if (!function || !decay || box.isEmpty())
        return;

    Dab dab{*m_relief, tool, centre, shift, box, image, *decay};
    dab.pressure = static_cast<float>(point.pressure);
    dab.weights = &tool.weightsAt(size);
    dab.skipEmpty = row->has(KeepsEmpty) && tool.params().keepTransparency;
    dab.skipUnselected = row->has(KeepsUnselected) && m_relief->selectionActive;
    dab.maskWeakens = row->has(HeedsMask);
    dab.direction = directionOf(*row, m_relief->invert);
    mapColumns(dab);
    if (row->has(UsesPlane) && function == row->dab)
        dab.plane = footprintMean(dab);
    if (!function(dab))
        return;
    unite(m_relief->frameRegion, box);
    unite(m_relief->strokeRegion, box);
    m_relief->heightsChanged = true;
    m_relief->appearanceChanged |= row->has(PaintsMask);
}

void SculptEngine::_fill()
{
    const GridLayer &selection = m_relief->selectionLayer();
    if (!selection.written())
        return;
    const int width = m_relief->width();
    const float value = paintableHeight(m_relief->sampleHeight);
    QRect filled;
    for (int row = 0; row < m_relief->height(); ++row) {
        const qsizetype cell = m_relief->index(0, row);
        const float *selected = selection.constData() + cell;
        if (fillRow(m_relief->heights().data() + cell, selected, width, value))
            filled |= selectedExtent(selected, width, row);
    }
    if (filled.isEmpty())
        return;
    m_relief->strokeRegion = filled;
    unite(m_relief->frameRegion, filled);
    m_relief->heightsChanged = true;
    _pushEvent();
}

void SculptEngine::_pushEvent()
{
    if (!m_undo)
        return;
    Relief &relief = *m_relief;
    const int type = relief.tool()->params().type;
    const QRegion rect = relief.strokeRegion.boundingRect();
    Patch before = copyPatch(relief.snapshotLayer(), relief.width(), rect);
    Patch after = copyPatch(paintedLayer(relief, type), relief.width(), rect);
    std::unique_ptr<SculptUndoEvent> event;
    if (paintsMask(type))
        event = std::make_unique<SculptMaskEvent>(relief, std::move(before), std::move(after));
    else
        event = std::make_unique<SculptModifyEvent>(relief, std::move(before), std::move(after));
    if (const ToolRow *row = toolRow(type))
        event->name = QLatin1String(row->label);
    m_undo->push(std::move(event));
    m_undo->markGroupEnd();
}

void SculptEngine::endStroke(StrokePoint point, bool hit)
{
    if (hit)
        addStrokePoint(point, true);
    if (!_currentTool())
        return;
    flush();
    _applyPending(true);
    const bool recorded = m_relief->tool()->params().type == Tool::Fill;
    if (!recorded && !m_relief->strokeRegion.isEmpty())
        _pushEvent();
    m_relief->takeTool();
}

void SculptEngine::cancelStroke()
{
    const Tool *tool = _currentTool();
    if (!tool)
        return;
    Relief &relief = *m_relief;
    const int type = tool->params().type;
    const QRect rect = relief.strokeRegion.boundingRect();
    if (!rect.isEmpty() && type != Tool::Fill) { // a Fill has pushed its event already
        const Patch before = copyPatch(relief.snapshotLayer(), relief.width(), rect);
        before.pasteInto(paintedLayer(relief, type), relief.width());
        unite(relief.frameRegion, rect);
        relief.heightsChanged = true;
        relief.appearanceChanged |= type == Tool::Mask;
        relief.strokeRegion = {};
    }
    relief.takeTool();
}

} // namespace marlowen
