#include "relief/grid/cellbits.h"
#include "relief/grid/relief.h"
#include "relief/selection/selections.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace marlowen {

namespace {

/// Corners beyond this are outside every relief.
constexpr double farthest = 1e9;

/// Marks the cells of sampled curves. Samples lie at most half a cell apart, so a closed curve's
/// cells cut the four-sided neighbourhoods inside it off from those outside.
class OutlineTracer
{
public:
    /// hitWatched() returns whether a sample lay in the watched cell, also when that is off the
    /// grid.
    explicit OutlineTracer(CellBits &shape, std::optional<QPoint> watched = std::nullopt)
        : m_shape(shape)
        , m_watched(watched)
    {
    }

    /// Samples 0..count-1 of `pointAt`. Stretches far from the grid and the watched cell are jumped
    /// over: within a distance of d no sample of the next 2d can matter.
    template <typename PointAt>
    void trace(int64_t count, PointAt pointAt)
    {
        int64_t sample = 0;
        while (sample < count) {
            const QPointF point = pointAt(sample);
            const double away = _distanceToCells(point);
            if (away <= 0.0)
                _mark(point);
            sample += std::max<int64_t>(1, static_cast<int64_t>(2.0 * away));
        }
    }

    bool hitWatched() const { return m_hitWatched; }

private:
    double _distanceToCells(QPointF point) const
    {
        // Truncation puts what lies between -1 and 0 into cell 0 as well.
        const QRectF grid(-1.0, -1.0, m_shape.width() + 1.0, m_shape.height() + 1.0);
        const double toGrid = _distance(point, grid);
        if (!m_watched)
            return toGrid;
        const QRectF watched(m_watched->x() - 1.0, m_watched->y() - 1.0, 2.0, 2.0);
        return std::min(toGrid, _distance(point, watched));
    }

    /// How far outside the rectangle the point lies along the axis where it lies farthest.
    static double _distance(QPointF point, const QRectF &rect)
    {
        const double across = std::max(rect.left() - point.x(), point.x() - rect.right());
        const double down = std::max(rect.top() - point.y(), point.y() - rect.bottom());
        return std::max({across, down, 0.0});
    }

    void _mark(QPointF point)
    {
        const int column = static_cast<int>(point.x());
        const int row = static_cast<int>(point.y());
        m_hitWatched |= QPoint(column, row) == m_watched;
        if (column >= 0 && column < m_shape.width() && row >= 0 && row < m_shape.height())
            m_shape.set(column, row);
    }

