#include "import/bas/basutil.h"

#include "import/bas/formfilter.h"
#include "import/bas/gaussian.h"
#include "import/bas/islands.h"
#include "import/bas/poisson.h"
#include "import/bas/slopeorder.h"
#include "import/bas/slopes.h"
#include "relief/grid/cellcode.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlowen {
namespace {

/// Deviations from a plane beyond this share of the depth are form rather than detail.
constexpr float detailThreshold = 0.0115F;
constexpr float middleThreshold = 0.012F;
constexpr int fineSpacing = 2;
constexpr int middleSpacing = 8;
/// A relief whose depth is a smaller share of its height counts as flat.
constexpr float flatShare = 1e-6F;
constexpr float flatHeight = 1e-30F;
/// The ground lies this share of the depth above the lowest cells, which are pressed into what room
/// is left above 0.
constexpr float groundShare = 0.02F;
/// Height of a relief without depth, as a share of its old height.
constexpr float sheetShare = 1e-3F;
/// Passes over the grid other than those of the Poisson solver, for the progress.
constexpr double otherPasses = 16.0 + slopeOrderPasses;

/// The values that the three parameters stand for.
struct Recipe
{
    explicit Recipe(const BasReliefInput &input)
    {
        const double contrast = std::clamp(input.contrastFactor, 2, 65536);
        const double calm = std::clamp(input.smoothness, 20000, 10000000) / 20000.0;
        const double local = std::clamp(input.gridSize, 2, 32) / 2.0;
        depth = static_cast<float>(1.0 / (1.0 + 0.87 * std::log2(contrast)));
        leastGain = 0.8F * depth;
        leastSlope = 0.12F * depth;
        fineGain = static_cast<float>(1.02 * std::pow(contrast / 8.0, 0.04));
        middleGain = 0.6F * std::sqrt(depth * fineGain);
        evenness = static_cast<float>(std::sqrt(std::min(contrast / 16.0, 32.0)));
        sigmaCells = static_cast<float>(1.85 * (std::pow(calm, 0.25) - 1.0));
        const double length = 2.0 * std::max(input.heights.width, input.heights.height) / local;
        screening = static_cast<float>(1.0 / (length * length));
        sink = static_cast<float>(1.0 / std::sqrt(local));
    }

    float depth;      ///< of the form, as a share of its old depth
    float leastGain;  ///< factor on the steepest slopes, before that share is taken
    float leastSlope; ///< share that slopes keep of themselves, detail included
    float fineGain;   ///< factor on detail
    float middleGain; ///< factor on small forms
    float evenness;   ///< how much steep slopes are flattened against gentle ones
    float sigmaCells; ///< blur of the detail
    float screening;  ///< see solvePoisson
    float sink;       ///< share that is left of the broad forms
};

/// Lowest and highest of the values met so far.
struct Extremes
{
    /// 0 when nothing was met.
    float span() const { return highest > lowest ? highest - lowest : 0.0F; }
    float lowest = std::numeric_limits<float>::max();
    float highest = std::numeric_limits<float>::lowest();
};

Extremes united(const std::vector<Extremes> &parts)
{
    Extremes all;
    for (const Extremes &part : parts) {
        all.lowest = std::min(all.lowest, part.lowest);
        all.highest = std::max(all.highest, part.highest);
    }
    return all;
}

CELL_LOOP void meet(const float *heights, const uint8_t *filled, int count, Extremes &extremes)
{
    constexpr float far = std::numeric_limits<float>::max();
    float low = extremes.lowest;
    float high = extremes.highest;
#pragma omp simd reduction(min : low) reduction(max : high)
    for (int x = 0; x < count; ++x) {
        const float ifLow = filled[x] ? heights[x] : far;
        const float ifHigh = filled[x] ? heights[x] : -far;
        low = ifLow < low ? ifLow : low;
        high = ifHigh > high ? ifHigh : high;
    }
    extremes = {low, high};
}

struct Scaling
{
    float offset;
    float factor;
};

CELL_LOOP void scaleRow(const float *heights, const uint8_t *filled, const Scaling &scaling,
                        float *out, int count)
{
    const Scaling s = scaling;
#pragma omp simd
    for (int x = 0; x < count; ++x)
        out[x] = filled[x] ? (heights[x] - s.offset) * s.factor : 0.0F;
}

CELL_LOOP void subtractRow(const float *from, float *values, int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x)
        values[x] = values[x] - from[x];
}

