#include "import/pipeline.h"
#include "base/workmeter.h"
#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numbers>

namespace marlowen {

namespace {

/// Bounding box of the cells that are not 0; right < left when there is none.
struct FigureBox
{
    int left;
    int right;
    int top;
    int bottom;
};

FigureBox figureBox(const FloatGrid &grid)
{
    FigureBox box{grid.width, -1, grid.height, -1};
    for (int y = 0; y < grid.height; ++y) {
        const float *first = grid.row(y);
        const float *last = first + grid.width;
        const auto solid = [](float value) { return value != 0.0F; };
        const float *left = std::find_if(first, last, solid);
        if (left == last)
            continue;
        const auto right =
            std::find_if(std::reverse_iterator(last), std::reverse_iterator(left), solid);
        box.left = std::min(box.left, static_cast<int>(left - first));
        box.right = std::max(box.right, static_cast<int>(right.base() - first) - 1);
        box.top = std::min(box.top, y);
        box.bottom = y;
    }
    return box;
}

/// Cells missing between the present gap and a margin of 5 % of `extent` cells.
int missing(int extent, int gap)
{
    const double margin = 0.05 * extent;
    return gap < margin ? static_cast<int>(margin - gap) : 0;
}

/// The base mapping of one cell: how far it is from `zero`, less `lift`, at least 0, times `scale`.
struct Mapping
{
    double zero; ///< the value of height 0: the lowest, or the highest when inverted
    double lift;
    double scale;
};

Mapping mappingOf(const ValueRange &range, const ImportSettings &settings)
{
    const double span = range.span();
    return {settings.invertZ ? range.highest : range.lowest,
            settings.preview ? settings.raiseLower * span / 100 : 0.0,
            settings.depth != 0.0 ? settings.depth / span : 1.0};
}

template <bool invert>
__attribute__((always_inline)) inline void mapCells(const float *values, float *heights, int count,
                                                    const Mapping &mapping)
{
    const Mapping m = mapping;
    for (int i = 0; i < count; ++i) {
        const double value = values[i];
        const double base = (invert ? m.zero - value : value - m.zero) - m.lift;
        const float height = static_cast<float>((base > 0.0 ? base : 0.0) * m.scale);
        heights[i] = values[i] == 0.0F ? 0.0F : height;
    }
}

CELL_LOOP void mapRowUpright(const float *values, float *heights, int count, const Mapping &mapping)
{
    mapCells<false>(values, heights, count, mapping);
}

CELL_LOOP void mapRowInverted(const float *values, float *heights, int count,
                              const Mapping &mapping)
{
    mapCells<true>(values, heights, count, mapping);
}

/// Makes flags[x] tell whether all of flags[x .. x + window - 1] were set, for every x where the
/// window fits, by joining runs of doubling length.
void joinRuns(uint8_t *flags, int count, int window)
{
    const auto join = [flags, count](int length, int step) {
        for (int x = 0; x + length <= count; ++x)
            flags[x] &= flags[x + step];
    };
    int run = 1;
    for (; run * 2 <= window; run *= 2)
        join(run * 2, run);
    if (run < window)
        join(window, window - run);
}

CELL_LOOP void markSolid(const float *values, uint8_t *flags, int count)
{
    for (int x = 0; x < count; ++x)
        flags[x] = values[x] != 0.0F ? 1 : 0;
}

/// Counts, up to `window`, the rows in a sequence whose flag is set.
CELL_LOOP void countRows(uint8_t *rows, const uint8_t *flags, int count, uint8_t window)
{
    for (int x = 0; x < count; ++x) {
        const uint8_t more = static_cast<uint8_t>(rows[x] + (rows[x] < window ? 1 : 0));
        rows[x] = flags[x] ? more : 0;
    }
}

CELL_LOOP void keepWhere(float *values, const uint8_t *rows, int count, uint8_t window)
{
    for (int x = 0; x < count; ++x)
        values[x] = rows[x] == window ? values[x] : 0.0F;
}

/// Sums weighted 1-2-1 along a row; a neighbour off the grid is left out.
CELL_LOOP void sumRow(const float *values, double *sums, int count)
{
    const auto at = [values](int x) { return static_cast<double>(values[x]); };
    for (int x = 1; x + 1 < count; ++x)
        sums[x] = at(x - 1) + 2.0 * at(x) + at(x + 1);
    sums[0] = 2.0 * at(0) + (count > 1 ? at(1) : 0.0);
    if (count > 1)
        sums[count - 1] = at(count - 2) + 2.0 * at(count - 1);
}

/// One row of a smoothing pass: the sums of the row above, the row and the row below it.
struct SmoothRow
{
    const double *above;
    const double *here;
    const double *below;
    double rowWeight; ///< 4 inside, 3 in the first and last row, 2 in a single row
    double blend;     ///< share of the new value
    float kept;       ///< cells of this value stay 0; NaN when none do
};

/// The smoothed value of any cell; inner cells have a column weight of 4.
float smoothCell(const SmoothRow &row, float before, int x, double columnWeight)
{
    const double mean =
        (row.above[x] + 2.0 * row.here[x] + row.below[x]) / (columnWeight * row.rowWeight);
    const double after = mean * row.blend + static_cast<double>(before) * (1.0 - row.blend);
    return before == row.kept ? 0.0F : static_cast<float>(after);
}

// The cells that have all their neighbours: their divisor of 16 is a factor without rounding.

CELL_LOOP void smoothInner(const SmoothRow &row, float *values, int count)
{
    const SmoothRow r = row;
    for (int x = 1; x < count - 1; ++x) {
        const double sum = r.above[x] + 2.0 * r.here[x] + r.below[x];
        const float after = static_cast<float>(sum * (1.0 / 16.0));
        values[x] = values[x] == r.kept ? 0.0F : after;
    }
}

CELL_LOOP void smoothInnerBlended(const SmoothRow &row, float *values, int count)
{
    const SmoothRow r = row;
    for (int x = 1; x < count - 1; ++x) {
        const double mean = (r.above[x] + 2.0 * r.here[x] + r.below[x]) * (1.0 / 16.0);
        const double before = values[x];
        const float after = static_cast<float>(mean * r.blend + before * (1.0 - r.blend));
        values[x] = values[x] == r.kept ? 0.0F : after;
    }
}

void smoothOneRow(const SmoothRow &row, float *values, int count)
{
    const double edgeWeight = count > 1 ? 3.0 : 2.0;
    values[0] = smoothCell(row, values[0], 0, edgeWeight);
    if (count > 1)
        values[count - 1] = smoothCell(row, values[count - 1], count - 1, edgeWeight);
    if (row.rowWeight < 4.0) {
        for (int x = 1; x < count - 1; ++x)
            values[x] = smoothCell(row, values[x], x, 4.0);
    } else if (row.blend < 1.0) {
        smoothInnerBlended(row, values, count);
    } else {
        smoothInner(row, values, count);
    }
}

/// One pass in place: a row is overwritten only after the sums of the next one are taken.
void smoothPass(const MutableGridView &heights, double blend, bool keepZeros)
{
    const size_t columns = static_cast<size_t>(heights.width);
    const std::vector<double> nothing(columns, 0.0);
    std::array<std::vector<double>, 3> sums;
    sums.fill(nothing);
    const auto sumsOf = [&sums](int y) { return sums[static_cast<size_t>(y) % 3].data(); };
    sumRow(heights.row(0), sumsOf(0), heights.width);
    for (int y = 0; y < heights.height; ++y) {
        const bool first = y == 0;
        const bool last = y + 1 == heights.height;
        if (!last)
            sumRow(heights.row(y + 1), sumsOf(y + 1), heights.width);
        smoothOneRow({first ? nothing.data() : sumsOf(y - 1), sumsOf(y),
                      last ? nothing.data() : sumsOf(y + 1), 4.0 - (first ? 1 : 0) - (last ? 1 : 0),
                      blend, keepZeros ? 0.0F : std::numeric_limits<float>::quiet_NaN()},
                     heights.row(y), heights.width);
    }
}

/// Adds the plane to one row: `rowLevel` is its height where the column level is 0.
CELL_LOOP void tiltRow(const GridView &row, const TiltSlope &slope, double rowLevel, float *result)
{
    const TiltSlope s = slope;
    const double centre = row.width / 2.0;
    for (int x = 0; x < row.width; ++x) {
        const float before = row.values[x];
        const double level = ((x - centre) * s.perColumn + rowLevel) * s.scale;
        const double value = level + static_cast<double>(before);
        const float tilted = static_cast<float>(value > 0.0 ? value : 0.0);
        result[x] = before > 0.0F ? tilted : before;
    }
}

} // namespace

Padding paddingFor(const FloatGrid &grid)
{
    FigureBox box = figureBox(grid);
    if (box.right <= box.left || box.bottom <= box.top)
        box = {0, grid.width - 1, 0, grid.height - 1};
    const int extentX = box.right - box.left + 1;
    const int extentY = box.bottom - box.top + 1;
    return {missing(extentX, box.left), missing(extentX, grid.width - 1 - box.right),
            missing(extentY, box.top), missing(extentY, grid.height - 1 - box.bottom)};
}

FloatGrid padded(FloatGrid grid, const Padding &padding)
{
    if (padding == Padding{})
        return grid;
    FloatGrid result(grid.width + padding.left + padding.right,
                     grid.height + padding.top + padding.bottom);
    for (int y = 0; y < grid.height; ++y)
        std::memcpy(result.row(y + padding.top) + padding.left, grid.row(y),
                    grid.columns() * sizeof(float));
    return result;
}

CELL_LOOP ValueRange rangeOf(std::span<const float> all)
{
    const float *values = all.data();
    const auto count = static_cast<qsizetype>(all.size());
    // Sixteen independent lanes, because a single running minimum cannot be vectorised.
    constexpr qsizetype lanes = 16;
    float lowest[lanes];
    float highest[lanes];
    std::fill_n(lowest, lanes, values[0]);
    std::fill_n(highest, lanes, values[0]);
    qsizetype i = 0;
    for (; i + lanes <= count; i += lanes) {
        for (qsizetype lane = 0; lane < lanes; ++lane) {
            const float value = values[i + lane];
            lowest[lane] = value < lowest[lane] ? value : lowest[lane];
            highest[lane] = value > highest[lane] ? value : highest[lane];
        }
    }
    for (; i < count; ++i) {
        lowest[0] = std::min(lowest[0], values[i]);
        highest[0] = std::max(highest[0], values[i]);
    }
    return {*std::min_element(lowest, lowest + lanes), *std::max_element(highest, highest + lanes)};
}

void mapBase(const GridView &source, const ValueRange &range, const ImportSettings &settings,
             float *heights)
{
    if (range.span() == 0.0) {
        std::fill_n(heights, source.cells(), 0.0F);
        return;
    }
    const Mapping mapping = mappingOf(range, settings);
    const auto mapRow = settings.invertZ ? mapRowInverted : mapRowUpright;
    for (int y = 0; y < source.height; ++y) {
        const int from = settings.flipY ? source.height - 1 - y : y;
        mapRow(source.row(from), heights, source.width, mapping);
        heights += source.width;
    }
}

// All passes at once: a cell survives n of them exactly when every cell of the (2n + 1) square
// around it exists and is not 0.
void trim(const MutableGridView &heights, int passes)
{
    if (passes <= 0)
        return;
    const auto columns = static_cast<size_t>(heights.width);
    const int window = 2 * passes + 1;
    const int centres = heights.width - window + 1;
    if (centres <= 0 || heights.height < window) {
        std::ranges::fill(heights.span(), 0.0F);
        return;
    }
    std::vector<uint8_t> flags(columns);
    std::vector<uint8_t> rows(static_cast<size_t>(centres), 0);
    for (int y = 0; y < heights.height; ++y) {
        markSolid(heights.row(y), flags.data(), heights.width);
        joinRuns(flags.data(), heights.width, window);
        countRows(rows.data(), flags.data(), centres, static_cast<uint8_t>(window));
        if (y < passes)
            continue;
        float *centre = heights.row(y - passes);
        std::fill_n(centre, passes, 0.0F);
        keepWhere(centre + passes, rows.data(), centres, static_cast<uint8_t>(window));
        std::fill_n(centre + passes + centres, passes, 0.0F);
    }
    std::fill_n(heights.row(heights.height - passes), columns * static_cast<size_t>(passes), 0.0F);
}

void smooth(const MutableGridView &heights, double amount, bool keepZeros)
{
    const int passes = static_cast<int>(std::ceil(amount));
    const double fraction = amount - std::floor(amount);
    for (int pass = 1; pass <= passes; ++pass)
        smoothPass(heights, pass == passes && fraction != 0.0 ? fraction : 1.0, keepZeros);
}

TiltSlope tiltSlope(const ImportSettings &settings, double sourceSpan)
{
    constexpr double radiansPerTenth = std::numbers::pi / 1800.0;
    return {-std::tan(settings.tiltHorizontal * radiansPerTenth),
            std::tan(settings.tiltVertical * radiansPerTenth),
            settings.depth != 0.0 ? sourceSpan / settings.depth : 1.0};
}

ValueRange tilt(const GridView &source, const TiltSlope &slope, float *result)
{
    const double centre = source.height / 2.0;
    const auto columns = static_cast<size_t>(source.width);
    std::vector<ValueRange> ranges(static_cast<size_t>(source.height));
    Progress silent;
    WorkMeter(silent, 1.0).rows(source.height, source.width, [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const auto index = static_cast<size_t>(y);
            float *row = result + index * columns;
            tiltRow({source.row(y), source.width, 1}, slope, (y - centre) * slope.perRow, row);
            ranges[index] = rangeOf({row, columns});
        }
    });
    ValueRange all = ranges[0];
    for (const ValueRange &range : ranges)
        all = {std::min(all.lowest, range.lowest), std::max(all.highest, range.highest)};
    return all;
}

} // namespace marlowen
