#include "baseline.h"
#include "sheet.h"

#include "import/mesh/rasterise.h"

#include <cmath>

using namespace marlowen;

/// Turning a mesh into source values, against copying a grid of the same size.
namespace {

/// The largest relief the program works with: 1000 square inches at 128 cells an inch.
constexpr int side = 4047;
constexpr double inches = (side - 1) / 128.0;

double waves(double x, double y)
{
    return 1.0 + 0.4 * std::sin(x * 3.0) * std::cos(y * 2.0);
}

/// A box whose twelve facets lie a little askew.
TriangleMesh box()
{
    TriangleMesh mesh;
    for (int i = 0; i < 8; ++i) {
        const double x = (i & 1) ? inches : 0.0;
        const double y = (i & 2) ? inches : 0.0;
        mesh.positions.push_back({x, y, ((i & 4) ? 1.0 : 0.0) + 0.01 * x});
    }
    mesh.triangles = {{0, 2, 1}, {1, 2, 3}, {4, 5, 6}, {5, 7, 6}, {0, 1, 4}, {1, 5, 4},
                      {2, 6, 3}, {3, 6, 7}, {0, 4, 2}, {2, 4, 6}, {1, 3, 5}, {3, 7, 5}};
    return mesh;
}

// Every grid has fresh pages, as in the program: the system takes about as long to clear them on
// one core as one copy takes. Freeing the grid is not timed.
void measureRaster(benchmark::State &state, TriangleMesh mesh)
{
    const FacetShape shape(std::move(mesh), 0);
    Progress silent;
    Result<LayerGrid> grid = Failure{};
    baseline::measure(
        state, sizeof(float) * side * side, [&] { grid = Failure{}; },
        [&] {
            grid = rasterise(shape, silent);
            benchmark::DoNotOptimize(grid.value().values.constData());
        });
    state.counters["facets"] = static_cast<double>(shape.mesh().triangles.size());
}

} // namespace

static void rasteriseSmall(benchmark::State &state)
{
    measureRaster(state, sheet({1000, inches, 0.0}, waves));
}
BENCHMARK(rasteriseSmall)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

static void rasteriseHuge(benchmark::State &state)
{
    measureRaster(state, box());
}
BENCHMARK(rasteriseHuge)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

static void rasteriseScan(benchmark::State &state)
{
    measureRaster(state, sheet({316, inches, 0.8}, waves));
}
BENCHMARK(rasteriseScan)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);
