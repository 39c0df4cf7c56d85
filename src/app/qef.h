#pragma once

#include <QObject>

namespace marlowen {

/// Writes one debug message for every event that passes, except timers: "class = " and the
/// receiver's class, " event is " and the event's name. Consumes nothing. Installed by start-up
/// when the environment variable MARLOWEN_TRACE_EVENTS is set.
class QEF : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject *receiver, QEvent *event) override;
};

} // namespace marlowen
