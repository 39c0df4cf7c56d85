#pragma once

#include "import/importsource.h"

#include <functional>

namespace marlowen {

/// The open import of one relief, driven by the import controls: every setter stores its value and,
/// where the control asks for it, recomputes the heights at once (without the bas-relief step) and
/// marks the relief changed for the views. A setter whose value is the stored one does nothing;
/// values out of range are clamped; without an open import a setter only stores, so that the next
/// opened file starts from the controls as they stand.
class ImportSession
{
public:
    /// Called after every change of the settings or the heights: redraw, enable "Update".
    std::function<void()> changed;
    /// Makes bas-reliefs; while empty, the bas-relief settings are kept but have no effect.
    BasReliefGenerator basReliefGenerator;

    /// The relief whose source (an ImportSource or nothing) the setters work on; null for none.
    /// Does not own it. The settings become the source's, when there is one.
    void attach(Relief *relief);
    /// Whether an import is open. A relief that was resized no longer fits its source and has none
    /// until the resize is undone.
    bool active() const;
    /// A bas-relief setting changed since the last result: exactly then "Update" is enabled.
    bool dirty() const { return active() && m_source->dirty; }
    const ImportSettings &settings() const { return m_settings; }
    /// What a file opened now starts with: flip, invert, transparency, smoothing and tilt as the
    /// controls stand, everything else at its default.
    ImportSettings openingSettings() const;

    void setFlipY(bool on);
    /// Does not set dirty.
    void setPreview(bool on);
    void setInvertZ(bool on);
    void setTransparency(bool on);
    void setSmoothing(double passes);
    void setRaiseLower(int percent);
    void setTrim(int passes);
    /// Tenths of a degree, both stored together.
    void setTilt(int horizontal, int vertical);
    /// 0 keeps source units.
    void setDepth(double depth);
    /// These three recompute nothing until update().
    void setGridSize(int cells);
    void setContrastFactor(int factor);
    void setSmoothness(int smoothness);
    /// Does not set dirty.
    void setBasRelief(bool on);

    /// Any number of settings at once, with one recompute even when none of them is new.
    void setSettings(const ImportSettings &settings);
    /// Recomputes with the bas-relief step allowed. `progress` may be null.
    void update(Progress *progress);
    /// Ends the import: the heights stay, the source is released.
    void accept();

private:
    /// What a changed setting asks for.
    struct Effect
    {
        bool recompute = true;
        bool dirty = true;
    };
    template <typename Value>
    void _set(Value ImportSettings::*member, Value value, Effect effect);
    void _apply(const ImportSettings &settings, Effect effect);

    Relief *m_relief = nullptr;
    ImportSource *m_source = nullptr;
    ImportSettings m_settings;
};

/// Values behind the positions of the bas-relief sliders.
int gridSizeOfSlider(int position);       ///< 2, 4, 8, 16, 32 for 1..5, else 4
int contrastFactorOfSlider(int position); ///< 2 to the power of 1..16
int smoothnessOfSlider(int position);     ///< 20000 .. 10000000 for 1..9, else 100000

} // namespace marlowen
