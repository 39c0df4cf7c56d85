#include "import/importsource.h"

#include "import/bas/basutil.h"
#include "import/deband/deband.h"
#include "import/pipeline.h"

#include <algorithm>
#include <utility>

namespace marlowen {

namespace {

/// The view of a grid; it keeps the grid in memory.
template <typename Grid>
std::shared_ptr<const GridView> keptView(Grid grid)
{
    struct Kept
    {
        Grid grid;
        GridView view;
    };
    const auto kept = std::make_shared<Kept>(Kept{std::move(grid), {}});
    kept->view = std::as_const(kept->grid).view();
    return {kept, &kept->view};
}

/// What is done to the heights once they are mapped.
void finishHeights(const MutableGridView &heights, const ImportSettings &settings)
{
    if (!settings.preview)
        return;
    trim(heights, settings.trim);
    smooth(heights, settings.smoothing, settings.transparency);
}

} // namespace

ImportSource::ImportSource(FloatGrid values, const ImportSettings &settings)
    : ImportSource(keptView(std::move(values)), settings)
{
}

ImportSource::ImportSource(LayerGrid values, const ImportSettings &settings)
    : ImportSource(keptView(std::move(values)), settings)
{
}

ImportSource::ImportSource(std::shared_ptr<const GridView> values, const ImportSettings &settings)
    : m_values(std::move(values))
    , m_range(rangeOf(m_values->span()))
    , m_settings(settings)
{
}

void ImportSource::setSettings(const ImportSettings &settings)
{
    // The slope is a slope of the finished heights, so the depth decides how steep it is in
    // source units.
    const bool sameTilt = settings.tiltHorizontal == m_settings.tiltHorizontal &&
                          settings.tiltVertical == m_settings.tiltVertical &&
                          settings.depth == m_settings.depth;
    tiltDirty = tiltDirty || !sameTilt || settings.deband != m_settings.deband;
    m_settings = settings;
}

void ImportSource::computeHeights(float *heights)
{
    Progress silent;
    prepareDebanded(m_settings.deband, silent);
    if (std::exchange(tiltDirty, false))
        _rebuildTilt();
    const bool tilt = !m_tilted.empty();
    mapBase(tilt ? tilted() : _start(), tilt ? m_tiltedRange : m_range, m_settings, heights);
    finishHeights({heights, width(), height()}, m_settings);
}

bool ImportSource::prepareDebanded(double strength, Progress &progress)
{
    if (strength == m_debandedWith)
        return true;
    FloatGrid result;
    if (strength > 0.0) {
        std::optional<std::vector<float>> values = debanded(*m_values, strength, progress);
        if (!values)
            return false;
        result = {width(), height(), std::move(*values)};
    }
    m_debanded = std::move(result);
    m_debandedWith = strength;
    return true;
}

void ImportSource::_rebuildTilt()
{
    if (!m_settings.tilted()) {
        m_tilted = {};
        return;
    }
    if (m_tilted.empty())
        m_tilted = LayerGrid(width(), height());
    m_tiltedRange = tilt(_start(), tiltSlope(m_settings, valueRange()), m_tilted.view().values);
}

double finalHeights(LayerGrid values, const ImportSettings &settings, GridLayer &heights)
{
    Q_ASSERT(values.cells() == heights.size());
    if (settings.flipY || settings.tilted() || settings.deband > 0.0) {
        ImportSource source(std::move(values), settings);
        source.computeHeights(heights.data());
        return source.valueRange();
    }
    const MutableGridView view = values.view();
    const ValueRange range = rangeOf(std::as_const(values).view().span());
    mapBase(std::as_const(values).view(), range, settings, view.values);
    finishHeights(view, settings);
    heights.swap(values.values);
    return range.span();
}

namespace {

/// False when there is no new result.
bool makeBasRelief(const Relief &relief, ImportSource &source, const RecomputeRun &run)
{
    if (!run.generator || !*run.generator)
        return false;
    Progress silent;
    const ImportSettings &settings = source.settings();
    std::optional<std::vector<float>> result =
        (*run.generator)({{relief.heights().constData(), relief.width(), relief.height()},
                          settings.gridSize,
                          settings.contrastFactor,
                          settings.smoothness},
                         run.progress ? *run.progress : silent);
    if (!result)
        return false;
    Q_ASSERT(static_cast<qsizetype>(result->size()) == relief.cells());
    source.lastBasRelief = std::move(*result);
    ++source.basReliefs;
    source.dirty = false;
    return true;
}

bool allowed(const Relief &relief, const RecomputeRun &run)
{
    return run.allowBasRelief && (!run.onlyWhenQuick || basReliefIsQuick(heightView(relief)));
}

/// `shown`: the relief showed the last result before.
void applyBasRelief(Relief &relief, ImportSource &source, const RecomputeRun &run, bool shown)
{
    const bool wanted = source.dirty && allowed(relief, run);
    const bool failed = wanted && !makeBasRelief(relief, source, run);
    source.showsBasRelief = !source.lastBasRelief.empty() && (!source.dirty || (failed && shown));
    if (source.showsBasRelief)
        std::copy(source.lastBasRelief.begin(), source.lastBasRelief.end(),
                  relief.heights().data());
}

} // namespace

void recompute(Relief &relief, ImportSource &source, const RecomputeRun &run)
{
    Q_ASSERT(relief.width() == source.width() && relief.height() == source.height());
    const bool shown = std::exchange(source.showsBasRelief, false);
    source.computeHeights(relief.heights().data());
    if (source.settings().preview) {
        if (source.settings().basRelief)
            applyBasRelief(relief, source, run, shown);
        relief.referenceLayer().copyFrom(relief.heights());
    }
    relief.heightsChanged = true;
    relief.frameRegion = relief.rect();
}

} // namespace marlowen
