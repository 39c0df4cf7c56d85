#pragma once

#include "render/views/glcanvas.h"

#include <QCoreApplication>

namespace marlowen {

/// Runs the event loop until the shown view has drawn one more frame and its window is composed, as
/// in the program. A repaint() instead would draw the frame that is already due a second time.
inline void showFrame(GlCanvas &view)
{
    bool shown = false;
    const QMetaObject::Connection connection =
        QObject::connect(&view, &GlCanvas::frameSwapped, &view, [&shown] { shown = true; });
    view.update();
    while (!shown)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QObject::disconnect(connection);
}

} // namespace marlowen
