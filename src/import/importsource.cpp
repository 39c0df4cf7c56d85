#include "import/importsource.h"

#include "import/bas/basutil.h"
#include "import/deband/deband.h"
#include "import/pipeline.h"

#include <algorithm>
#include <utility>

namespace marlowen {

ImportSource::ImportSource(FloatGrid values, const ImportSettings &settings)
    : m_values(std::make_shared<const FloatGrid>(std::move(values)))
    , m_range(rangeOf(m_values->values))
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
    const GridView source{tilt ? m_tilted.data() : _start().values.data(), width(), height()};
    mapBase(source, tilt ? m_tiltedRange : m_range, m_settings, heights);
    if (!m_settings.preview)
        return;
    const MutableGridView view{heights, width(), height()};
    trim(view, m_settings.trim);
    smooth(view, m_settings.smoothing, m_settings.transparency);
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
    m_tilted = {};
    if (!m_settings.tilted())
        return;
    m_tilted = tiltedValues(_start(), tiltSlope(m_settings, valueRange()));
    m_tiltedRange = rangeOf(m_tilted);
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
