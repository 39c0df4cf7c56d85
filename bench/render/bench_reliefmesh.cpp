#include "baseline.h"
#include "relief/grid/relief.h"
#include "relief/grid/reliefchanges.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/tooltable.h"
#include "render/camera/levelofdetail.h"
#include "render/meshes/reliefmesh.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <memory>
#include <string>

using namespace marlowen;

// The view's work outside of OpenGL on the largest relief, in a view of 1200 x 800.

namespace {

constexpr int side = 4047;
const QSize view(1200, 800);

std::unique_ptr<Relief> wavy()
{
    auto relief = std::make_unique<Relief>(side, side);
    float *heights = relief->heights().data();
    for (qsizetype i = 0; i < relief->cells(); ++i)
        heights[i] = 100.0F + 20.0F * std::sin(static_cast<float>(i % side) * 0.01F);
    return relief;
}

void rebuild(ReliefMesh &mesh, Relief &relief, ReliefChanges &changes,
             const QRect &visible = {0, 0, side, side})
{
    benchmark::DoNotOptimize(changes.heightRange());
    const MeshLayout layout = layoutFor(visible, relief.rect().size(), view);
    mesh.layOut(layout.region, layout.step, true);
    fillSculptVertices(mesh, relief, mesh.vertices());
}

void refresh(ReliefMesh &mesh, Relief &relief, const QRegion &cells)
{
    for (const QRect &rect : mesh.verticesTouchedBy(cells))
        fillSculptVertices(mesh, relief, rect);
}

// Reads the heights and writes arrays of the mesh's size, each once, as fast as memory allows.
class ReadWrite
{
public:
    ReadWrite(const Relief &relief, const ReliefMesh &mesh)
        : m_heights(relief.heights().constData())
        , m_cells(relief.cells())
        , m_arrays(size_t{28} * mesh.vertexCount() / sizeof(uint64_t))
    {
    }

    double seconds()
    {
        const double start = baseline::now();
        const auto *words = reinterpret_cast<const uint64_t *>(m_heights);
        uint64_t sum[8] = {};
        for (qsizetype i = 0; i + 16 <= m_cells; i += 16, words += 8)
            for (size_t k = 0; k < 8; ++k)
                sum[k] ^= words[k];
        benchmark::DoNotOptimize(sum);
        std::fill(m_arrays.begin(), m_arrays.end(), sum[0]);
        benchmark::ClobberMemory();
        return baseline::now() - start;
    }

private:
    const float *m_heights;
    qsizetype m_cells;
    std::vector<uint64_t> m_arrays;
};

// The whole relief on screen (every fifth cell) or a part of it, cell by cell.
void fullRebuild(benchmark::State &state, const QRect &visible)
{
    const auto relief = wavy();
    ReliefChanges changes;
    changes.setRelief(relief.get());
    ReliefMesh mesh;
    rebuild(mesh, *relief, changes, visible);
    ReadWrite memory(*relief, mesh);
    std::vector<double> works;
    std::vector<double> reads;
    for (auto _ : state) {
        relief->heightsChanged = true;
        changes.collect();
        reads.push_back(memory.seconds());
        const double start = baseline::now();
        rebuild(mesh, *relief, changes, visible);
        works.push_back(baseline::now() - start);
        state.SetIterationTime(works.back());
    }
    state.counters["x_read_write"] = baseline::median(works) / baseline::median(reads);
    state.counters["vertices"] = mesh.vertexCount();
}
BENCHMARK_CAPTURE(fullRebuild, whole, QRect(0, 0, side, side))
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(0.5);
BENCHMARK_CAPTURE(fullRebuild, near, QRect(1000, 1000, 1200, 800))
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(0.5);

void dabRefresh(benchmark::State &state)
{
    const auto relief = wavy();
    ReliefChanges changes;
    changes.setRelief(relief.get());
    ReliefMesh mesh;
    const double start = baseline::now();
    rebuild(mesh, *relief, changes);
    const double cold = baseline::now() - start;
    int place = 0;
    for (auto _ : state) {
        place = (place + 997) % (side - 101);
        refresh(mesh, *relief, QRect(place, place, 101, 101));
    }
    state.counters["cold_rebuild_ms"] = 1e3 * cold;
}
BENCHMARK(dabRefresh)->Unit(benchmark::kMicrosecond)->MinTime(0.2);

// Time this thread itself ran: the tail of the distribution is to show our work, not our
// neighbours.
double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// One pointer event: 8 pixels of the view further, which are 40 cells, engine and refresh.
void pointerEvent(benchmark::State &state, int tool)
{
    const auto relief = wavy();
    SculptEngine engine;
    engine.attach(relief.get(), nullptr);
    ReliefChanges changes;
    const int reader = changes.addView();
    changes.setRelief(relief.get());
    changes.take(reader);
    ReliefMesh mesh;
    rebuild(mesh, *relief, changes);
    ToolParams params;
    params.type = tool;
    params.size = 50.0 / (0.1 * relief->diagonal());
    engine.beginStroke(params, {-1500, 0});
    std::vector<double> times;
    double angle = 0.0;
    for (auto _ : state) {
        angle += 40.0 / 1500.0;
        const QPointF point(-1500 * std::cos(angle), 1500 * std::sin(angle));
        const double start = threadSeconds();
        engine.addStrokePoint(point);
        engine.flush();
        changes.collectStroke();
        refresh(mesh, *relief, changes.take(reader).cells);
        times.push_back(threadSeconds() - start);
        state.SetIterationTime(times.back());
    }
    engine.endStroke({0, 0}, false);
    std::sort(times.begin(), times.end());
    const auto share = [&](double part) {
        return 1e3 * times[static_cast<size_t>(part * static_cast<double>(times.size() - 1))];
    };
    state.counters["p50_ms"] = share(0.5);
    state.counters["p95_ms"] = share(0.95);
    state.counters["p99_ms"] = share(0.99);
    state.counters["max_ms"] = share(1.0);
}

const bool registered = [] {
    for (const ToolRow &row : toolTable())
        if (row.has(UsesFootprint))
            benchmark::RegisterBenchmark(
                (std::string("pointerEvent/") + row.id).c_str(),
                [type = int(row.type)](benchmark::State &state) { pointerEvent(state, type); })
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->Iterations(400);
    return true;
}();

} // namespace
