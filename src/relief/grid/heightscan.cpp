#include "relief/grid/heightscan.h"
#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <limits>

namespace marlowen {

#ifndef __clang__
#pragma GCC optimize("O3")
#endif

namespace {

constexpr qsizetype lanes = 32;

struct Lanes
{
    std::array<float, lanes> low;
    std::array<float, lanes> high;
};

// One running minimum and maximum a lane, so that the loop over lanes becomes vector code.
CELL_LOOP void scanBlocks(const float *values, qsizetype blocks, Lanes &result)
{
    float low[lanes];
    float high[lanes];
    for (qsizetype k = 0; k < lanes; ++k) {
        low[k] = result.low[static_cast<size_t>(k)];
        high[k] = result.high[static_cast<size_t>(k)];
    }
    for (qsizetype block = 0; block < blocks; ++block, values += lanes) {
        for (qsizetype k = 0; k < lanes; ++k) {
            low[k] = values[k] < low[k] ? values[k] : low[k];
            high[k] = values[k] > high[k] ? values[k] : high[k];
        }
    }
    for (qsizetype k = 0; k < lanes; ++k) {
        result.low[static_cast<size_t>(k)] = low[k];
        result.high[static_cast<size_t>(k)] = high[k];
    }
}

} // namespace

HeightRange scanHeights(std::span<const float> all)
{
    const float *heights = all.data();
    const auto count = static_cast<qsizetype>(all.size());
    constexpr float largest = std::numeric_limits<float>::max();
    Lanes result;
    result.low.fill(largest);
    result.high.fill(0.0F);
    const qsizetype blocks = count / lanes;
    scanBlocks(heights, blocks, result);
    float low = *std::min_element(result.low.begin(), result.low.end());
    float high = *std::max_element(result.high.begin(), result.high.end());
    for (qsizetype i = blocks * lanes; i < count; ++i) {
        low = heights[i] < low ? heights[i] : low;
        high = heights[i] > high ? heights[i] : high;
    }
    return {low == largest ? 0.0 : low, high};
}

} // namespace marlowen
