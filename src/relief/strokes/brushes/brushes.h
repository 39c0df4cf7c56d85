#pragma once

namespace marlowen {

struct Dab;

/// The brushes, one file each. Every function applies one dab and returns whether a stored value
/// changed. Heights h are those of the moment, `base` is the height when the stroke began, s the
/// strength, diag the relief's diagonal in cells, w = falloff weight * s * decay^3 * (1 - mask).

/// Toward the mean of the cell and its neighbours, weighed 4, 2, 1; Raise and Lower keep to their
/// direction.
bool dabSmooth(const Dab &dab);
/// Lays down, all along the stroke, the material that lay under its first dab.
bool dabSmudge(const Dab &dab);
/// Raises by diag * 0.001 * s * w, up to the highest cell of the footprint with the ceiling on.
bool dabDeposit(const Dab &dab);
/// Lowers by diag * 0.001 * s * w, down to 0, or to the lowest filled cell with the floor on.
bool dabRemove(const Dab &dab);
/// Fills up to a plane just above the mean of the footprint at the start of the stroke.
bool dabClay(const Dab &dab);
/// Toward the mean of the footprint at the start of the stroke.
bool dabFlatten(const Dab &dab);
/// Cuts down to the mean of the footprint at the start of the stroke.
bool dabScrape(const Dab &dab);
/// Toward the reference heights.
bool dabUndo(const Dab &dab);
/// Empties the cells.
bool dabErase(const Dab &dab);
/// Sets the cells to the sampled height.
bool dabHeight(const Dab &dab);
/// Paints the mask; Lower takes it away.
bool dabMask(const Dab &dab);
/// Drags the heights along with the pointer.
bool dabMove(const Dab &dab);
/// Gathers the heights toward the middle of the dab.
bool dabPinch(const Dab &dab);
/// Presses the alpha image into the heights the stroke began with: raising, or lowering for Remove
/// and for inverted Clay.
bool dabStampRaise(const Dab &dab);
bool dabStampLower(const Dab &dab);
bool dabStampClay(const Dab &dab);

} // namespace marlowen
