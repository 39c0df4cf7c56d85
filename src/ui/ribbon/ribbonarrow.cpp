#include "ui/ribbon/ribbonarrow.h"

#include <QPainter>

namespace marlowen {

QIcon ribbonArrow(Qt::ArrowType direction, const QColor &color)
{
    constexpr int side = 20;
    const double turn = direction == Qt::UpArrow      ? 0
                        : direction == Qt::RightArrow ? 90
                        : direction == Qt::DownArrow  ? 180
                                                      : 270;
    QIcon icon;
    for (const int ratio : {1, 2, 3}) {
        QPixmap picture(side * ratio, side * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.translate(side / 2.0, side / 2.0);
        painter.rotate(turn);
        painter.drawPolyline(QPolygonF({QPointF(-4.5, 2), QPointF(0, -2.5), QPointF(4.5, 2)}));
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace marlowen
