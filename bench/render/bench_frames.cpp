#include "baseline.h"
#include "showframe.h"
#include "viewstage.h"

using namespace marlowen;

// Frames of the real window, 1200 x 800 over the largest relief, as the graphics driver at hand
// draws them. "event_ms" is the handling of the pointer event before the frame, "rest_ms" the time
// from the last move to the antialiased picture, "all_ms" to the one of all facets. Skipped without
// a display.

namespace {

constexpr QPoint middle(600, 400);

// Moves the pointer around the middle with a button held, or none, one frame a move.
void frames(benchmark::State &state, Qt::MouseButton button)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        state.SkipWithError("no display");
        return;
    }
    ViewStage window;
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
        showFrame(window.view);
    }
    const double last = baseline::now();
    const auto until = [&](PictureQuality::Level level) {
        while (window.view.pictureLevel() < level)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
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
