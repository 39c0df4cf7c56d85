#include "baseline.h"
#include "basreliefs.h"

#include "import/bas/basutil.h"

#include <array>
#include <cmath>
#include <numeric>

// The quality of bas-reliefs in figures: every benchmark here makes a relief of known form and
// texture, and its counters state the result for both. The names in the table describe them.

namespace marlowen::bas {
namespace {

struct Setting
{
    int gridSize = 2;
    int contrastFactor = 8;
    int smoothness = 20000;
};

FloatGrid made(const FloatGrid &heights, const Setting &setting = {})
{
    Progress silent;
    auto result = makeBasRelief(
        {heights.view(), setting.gridSize, setting.contrastFactor, setting.smoothness}, silent);
    return {heights.width, heights.height, std::move(*result)};
}

struct Line
{
    double slope;
    double correlation;
};

/// Regression of a on b over the cells where b's relief is filled.
Line regression(const std::vector<double> &a, const std::vector<double> &b)
{
    const double n = static_cast<double>(a.size());
    const double ma = std::accumulate(a.begin(), a.end(), 0.0) / n;
    const double mb = std::accumulate(b.begin(), b.end(), 0.0) / n;
    double aa = 0.0;
    double ab = 0.0;
    double bb = 0.0;
    for (size_t i = 0; i < a.size(); ++i) {
        aa += (a[i] - ma) * (a[i] - ma);
        ab += (a[i] - ma) * (b[i] - mb);
        bb += (b[i] - mb) * (b[i] - mb);
    }
    return {ab / bb, ab / std::sqrt(aa * bb)};
}

/// The texture in a bas-relief: the rest of `heights` when the best combination of a form
/// and a level is subtracted.
std::vector<double> withoutForm(const FloatGrid &heights, const FloatGrid &form)
{
    std::vector<double> rest;
    std::vector<double> known;
    for (size_t i = 0; i < heights.values.size(); ++i) {
        if (form.values[i] <= 0.0F)
            continue;
        rest.push_back(static_cast<double>(heights.values[i]));
        known.push_back(static_cast<double>(form.values[i]));
    }
    const double slope = regression(rest, known).slope;
    for (size_t i = 0; i < rest.size(); ++i)
        rest[i] -= slope * known[i];
    return rest;
}

/// The resulting texture: the bas-relief with it, less the form as the bas-relief without
/// texture shows it, against the texture.
Line textureLine(const MadeRelief &relief, const Setting &setting = {})
{
    const FloatGrid without = made(relief.form, setting);
    std::vector<double> texture;
    for (size_t i = 0; i < without.values.size(); ++i)
        if (relief.form.values[i] > 0.0F)
            texture.push_back(static_cast<double>(relief.texture.values[i]));
    return regression(withoutForm(made(relief.heights(), setting), without), texture);
}

double highest(const FloatGrid &grid)
{
    return static_cast<double>(*std::max_element(grid.values.begin(), grid.values.end()));
}

double lowestFilled(const FloatGrid &grid)
{
    float lowest = 1e30F;
    for (float value : grid.values)
        lowest = value > 0.0F ? std::min(lowest, value) : lowest;
    return static_cast<double>(lowest);
}

double depthShare(const FloatGrid &before, const FloatGrid &after)
{
    return (highest(after) - lowestFilled(after)) / (highest(before) - lowestFilled(before));
}

/// Mean height of the cells with an empty neighbour, as a share of the highest.
double outlineShare(const FloatGrid &grid)
{
    double sum = 0.0;
    int count = 0;
    for (int y = 1; y + 1 < grid.height; ++y) {
        for (int x = 1; x + 1 < grid.width; ++x) {
            const bool edge = grid.row(y)[x] > 0.0F &&
                              (grid.row(y)[x - 1] == 0.0F || grid.row(y)[x + 1] == 0.0F ||
                               grid.row(y - 1)[x] == 0.0F || grid.row(y + 1)[x] == 0.0F);
            sum += edge ? static_cast<double>(grid.row(y)[x]) : 0.0;
            count += edge;
        }
    }
    return sum / count / highest(grid);
}

/// Share of the steps between filled neighbours along rows and columns that keep their sign.
double keptSigns(const FloatGrid &before, const FloatGrid &after)
{
    const double least = 1e-6 * highest(before);
    double kept = 0.0;
    double all = 0.0;
    const auto look = [&](size_t i, size_t j) {
        const double was = static_cast<double>(before.values[j] - before.values[i]);
        const double is = static_cast<double>(after.values[j] - after.values[i]);
        if (before.values[i] <= 0.0F || before.values[j] <= 0.0F || std::fabs(was) <= least)
            return;
        all += 1.0;
        kept += was * is > 0.0;
    };
    for (size_t y = 0; y < static_cast<size_t>(before.height); ++y) {
        for (size_t x = 0; x < before.columns(); ++x) {
            const size_t i = y * before.columns() + x;
            if (x + 1 < before.columns())
                look(i, i + 1);
            if (y + 1 < static_cast<size_t>(before.height))
                look(i, i + before.columns());
        }
    }
    return kept / all;
}

/// The signs that a relief keeps whose form falls to a third everywhere while all of its texture
/// keeps 0.8, for comparison.
double evenSigns(const MadeRelief &relief)
{
    FloatGrid best = relief.form;
    for (size_t i = 0; i < best.values.size(); ++i)
        best.values[i] = best.values[i] / 3.0F + 0.8F * relief.texture.values[i];
    return keptSigns(relief.heights(), best);
}

/// Heads that are smooth, with long gentle texture, and with texture of the whole range.
/// (A head of 256 cells keeps less of its texture, 0.67 at a correlation of 0.94: its nose and brow
/// are hardly larger than the windows that tell form from detail.)
void basFigureHead(benchmark::State &state)
{
    const std::array<Texture, 3> textures{Texture{0.0, 0.0, 4.0, 12.0},
                                          Texture{0.005, 0.01, 8.0, 12.0}, Texture{}};
    const MadeRelief relief = head(512, textures[static_cast<size_t>(state.range(0))]);
    FloatGrid after;
    for (auto _ : state)
        after = made(relief.heights());
    const FloatGrid before = relief.heights();
    state.counters["q_depth"] = depthShare(before, after);
    state.counters["q_outline"] = outlineShare(after) - outlineShare(before);
    state.counters["q_signs"] = keptSigns(before, after);
    state.counters["q_signs_even"] = evenSigns(relief);
    if (state.range(0) == 0)
        return;
    const Line line = textureLine(relief);
    state.counters["q_texture"] = line.slope;
    state.counters["q_correlation"] = line.correlation;
}
BENCHMARK(basFigureHead)->Arg(0)->Arg(1)->Arg(2)->Iterations(1)->Unit(benchmark::kMillisecond);

/// Largest distance from the plateaus' own levels within 60 cells of a step, away from its blur.
void basFigureHalo(benchmark::State &state)
{
    const float high = 40.0F + static_cast<float>(state.range(0));
    const MadeRelief relief = step(384, 40.0F, high);
    FloatGrid after;
    for (auto _ : state)
        after = made(relief.form);
    const float *row = after.row(256);
    constexpr int middle = 192;
    constexpr int reach = 60;
    double halo = 0.0;
    for (int d = 0; d < reach; ++d) {
        const double left = static_cast<double>(row[middle - 1 - d] - row[middle - 1 - reach]);
        const double right = static_cast<double>(row[middle + d] - row[middle + reach]);
        halo = std::max({halo, std::fabs(left), std::fabs(right)});
    }
    state.counters["q_halo"] = halo / highest(after);
    state.counters["q_step"] =
        static_cast<double>(row[middle + reach] - row[middle - 1 - reach]) / (high - 40.0F);
}
BENCHMARK(basFigureHalo)
    ->Arg(5)
    ->Arg(10)
    ->Arg(20)
    ->Arg(40)
    ->Arg(80)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void basFigureLettering(benchmark::State &state)
{
    const MadeRelief relief = tiltedLettering(512);
    FloatGrid after;
    for (auto _ : state)
        after = made(relief.heights());
    const Line line = textureLine(relief);
    state.counters["q_depth"] = depthShare(relief.heights(), after);
    state.counters["q_letters"] = line.slope;
    state.counters["q_correlation"] = line.correlation;
}
BENCHMARK(basFigureLettering)->Iterations(1)->Unit(benchmark::kMillisecond);

/// Tops and rims of the domes in turn: rises, and the height that each dome keeps of its 20.
void basFigureDomes(benchmark::State &state)
{
    const int side = 512;
    const MadeRelief relief = domes(side);
    FloatGrid after;
    for (auto _ : state)
        after = made(relief.form, {static_cast<int>(state.range(0)), 8, 20000});
    double last = 0.0;
    double order = 1.0;
    double least = 1e9;
    for (int place = 0; place < 4; ++place) {
        const int x = side / 4 + (place % 2) * side / 2;
        const int y = side / 4 + (place / 2) * side / 2;
        const double top = static_cast<double>(after.row(y)[x]);
        const double rim = static_cast<double>(after.row(y)[x + side / 6]);
        order = top > last ? order : 0.0;
        last = top;
        least =
            std::min(least, (top - rim) / static_cast<double>(relief.form.row(y)[x] -
                                                              relief.form.row(y)[x + side / 6]));
    }
    state.counters["q_depth"] = depthShare(relief.form, after);
    state.counters["q_ordered"] = order;
    state.counters["q_modelling"] = least;
}
BENCHMARK(basFigureDomes)->Arg(2)->Arg(8)->Arg(32)->Iterations(1)->Unit(benchmark::kMillisecond);

/// Gain of noise over the gain of real texture at a smoothness.
void basFigureNoise(benchmark::State &state)
{
    const Setting setting{2, 8, static_cast<int>(state.range(0))};
    Line noise{};
    for (auto _ : state)
        noise = textureLine(noisyDome(384), setting);
    const Line texture = textureLine(head(384, {}), setting);
    state.counters["q_noise"] = noise.slope / noise.correlation;
    state.counters["q_texture"] = texture.slope / texture.correlation;
    state.counters["q_share"] =
        noise.slope / noise.correlation / texture.slope * texture.correlation;
}
BENCHMARK(basFigureNoise)
    ->Arg(20000)
    ->Arg(50000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void basSpeed(benchmark::State &state)
{
    const int side = static_cast<int>(state.range(0));
    const FloatGrid heights = largeRelief(side);
    baseline::measure(state, heights.values.size() * sizeof(float),
                      [&] { benchmark::DoNotOptimize(made(heights)); });
}
BENCHMARK(basSpeed)
    ->Arg(1024)
    ->Arg(4047)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

} // namespace
} // namespace marlowen::bas
