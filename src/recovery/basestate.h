#pragma once

#include "import/importsettings.h"
#include "recovery/journalfile.h"
#include "relief/grid/floatgrid.h"
#include "relief/grid/relief.h"

#include <QString>

#include <memory>
#include <vector>

namespace marlowen {

class JournalReader;

/// A copy of a relief with everything that a journal begins with. Layers that were never written
/// are empty.
struct BaseState
{
    int width = 0;
    int height = 0;
    double zScale = 1.0;
    double rangeMinimum = 0.0;
    double rangeMaximum = 0.0;
    float sampleHeight = 0.0F;
    bool selectionActive = false;
    bool symmetryX = false;
    bool symmetryY = false;
    bool invert = false;
    bool modified = false; ///< differs from the file it came from
    int steps = 0;         ///< of the work that led here and that the journal no longer holds
    QString file;          ///< where the relief came from; empty for a new one
    GridLayer heights;
    GridLayer reference;
    GridLayer mask;
    GridLayer selection;

    /// The open import; no values when there is none.
    std::shared_ptr<const GridView> importValues;
    ImportSettings importSettings;
    bool importDirty = true;
    bool importShows = false; ///< the bas-relief
    bool isPicture = false;
    std::vector<float> basRelief; ///< the last one, or empty

    int64_t bytes() const;
};

/// Copies the relief; a stroke in progress and a preview must have ended. Throws std::bad_alloc.
BaseState baseOf(const Relief &relief);

bool appendBase(JournalFile &file, const BaseState &base);

/// What the meta values of a base say, without its layers.
struct BaseHead
{
    BaseState state;
    /// The layers that follow, as bits; see basestate.cpp.
    unsigned layers = 0;
    int importWidth = 0;
    int importHeight = 0;
    uint64_t dataBytes = 0; ///< of what follows
};
/// The base that the reader stands at; nothing when it makes no sense.
std::optional<BaseHead> readBaseHead(const JournalReader &reader);
/// Reads the layers too and makes the relief; null when the record is damaged. Throws
/// std::bad_alloc.
std::unique_ptr<Relief> readBase(JournalReader &reader, BaseHead &head);

} // namespace marlowen
