#pragma once

#include "import/bas/planefit.h"

namespace marlowen {

/// The form of a relief without its detail: every cell gets a blend of the planes of the windows
/// around it. Windows that a plane fits well count more than those across a step, so that nothing
/// leaks over an edge; where only windows that deviate by more than the threshold are at hand the
/// heights themselves are the form. A plane passes unchanged, however steep it is, so detail on a
/// slope is separated from the slope. (A guided filter as of He, Sun and Tang 2010, with the plane
/// of a window in place of its mean and windows weighted by their fit.)
///
/// The threshold is in units of the heights. `form` has the size of the heights and gets 0 in empty
/// cells. False when the user cancelled.
bool formOf(const FilledHeights &input, float threshold, FloatGrid &form, WorkMeter &meter);

} // namespace marlowen
