#pragma once

#include <QPointF>

#include <algorithm>

namespace marlowen {

/// A point of a stroke: cells from the relief's centre, how hard the pen is pressed there (0..1, 1
/// for devices without pressure), and the share of the tool's size that its dab has.
struct StrokePoint : QPointF
{
    StrokePoint() = default;
    StrokePoint(double x, double y, double penPressure = 1.0, double sizeShare = 1.0)
        : QPointF(x, y)
        , pressure(usable(penPressure))
        , size(usable(sizeShare))
    {
    }
    StrokePoint(QPointF point, double penPressure = 1.0, double sizeShare = 1.0)
        : StrokePoint(point.x(), point.y(), penPressure, sizeShare)
    {
    }

    /// Kept within 0..1; 1 for NaN.
    static double usable(double value)
    {
        return value >= 0.0 ? std::min(value, 1.0) : value < 0.0 ? 0.0 : 1.0;
    }

    double pressure = 1.0;
    double size = 1.0;
};

} // namespace marlowen