/// The detail of a row: its fine part, scaled, and the small forms between the two forms.
struct DetailRow
{
    const float *form;
    const float *broad;
    const uint8_t *filled;
    float fineGain;
    float middleGain;
};

CELL_LOOP void mixDetailRow(const DetailRow &row, float *detail, int count)
{
    const DetailRow r = row;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float value = r.fineGain * detail[x] + r.middleGain * (r.form[x] - r.broad[x]);
        detail[x] = r.filled[x] ? value : 0.0F;
    }
}

CELL_LOOP void addRow(const float *detail, float share, float *form, int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x)
        form[x] = share * form[x] + detail[x];
}

/// Heights of the result: (surface - offset) * factor, where values below `knee` are pressed
/// into the room above 0.
struct ResultRow
{
    const uint8_t *filled;
    float knee;
    Scaling scaling;
};

CELL_LOOP void finishRow(const ResultRow &row, float *surface, int count)
{
    const ResultRow r = row;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float height = surface[x] - r.scaling.offset;
        const float below = r.knee * r.knee / (2.0F * r.knee - (height < r.knee ? height : r.knee));
        const float raised = height < r.knee ? below : height;
        surface[x] = r.filled[x] ? raised * r.scaling.factor : 0.0F;
    }
}

/// The parts a relief is taken apart into: grids of shares of its depth, 0 in empty cells.
class Parts
{
public:
    Parts(const GridView &heights, const CellMask &filled, const Recipe &recipe)
        : m_recipe(recipe)
        , m_heights(heights)
        , m_filled(filled)
        , m_detail(heights.width, heights.height)
        , m_fineForm(heights.width, heights.height)
    {
    }

    /// Splits the heights into form and detail.
    bool split(const Scaling &scaling, WorkMeter &meter)
    {
        const int width = m_heights.width;
        const auto scale = [&](int y) {
            scaleRow(m_heights.row(y), _filled(y), scaling, m_detail.row(y), width);
        };
        const auto takeForm = [&](int y) {
            subtractRow(m_fineForm.row(y), m_detail.row(y), width);
        };
        const auto mix = [&](int y) {
            mixDetailRow({m_fineForm.row(y), m_form.row(y), _filled(y), m_recipe.fineGain,
                          m_recipe.middleGain},
                         m_detail.row(y), width);
        };
        const auto keepCalmed = [&](int y) {
            std::copy_n(m_fineForm.row(y), width, m_calmed.row(y));
            addRow(m_detail.row(y), 1.0F, m_calmed.row(y), width);
        };
        const auto calm = [&] {
            if (m_recipe.sigmaCells <= 0.0F)
                return true;
            m_calmed = FloatGrid(width, m_heights.height);
            return blur(m_detail, m_recipe.sigmaCells, meter) && _eachRow(keepCalmed, meter);
        };
        if (!_eachRow(scale, meter) ||
            !formOf({m_detail, m_filled, fineSpacing}, detailThreshold, m_fineForm, meter))
            return false;
        // Only now: finding the fine form takes most of the memory.
        m_form = FloatGrid(width, m_heights.height);
        return formOf({m_fineForm, m_filled, middleSpacing}, middleThreshold, m_form, meter) &&
               _eachRow(takeForm, meter) && calm() && _eachRow(mix, meter);
    }

    /// Flattens the slopes of the form, integrates them and finds with which share of the result
    /// the form has its share of the old depth.
    bool flatten(WorkMeter &meter)
    {
        const float wanted = m_recipe.depth * _range(meter).span();
        const FilledSurface form{m_form, m_filled};
        const double slope = meanSlope(form, meter);
        if (slope < 0.0)
            return false;
        std::vector<double> means = islandMeans(m_form, m_filled);
        for (double &mean : means)
            mean *= static_cast<double>(m_recipe.sink);
        const Flattening flattening{std::max(static_cast<float>(slope) / m_recipe.evenness, 1e-12F),
                                    m_recipe.leastGain, m_recipe.screening * m_recipe.sink};
        FloatGrid &rightSide = m_fineForm;
        if (!flattenedSlopes(form, flattening, rightSide, meter) ||
            !solvePoisson(m_form, rightSide, m_filled, m_recipe.screening, meter))
            return false;
        // With a long reach of the screening the solver leaves the levels of islands to chance.
        if (means.size() > 1)
            setIslandMeans(m_form, m_filled, means);
        const float span = _range(meter).span();
        m_share = span > wanted ? wanted / span : 1.0F;
        return true;
    }

