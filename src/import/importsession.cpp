#include "import/importsession.h"

#include <algorithm>

namespace marlowen {

void ImportSession::startWith(const ImportSettings &opening)
{
    m_opening = clampedFields(importFields(), opening);
    if (!m_source)
        m_settings = m_opening;
}

void ImportSession::attach(Relief *relief)
{
    m_comparing = false;
    m_relief = relief;
    m_source = relief ? dynamic_cast<ImportSource *>(relief->source()) : nullptr;
    m_settings = m_source ? m_source->settings() : m_opening;
}

bool ImportSession::active() const
{
    return m_source && m_source->width() == m_relief->width() &&
           m_source->height() == m_relief->height();
}

bool ImportSession::_follows() const
{
    return followsChanges && m_settings.basRelief && m_settings.preview && m_source->dirty &&
           basReliefIsQuick(heightView(*m_relief));
}

/// The settings of a model do not apply to the next picture.
void ImportSession::_keepForNext(const ImportSettings &settings)
{
    if (m_source && !m_source->isPicture)
        return;
    for (const Field<ImportSettings> &field : importFields()) {
        const double value = field.value(settings);
        if (field.info.has(StartsNextImport) && value != field.value(m_settings))
            field.store(m_opening, value);
    }
}

/// False when the user cancelled the work that the settings need first.
bool ImportSession::_prepared(const ImportSettings &settings)
{
    if (!active() || settings.deband == m_settings.deband)
        return true;
    const std::unique_ptr<Progress> progress =
        startWork ? startWork() : std::make_unique<Progress>();
    return m_source->prepareDebanded(settings.deband, *progress);
}

void ImportSession::_apply(const ImportSettings &settings, Effect effect)
{
    compare(false);
    if (!_prepared(settings))
        return;
    _keepForNext(settings);
    m_settings = settings;
    if (active()) {
        m_source->setSettings(settings);
        m_source->dirty = m_source->dirty || effect.dirty;
        if (effect.recompute || _follows())
            _recompute({followsChanges, true, &basReliefGenerator});
    }
    if (changed)
        changed();
}

void ImportSession::_recompute(const RecomputeRun &run)
{
    recompute(*m_relief, *m_source, run);
    ++m_recomputes;
}

ImportSession::Effect ImportSession::_effectOf(const ImportSettings &settings) const
{
    Effect effect;
    for (const Field<ImportSettings> &field : importFields()) {
        if (field.value(settings) == field.value(m_settings))
            continue;
        effect.any = true;
        effect.recompute = effect.recompute || !field.info.has(WaitsForUpdate);
        effect.dirty = effect.dirty || !field.info.has(KeepsBasRelief);
    }
    return effect;
}

void ImportSession::change(const ImportSettings &settings)
{
    const ImportSettings usable = clampedFields(importFields(), settings);
    if (const Effect effect = _effectOf(usable); effect.any)
        _apply(usable, effect);
}

void ImportSession::setSettings(const ImportSettings &settings)
{
    const ImportSettings usable = clampedFields(importFields(), settings);
    Effect effect = _effectOf(usable);
    effect.recompute = true;
    _apply(usable, effect);
}

void ImportSession::update(Progress *progress)
{
    if (!active())
        return;
    compare(false);
    _recompute({true, false, &basReliefGenerator, progress});
    if (changed)
        changed();
}

void ImportSession::compare(bool without)
{
    if (without == m_comparing || !canCompare())
        return;
    m_comparing = without;
    float *heights = m_relief->heights().data();
    if (without)
        m_source->computeHeights(heights);
    else
        std::ranges::copy(m_source->lastBasRelief, heights);
    m_relief->heightsChanged = true;
    m_relief->frameRegion = m_relief->rect();
    if (shown)
        shown();
}

void ImportSession::accept()
{
    if (!m_source)
        return;
    compare(false);
    m_source = nullptr;
    m_relief->setSource(nullptr);
    startWith(m_opening);
    if (changed)
        changed();
}

} // namespace marlowen
