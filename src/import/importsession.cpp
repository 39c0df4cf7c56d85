#include "import/importsession.h"

namespace marlowen {

ImportSettings ImportSession::openingSettings() const
{
    ImportSettings opening;
    for (const Field<ImportSettings> &field : importFields()) {
        if (field.info.has(StartsNextImport))
            field.store(opening, field.value(m_settings));
    }
    return opening;
}

void ImportSession::attach(Relief *relief)
{
    m_relief = relief;
    m_source = relief ? dynamic_cast<ImportSource *>(relief->source()) : nullptr;
    if (m_source)
        m_settings = m_source->settings();
}

bool ImportSession::active() const
{
    return m_source && m_source->width() == m_relief->width() &&
           m_source->height() == m_relief->height();
}

void ImportSession::_apply(const ImportSettings &settings, Effect effect)
{
    m_settings = settings;
    if (active()) {
        m_source->setSettings(settings);
        m_source->dirty = m_source->dirty || effect.dirty;
        if (effect.recompute)
            recompute(*m_relief, *m_source, {});
    }
    if (changed)
        changed();
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
    recompute(*m_relief, *m_source, {true, &basReliefGenerator, progress});
    if (changed)
        changed();
}

void ImportSession::accept()
{
    if (!m_source)
        return;
    m_source = nullptr;
    m_relief->setSource(nullptr);
    if (changed)
        changed();
}

} // namespace marlowen
