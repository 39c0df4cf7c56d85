#include "relief/falloff.h"

#include "relief/alphabrush.h"
#include "relief/cellcode.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

bool ignoresAlpha(const ToolParams &params)
{
    return params.type == Tool::Flatten || params.type == Tool::Scrape;
}

bool usesAlpha(const ToolParams &params)
{
    return AlphaBrush::instance().loaded() && !ignoresAlpha(params);
}

/// The falloff profile: weight 0..1 at t = 0 (middle) .. 1 (rim); flat up to the hardness.
template <int Falloff>
CELL_INLINE inline double profile(double t, double hardness)
{
    if constexpr (Falloff == Tool::ConstantFalloff)
        return 1.0;
    // Both clamps are written as selections, which loops turn into plain minima and maxima.
    const double rise = (std::min(std::max(t, 0.0), 1.0) - hardness) / (1.0 - hardness);
    const double u = std::min(std::max(rise, 0.0), 1.0);
    double weight = 1.0 - u;
    if constexpr (Falloff == Tool::SphereFalloff)
        weight = std::sqrt(1.0 - u * u);
    else if constexpr (Falloff == Tool::SmoothFalloff)
        weight = 1.0 - u * u * (3.0 - 2.0 * u);
    return std::min(std::max(weight, 0.0), 1.0);
}

/// Hardness as the profiles take it: the rim keeps a fiftieth of the way to fall in.
double usableHardness(const ToolParams &params)
{
    return std::clamp(params.hardness, 0.0, 0.98);
}

double profileOf(const ToolParams &params, double t)
{
    const double hardness = usableHardness(params);
    switch (params.falloff) {
    case Tool::LinearFalloff:
        return profile<Tool::LinearFalloff>(t, hardness);
    case Tool::SphereFalloff:
        return profile<Tool::SphereFalloff>(t, hardness);
    case Tool::ConstantFalloff:
        return 1.0;
    default:
        return profile<Tool::SmoothFalloff>(t, hardness);
    }
}

/// The alpha image as it lies under a footprint, and what it makes of the falloff there.
class AlphaFrame
{
public:
    AlphaFrame(const ToolParams &params, int dimension)
        : m_params(params)
        , m_brush(AlphaBrush::instance())
        , m_half(dimension * 0.5)
        , m_radius(std::max(1.0, (dimension - 2) / (2.0 * std::numbers::sqrt2)))
        , m_cos(std::cos(-params.angle * std::numbers::pi / 180.0))
        , m_sin(std::sin(-params.angle * std::numbers::pi / 180.0))
    {
    }

    double weight(int column, int row, double falloff) const
    {
        const double dx = column - m_half;
        const double dy = row - m_half;
        const double x = dx * m_cos - dy * m_sin;
        const double y = dx * m_sin + dy * m_cos;
        const double u = (m_radius + x) / (2.0 * m_radius);
        const double v = (m_radius + y) / (2.0 * m_radius);
        if (m_brush.mode == AlphaBrush::Tile)
            return falloff * _sample(u * m_brush.repeatCount, v * m_brush.repeatCount, true);
        const double value = _sample(u, v, false);
        if (m_brush.mode == AlphaBrush::Stamp || value == 0.0)
            return value;
        const double t = std::min(1.0, std::sqrt(x * x + y * y) / m_radius);
        return value * profileOf(m_params, t);
    }

private:
    double _sample(double u, double v, bool wrap) const
    {
        return alphaSample(m_brush.values().data(), m_brush.side(), u, v, wrap);
    }

    const ToolParams &m_params;
    const AlphaBrush &m_brush;
    double m_half;
    double m_radius;
    double m_cos;
    double m_sin;
};

/// One row of weights: footprint cells and distances in, weights out, negative outside.
struct WeightRow
{
    const unsigned char *footprint;
    const double *distance;
    float *weights;
    int count;
    double half;     ///< half the footprint's side
    double hardness; ///< 0 .. 0.98
};

template <int Falloff>
CELL_INLINE inline void weighRow(const WeightRow &row)
{
    const double half = row.half;
    const double hardness = row.hardness;
#pragma omp simd
    for (int i = 0; i < row.count; ++i) {
        const double t = (half - row.distance[i]) / half;
        const auto weight = static_cast<float>(profile<Falloff>(t, hardness));
        row.weights[i] = row.footprint[i] == 0 ? -1.0F : weight;
    }
}

CELL_LOOP void weighSmooth(const WeightRow &row)
{
    weighRow<Tool::SmoothFalloff>(row);
}

CELL_LOOP void weighLinear(const WeightRow &row)
{
    weighRow<Tool::LinearFalloff>(row);
}

CELL_LOOP void weighSphere(const WeightRow &row)
{
    weighRow<Tool::SphereFalloff>(row);
}

CELL_LOOP void weighConstant(const WeightRow &row)
{
    weighRow<Tool::ConstantFalloff>(row);
}

using WeighRow = void (*)(const WeightRow &);
constexpr WeighRow weighRows[] = {weighSmooth, weighLinear, weighSphere, weighConstant};

FootprintWeights::Extent extentOf(const float *weights, int count)
{
    FootprintWeights::Extent extent{0, count - 1};
    while (extent.first < count && weights[extent.first] < 0.0F)
        ++extent.first;
    while (extent.last >= extent.first && weights[extent.last] < 0.0F)
        --extent.last;
    return extent;
}

} // namespace

bool alphaShapes(const ToolParams &params)
{
    return usesAlpha(params) && AlphaBrush::instance().mode != AlphaBrush::Tile;
}

double falloffWeight(const ToolParams &params, const double *distanceMap, int column, int row,
                     int dimension)
{
    const double half = dimension * 0.5;
    double t = 0.0;
    if (column >= 0 && column < dimension && row >= 0 && row < dimension) {
        const ptrdiff_t cell = static_cast<ptrdiff_t>(row) * dimension + column;
        t = std::min(1.0, (half - distanceMap[cell]) / half);
    }
    const double weight = profileOf(params, t);
    if (dimension <= 0 || !usesAlpha(params))
        return weight;
    return AlphaFrame(params, dimension).weight(column, row, weight);
}

void computeWeights(const ToolParams &params, const FootprintMap &map, int reach, float *weights,
                    FootprintWeights::Extent *extents)
{
    const int side = 2 * reach + 1;
    const int origin = map.dimension / 2 - reach; // array cell under the first weight
    const int first = std::max(0, -origin);
    const int end = std::min(side, map.dimension - origin);
    const bool alpha = usesAlpha(params);
    const AlphaFrame frame(params, map.dimension);
    for (int y = 0; y < side; ++y) {
        float *row = weights + static_cast<ptrdiff_t>(y) * side;
        std::fill_n(row, side, -1.0F);
        extents[y] = {};
        const int arrayRow = origin + y;
        if (arrayRow < 0 || arrayRow >= map.dimension)
            continue;
        const ptrdiff_t cell = static_cast<ptrdiff_t>(arrayRow) * map.dimension + origin + first;
        weighRows[params.falloff]({map.footprint + cell, map.distance + cell, row + first,
                                   end - first, map.dimension * 0.5, usableHardness(params)});
        for (int x = first; alpha && x < end; ++x)
            if (row[x] >= 0.0F)
                row[x] = static_cast<float>(frame.weight(origin + x, arrayRow, row[x]));
        extents[y] = extentOf(row, side);
    }
}
