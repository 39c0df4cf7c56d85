#pragma once

#include <QCoreApplication>
#include <QOpenGLWidget>

namespace marlowen {

/// Runs the event loop until the shown view has drawn one more frame and its window is composed, as
/// in the program. A repaint() instead would draw the frame that is already due a second time.
inline void showFrame(QOpenGLWidget &view)
{
    bool shown = false;
    const QMetaObject::Connection connection =
        QObject::connect(&view, &QOpenGLWidget::frameSwapped, &view, [&shown] { shown = true; });
    view.update();
    while (!shown)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QObject::disconnect(connection);
}

} // namespace marlowen
