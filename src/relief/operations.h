#pragma once

#include <QList>
#include <QPointF>

class Relief;
class SculptUndo;

/// Resamples the relief to a new size, one undo step when a stack is given. False, and nothing
/// changed, below 2 x 2, at the size that is there, or while a stroke is in progress.
bool resize(Relief &relief, int newWidth, int newHeight, SculptUndo *undo, bool closeGroup = true);

/// Nothing when the value is the current one; otherwise one undo step when a stack is given.
void setZScale(Relief &relief, double value, SculptUndo *undo);

/// Empties every cell outside the bounding box of the outline (stroke points); one undo step.
void cropApply(Relief &relief, const QList<QPointF> &outline, SculptUndo *undo);

/// Whole-mask operations, one undo step each.
void clearMask(Relief &relief, SculptUndo *undo);
void invertMask(Relief &relief, SculptUndo *undo);
