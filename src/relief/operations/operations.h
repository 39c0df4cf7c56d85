#pragma once

#include "base/fieldtable.h"
#include "relief/operations/operation.h"

#include <QList>
#include <QPointF>

namespace marlowen {

/// The Z scales that a person or a script may set.
inline constexpr FieldRange zScaleRange{1e-6, 1e6};

/// Operations on the whole relief; each is one undo step where run.undo is given. All but the Z
/// scale do nothing while a stroke is in progress. They throw std::bad_alloc.

/// Resamples the relief to a new size (relief/operations/resample.h). False, and nothing changed,
/// below 2 x 2, at the present size, while a stroke is in progress, or when cancelled.
bool resize(Relief &relief, int newWidth, int newHeight, const EditRun &run);

/// Nothing when the value is the current one, NaN or infinite.
void setZScale(Relief &relief, double value, const EditRun &run);

/// Empties every cell outside the bounding box of the outline (stroke points, each truncated to a
/// whole number before it is turned into a cell). Points that are NaN or infinite do not count;
/// without a point nothing happens.
void cropApply(Relief &relief, const QList<QPointF> &outline, const EditRun &run);

/// Every mask value becomes 0.
void clearMask(Relief &relief, const EditRun &run);
/// Every mask value m becomes 1 - m.
void invertMask(Relief &relief, const EditRun &run);

} // namespace marlowen
