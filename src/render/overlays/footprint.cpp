#include "render/overlays/footprint.h"

#include "relief/grid/relief.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tool.h"
#include "relief/tools/toolparams.h"
#include "relief/tools/tooltable.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marlowen {

namespace {

// Enough to look round; few enough to draw at every move of the pointer.
constexpr double fewestSteps = 12;
constexpr double mostSteps = 2048;

int stepCount(double wanted)
{
    return static_cast<int>(std::clamp(wanted, fewestSteps, mostSteps));
}

std::vector<QPointF> rectangleOutline(QPointF half, int steps)
{
    const QPointF corners[] = {
        {-half.x(), -half.y()}, {half.x(), -half.y()}, {half.x(), half.y()}, {-half.x(), half.y()}};
    std::vector<QPointF> points;
    for (int side = 0; side < 4; ++side) {
        const QPointF from = corners[side];
        const QPointF way = corners[(side + 1) % 4] - from;
        for (int i = 0; i < steps; ++i)
            points.push_back(from + way * (static_cast<double>(i) / steps));
    }
    return points;
}

std::vector<QPointF> ellipseOutline(QPointF half, int steps)
{
    std::vector<QPointF> points;
    for (int i = 0; i < steps; ++i) {
        const double t = 2.0 * std::numbers::pi * i / steps;
        points.emplace_back(half.x() * std::cos(t), half.y() * std::sin(t));
    }
    return points;
}

} // namespace

FootprintShape footprintShape(const ToolParams &tool, const Relief &relief)
{
    const double radius = std::max(0.0, tool.size * 0.1 * relief.diagonal());
    const double aspect = tool.aspect > 0.0 ? tool.aspect : 1.0;
    return {tool.form == Tool::Square, radius, aspect, tool.angle};
}

std::vector<QPointF> footprintOutline(const FootprintShape &shape, double zoom)
{
    const QPointF half(shape.radius, shape.radius / shape.aspect);
    std::vector<QPointF> points =
        shape.square
            ? rectangleOutline(half, stepCount(std::round(2.0 * shape.radius * zoom)))
            : ellipseOutline(half,
                             stepCount(std::floor(2.0 * std::numbers::pi * shape.radius * zoom)));
    const double angle = shape.angleDegrees * std::numbers::pi / 180.0;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (QPointF &p : points)
        p = {c * p.x() - s * p.y(), s * p.x() + c * p.y()};
    return points;
}

bool hasFootprint(int toolType)
{
    const ToolRow *row = toolRow(toolType);
    return row && row->has(UsesFootprint);
}

bool usesAlphaFootprint(const ToolParams &tool, const AlphaBrush &brush)
{
    return brush.loaded() && brush.mode != AlphaBrush::Tile && heedsAlpha(tool.type);
}

double innerRingFraction(const ToolParams &tool)
{
    return tool.hardness > 0.05 && tool.hardness < 0.98 ? tool.hardness : 0.0;
}

double surfaceHeight(const Relief &relief, QPointF point)
{
    const QPoint cell = relief.cellOf(point);
    if (!relief.contains(cell.x(), cell.y()))
        return 0.0;
    return relief.heightAt(cell.x(), cell.y()) * relief.zScale;
}

} // namespace marlowen