    CellBits &m_shape;
    std::optional<QPoint> m_watched;
    bool m_hitWatched = false;
};

bool isFinite(QPointF point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

struct Ellipse
{
    QPointF centre;
    double a;
    double b;
};

bool traceEllipse(CellBits &shape, const Ellipse &ellipse)
{
    const double step = 0.5 / std::sqrt(ellipse.a * ellipse.a + ellipse.b * ellipse.b);
    const double samples = std::ceil(2.0 * std::numbers::pi / step);
    const QPoint middle(static_cast<int>(ellipse.centre.x()), static_cast<int>(ellipse.centre.y()));
    OutlineTracer tracer(shape, middle);
    tracer.trace(std::max<int64_t>(1, static_cast<int64_t>(samples)), [&](int64_t sample) {
        const double t = sample == 0 ? 0.0 : static_cast<double>(sample) * step;
        return ellipse.centre + QPointF(ellipse.a * std::cos(t), ellipse.b * std::sin(t));
    });
    return tracer.hitWatched();
}

/// Sets the cells whose centres lie inside. No cell that the outline left out is cut by it in more
/// than a corner, so these are the cells that a fill from the centre would reach.
void fillEllipse(CellBits &shape, const Ellipse &ellipse)
{
    for (int row = 0; row < shape.height(); ++row) {
        const double down = (row + 0.5 - ellipse.centre.y()) / ellipse.b;
        const double reach = ellipse.a * std::sqrt(std::max(0.0, 1.0 - down * down));
        const double first = std::ceil(ellipse.centre.x() - reach - 0.5);
        const double last = std::floor(ellipse.centre.x() + reach - 0.5);
        if (std::abs(down) < 1.0 && last >= 0.0 && first < shape.width())
            shape.setSpan(row, static_cast<int>(std::max(0.0, first)),
                          static_cast<int>(std::min(shape.width() - 1.0, last)));
    }
}

/// The straight way from one cell to another, both ends included, in steps of at most half a cell.
void traceEdge(OutlineTracer &tracer, QPointF from, QPointF to)
{
    const QPointF way = to - from;
    const double steps = std::max(1.0, std::ceil(2.0 * std::hypot(way.x(), way.y())));
    tracer.trace(static_cast<int64_t>(steps) + 1, [&](int64_t sample) {
        // Multiplied before it is divided, so that whole positions stay whole.
        return from + way * static_cast<double>(sample) / steps;
    });
}

/// Marks, for every row whose middle the edge crosses, the first cell with its centre beyond the
/// crossing; a second crossing in the same place removes the mark.
void toggleCrossings(CellBits &crossings, QPointF from, QPointF to)
{
    const double top = std::min(from.y(), to.y());
    const double bottom = std::max(from.y(), to.y());
    const int first = static_cast<int>(std::clamp(top, 0.0, crossings.height() + 0.0));
    const int end = static_cast<int>(std::clamp(bottom, 0.0, crossings.height() + 0.0));
    const QPointF way = to - from;
    for (int row = first; row < end; ++row) {
        const double x = from.x() + way.x() * (row + 0.5 - from.y()) / way.y();
        const double column = std::max(0.0, std::ceil(x - 0.5));
        if (column < crossings.width()) {
            const int cell = static_cast<int>(column);
            crossings.row(row)[cell / 64] ^= uint64_t{1} << (cell % 64);
        }
    }
}

/// Sets the cells with an odd number of crossings at or before them.
void fillEvenOdd(CellBits &shape, const CellBits &crossings)
{
    const int lastColumn = shape.width() - 1;
    const uint64_t within = ~uint64_t{0} >> (63 - lastColumn % 64);
    for (int row = 0; row < shape.height(); ++row) {
        uint64_t carried = 0;
        for (qsizetype word = 0; word <= lastColumn / 64; ++word) {
            uint64_t odd = crossings.row(row)[word];
            for (int shift = 1; shift < 64; shift *= 2)
                odd ^= odd << shift;
            odd ^= carried;
            carried = (odd >> 63) != 0 ? ~uint64_t{0} : 0;
            shape.row(row)[word] |= word == lastColumn / 64 ? odd & within : odd;
        }
    }
}

} // namespace

void selectRectangle(Relief &relief, QPoint corner, QPoint opposite, SelectionModifier modifier)
{
    CellBits shape(relief.width(), relief.height());
    const int left = std::max(0, std::min(corner.x(), opposite.x()));
    const int right = std::min(relief.width() - 1, std::max(corner.x(), opposite.x()));
    const int top = std::max(0, std::min(corner.y(), opposite.y()));
    const int bottom = std::min(relief.height() - 1, std::max(corner.y(), opposite.y()));
    for (int row = top; row <= bottom; ++row)
        shape.setSpan(row, left, right);
    selectShape(relief, shape, modifier);
}

void selectEllipse(Relief &relief, QPointF corner, QPointF opposite, SelectionModifier modifier)
{
    const auto near = [](double value) { return std::clamp(value, -farthest, farthest); };
    if (!isFinite(corner) || !isFinite(opposite))
        return;
    const QPointF from(near(corner.x()), near(corner.y()));
    const QPointF to(near(opposite.x()), near(opposite.y()));
    const Ellipse ellipse{(from + to) * 0.5, std::abs(to.x() - from.x()) * 0.5,
                          std::abs(to.y() - from.y()) * 0.5};
    CellBits shape(relief.width(), relief.height());
    if (!traceEllipse(shape, ellipse))
        fillEllipse(shape, ellipse);
    selectShape(relief, shape, modifier);
}

void selectPolygon(Relief &relief, const QPolygon &corners, SelectionModifier modifier)
{
    if (corners.isEmpty())
        return;
    CellBits shape(relief.width(), relief.height());
    CellBits crossings(relief.width(), relief.height());
    OutlineTracer tracer(shape);
    QPointF from = corners.back();
    for (const QPoint &corner : corners) {
        const QPointF to = corner;
        traceEdge(tracer, from, to);
        toggleCrossings(crossings, from, to);
        from = to;
    }
    fillEvenOdd(shape, crossings);
    selectShape(relief, shape, modifier);
}

} // namespace marlowen
