#include "baseline.h"

#include "import/imageimport.h"
#include "import/importsource.h"
#include "import/pipeline.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <cstdio>
#include <random>

#include <sys/wait.h>
#include <unistd.h>

using namespace marlowen;

/// The largest relief the program works with: 1000 square inches at 128 cells an inch.
constexpr int side = 4047;
/// The size at which a slider has to follow the pointer without delay.
constexpr int dragSide = 2000;

static size_t bytesOf(int width)
{
    return static_cast<size_t>(width) * static_cast<size_t>(width) * sizeof(float);
}

/// A soft disc with some noise, empty outside.
static FloatGrid disc(int width)
{
    std::mt19937 random(1);
    FloatGrid grid(width, width);
    const double centre = width / 2.0;
    for (int y = 0; y < width; ++y) {
        for (int x = 0; x < width; ++x) {
            const double r = std::hypot(x - centre, y - centre) / centre;
            if (r < 0.95)
                grid.row(y)[x] = static_cast<float>(30 + static_cast<int>(200 * (1 - r)) +
                                                    static_cast<int>(random() % 8));
        }
    }
    return grid;
}

static void baseMapping(benchmark::State &state)
{
    const FloatGrid source = disc(side);
    std::vector<float> heights(source.values.size());
    const ImportSettings settings{
        .flipY = state.range(0) != 0, .invertZ = true, .raiseLower = 10, .depth = 50.0};
    baseline::measure(state, bytesOf(side), [&] {
        mapBase(source.view(), {0.0, 255.0}, settings, heights.data());
    });
}
BENCHMARK(baseMapping)
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

/// Runs a step that works in place on a fresh copy in every iteration.
template <typename Step>
static void measureStep(benchmark::State &state, Step step)
{
    const FloatGrid source = disc(side);
    FloatGrid heights = source;
    baseline::measure(
        state, bytesOf(side), [&] { heights.values = source.values; },
        [&] { step(heights.view()); });
}

static void trimPass(benchmark::State &state)
{
    const int passes = static_cast<int>(state.range(0));
    measureStep(state, [passes](const MutableGridView &heights) { trim(heights, passes); });
}
BENCHMARK(trimPass)
    ->Arg(1)
    ->Arg(20)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

static void smoothingPass(benchmark::State &state)
{
    const bool keepZeros = state.range(0) != 0;
    measureStep(state,
                [keepZeros](const MutableGridView &heights) { smooth(heights, 1.0, keepZeros); });
}
BENCHMARK(smoothingPass)
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

static void tiltFresh(benchmark::State &state)
{
    const FloatGrid source = disc(side);
    const TiltSlope slope = tiltSlope({.tiltHorizontal = 50, .tiltVertical = -20}, 255.0);
    baseline::measure(state, bytesOf(side), [&] {
        LayerGrid tilted(side, side);
        tilt(source.view(), slope, tilted.view().values);
        benchmark::DoNotOptimize(tilted.values.constData());
    });
}
BENCHMARK(tiltFresh)->Name("tilt")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

/// The cost of one step of a dragged slider with everything switched on.
static void wholeRecompute(benchmark::State &state)
{
    const ImportSettings settings{.invertZ = true, .smoothing = 5.0, .trim = 20};
    Relief relief(std::make_unique<ImportSource>(disc(dragSide), settings));
    auto &source = *static_cast<ImportSource *>(relief.source());
    baseline::measure(state, bytesOf(dragSide), [&] { recompute(relief, source, {}); });
}
BENCHMARK(wholeRecompute)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

static double statusBytes(const char *key)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0.0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.mid(static_cast<qsizetype>(std::strlen(key)) + 1)
                       .simplified()
                       .split(' ')[0]
                       .toDouble() *
                   1024.0;
    }
    return 0.0;
}

struct MemoryFigures
{
    double before;
    double peak;
    double held;
};

/// Imports in a separate process, to measure its peak.
static MemoryFigures importInChild(const QString &path, const ImportSettings &settings)
{
    MemoryFigures figures{};
    int ends[2];
    if (pipe(ends) != 0)
        return figures;
    if (fork() == 0) {
        QFile(QStringLiteral("/proc/self/clear_refs")).open(QIODevice::WriteOnly);
        figures.before = statusBytes("VmRSS:");
        const auto relief = importImage(path, settings);
        figures.held = relief ? statusBytes("VmRSS:") : 0.0;
        figures.peak = statusBytes("VmHWM:");
        const ssize_t sent = write(ends[1], &figures, sizeof(figures));
        _exit(sent == sizeof(figures) ? 0 : 1);
    }
    close(ends[1]);
    const ssize_t got = read(ends[0], &figures, sizeof(figures));
    close(ends[0]);
    wait(nullptr);
    return got == sizeof(figures) ? figures : MemoryFigures{};
}

/// Peak memory over (what the import holds at its end + one scratch grid + the decoded image).
static void imageImportMemory(benchmark::State &state)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("image.bmp"));
    QImage image(3850, 3850, QImage::Format_RGB32);
    image.fill(0xFF808080U);
    image.save(path);
    const double decoded = static_cast<double>(image.sizeInBytes());
    image = {};
    const ImportSettings settings{
        .smoothing = 2.5, .trim = 3, .tiltHorizontal = state.range(0) ? 20 : 0};
    MemoryFigures figures{};
    for (auto _ : state)
        figures = importInChild(path, settings);
    const double allowed =
        figures.held - figures.before + static_cast<double>(bytesOf(4234)) + decoded;
    state.counters["peak_MB"] = (figures.peak - figures.before) / 1e6;
    state.counters["held_MB"] = (figures.held - figures.before) / 1e6;
    state.counters["x_allowed"] = (figures.peak - figures.before) / allowed;
}
BENCHMARK(imageImportMemory)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);

BENCHMARK_MAIN();
