#pragma once

#include "import/basrelief.h"
#include "import/importsettings.h"
#include "import/valuerange.h"
#include "relief/grid/layergrid.h"
#include "relief/grid/relief.h"

#include <QString>

#include <memory>
#include <vector>

namespace marlowen {

/// What an open import works from: the padded grid of source values (grey levels 0..255 of an
/// image, heights of a mesh; 0 is background) and the settings that turn them into heights. Owned
/// by the relief while the import is open.
class ImportSource : public ReliefSource
{
public:
    /// Takes a grid that already has its padding; at least one cell.
    ImportSource(FloatGrid values, const ImportSettings &settings);
    ImportSource(LayerGrid values, const ImportSettings &settings);

    int width() const override { return m_values->width; }
    int height() const override { return m_values->height; }
    double valueRange() const override { return m_range.span(); }
    /// The pipeline up to smoothing; the bas-relief step is left to recompute().
    void computeHeights(float *heights) override;

    /// Makes the debanded values of a strength, see debanded(). computeHeights() does when the
    /// settings ask for others than there are; on large pictures that takes long. False when the
    /// user cancelled, with the values that were there kept.
    bool prepareDebanded(double strength, Progress &progress);
    /// Takes new settings; marks the tilted values when they no longer fit.
    void setSettings(const ImportSettings &settings);
    const ImportSettings &settings() const { return m_settings; }

    const GridView &values() const { return *m_values; }
    /// The same, for a reader that may outlive this object; they never change.
    const std::shared_ptr<const GridView> &sharedValues() const { return m_values; }
    ValueRange range() const { return m_range; }
    /// Empty while both tilt angles are 0.
    GridView tilted() const { return m_tilted.view(); }

    bool dirty = true;                ///< the last bas-relief result does not reflect the settings
    bool showsBasRelief = false;      ///< the relief's heights are the last bas-relief result
    QString note;                     ///< how the file was read, for a person; usually empty
    bool isPicture = false;           ///< the values are grey levels
    bool tiltDirty = true;            ///< the tilted values must be rebuilt
    std::vector<float> lastBasRelief; ///< empty until one was computed
    int basReliefs = 0;               ///< raised with every new one

private:
    ImportSource(std::shared_ptr<const GridView> values, const ImportSettings &settings);
    void _rebuildTilt();
    /// What tilt and mapping start from.
    GridView _start() const { return m_debanded.values.empty() ? *m_values : m_debanded.view(); }

    std::shared_ptr<const GridView> m_values;
    FloatGrid m_debanded;        ///< empty while debanding is off
    double m_debandedWith = 0.0; ///< their strength
    ValueRange m_range;
    LayerGrid m_tilted;
    ValueRange m_tiltedRange;
    ImportSettings m_settings;
};

/// As computeHeights() of a source of these values, which are not needed any more: heights that
/// depend on one value each take their memory. `heights` has as many cells. Returns the
/// valueRange().
double finalHeights(LayerGrid values, const ImportSettings &settings, GridLayer &heights);

/// One run of the recompute pipeline.
struct RecomputeRun
{
    bool allowBasRelief = false;
    bool onlyWhenQuick = false; ///< then only one that takes a moment (basReliefIsQuick)
    /// Null or empty: no bas-relief can be made, as when the user cancels: the heights stay what
    /// they were, dirty stays set.
    const BasReliefGenerator *generator = nullptr;
    Progress *progress = nullptr; ///< may be null
};

/// Rebuilds the relief's heights from the source, which must have the relief's size, copies them to
/// the reference layer (unless preview is off) and marks the relief changed for the views.
void recompute(Relief &relief, ImportSource &source, const RecomputeRun &run);

} // namespace marlowen
