#pragma once

#include "relief/tools/strokepoint.h"

#include <QPointF>

#include <span>
#include <vector>

namespace marlowen {

/// A pointer move to be turned into evenly spaced points.
struct PointerMove
{
    StrokePoint from; ///< last resampled point
    StrokePoint to;
    double spacing = 1.0; ///< cells between points
    bool finalPoint = false;
    QPointF reach; ///< columns and rows from the relief's centre beyond which no dab touches it
};

/// Appends the points of the move, `from` included, and returns the last one appended; `from`, with
/// nothing appended, for moves too short (1 cell; a spacing unless it is the final point). Moves of
/// more than 100000 points leave out those that lie beyond reach, but for the last one before the
/// path enters it. Pressure and size follow the path linearly.
StrokePoint resample(const PointerMove &move, std::vector<StrokePoint> &points);

/// Replaces a stretch of a path by dabs along one cubic Bezier curve that starts and ends with it:
/// as many points as given, at t = i / count. Its inner control points are fitted by least squares
/// with the chord lengths as parameters, or lie at the thirds of the chord where that has no
/// solution. The i-th dab has the pressure and size of the i-th point.
std::vector<StrokePoint> smoothPath(std::span<const StrokePoint> points);

} // namespace marlowen
