#include "baseline.h"
#include "relief/grid/relief.h"
#include "relief/strokes/sculptengine.h"
#include "render/views/sculptwin.h"

#include <QApplication>
#include <QMouseEvent>

#include <malloc.h>

#include <cmath>

using namespace marlowen;

// Frames of the real window, 1200 x 800 over the largest relief, as the graphics driver at hand
// draws them. "event_ms" is the handling of the pointer event before the frame, "rest_ms" the time
// from the last move to the antialiased picture, "all_ms" to the one of all facets. Skipped without
// a display.

namespace {

constexpr int side = 4047;
constexpr QPoint middle(600, 400);

QApplication &application()
{
    static int count = 1;
    static char name[] = "bench_render";
    static char *arguments[] = {name, nullptr};
    static QApplication instance(count, arguments);
    return instance;
}

struct Window
{
    Relief relief{side, side};
    SculptEngine engine;
    ToolParams tool;
    SculptWin view;

    Window()
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
            application().processEvents();
        view.repaint();
    }

    void send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, at, view.mapToGlobal(QPointF(at)), button, buttons, {});
        QApplication::sendEvent(&view, &event);
    }
};

// Moves the pointer around the middle with a button held, or none, one frame a move.
void frames(benchmark::State &state, Qt::MouseButton button)
{
    // As the program does: memory that a frame needs stays ours between frames.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 512 << 20);
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        state.SkipWithError("no display");
        return;
    }
    application();
    Window window;
    if (button != Qt::NoButton)
        window.send(QEvent::MouseButtonPress, middle, button, button);
    std::vector<double> events;
    const int pictures = window.view.counters().pictures;
    double angle = 0.0;
    for (auto _ : state) {
        angle += 0.1;
        const QPoint at =
            middle + QPointF(200 * std::sin(angle), 150 * (1 - std::cos(angle))).toPoint();
        const double start = baseline::now();
        window.send(QEvent::MouseMove, at, Qt::NoButton, button);
        events.push_back(baseline::now() - start);
        window.view.repaint();
        application().processEvents();
    }
    const double last = baseline::now();
    const auto until = [&](PictureQuality::Level level) {
        while (window.view.pictureLevel() < level)
            application().processEvents(QEventLoop::WaitForMoreEvents);
        return 1e3 * (baseline::now() - last);
    };
    if (button == Qt::MiddleButton) {
        state.counters["rest_ms"] = until(PictureQuality::Smooth);
        state.counters["all_ms"] = until(PictureQuality::Complete);
    }
    if (button != Qt::NoButton)
        window.send(QEvent::MouseButtonRelease, middle, button, Qt::NoButton);
    state.counters["event_ms"] = 1e3 * baseline::median(events);
    state.counters["fps"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["pictures_a_frame"] =
        (window.view.counters().pictures - pictures) / static_cast<double>(state.iterations());
}
BENCHMARK_CAPTURE(frames, hover, Qt::NoButton)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Iterations(60);
BENCHMARK_CAPTURE(frames, orbit, Qt::MiddleButton)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Iterations(120);
BENCHMARK_CAPTURE(frames, stroke, Qt::LeftButton)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Iterations(60);

} // namespace
