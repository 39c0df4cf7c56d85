#include "baseline.h"

#include "files/drafteonmap.h"
#include "files/heightmaps.h"
#include "files/stlwriter.h"
#include "files/workspacefile.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>

#include <cmath>
#include <filesystem>

#include <unistd.h>

using namespace marlowen;

/// The largest relief the program works with: 1000 square inches at 128 cells an inch.
constexpr int side = 4047;
constexpr int stlSide = 2000;

static std::unique_ptr<Relief> waves(int width)
{
    auto relief = std::make_unique<Relief>(width, width);
    float *heights = relief->heights().data();
    for (qsizetype i = 0; i < relief->cells(); ++i)
        heights[i] = 50.0F + 40.0F * std::sin(static_cast<float>(i % width) * 0.02F);
    relief->referenceLayer().copyFrom(relief->heights());
    return relief;
}

/// A folder next to the program, so that the figures are those of a disk.
struct Folder
{
    QTemporaryDir directory{QStringLiteral("bench_files.XXXXXX")};
    QString path(const char *name) const { return directory.filePath(QLatin1String(name)); }
};

static double seconds(const std::function<void()> &work)
{
    const double start = baseline::now();
    work();
    return baseline::now() - start;
}

/// Times the work and, in turn with it, the same bytes moved as one block.
static void measureBeside(benchmark::State &state, size_t bytes, const std::function<void()> &work,
                          const std::function<void()> &block)
{
    std::vector<double> works;
    std::vector<double> blocks;
    for (auto _ : state) {
        sync();
        blocks.push_back(seconds(block));
        sync();
        works.push_back(seconds(work));
        state.SetIterationTime(works.back());
    }
    state.counters["block_ms"] = 1e3 * baseline::median(blocks);
    state.counters["x_block"] = baseline::median(works) / baseline::median(blocks);
    state.SetBytesProcessed(static_cast<int64_t>(bytes) * state.iterations());
}

/// Writes a block as safely as the program writes its files.
static void writeBlock(const QString &path, const std::vector<char> &bytes)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
        file.commit();
    }
}

static void measureWrite(benchmark::State &state, const QString &path,
                         const std::function<Outcome()> &write)
{
    if (!write()) {
        state.SkipWithError("cannot write");
        return;
    }
    const std::vector<char> block(std::filesystem::file_size(path.toStdString()), 1);
    measureBeside(
        state, block.size(), [&] { write(); }, [&] { writeBlock(path, block); });
}

static void workspaceSave(benchmark::State &state)
{
    const Folder folder;
    const auto relief = waves(side);
    const QString path = folder.path("a.scp");
    measureWrite(state, path, [&] { return saveWorkspace(*relief, path); });
}
BENCHMARK(workspaceSave)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

static void workspaceLoad(benchmark::State &state)
{
    const Folder folder;
    const QString path = folder.path("a.scp");
    saveWorkspace(*waves(side), path);
    const size_t size = std::filesystem::file_size(path.toStdString());
    std::vector<char> block(size); // warm, so that the baseline pays for the reading alone
    measureBeside(
        state, size, [&] { benchmark::DoNotOptimize(loadWorkspace(path)); },
        [&] {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
                file.read(block.data(), static_cast<qint64>(size));
            benchmark::DoNotOptimize(block.data());
        });
}
BENCHMARK(workspaceLoad)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

static void gridStl(benchmark::State &state)
{
    const Folder folder;
    const auto relief = waves(static_cast<int>(state.range(0)));
    const QString path = folder.path("a.stl");
    measureWrite(state, path, [&] { return exportGridStl(*relief, path); });
}
BENCHMARK(gridStl)->Arg(stlSide)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(gridStl)->Arg(side)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);

static void drafteonMap(benchmark::State &state)
{
    const Folder folder;
    const auto relief = waves(side);
    const QString path = folder.path("a.map");
    measureWrite(state, path, [&] { return exportDrafteonMap(*relief, path); });
}
BENCHMARK(drafteonMap)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

static void pfmSave(benchmark::State &state)
{
    const Folder folder;
    const auto relief = waves(side);
    const QString path = folder.path("a.pfm");
    measureWrite(state, path, [&] {
        return savePfm({relief->heights().constData(), side, side}, path);
    });
}
BENCHMARK(pfmSave)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
