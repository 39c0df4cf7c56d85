#include "import/bas/basutil.h"

#include "import/bas/formfilter.h"
#include "import/bas/gaussian.h"
#include "import/bas/islands.h"
#include "import/bas/poisson.h"
#include "import/bas/slopes.h"
#include "relief/grid/cellcode.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlowen {
namespace {

/// Deviations from a plane beyond this share of the depth are form rather than detail.
constexpr float detailThreshold = 0.02F;
constexpr float middleThreshold = 0.015F;
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
constexpr double otherPasses = 16.0;

/// The values that the three parameters stand for.
struct Recipe
{
    explicit Recipe(const BasReliefInput &input)
    {
        const double contrast = std::clamp(input.contrastFactor, 2, 65536);
        const double calm = std::clamp(input.smoothness, 20000, 10000000) / 20000.0;
        const double local = std::clamp(input.gridSize, 2, 32) / 2.0;
        depth = static_cast<float>(1.0 / (1.0 + 1.05 * std::log2(contrast)));
        leastGain = 0.8F * depth;
        fineGain = static_cast<float>(std::pow(contrast / 8.0, 0.04));
        middleGain = std::sqrt(depth * fineGain);
        evenness = static_cast<float>(std::sqrt(std::min(contrast / 16.0, 32.0)));
        sigmaCells = static_cast<float>(1.85 * (std::pow(calm, 0.25) - 1.0));
        const double length = 2.0 * std::max(input.heights.width, input.heights.height) / local;
        screening = static_cast<float>(1.0 / (length * length));
        sink = static_cast<float>(1.0 / std::sqrt(local));
    }

    float depth;      ///< of the form, as a share of its old depth
    float leastGain;  ///< factor on the steepest slopes, before that share is taken
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

/// Heights that count where a cell is filled: share * form + detail.
struct SumRow
{
    const float *form;
    const float *detail;
    const uint8_t *filled;
    float share;
};

CELL_LOOP void meet(const SumRow &row, int count, Extremes &extremes)
{
    const SumRow r = row;
    constexpr float far = std::numeric_limits<float>::max();
    float low = extremes.lowest;
    float high = extremes.highest;
#pragma omp simd reduction(min : low) reduction(max : high)
    for (int x = 0; x < count; ++x) {
        const float value = r.share * r.form[x] + r.detail[x];
        const float ifLow = r.filled[x] ? value : far;
        const float ifHigh = r.filled[x] ? value : -far;
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

/// Heights of the result: (share * form + detail - offset) * factor, where values below `knee`
/// is pressed into the room above 0.
struct ResultRow
{
    const float *detail;
    const uint8_t *filled;
    float share;
    float knee;
    Scaling scaling;
};

CELL_LOOP void combineRow(const ResultRow &row, float *form, int count)
{
    const ResultRow r = row;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float height = r.share * form[x] + r.detail[x] - r.scaling.offset;
        const float below = r.knee * r.knee / (2.0F * r.knee - (height < r.knee ? height : r.knee));
        const float raised = height < r.knee ? below : height;
        form[x] = r.filled[x] ? raised * r.scaling.factor : 0.0F;
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
        , m_form(heights.width, heights.height)
    {
    }

    /// Splits the heights into form and detail.
    bool split(const Scaling &scaling, WorkMeter &meter)
    {
        const int width = m_form.width;
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
        return _eachRow(scale, meter) &&
               formOf({m_detail, m_filled, fineSpacing}, detailThreshold, m_fineForm, meter) &&
               formOf({m_fineForm, m_filled, middleSpacing}, middleThreshold, m_form, meter) &&
               _eachRow(takeForm, meter) && blur(m_detail, m_recipe.sigmaCells, meter) &&
               _eachRow(mix, meter);
    }

    /// Flattens the slopes of the form, integrates them and finds with which share of the result
    /// the form has its share of the old depth.
    bool flatten(WorkMeter &meter)
    {
        const float wanted = m_recipe.depth * range(1.0F, false, meter).span();
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
        const float span = range(1.0F, false, meter).span();
        m_share = span > wanted ? wanted / span : 1.0F;
        return true;
    }

    /// Range of share * form, plus the detail where asked for.
    Extremes range(float share, bool withDetail, WorkMeter &meter) const
    {
        std::vector<Extremes> bands(static_cast<size_t>(m_form.height));
        const std::vector<float> none(m_form.columns());
        meter.rows(m_form.height, m_form.width, [&](int first, int end) {
            Extremes &extremes = bands[static_cast<size_t>(first)];
            for (int y = first; y < end; ++y)
                meet({m_form.row(y), withDetail ? m_detail.row(y) : none.data(), _filled(y), share},
                     m_form.width, extremes);
        });
        return united(bands);
    }

    /// The heights of the result in units of `depth`, the lowest just above 0. The parts are used
    /// up.
    std::optional<std::vector<float>> combine(float depth, WorkMeter &meter)
    {
        // A few deep pits in low places shall not raise everything else above the ground.
        const Extremes extremes = range(m_share, true, meter);
        const float span = extremes.span();
        const Scaling scaling{extremes.lowest + groundShare * span, depth};
        const float knee = 1.5F * groundShare * span;
        const auto combineOne = [&](int y) {
            combineRow({m_detail.row(y), _filled(y), m_share, knee, scaling}, m_form.row(y),
                       m_form.width);
        };
        if (!_eachRow(combineOne, meter))
            return std::nullopt;
        return std::move(m_form.values);
    }

private:
    template <typename Work>
    bool _eachRow(Work work, WorkMeter &meter) const
    {
        return meter.rows(m_form.height, m_form.width, [&](int first, int end) {
            for (int y = first; y < end; ++y)
                work(y);
        });
    }

    const uint8_t *_filled(int y) const
    {
        return m_filled.data() + static_cast<size_t>(y) * m_form.columns();
    }

    const Recipe &m_recipe;
    GridView m_heights;
    const CellMask &m_filled;
    FloatGrid m_detail;
    FloatGrid m_fineForm;
    FloatGrid m_form;
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
    const std::vector<float> nothing(static_cast<size_t>(heights.width));
    for (int y = 0; y < heights.height; ++y)
        meet({heights.row(y), nothing.data(),
              filled.data() + static_cast<size_t>(y) * static_cast<size_t>(heights.width), 1.0F},
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
