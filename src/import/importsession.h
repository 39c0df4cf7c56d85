#pragma once

#include "import/bas/basutil.h"
#include "import/importsource.h"

#include <functional>
#include <memory>

namespace marlowen {

/// The open import of one relief, driven by the import controls: a change recomputes the heights
/// (without the bas-relief step) and marks the relief changed for the views. Values out of range
/// are clamped; without an open import a change is only stored, so that the next opened file starts
/// from the controls as they stand.
class ImportSession
{
public:
    /// Called after every change of the settings or the heights: redraw, enable "Update".
    std::function<void()> changed;
    /// Called when other heights are shown while nothing changed: redraw.
    std::function<void()> shown;
    /// Makes the progress of a change that takes long (debanding); empty: no progress is shown.
    std::function<std::unique_ptr<Progress>()> startWork;
    /// Makes bas-reliefs.
    BasReliefGenerator basReliefGenerator = makeBasRelief;
    /// A change also makes the bas-relief again where that takes a moment (basReliefIsQuick), as
    /// update() would. For a window; scripts say when.
    bool followsChanges = false;

    /// The relief whose source (an ImportSource or nothing) the changes act on; null for none.
    /// Does not own it. The settings become the source's, when there is one.
    void attach(Relief *relief);
    /// Whether an import is open. A relief that was resized no longer fits its source and has none
    /// until the resize is undone.
    bool active() const;
    /// A bas-relief setting changed since the last result: exactly then "Update" is enabled.
    bool dirty() const { return active() && m_source->dirty; }
    const ImportSettings &settings() const { return m_settings; }
    /// How often the heights were computed; a change of the settings may leave them as they are.
    int recomputes() const { return m_recomputes; }
    /// What a picture opened now starts with: some settings (StartsNextImport) as they were last
    /// set while a picture or nothing was open, everything else at its default.
    const ImportSettings &openingSettings() const { return m_opening; }
    /// Replaces them; without an open import they are the settings at once.
    void startWith(const ImportSettings &opening);
    /// Whether the open import is of a picture, not of a model.
    bool pictureOpen() const { return active() && m_source->isPicture; }

    /// What the controls do with one or more changed settings: stores them, recomputes at once
    /// unless all of them wait for update(), and marks the bas-relief stale unless all of them
    /// leave it valid (ImportFieldFlag). Nothing when none is new, or when the user cancelled.
    void change(const ImportSettings &settings);
    /// As change(), with one recompute in every case.
    void setSettings(const ImportSettings &settings);
    /// Recomputes with the bas-relief step allowed. `progress` may be null.
    void update(Progress *progress);
    /// Whether the relief shows a bas-relief, so that it can be compared with what it was made of.
    bool canCompare() const { return active() && m_source->showsBasRelief; }
    /// Shows the heights without the bas-relief step, or the bas-relief again. Everything else that
    /// the session does shows the bas-relief again first.
    void compare(bool without);
    /// Ends the import: the heights stay, the source is released.
    void accept();

private:
    /// What changed settings ask for.
    struct Effect
    {
        bool any = false;
        bool recompute = false;
        bool dirty = false;
    };
    Effect _effectOf(const ImportSettings &settings) const;
    void _keepForNext(const ImportSettings &settings);
    bool _follows() const;
    bool _prepared(const ImportSettings &settings);
    void _apply(const ImportSettings &settings, Effect effect);
    void _recompute(const RecomputeRun &run);

    Relief *m_relief = nullptr;
    ImportSource *m_source = nullptr;
    ImportSettings m_settings;
    ImportSettings m_opening;
    bool m_comparing = false;
    int m_recomputes = 0;
};

} // namespace marlowen
