#include "render/overlays/selectionoutline.h"
#include "baseline.h"
#include "relief/grid/gridlayer.h"

#include <cmath>

using namespace marlowen;

namespace {

constexpr int side = 4047;

enum Shape { Disc, Rings, Speckles };

GridLayer selectionOf(Shape shape)
{
    GridLayer layer(qsizetype{side} * side);
    float *cells = layer.data();
    uint32_t noise = 1;
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column) {
            const double radius = std::hypot(column - side / 2, row - side / 2);
            noise = noise * 1664525U + 1013904223U;
            const bool selected = shape == Disc    ? radius < side * 0.4
                                  : shape == Rings ? static_cast<int>(radius / 20.0) % 2 == 0
                                                   : noise >> 31;
            *cells++ = selected ? 1.0F : 0.0F;
        }
    return layer;
}

// Against a copy of the selection layer.
void outline(benchmark::State &state)
{
    const GridLayer layer = selectionOf(static_cast<Shape>(state.range(0)));
    const auto step = static_cast<int>(state.range(1));
    size_t corners = 0;
    baseline::measure(
        state, static_cast<size_t>(layer.size()) * sizeof(float), [] {},
        [&] {
            corners =
                outlineSelection(layer, {side, side}, QRect(0, 0, side, side), step).corners.size();
        });
    state.counters["corners"] = static_cast<double>(corners);
}
BENCHMARK(outline)
    ->ArgNames({"shape", "step"})
    ->Args({Disc, 1})
    ->Args({Rings, 1})
    ->Args({Rings, 4})
    ->Args({Speckles, 4})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(0.5);

} // namespace