    /// The heights of the result in units of `depth`, the lowest just above 0. The parts are used
    /// up.
    std::optional<std::vector<float>> combine(float depth, WorkMeter &meter)
    {
        const auto add = [&](int y) {
            addRow(m_detail.row(y), m_share, m_form.row(y), m_form.width);
        };
        const bool calmed = !m_calmed.values.empty();
        if (!_eachRow(add, meter) ||
            !keepSlopeSigns(calmed ? m_calmed.view() : m_heights, m_filled,
                            m_recipe.leastSlope / (calmed ? 1.0F : depth), m_form, meter))
            return std::nullopt;
        // A few deep pits in low places shall not raise everything else above the ground.
        const Extremes extremes = _range(meter);
        const float span = extremes.span();
        const ResultRow row{
            nullptr, 1.5F * groundShare * span, {extremes.lowest + groundShare * span, depth}};
        const auto finish = [&](int y) {
            finishRow({_filled(y), row.knee, row.scaling}, m_form.row(y), m_form.width);
        };
        if (!_eachRow(finish, meter))
            return std::nullopt;
        return std::move(m_form.values);
    }

private:
    template <typename Work>
    bool _eachRow(Work work, WorkMeter &meter) const
    {
        return meter.rows(m_heights.height, m_heights.width, [&](int first, int end) {
            for (int y = first; y < end; ++y)
                work(y);
        });
    }

    /// Of the form.
    Extremes _range(WorkMeter &meter) const
    {
        std::vector<Extremes> bands(static_cast<size_t>(m_form.height));
        meter.rows(m_form.height, m_form.width, [&](int first, int end) {
            for (int y = first; y < end; ++y)
                meet(m_form.row(y), _filled(y), m_form.width, bands[static_cast<size_t>(first)]);
        });
        return united(bands);
    }

    const uint8_t *_filled(int y) const
    {
        return m_filled.data() + static_cast<size_t>(y) * m_fineForm.columns();
    }

    const Recipe &m_recipe;
    GridView m_heights;
    const CellMask &m_filled;
    FloatGrid m_detail;
    FloatGrid m_fineForm;
    FloatGrid m_form;   ///< empty until the fine form is found
    FloatGrid m_calmed; ///< the heights with the detail blurred; empty where they stay
    float m_share = 1.0F;
};

/// A relief without any depth becomes a thin sheet.
std::vector<float> thinSheet(const CellMask &filled, float height)
{
    std::vector<float> sheet(filled.size());
    for (size_t i = 0; i < filled.size(); ++i)
        sheet[i] = filled[i] ? height : 0.0F;
    return sheet;
}

CELL_LOOP void markFilled(const float *heights, uint8_t *filled, qsizetype count)
{
#pragma omp simd
    for (qsizetype i = 0; i < count; ++i)
        filled[i] = heights[i] > 0.0F;
}

Extremes filledRange(const GridView &heights, const CellMask &filled)
{
    Extremes extremes;
    for (int y = 0; y < heights.height; ++y)
        meet(heights.row(y),
             filled.data() + static_cast<size_t>(y) * static_cast<size_t>(heights.width),
             heights.width, extremes);
    return extremes;
}

} // namespace

std::optional<std::vector<float>> makeBasRelief(const BasReliefInput &input, Progress &progress)
{
    const GridView &heights = input.heights;
    const Recipe recipe(input);
    CellMask filled(static_cast<size_t>(heights.cells()));
    markFilled(heights.values, filled.data(), heights.cells());
    const Extremes range = filledRange(heights, filled);
    const float depth = range.span();
    const float thin =
        std::max(range.highest * recipe.depth * sheetShare, std::numeric_limits<float>::min());
    if (!(depth > std::max(range.highest * flatShare, flatHeight)))
        return thinSheet(filled, thin);
    WorkMeter meter(progress, static_cast<double>(heights.cells()) * (poissonPasses + otherPasses));
    Parts parts(heights, filled, recipe);
    if (!parts.split({range.lowest, 1.0F / depth}, meter) || !parts.flatten(meter))
        return std::nullopt;
    return parts.combine(depth, meter);
}

bool basReliefIsQuick(const GridView &heights)
{
    constexpr qsizetype mostFilled = 1000000;
    constexpr qsizetype mostCells = 4 * mostFilled;
    if (heights.cells() <= mostFilled)
        return true;
    return heights.cells() <= mostCells &&
           std::count_if(heights.values, heights.values + heights.cells(),
                         [](float height) { return height > 0.0F; }) <= mostFilled;
}

} // namespace marlowen
