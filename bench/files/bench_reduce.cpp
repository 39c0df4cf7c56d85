#include "baseline.h"

#include "files/export/meshexport.h"
#include "relief/grid/relief.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>

#include <cmath>
#include <filesystem>
#include <functional>

#include <unistd.h>

using namespace marlowen;

namespace {

constexpr int side = 4097;
constexpr int objSide = 2048;

/// Swellings of several lengths, 12 mm deep.
std::unique_ptr<Relief> smoothRelief(int width)
{
    auto relief = std::make_unique<Relief>(width, width);
    float *heights = relief->heights().data();
    const double scale = 2.0 * 3.14159265358979 / side;
    for (int row = 0; row < width; ++row) {
        const double v = row * scale;
        for (int column = 0; column < width; ++column) {
            const double u = column * scale;
            *heights++ = static_cast<float>(
                30.0 + 12.0 * std::sin(3.0 * u + 1.0) * std::cos(2.0 * v) +
                8.0 * std::sin(7.0 * u + 2.0 * v) + 4.0 * std::cos(6.0 * v - 5.0 * u) +
                2.0 * std::sin(9.0 * u) * std::sin(7.0 * v) +
                1.5 * std::sin(14.0 * u + 3.0 * v) * std::cos(12.0 * v));
        }
    }
    return relief;
}

void reduceFacets(benchmark::State &state)
{
    const auto relief = smoothRelief(side);
    const ReductionGoal goal{.toleranceInches = 1e-4 * static_cast<double>(state.range(0))};
    uint64_t facets = 0;
    baseline::measure(state, static_cast<size_t>(relief->cells()) * sizeof(float), [&] {
        FacetReducer reduction({relief->heights().constData(), side, side}, goal);
        while (!reduction.step(std::chrono::milliseconds(20)))
            benchmark::ClobberMemory();
        facets = reduction.facets();
    });
    state.counters["facets"] = static_cast<double>(facets);
}
// Tolerances in ten-thousandths of an inch.
BENCHMARK(reduceFacets)->Arg(5)->Arg(20)->UseManualTime()->Unit(benchmark::kMillisecond);

double seconds(const std::function<void()> &work)
{
    const double start = baseline::now();
    work();
    return baseline::now() - start;
}

/// Writes a mesh and, in turn with it, the same bytes as one block.
void measureExport(benchmark::State &state, const MeshTarget &target, const ExportOptions &options)
{
    const auto relief = smoothRelief(objSide);
    const auto write = [&] { return static_cast<bool>(exportMesh(*relief, options, target)); };
    if (!write()) {
        state.SkipWithError("cannot write");
        return;
    }
    const std::vector<char> block(std::filesystem::file_size(target.path.toStdString()), 1);
    std::vector<double> works;
    std::vector<double> blocks;
    for (auto _ : state) {
        sync();
        blocks.push_back(seconds([&] {
            QSaveFile file(target.path);
            if (file.open(QIODevice::WriteOnly)) {
                file.write(block.data(), static_cast<qint64>(block.size()));
                file.commit();
            }
        }));
        sync();
        works.push_back(seconds(write));
        state.SetIterationTime(works.back());
    }
    state.counters["block_ms"] = 1e3 * baseline::median(blocks);
    state.counters["x_block"] = baseline::median(works) / baseline::median(blocks);
    state.SetBytesProcessed(static_cast<int64_t>(block.size()) * state.iterations());
}

void fullObj(benchmark::State &state)
{
    const QTemporaryDir folder(QStringLiteral("bench_reduce.XXXXXX"));
    measureExport(state, {folder.filePath(QStringLiteral("a.obj")), MeshFormat::Obj}, {});
}
BENCHMARK(fullObj)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void fullSolidStl(benchmark::State &state)
{
    const QTemporaryDir folder(QStringLiteral("bench_reduce.XXXXXX"));
    measureExport(state, {folder.filePath(QStringLiteral("a.stl"))}, {.solid = 0.1});
}
BENCHMARK(fullSolidStl)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
