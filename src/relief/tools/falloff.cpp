#include "relief/tools/falloff.h"

#include "relief/grid/cellcode.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/alphasample.h"
#include "relief/tools/tooltable.h"

#include <QPoint>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace marlowen {

namespace {

bool usesAlpha(const ToolParams &params)
{
    return AlphaBrush::instance().loaded() && heedsAlpha(params.type);
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

/// Hardness limited to 0.98, so that the profile still falls to 0 at the rim.
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

/// The alpha image sampled under a footprint.
struct AlphaFrame
{
    AlphaFrame(const ToolParams &params, int dimension)
        : half(dimension * 0.5)
        , radius(std::max(1.0, (dimension - 2) / (2.0 * std::numbers::sqrt2)))
        , cosine(std::cos(-params.angle * std::numbers::pi / 180.0))
        , sine(std::sin(-params.angle * std::numbers::pi / 180.0))
    {
        const AlphaBrush &brush = AlphaBrush::instance();
        image = {brush.values().data(), brush.side(), brush.side()};
        mode = brush.mode;
        repeat = brush.repeatCount;
    }

    /// Place of a footprint cell in the image's frame, from the centre.
    CELL_INLINE double x(int column, int row) const
    {
        return (column - half) * cosine - (row - half) * sine;
    }
    CELL_INLINE double y(int column, int row) const
    {
        return (column - half) * sine + (row - half) * cosine;
    }
    /// Distance of a place from the rim of the image's circle, 0 beyond it, scaled so that the
    /// profiles take it for a distance from the outline.
    CELL_INLINE double fromRim(double px, double py) const
    {
        const double t = std::sqrt(px * px + py * py) / radius;
        return half - (t < 1.0 ? t : 1.0) * half;
    }
    template <bool Tiled>
    CELL_INLINE double sample(double px, double py) const
    {
        const double u = (radius + px) / (2.0 * radius);
        const double v = (radius + py) / (2.0 * radius);
        if constexpr (Tiled)
            return alphaAt(image, u * repeat, v * repeat, true);
        return alphaAt(image, u, v, false);
    }

    double half;
    double radius;
    double cosine;
    double sine;
    GridView image;
    int mode;
    double repeat;
};

/// Grey values under `count` footprint cells of a row, from a column on.
template <bool Tiled>
CELL_INLINE inline void sampleAlpha(const AlphaFrame &from, QPoint first, float *values, int count)
{
    const AlphaFrame frame = from;
    const int column = first.x();
    const int row = first.y();
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const double px = frame.x(column + i, row);
        const double py = frame.y(column + i, row);
        values[i] = static_cast<float>(frame.sample<Tiled>(px, py));
    }
}

CELL_LOOP void sampleTiles(const AlphaFrame &frame, QPoint first, float *values, int count)
{
    sampleAlpha<true>(frame, first, values, count);
}

CELL_LOOP void sampleOnce(const AlphaFrame &frame, QPoint first, float *values, int count)
{
    sampleAlpha<false>(frame, first, values, count);
}

/// Distances from the rim of the image's circle, in place of those from an outline.
CELL_LOOP void measureRim(const AlphaFrame &from, QPoint first, double *distances, int count)
{
    const AlphaFrame frame = from;
    const int column = first.x();
    const int row = first.y();
#pragma omp simd
    for (int i = 0; i < count; ++i)
        distances[i] = frame.fromRim(frame.x(column + i, row), frame.y(column + i, row));
}

/// Replaces the weights of a row by the grey values, or multiplies them.
void applyAlpha(const AlphaFrame &frame, const float *greys, float *weights, int count)
{
    for (int i = 0; i < count; ++i) {
        const float falloff = frame.mode == AlphaBrush::Stamp ? 1.0F : weights[i];
        weights[i] = weights[i] < 0.0F ? weights[i] : falloff * greys[i];
    }
}

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

double falloffWeight(const ToolParams &params, DistanceView map, int column, int row)
{
    const int dimension = map.width;
    const double half = dimension * 0.5;
    double t = 0.0;
    if (column >= 0 && column < dimension && row >= 0 && row < dimension) {
        t = std::min(1.0, (half - map.row(row)[column]) / half);
    }
    if (dimension <= 0 || !usesAlpha(params))
        return profileOf(params, t);
    const AlphaFrame frame(params, dimension);
    const double x = frame.x(column, row);
    const double y = frame.y(column, row);
    if (frame.mode == AlphaBrush::Tile)
        return profileOf(params, t) * frame.sample<true>(x, y);
    if (frame.mode == AlphaBrush::Stamp)
        return frame.sample<false>(x, y);
    return profileOf(params, (half - frame.fromRim(x, y)) / half) * frame.sample<false>(x, y);
}

void computeWeights(const ToolParams &params, const FootprintMap &map, const WeightTarget &target)
{
    const int side = target.weights.width;
    const int dimension = map.footprint.width;
    const int origin = dimension / 2 - side / 2; // array cell under the first weight
    const int first = std::max(0, -origin);
    const int count = std::min(side, dimension - origin) - first;
    const bool alpha = usesAlpha(params);
    const AlphaFrame frame(params, dimension);
    std::vector<double> rim(static_cast<size_t>(side));
    std::vector<float> greys(static_cast<size_t>(side));
    for (int y = 0; y < side; ++y) {
        float *row = target.weights.row(y);
        FootprintWeights::Extent &extent = target.extents[static_cast<size_t>(y)];
        std::fill_n(row, side, -1.0F);
        extent = {};
        const QPoint place(origin + first, origin + y);
        if (place.y() < 0 || place.y() >= dimension)
            continue;
        const double *distance = map.distance.row(place.y()) + place.x();
        if (alpha && frame.mode == AlphaBrush::Shape) {
            measureRim(frame, place, rim.data(), count);
            distance = rim.data();
        }
        weighRows[params.falloff]({map.footprint.row(place.y()) + place.x(), distance, row + first,
                                   count, dimension * 0.5, usableHardness(params)});
        if (alpha) {
            const auto sample = frame.mode == AlphaBrush::Tile ? sampleTiles : sampleOnce;
            sample(frame, place, greys.data(), count);
            applyAlpha(frame, greys.data(), row + first, count);
        }
        extent = extentOf(row, side);
    }
}

} // namespace marlowen
