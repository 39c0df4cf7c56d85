#pragma once

#include <QRegion>

namespace marlowen {

/// The values of a relief that are not cells: numbers that are saved with it, flags that tools and
/// views read, and the regions of changed cells. The members are independent of each other and
/// may be written at any time.
struct ReliefState
{
    double rangeMinimum = 0.0; ///< ends of the height range that the import can produce
    double rangeMaximum = 0.0;
    double zScale = 1.0;
    bool heightsChanged = true;
    bool appearanceChanged = true;
    bool selectionActive = false; ///< tools skip cells that are not selected
    bool symmetryX = false;       ///< strokes are mirrored to (-x, y)
    bool symmetryY = false;       ///< strokes are mirrored to (x, -y)
    bool invert = false;          ///< inversion of the current tool
    float sampleHeight = 0.0F;    ///< picked by Sample, painted by Brush and Fill
    QRegion frameRegion;          ///< cells changed since the views last redrew
    QRegion strokeRegion;         ///< union of the rectangles the current stroke changed
};

} // namespace marlowen
