#include "baseline.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/operations/placement.h"

#include <cmath>

using namespace marlowen;

namespace {

constexpr int reliefSide = 2000;
constexpr int patternSide = 1000;

/// A round pattern with waves on it.
FloatGrid waves()
{
    FloatGrid grid(patternSide, patternSide);
    for (int row = 0; row < patternSide; ++row) {
        for (int column = 0; column < patternSide; ++column) {
            const double away = std::hypot(column - 500, row - 500);
            grid.row(row)[column] =
                away < 498 ? static_cast<float>(20.0 + 8.0 * std::sin(away / 20.0)) : 0.0F;
        }
    }
    return grid;
}

/// The cost of one move of the pointer before drawing: the pattern is undone and
/// placed again.
void follow(benchmark::State &state, const Placement &placement)
{
    Relief relief(reliefSide, reliefSide);
    std::fill_n(relief.heights().data(), relief.cells(), 10.0F);
    const FloatGrid heights = waves();
    const PlacedPattern pattern(heights.view(), 1.0);
    SculptUndo shown;
    Placement moving = placement;
    const size_t bytes = static_cast<size_t>(relief.cells()) * sizeof(float);
    baseline::measure(
        state, bytes, [] {},
        [&] {
            shown.undo();
            shown.clear();
            moving.centre.rx() += 0.7;
            placePattern(relief, pattern, moving, &shown);
        });
}

void prepare(benchmark::State &state)
{
    const FloatGrid heights = waves();
    baseline::measure(
        state, heights.values.size() * sizeof(float), [] {},
        [&] { benchmark::DoNotOptimize(PlacedPattern(heights.view(), 1.0)); });
}

template <typename Function, typename... Arguments>
void add(const char *name, Function function, Arguments... arguments)
{
    benchmark::RegisterBenchmark(name, function, arguments...)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(15);
}

const bool registered = [] {
    const QPointF middle(1000, 1000);
    add("place/follow 1000 on 2000", follow, Placement{.centre = middle});
    add("place/follow turned, soft edge", follow,
        Placement{.centre = middle, .angle = 30.0, .softEdge = 0.3});
    add("place/follow whole relief", follow,
        Placement{.centre = middle, .angle = 45, .scale = 2.8});
    add("place/follow halved", follow, Placement{.centre = middle, .scale = 0.4});
    add("place/prepare 1000", prepare);
    return true;
}();

} // namespace
