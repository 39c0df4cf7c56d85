#include "baseline.h"

#include "import/deband/deband.h"

#include <cmath>
#include <numbers>
#include <random>

// The effect of debanding on surfaces rounded to whole levels: RMS distances in levels to the
// surface before rounding, away from the border, and to the original lettering.

namespace marlowen {
namespace {

using Surface = double (*)(double x, double y, double parameter);

FloatGrid sampled(int side, Surface surface, double parameter)
{
    FloatGrid grid(side, side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            grid.row(y)[x] = static_cast<float>(surface(x, y, parameter));
    return grid;
}

FloatGrid rounded(FloatGrid grid)
{
    for (float &value : grid.values)
        value = std::round(value);
    return grid;
}

FloatGrid smoothed(const FloatGrid &grid)
{
    Progress silent;
    return {grid.width, grid.height, *debanded(grid.view(), 1.0, silent)};
}

double rms(const FloatGrid &one, const FloatGrid &two)
{
    double sum = 0.0;
    for (size_t i = 0; i < one.values.size(); ++i)
        sum += std::pow(static_cast<double>(one.values[i] - two.values[i]), 2);
    return std::sqrt(sum / static_cast<double>(one.values.size()));
}

constexpr int side = 384;

double ramp(double x, double y, double slope)
{
    return 20.3 + slope * (x * 0.9 + y * 0.4);
}

double sphere(double x, double y, double radius)
{
    const double r2 = std::pow(x - side / 2, 2) + std::pow(y - side / 2, 2);
    return 30.0 + (r2 < radius * radius ? std::sqrt(radius * radius - r2) - 0.4 * radius : 0.0);
}

double dome(double x, double y, double height)
{
    const double r2 = std::pow(x - side / 2, 2) + std::pow(y - side / 2, 2);
    return 10.2 + height * std::exp(-r2 / (0.04 * side * side));
}

void report(benchmark::State &state, const FloatGrid &real)
{
    const FloatGrid before = rounded(real);
    FloatGrid after;
    for (auto _ : state)
        after = smoothed(before);
    float moved = 0.0F;
    for (size_t i = 0; i < after.values.size(); ++i)
        moved = std::max(moved, std::fabs(after.values[i] - before.values[i]));
    state.counters["q_before"] = rms(before, real);
    state.counters["q_after"] = rms(after, real);
    state.counters["q_moved"] = static_cast<double>(moved);
}

/// The argument is the slope in thousandths of a level per cell.
void debandFigureRamp(benchmark::State &state)
{
    report(state, sampled(side, ramp, static_cast<double>(state.range(0)) / 1000.0));
}
BENCHMARK(debandFigureRamp)
    ->Arg(20)
    ->Arg(50)
    ->Arg(100)
    ->Arg(200)
    ->Arg(350)
    ->Arg(500)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

/// A paraboloid-like cap of a sphere that fills the square; the argument is its radius.
void debandFigureSphere(benchmark::State &state)
{
    report(state, sampled(side, sphere, static_cast<double>(state.range(0))));
}
BENCHMARK(debandFigureSphere)->Arg(400)->Arg(800)->Iterations(1)->Unit(benchmark::kMillisecond);

/// The argument is the height in levels.
void debandFigureGaussian(benchmark::State &state)
{
    report(state, sampled(side, dome, static_cast<double>(state.range(0))));
}
BENCHMARK(debandFigureGaussian)
    ->Arg(10)
    ->Arg(40)
    ->Arg(120)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

/// Bars of 30 levels on a ramp; RMS within four cells of their edges.
void debandFigureLettering(benchmark::State &state)
{
    const Surface bars = [](double x, double y, double) {
        const bool bar = std::fmod(x, 40.0) < 9.0 && std::fmod(y, 60.0) < 45.0;
        return ramp(x, y, 0.06) + (bar ? 30.0 : 0.0);
    };
    const FloatGrid real = sampled(side, bars, 0.0);
    const FloatGrid before = rounded(real);
    FloatGrid after;
    for (auto _ : state)
        after = smoothed(before);
    const auto nearEdges = [&](const FloatGrid &grid) {
        double sum = 0.0;
        int count = 0;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                const double place = std::fmod(x, 40.0);
                if ((place < 4 || place >= 36 || (place >= 5 && place < 13)) && y % 60 < 45) {
                    sum += std::pow(static_cast<double>(grid.row(y)[x] - real.row(y)[x]), 2);
                    ++count;
                }
            }
        }
        return std::sqrt(sum / count);
    };
    state.counters["q_before"] = nearEdges(before);
    state.counters["q_after"] = nearEdges(after);
}
BENCHMARK(debandFigureLettering)->Iterations(1)->Unit(benchmark::kMillisecond);

void debandSpeed(benchmark::State &state)
{
    const int large = static_cast<int>(state.range(0));
    const FloatGrid values = rounded(sampled(large, ramp, 0.03));
    baseline::measure(state, values.values.size() * sizeof(float),
                      [&] { benchmark::DoNotOptimize(smoothed(values)); });
}
BENCHMARK(debandSpeed)
    ->Arg(1024)
    ->Arg(4047)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

} // namespace
} // namespace marlowen
