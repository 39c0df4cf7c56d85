#pragma once

#include <QList>
#include <QPointF>

namespace marlowen {

class Relief;
class SculptUndo;

/// Operations on the whole relief. Where a stack is given each is one undo step. Those that would
/// pull the ground from under a stroke in progress (all but the Z scale) do nothing until it ends.

/// Resamples the relief to a new size (relief/resample.h). False, and nothing changed, below 2 x 2,
/// at the size that is there, or while a stroke is in progress. With closeGroup false later events
/// join the same step. Throws std::bad_alloc, with nothing changed.
bool resize(Relief &relief, int newWidth, int newHeight, SculptUndo *undo, bool closeGroup = true);

/// Nothing when the value is the current one, NaN or infinite.
void setZScale(Relief &relief, double value, SculptUndo *undo);

/// Empties every cell outside the bounding box of the outline (stroke points, each truncated to a
/// whole number before it is turned into a cell). Points that are NaN or infinite do not count;
/// without a point nothing happens.
void cropApply(Relief &relief, const QList<QPointF> &outline, SculptUndo *undo);

/// Every mask value becomes 0.
void clearMask(Relief &relief, SculptUndo *undo);
/// Every mask value m becomes 1 - m.
void invertMask(Relief &relief, SculptUndo *undo);

} // namespace marlowen
