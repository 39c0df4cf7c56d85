#include "app/qef.h"

#include <QDebug>
#include <QEvent>
#include <QMetaEnum>

namespace marlowen {

bool QEF::eventFilter(QObject *receiver, QEvent *event)
{
    if (event->type() != QEvent::Timer) {
        qDebug().nospace() << "class = " << receiver->metaObject()->className() << " event is "
                           << QMetaEnum::fromType<QEvent::Type>().valueToKey(event->type());
    }
    return false;
}

} // namespace marlowen
