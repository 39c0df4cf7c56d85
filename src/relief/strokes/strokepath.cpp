#include "relief/strokes/strokepath.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr double longMove = 100000.0;

double length(QPointF vector)
{
    return std::sqrt(vector.x() * vector.x() + vector.y() * vector.y());
}

/// Steps of a path; none when last < first.
struct StepRange
{
    double first;
    double last;
};

/// Narrows the range to the steps at which |start + step * k| <= limit.
StepRange withinReach(StepRange range, double start, double step, double limit)
{
    if (step == 0.0)
        return std::abs(start) <= limit ? range : StepRange{1.0, 0.0};
    const double a = (-limit - start) / step;
    const double b = (limit - start) / step;
    return {std::max(range.first, std::floor(std::min(a, b))),
            std::min(range.last, std::ceil(std::max(a, b)))};
}

struct CubicBezier
{
    QPointF p0;
    QPointF p1;
    QPointF p2;
    QPointF p3;

    QPointF at(double t) const
    {
        const double s = 1.0 - t;
        return p0 * (s * s * s) + p1 * (3.0 * s * s * t) + p2 * (3.0 * s * t * t) +
               p3 * (t * t * t);
    }
};

/// Share of the path's length at which each point lies; empty for a path without length.
std::vector<double> chordParameters(std::span<const StrokePoint> points)
{
    std::vector<double> parameters(points.size(), 0.0);
    for (size_t i = 1; i < points.size(); ++i)
        parameters[i] = parameters[i - 1] + length(points[i] - points[i - 1]);
    const double total = parameters.back();
    if (total <= 0.0)
        return {};
    for (double &parameter : parameters)
        parameter /= total;
    return parameters;
}

/// Normal equations of the two inner control points on the Bernstein basis.
struct FitSystem
{
    double a11 = 0.0;
    double a12 = 0.0;
    double a22 = 0.0;
    QPointF b1;
    QPointF b2;

    void add(double t, QPointF point, const CubicBezier &curve)
    {
        const double s = 1.0 - t;
        const double w1 = 3.0 * s * s * t;
        const double w2 = 3.0 * s * t * t;
        const QPointF rest = point - curve.p0 * (s * s * s) - curve.p3 * (t * t * t);
        a11 += w1 * w1;
        a12 += w1 * w2;
        a22 += w2 * w2;
        b1 += rest * w1;
        b2 += rest * w2;
    }
};

CubicBezier fit(std::span<const StrokePoint> points)
{
    CubicBezier curve;
    curve.p0 = points.front();
    curve.p3 = points.back();
    curve.p1 = curve.p0 + (curve.p3 - curve.p0) / 3.0;
    curve.p2 = curve.p0 + (curve.p3 - curve.p0) * 2.0 / 3.0;
    if (points.size() < 3)
        return curve;
    const std::vector<double> parameters = chordParameters(points);
    FitSystem system;
    for (size_t i = 0; i < parameters.size(); ++i)
        system.add(parameters[i], points[i], curve);
    const double determinant = system.a11 * system.a22 - system.a12 * system.a12;
    if (determinant <= 1e-12 * system.a11 * system.a22)
        return curve;
    curve.p1 = (system.b1 * system.a22 - system.b2 * system.a12) / determinant;
    curve.p2 = (system.b2 * system.a11 - system.b1 * system.a12) / determinant;
    return curve;
}

} // namespace

StrokePoint resample(const PointerMove &move, std::vector<StrokePoint> &points)
{
    const QPointF delta = move.to - move.from;
    const double distance = length(delta);
    if (distance <= 1.0 || (!move.finalPoint && distance <= move.spacing))
        return move.from;
    const QPointF unit = delta / distance;
    const double steps = std::trunc(distance / move.spacing);
    const double pressureRise = (move.to.pressure - move.from.pressure) / distance;
    const double sizeRise = (move.to.size - move.from.size) / distance;
    const auto pointAt = [&](double k) {
        const double way = move.spacing * k;
        return StrokePoint(move.from + unit * way, move.from.pressure + pressureRise * way,
                           move.from.size + sizeRise * way);
    };
    const StrokePoint last = pointAt(steps);
    StepRange range{0.0, steps};
    if (steps > longMove) {
        const QPointF step = unit * move.spacing;
        range = withinReach(range, move.from.x(), step.x(), move.reach.x());
        range = withinReach(range, move.from.y(), step.y(), move.reach.y());
        range.first = std::max(0.0, range.first - 1.0);
    }
    for (double k = range.first; k <= range.last; k += 1.0)
        points.push_back(pointAt(k));
    if (range.last < steps)
        points.push_back(last);
    return last;
}

std::vector<StrokePoint> smoothPath(std::span<const StrokePoint> points)
{
    std::vector<StrokePoint> path;
    if (points.empty())
        return path;
    const CubicBezier curve = fit(points);
    path.reserve(points.size());
    for (size_t i = 0; i < points.size(); ++i)
        path.push_back({curve.at(static_cast<double>(i) / static_cast<double>(points.size())),
                        points[i].pressure, points[i].size});
    return path;
}

} // namespace marlowen
