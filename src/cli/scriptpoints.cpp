#include "cli/scriptpoints.h"

#include <QJsonArray>

namespace marlowen {

QPointF pointOf(const QJsonValue &pair)
{
    return {pair.toArray().at(0).toDouble(), pair.toArray().at(1).toDouble()};
}

QList<QPointF> pointsOf(const QJsonValue &list)
{
    QList<QPointF> points;
    for (const QJsonValue pair : list.toArray())
        points << pointOf(pair);
    return points;
}

QList<StrokePoint> strokePointsOf(const QJsonValue &list)
{
    QList<StrokePoint> points;
    for (const QJsonValue value : list.toArray())
        points << StrokePoint(pointOf(value), value.toArray().at(2).toDouble(1.0));
    return points;
}

QList<QPoint> cellsOf(const QJsonValue &list)
{
    QList<QPoint> cells;
    for (const QJsonValue pair : list.toArray())
        cells << QPoint(pair.toArray().at(0).toInt(), pair.toArray().at(1).toInt());
    return cells;
}

} // namespace marlowen
