#include "baseline.h"

#include "recovery/recoveryjournal.h"
#include "relief/grid/relief.h"
#include "relief/tools/tool.h"
#include "workbench/workbench.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>
#include <ctime>

using namespace marlowen;
using namespace std::chrono_literals;

namespace {

/// The largest relief the program works with: 1000 square inches at 128 cells an inch.
constexpr int side = 4047;
constexpr size_t layerBytes = sizeof(float) * side * side;

std::unique_ptr<Relief> waves()
{
    auto relief = std::make_unique<Relief>(side, side);
    float *heights = relief->heights().data();
    for (qsizetype i = 0; i < relief->cells(); ++i)
        heights[i] = 50.0F + 40.0F * std::sin(static_cast<float>(i % side) * 0.02F);
    relief->referenceLayer().copyFrom(relief->heights());
    return relief;
}

double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// A window without widgets, on a folder next to the program: a disk, not memory.
struct Window
{
    Window()
    {
        // Heard before the journal hears of it, and after.
        QObject::connect(&bench, &Workbench::stepDone, &bench, [this](const Step &step) {
            cells += int64_t{step.cells.width()} * step.cells.height();
            ++steps;
            cpuBefore = threadSeconds();
            before = baseline::now();
        });
        journal = std::make_unique<RecoveryJournal>(
            bench, RecoveryJournal::Options{folder.path(), {}, 10s, 0ms});
        QObject::connect(&bench, &Workbench::stepDone, &bench, [this] {
            pause = baseline::now() - before;
            cpu = threadSeconds() - cpuBefore;
        });
    }
    /// The step's time is in `pause` afterwards.
    void stroke(QPointF from, QPointF to)
    {
        bench.engine().beginStroke(bench.tool, from);
        bench.engine().endStroke(to);
        bench.strokeEnded();
    }
    int64_t journalBytes() const
    {
        const QStringList folders = QDir(folder.path()).entryList({QStringLiteral("window-*")});
        return QFileInfo(folder.filePath(folders.first()) + QStringLiteral("/journal")).size();
    }

    QTemporaryDir folder{QStringLiteral("bench_recovery.XXXXXX")};
    Workbench bench;
    std::unique_ptr<RecoveryJournal> journal;
    int64_t cells = 0;
    int steps = 0;
    double before = 0.0;
    double pause = 0.0;
    double cpuBefore = 0.0;
    double cpu = 0.0; ///< of this thread alone, which other processes do not lengthen
};

/// How long the journal delays the window after a stroke: `diagonal` strokes cross the relief.
void BM_JournalStep(benchmark::State &state, bool diagonal)
{
    Window window;
    window.bench.take(waves());
    window.journal->waitUntilSafe(60s);
    const int64_t base = window.journalBytes();
    window.cells = window.steps = 0;
    baseline::Copier copier(layerBytes);
    std::vector<double> copies;
    std::vector<double> pauses;
    std::vector<double> cpus;
    int stroke = 0;
    for (auto _ : state) {
        const double reach = diagonal ? side / 2.1 : 150.0;
        const double at = diagonal ? 0.0 : (stroke++ % 20) * 60.0 - 600.0;
        window.stroke({at - reach, at - reach}, {at + reach, at + reach});
        pauses.push_back(window.pause);
        cpus.push_back(window.cpu);
        copies.push_back(copier.seconds());
        state.SetIterationTime(window.pause);
    }
    window.journal->waitUntilSafe(60s);
    const auto changed = static_cast<double>(window.cells) * sizeof(float);
    state.counters["x_layer"] = baseline::median(pauses) / baseline::median(copies);
    state.counters["q_largest_pause_ms"] = 1e3 * *std::max_element(pauses.begin(), pauses.end());
    state.counters["q_median_pause_ms"] = 1e3 * baseline::median(pauses);
    state.counters["q_largest_work_ms"] = 1e3 * *std::max_element(cpus.begin(), cpus.end());
    state.counters["q_bytes_share"] =
        static_cast<double>(window.journalBytes() - base - 64 * window.steps) / changed;
}
BENCHMARK_CAPTURE(BM_JournalStep, short_strokes, false)->UseManualTime()->Iterations(200);
BENCHMARK_CAPTURE(BM_JournalStep, whole_relief, true)->UseManualTime()->Iterations(3);

/// The time it adds to opening a relief, against a copy of the relief's two layers.
void BM_JournalBegin(benchmark::State &state)
{
    Window window;
    baseline::Copier copier(2 * layerBytes);
    std::vector<double> copies;
    std::vector<double> pauses;
    for (auto _ : state) {
        window.bench.take(waves());
        window.journal->waitUntilSafe(60s);
        pauses.push_back(window.pause);
        copies.push_back(copier.seconds());
        state.SetIterationTime(window.pause);
    }
    state.counters["x_copy"] = baseline::median(pauses) / baseline::median(copies);
}
BENCHMARK(BM_JournalBegin)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

void BM_Restore300Strokes(benchmark::State &state)
{
    Window window;
    window.bench.take(waves());
    for (int stroke = 0; stroke < 300; ++stroke) {
        const double at = (stroke % 20) * 60.0 - 600.0;
        window.stroke({at - 150.0, at}, {at + 150.0, at + stroke});
    }
    window.journal->waitUntilSafe(60s);
    window.journal->end(true);
    const QString left = findWork(window.folder.path()).first().folder;
    const auto bytes = static_cast<size_t>(QFileInfo(left + QStringLiteral("/journal")).size());
    Progress silent;
    baseline::measure(state, bytes, [&] {
        Result<RecoveredWork> work = restoreWork(left, silent);
        if (!work)
            state.SkipWithError("not restored");
    });
}
BENCHMARK(BM_Restore300Strokes)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
