#pragma once

#include "base/keptmemory.h"
#include "relief/grid/relief.h"
#include "relief/strokes/sculptengine.h"
#include "render/views/sculptwin.h"

#include <QApplication>
#include <QMouseEvent>

#include <benchmark/benchmark.h>

#include <cmath>

namespace marlowen {

/// Made once, with memory kept as the program does: what a frame needs stays ours between frames.
inline QApplication &application()
{
    static int count = 1;
    static char name[] = "bench_render";
    static char *arguments[] = {name, nullptr};
    static QApplication instance((keepFreedMemory(), count), arguments);
    return instance;
}

/// A 3D view of 1200 x 800 over the largest relief, with an engine for strokes.
struct ViewStage
{
    static constexpr int side = 4047;
    QApplication &program = application();
    Relief relief{side, side};
    SculptEngine engine;
    ToolParams tool;
    SculptWin view;

    ViewStage()
    {
        for (qsizetype i = 0; i < relief.cells(); ++i)
            relief.heights().data()[i] =
                200.0F + 100.0F * std::sin(static_cast<float>(i % side) * 0.003F);
        tool.size = 50.0 / (0.1 * relief.diagonal());
        engine.attach(&relief, nullptr);
        view.setTool(&tool);
        view.setEngine(&engine);
        view.setRelief(&relief, true);
        view.resize(1200, 800);
        view.show();
        while (!view.isValid() || view.counters().pictures == 0)
            QCoreApplication::processEvents();
        view.repaint();
    }

    void send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, at, view.mapToGlobal(QPointF(at)), button, buttons, {});
        QApplication::sendEvent(&view, &event);
    }
};

} // namespace marlowen
