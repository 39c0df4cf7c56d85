#pragma once

#include "relief/grid/cellbits.h"

namespace marlowen {

class Relief;

/// The selected cells; none without an active selection.
CellBits selectedCells(const Relief &relief);

/// Edits of the selection as a whole. Like the shapes they set the selection flag and
/// appearance-changed. An edit that would leave nothing selected, and one without an active
/// selection, changes nothing and returns false.
void selectAll(Relief &relief);
void selectCells(Relief &relief, const CellBits &cells);
bool invertSelection(Relief &relief);
/// By so many cells in every direction, in the form of an octagon. Shrinking leaves cells at the
/// relief's edge where the selection reaches it.
bool growSelection(Relief &relief, int cells);
bool shrinkSelection(Relief &relief, int cells);

} // namespace marlowen
