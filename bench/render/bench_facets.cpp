#include "baseline.h"
#include "render/views/facetwin.h"
#include "sheet.h"
#include "showframe.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWindow>

#include <cmath>

using namespace marlowen;

// Frames of the preview of a model, 1200 x 800, while the pointer turns it, as the graphics driver
// at hand draws them. "first_ms" is the first picture of a model, "rest_ms" the time from the last
// move to the full picture. Skipped without a display.

namespace {

constexpr QPoint middle(600, 400);

struct Preview
{
    TriangleMesh mesh;
    FacetWin view;
    double first = 0.0;

    explicit Preview(quint32 squares)
        : mesh(sheet({squares, 10.0, 0.3},
                     [](double x, double y) { return std::sin(x * 3.0) * std::cos(y * 2.0); }))
    {
        view.resize(1200, 800);
        view.show();
        while (!view.isValid() || !view.windowHandle()->isExposed())
            QApplication::processEvents();
        const double start = baseline::now();
        view.setMesh(&mesh, boxOf(mesh));
        view.setStand({});
        view.zoomAll();
        view.repaint();
        first = baseline::now() - start;
    }

    void send(QEvent::Type type, QPoint at)
    {
        const auto left = Qt::LeftButton;
        QMouseEvent event(type, at, view.mapToGlobal(QPointF(at)), left,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : left, {});
        QApplication::sendEvent(&view, &event);
    }
};

void turnModel(benchmark::State &state)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        state.SkipWithError("no display");
        return;
    }
    static int count = 1;
    static char name[] = "bench_render";
    static char *arguments[] = {name, nullptr};
    if (!qApp)
        new QApplication(count, arguments);
    Preview preview(static_cast<quint32>(state.range(0)));
    preview.send(QEvent::MouseButtonPress, middle);
    double angle = 0.0;
    for (auto _ : state) {
        angle += 0.1;
        preview.send(QEvent::MouseMove,
                     middle + QPointF(200 * std::sin(angle), 150 * std::cos(angle)).toPoint());
        showFrame(preview.view);
    }
    const double last = baseline::now();
    while (!preview.view.pictureComplete())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    state.counters["rest_ms"] = 1e3 * (baseline::now() - last);
    state.counters["first_ms"] = 1e3 * preview.first;
    preview.send(QEvent::MouseButtonRelease, middle);
    state.counters["fps"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(turnModel)
    ->Arg(1000)
    ->Arg(100)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Iterations(60);

} // namespace
