#pragma once

#include "base/fieldtable.h"

namespace marlowen {

/// What the import controls ask for. Values are the stored ones, not slider positions; their ranges
/// are in importFields().
struct ImportSettings
{
    bool flipY = false;
    bool invertZ = false;
    bool transparency = true;  ///< cells of height 0 stay 0 through smoothing
    bool preview = true;       ///< off: raise/lower, trim, smoothing and bas-relief are left out
    double deband = 0.0;       ///< 0..1: how far source values may move, in half levels
    double smoothing = 0.0;    ///< passes
    int raiseLower = 0;        ///< percent of the range; positive lowers
    int trim = 0;              ///< cells removed from the outline
    int tiltHorizontal = 0;    ///< tenths of a degree
    int tiltVertical = 0;      ///< tenths of a degree
    double depth = 0.0;        ///< height that the whole source range spans; 0: source units
    bool proposeDepth = false; ///< the depth becomes a tenth of the smaller side when it is opened
    bool basRelief = false;
    int gridSize = 2;       ///< bas-relief
    int contrastFactor = 8; ///< bas-relief
    int smoothness = 20000; ///< bas-relief

    bool tilted() const { return tiltHorizontal != 0 || tiltVertical != 0; }
    bool operator==(const ImportSettings &) const = default;
};

/// What the flags of an import field mean.
enum ImportFieldFlag : unsigned {
    StartsNextImport = 1U << 0, ///< the next opened file starts with the control's value
    WaitsForUpdate = 1U << 1,   ///< a change recomputes nothing until the next update
    KeepsBasRelief = 1U << 2,   ///< a change leaves the last bas-relief result valid
    NeedsPreview = 1U << 3,     ///< its control is disabled while the preview is off
    NeedsBasRelief = 1U << 4,   ///< its control is disabled while the bas-relief is off
    InMainColumn = 1U << 5, ///< its slider stands in the first column of the panel, in row order
};

/// One row a setting, in the order of the record.
FieldTable<ImportSettings> importFields();

} // namespace marlowen
