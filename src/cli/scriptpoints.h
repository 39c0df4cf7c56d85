#pragma once

#include "relief/tools/strokepoint.h"

#include <QJsonValue>
#include <QList>
#include <QPoint>
#include <QPointF>

namespace marlowen {

/// Values of checked keys (cli/scriptkeys.h) as points.
QPointF pointOf(const QJsonValue &pair);
QList<QPointF> pointsOf(const QJsonValue &list);
/// Each with its pressure where it has a third number.
QList<StrokePoint> strokePointsOf(const QJsonValue &list);
QList<QPoint> cellsOf(const QJsonValue &list);

} // namespace marlowen
