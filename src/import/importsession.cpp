#include "import/importsession.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace marlowen {

ImportSettings ImportSession::openingSettings() const
{
    ImportSettings opening;
    opening.flipY = m_settings.flipY;
    opening.invertZ = m_settings.invertZ;
    opening.transparency = m_settings.transparency;
    opening.smoothing = m_settings.smoothing;
    opening.tiltHorizontal = m_settings.tiltHorizontal;
    opening.tiltVertical = m_settings.tiltVertical;
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

template <typename Value>
void ImportSession::_set(Value ImportSettings::*member, Value value, Effect effect)
{
    if (m_settings.*member == value)
        return;
    ImportSettings settings = m_settings;
    settings.*member = value;
    _apply(settings, effect);
}

void ImportSession::setFlipY(bool on)
{
    _set(&ImportSettings::flipY, on, {});
}

void ImportSession::setPreview(bool on)
{
    _set(&ImportSettings::preview, on, {.dirty = false});
}

void ImportSession::setInvertZ(bool on)
{
    _set(&ImportSettings::invertZ, on, {});
}

void ImportSession::setTransparency(bool on)
{
    _set(&ImportSettings::transparency, on, {});
}

void ImportSession::setSmoothing(double passes)
{
    _set(&ImportSettings::smoothing, std::clamp(passes, 0.0, 5.0), {});
}

void ImportSession::setRaiseLower(int percent)
{
    _set(&ImportSettings::raiseLower, std::clamp(percent, -100, 100), {});
}

void ImportSession::setTrim(int passes)
{
    _set(&ImportSettings::trim, std::clamp(passes, 0, 20), {});
}

void ImportSession::setTilt(int horizontal, int vertical)
{
    ImportSettings settings = m_settings;
    settings.tiltHorizontal = std::clamp(horizontal, -100, 100);
    settings.tiltVertical = std::clamp(vertical, -100, 100);
    if (settings != m_settings)
        _apply(settings, {});
}

void ImportSession::setDepth(double depth)
{
    _set(&ImportSettings::depth, std::max(0.0, depth), {});
}

void ImportSession::setGridSize(int cells)
{
    _set(&ImportSettings::gridSize, std::max(1, cells), {.recompute = false});
}

void ImportSession::setContrastFactor(int factor)
{
    _set(&ImportSettings::contrastFactor, std::max(1, factor), {.recompute = false});
}

void ImportSession::setSmoothness(int smoothness)
{
    _set(&ImportSettings::smoothness, std::max(1, smoothness), {.recompute = false});
}

void ImportSession::setBasRelief(bool on)
{
    _set(&ImportSettings::basRelief, on, {.dirty = false});
}

void ImportSession::setSettings(const ImportSettings &settings)
{
    ImportSettings quiet = m_settings;
    quiet.preview = settings.preview;
    quiet.basRelief = settings.basRelief;
    _apply(settings, {.dirty = !(quiet == settings)});
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

int gridSizeOfSlider(int position)
{
    return position >= 1 && position <= 5 ? 1 << position : 4;
}

int contrastFactorOfSlider(int position)
{
    return 1 << std::clamp(position, 1, 16);
}

int smoothnessOfSlider(int position)
{
    static constexpr std::array<int, 9> steps{20000,   50000,   100000,  200000,  500000,
                                              1000000, 2000000, 5000000, 10000000};
    return position >= 1 && position <= 9 ? steps[static_cast<size_t>(position - 1)] : 100000;
}

} // namespace marlowen
