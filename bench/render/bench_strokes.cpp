#include "baseline.h"
#include "relief/history/sculptundo.h"
#include "relief/tools/tool.h"
#include "viewstage.h"

#include <QElapsedTimer>

using namespace marlowen;

// The first stroke in a window over the largest relief against later ones, each with the pictures
// between its moves. Only the first row of a process tells about the first stroke of a process: run
// one row at a time (--benchmark_filter). Skipped without a display.

namespace {

void idle(int milliseconds)
{
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < milliseconds;)
        QCoreApplication::processEvents(QEventLoop::AllEvents, milliseconds);
}

struct Times
{
    double all = 0.0;    ///< milliseconds
    double events = 0.0; ///< without the pictures
};

Times stroke(ViewStage &stage, int row)
{
    Times times;
    const auto step = [&](QEvent::Type type, int column, Qt::MouseButton button) {
        const Qt::MouseButtons held =
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        const double start = baseline::now();
        stage.send(type, {column, row}, button, held);
        times.events += 1e3 * (baseline::now() - start);
        stage.view.repaint();
        times.all += 1e3 * (baseline::now() - start);
    };
    step(QEvent::MouseButtonPress, 400, Qt::LeftButton);
    for (int column = 440; column <= 600; column += 40)
        step(QEvent::MouseMove, column, Qt::NoButton);
    step(QEvent::MouseButtonRelease, 600, Qt::LeftButton);
    return times;
}

void firstStroke(benchmark::State &state, Tool::Type type)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        state.SkipWithError("no display");
        return;
    }
    ViewStage stage;
    SculptUndo history;
    stage.engine.attach(&stage.relief, &history);
    stage.tool.type = type;
    idle(2000);
    std::vector<double> all;
    std::vector<double> events;
    Times first;
    for (auto _ : state) {
        first = stroke(stage, 300);
        for (int row = 330; row < 450; row += 30) {
            idle(400);
            const Times later = stroke(stage, row);
            all.push_back(later.all);
            events.push_back(later.events);
        }
    }
    state.counters["first_ms"] = first.all;
    state.counters["ratio"] = first.all / baseline::median(all);
    state.counters["first_events_ms"] = first.events;
    state.counters["events_ratio"] = first.events / baseline::median(events);
    stage.engine.attach(nullptr, nullptr);
}
BENCHMARK_CAPTURE(firstStroke, deposit, Tool::Deposit)->Iterations(1);
BENCHMARK_CAPTURE(firstStroke, smooth, Tool::Smooth)->Iterations(1);
BENCHMARK_CAPTURE(firstStroke, move, Tool::Move)->Iterations(1);

} // namespace
