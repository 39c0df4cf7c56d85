#include "relief/tools/tool.h"

#include "relief/strokes/strokebuffers.h"
#include "relief/strokes/strokepath.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/falloff.h"
#include "relief/tools/footprint.h"
#include "relief/tools/toolfields.h"
#include "relief/tools/tooltable.h"

#include <QElapsedTimer>
#include <QtDebug>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace marlowen {

namespace {

constexpr double farthestPoint = 1e9;
constexpr double largestRadiusCells = 2048.0;

/// Buffers of the last stroke, for reuse.
std::unique_ptr<StrokeBuffers> &spareBuffers()
{
    static std::unique_ptr<StrokeBuffers> spare;
    return spare;
}

} // namespace

std::unique_ptr<StrokeBuffers> StrokeBuffers::take()
{
    auto taken = std::move(spareBuffers());
    return taken ? std::move(taken) : std::make_unique<StrokeBuffers>();
}

void StrokeBuffers::giveBack(std::unique_ptr<StrokeBuffers> buffers)
{
    spareBuffers() = std::move(buffers);
}

ToolParams usableParams(ToolParams params)
{
    // Only a positive aspect can be clamped.
    if (!(params.aspect > 0.0))
        params.aspect = ToolParams{}.aspect;
    return clampedFields(toolFields(), params, &FieldInfo::usable);
}

bool usablePoint(QPointF point)
{
    // Written so that NaN fails as well.
    return std::abs(point.x()) <= farthestPoint && std::abs(point.y()) <= farthestPoint;
}

Tool::Tool(const ToolParams &params, StrokePoint firstPoint, double scale)
    : path{.pending = {}, .travelled = 0.0, .lastApplied = firstPoint, .dabbed = false}
    , m_params(usableParams(params))
    , m_firstPoint(firstPoint)
    , m_lastPoint(firstPoint)
    , m_radius(radiusCells(m_params, scale))
    , m_dimension(static_cast<int>(2.0 * std::ceil(m_radius) * std::numbers::sqrt2 + 2.0))
    , m_stamping(AlphaBrush::instance().loaded() &&
                 AlphaBrush::instance().mode == AlphaBrush::Stamp)
    , m_buffers(StrokeBuffers::take())
{
    const auto cells = static_cast<size_t>(m_dimension) * static_cast<size_t>(m_dimension);
    unsigned char *footprint = m_buffers->footprint.need(cells);
    buildFootprint({footprint, m_dimension, m_dimension}, m_params, m_radius);
    double *distance = m_buffers->distance.need(cells);
    genDistMap(distance, footprint, m_dimension);

    // A box reaches less than one cell beyond the radius, and rounding adds no more than that cell.
    m_weights.reach = static_cast<int>(std::ceil(m_radius)) + 1;
    const auto side = static_cast<size_t>(m_weights.side());
    float *weights = m_buffers->weights.need(side * side);
    FootprintWeights::Extent *extents = m_buffers->extents.need(side);
    computeWeights(m_params,
                   {{footprint, m_dimension, m_dimension}, {distance, m_dimension, m_dimension}},
                   {{weights, m_weights.side(), m_weights.side()}, {extents, side}});
    m_weights.values = weights;
    m_weights.rows = extents;

    if (m_buffers->brushState)
        m_buffers->brushState->beginStroke();
    m_buffers->span.gated.need(side);
    m_buffers->span.unmasked.need(side);
    std::fill_n(m_buffers->ones.need(side), side, 1.0F);
    std::fill_n(m_buffers->zeros.need(side), side, 0.0F);
}

Tool::~Tool()
{
    StrokeBuffers::giveBack(std::move(m_buffers));
}

BrushState *Tool::_brushState() const
{
    return m_buffers->brushState.get();
}

BrushState &Tool::_setBrushState(std::unique_ptr<BrushState> state)
{
    m_buffers->brushState = std::move(state);
    return *m_buffers->brushState;
}

const FootprintWeights &Tool::weightsAt(int level)
{
    if (level < 1 || level >= sizeLevels)
        return m_weights;
    std::unique_ptr<Shrunk> &shrunk = m_shrunk[static_cast<size_t>(level)];
    if (!shrunk) {
        shrunk = std::make_unique<Shrunk>();
        _shrink(*shrunk, static_cast<double>(level) / sizeLevels);
    }
    return shrunk->weights;
}

// Every cell takes the weight of the cell at the same place in the whole footprint.
void Tool::_shrink(Shrunk &shrunk, double share) const
{
    const int reach = static_cast<int>(std::ceil(std::max(1.0, m_radius * share))) + 1;
    shrunk.weights.reach = reach;
    const int side = shrunk.weights.side();
    shrunk.values.assign(static_cast<size_t>(side) * static_cast<size_t>(side), -1.0F);
    shrunk.rows.resize(static_cast<size_t>(side));
    const auto wholeCell = [&](int cell) {
        const int at = static_cast<int>(std::round((cell - reach) / share)) + m_weights.reach;
        return at >= 0 && at < m_weights.side() ? at : -1;
    };
    for (int row = 0; row < side; ++row) {
        const int wholeRow = wholeCell(row);
        FootprintWeights::Extent &extent = shrunk.rows[static_cast<size_t>(row)];
        float *values = shrunk.values.data() + static_cast<qsizetype>(row) * side;
        for (int column = 0; column < side; ++column) {
            const int wholeColumn = wholeCell(column);
            if (wholeRow < 0 || wholeColumn < 0)
                continue;
            const qsizetype at = static_cast<qsizetype>(wholeRow) * m_weights.side() + wholeColumn;
            if (m_weights.values[at] < 0.0F)
                continue;
            values[column] = m_weights.values[at];
            extent = {extent.last < extent.first ? column : extent.first, column};
        }
    }
    shrunk.weights.values = shrunk.values.data();
    shrunk.weights.rows = shrunk.rows.data();
}

const unsigned char *Tool::footprint() const
{
    return m_buffers->footprint.data();
}

const double *Tool::distanceMap() const
{
    return m_buffers->distance.data();
}

void Tool::addPoint(StrokePoint point, bool finalPoint, QPointF reach)
{
    if (!usablePoint(point))
        return;
    double spacing = 1.0;
    const ToolRow *row = toolRow(m_params.type);
    if (m_radius > 50.0 && !(row && row->has(DabsAtCells)))
        spacing = (m_radius / 50.0) * (m_radius / 50.0);
    m_lastPoint = resample({m_lastPoint, point, spacing, finalPoint, reach}, path.pending);
}

double Tool::radiusCells(const ToolParams &params, double scale)
{
    return std::min(std::max(1.0, params.size * 0.1 * scale), largestRadiusCells);
}

void Tool::genDistMap(double *map, unsigned char *footprint, int dimension)
{
    QElapsedTimer timer;
    timer.start();
    const int loops =
        chamferDistances({map, dimension, dimension}, {footprint, dimension, dimension});
    qDebug("genDistMap: %d loops, %f msec.", loops,
           static_cast<double>(timer.nsecsElapsed()) * 1e-6);
}

} // namespace marlowen
