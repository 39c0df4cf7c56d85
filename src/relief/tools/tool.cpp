#include "relief/tools/tool.h"

#include "relief/strokes/strokebuffers.h"
#include "relief/strokes/strokepath.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/falloff.h"
#include "relief/tools/footprint.h"

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

/// The memory the last stroke left behind.
std::unique_ptr<StrokeBuffers> &spareBuffers()
{
    static std::unique_ptr<StrokeBuffers> spare;
    return spare;
}

double usable(double value, double fallback, double low, double high)
{
    return std::isfinite(value) ? std::clamp(value, low, high) : fallback;
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
    const ToolParams defaults;
    params.size = usable(params.size, defaults.size, 0.0, 10.0);
    params.strength = usable(params.strength, defaults.strength, 0.0, 1.0);
    params.hardness = usable(params.hardness, defaults.hardness, 0.0, 1.0);
    // Not so flat or so tall that its outline cannot be walked in a moment.
    params.aspect =
        params.aspect > 0.0 ? usable(params.aspect, defaults.aspect, 0.01, 1e6) : defaults.aspect;
    params.angle = usable(params.angle, defaults.angle, -1e6, 1e6);
    params.decayLength = usable(params.decayLength, defaults.decayLength, 0.0, 1e6);
    params.tolerance = usable(params.tolerance, defaults.tolerance, 0.0, 1.0);
    params.smoothLength = std::max(2, params.smoothLength);
    if (params.falloff < Tool::SmoothFalloff || params.falloff > Tool::ConstantFalloff)
        params.falloff = Tool::SmoothFalloff;
    return params;
}

bool usablePoint(QPointF point)
{
    // Written so that NaN fails as well.
    return std::abs(point.x()) <= farthestPoint && std::abs(point.y()) <= farthestPoint;
}

Tool::Tool(const ToolParams &params, QPointF firstPoint, double scale)
    : lastApplied(firstPoint)
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
    buildFootprint(footprint, m_dimension, m_params, m_radius);
    double *distance = m_buffers->distance.need(cells);
    genDistMap(distance, footprint, m_dimension);

    // A box reaches less than one cell beyond the radius, and rounding adds no more than that cell.
    m_weights.reach = static_cast<int>(std::ceil(m_radius)) + 1;
    const auto side = static_cast<size_t>(m_weights.side());
    float *weights = m_buffers->weights.need(side * side);
    FootprintWeights::Extent *extents = m_buffers->extents.need(side);
    computeWeights(m_params, {footprint, distance, m_dimension}, m_weights.reach, weights, extents);
    m_weights.values = weights;
    m_weights.rows = extents;

    m_buffers->gated.need(side);
    m_buffers->unmasked.need(side);
    m_buffers->samples.need(side);
    std::fill_n(m_buffers->ones.need(side), side, 1.0F);
    std::fill_n(m_buffers->zeros.need(side), side, 0.0F);
}

Tool::~Tool()
{
    StrokeBuffers::giveBack(std::move(m_buffers));
}

const unsigned char *Tool::footprint() const
{
    return m_buffers->footprint.data();
}

const double *Tool::distanceMap() const
{
    return m_buffers->distance.data();
}

void Tool::addPoint(QPointF point, bool finalPoint, QPointF reach)
{
    if (!usablePoint(point))
        return;
    double spacing = 1.0;
    if (m_params.type != Smudge && m_radius > 50.0)
        spacing = (m_radius / 50.0) * (m_radius / 50.0);
    m_lastPoint = resample({m_lastPoint, point, spacing, finalPoint, reach}, pending);
}

double Tool::radiusCells(const ToolParams &params, double scale)
{
    return std::min(std::max(1.0, params.size * 0.1 * scale), largestRadiusCells);
}

void Tool::genDistMap(double *map, unsigned char *footprint, int dimension)
{
    QElapsedTimer timer;
    timer.start();
    const int loops = chamferDistances(map, footprint, dimension);
    qDebug("genDistMap: %d loops, %f msec.", loops,
           static_cast<double>(timer.nsecsElapsed()) * 1e-6);
}

} // namespace marlowen
