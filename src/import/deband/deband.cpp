#include "import/deband/deband.h"

#include "import/deband/debandlevel.h"
#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <memory>

namespace marlowen {
namespace {

/// A grid whose smaller side is below this is the coarsest.
constexpr int smallestSide = 8;
/// Terraces wider than 2 to the power of this, in cells, are not levelled out fully.
constexpr size_t mostLevels = 9;
/// Steps on the finest grid, the next one, and so on; the last number holds for all that follow. A
/// grid costs a quarter of the finer one, and broad forms are found on the coarse ones.
constexpr std::array<int, 5> steps{2, 8, 60, 120, 450};
constexpr float stepLevels = 8.0F;
/// Estimate of the passes over the cells of the finest grid.
constexpr double passes = 17.0;

/// Whether all values are whole numbers of 0..255.
CELL_LOOP bool areBytes(const float *values, qsizetype count)
{
    int others = 0;
#pragma omp simd reduction(| : others)
    for (qsizetype i = 0; i < count; ++i) {
        const float value = values[i];
        const float kept = value > 0.0F ? (value < 255.0F ? value : 255.0F) : 0.0F;
        others |= static_cast<float>(static_cast<int>(kept)) == value ? 0 : 1;
    }
    return others == 0;
}

CELL_LOOP float lowestOf(const float *values, qsizetype count)
{
    float lowest = values[0];
#pragma omp simd reduction(min : lowest)
    for (qsizetype i = 0; i < count; ++i)
        lowest = values[i] < lowest ? values[i] : lowest;
    return lowest;
}

std::vector<float> copyOf(const GridView &values)
{
    return {values.values, values.values + values.cells()};
}

/// Level of values that are whole numbers of 0..255; 0 when there are others.
float levelOfBytes(const GridView &values)
{
    if (!areBytes(values.values, values.cells()))
        return 0.0F;
    std::array<bool, 256> met{};
    for (const float value : values.span())
        met[static_cast<size_t>(static_cast<int>(value))] = true;
    int last = -1;
    int level = 256;
    for (int value = 0; value < 256; ++value) {
        if (!met[static_cast<size_t>(value)])
            continue;
        if (last >= 0)
            level = std::min(level, value - last);
        last = value;
    }
    return level == 256 ? 0.0F : static_cast<float>(level);
}

} // namespace

float levelOf(const GridView &values)
{
    if (const float level = levelOfBytes(values); level > 0.0F)
        return level;
    std::vector<float> sorted = copyOf(values);
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    float level = 0.0F;
    for (size_t i = 1; i < sorted.size(); ++i) {
        const float difference = sorted[i] - sorted[i - 1];
        level = level == 0.0F ? difference : std::min(level, difference);
    }
    return level;
}

std::optional<std::vector<float>> debanded(const GridView &values, double strength,
                                           Progress &progress)
{
    const float level = levelOf(values);
    if (!(level > 0.0F) || !(strength > 0.0))
        return copyOf(values);
    WorkMeter meter(progress, passes * static_cast<double>(values.cells()));
    std::vector<uint8_t> valid(values.span().size());
    std::ranges::transform(values.span(), valid.begin(), [](float value) { return value != 0.0F; });
    const DebandLimits limits{lowestOf(values.values, values.cells()), stepLevels * level};
    FloatGrid reach(values.width, 1);
    std::fill(reach.values.begin(), reach.values.end(),
              0.5F * static_cast<float>(strength) * level);
    std::vector<std::unique_ptr<DebandLevel>> levels;
    levels.push_back(std::make_unique<DebandLevel>(
        DebandCells{
            {values.width, values.height, copyOf(values)}, std::move(reach), std::move(valid)},
        limits, meter));
    while (levels.size() < mostLevels &&
           std::min(levels.back()->width(), levels.back()->height()) >= smallestSide)
        levels.push_back(std::make_unique<DebandLevel>(levels.back()->coarser(meter)));
    for (size_t i = levels.size(); i-- > 0;) {
        if (i + 1 < levels.size() && !levels[i]->beginFrom(*levels[i + 1], meter))
            return std::nullopt;
        levels.resize(i + 1);
        if (!levels[i]->smooth(steps[std::min(i, steps.size() - 1)], meter))
            return std::nullopt;
    }
    return levels[0]->takeSmoothed().values;
}

} // namespace marlowen
