#include "render/meshes/flatvertices.h"
#include "baseline.h"
#include "relief/grid/relief.h"
#include "render/meshes/reliefmesh.h"

using namespace marlowen;

namespace {

// All vertices of the 2D view, against a copy of the bytes that are read and written.
void flatVertices(benchmark::State &state)
{
    const auto side = static_cast<int>(state.range(0));
    const auto step = static_cast<int>(state.range(1));
    Relief relief(side, side);
    float *heights = relief.heights().data();
    for (qsizetype cell = 0; cell < relief.cells(); ++cell)
        heights[cell] = static_cast<float>(cell % 1000) * 0.01F;
    ReliefMesh mesh;
    mesh.layOut(relief.rect(), step, false);
    const size_t vertexBytes = size_t{20} * mesh.vertexCount();
    baseline::measure(
        state, vertexBytes / 2, [] {},
        [&] {
            fillFlatVertices(mesh, relief, mesh.vertices(), {0.0, 10.0, 64.0});
        });
    state.counters["vertices"] = static_cast<double>(mesh.vertexCount());
}
BENCHMARK(flatVertices)
    ->ArgNames({"side", "step"})
    ->Args({1180, 1})
    ->Args({4047, 3})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(0.3);

} // namespace
