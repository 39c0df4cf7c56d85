#include "relief/tools/tooltable.h"

#include "relief/strokes/brushes/brushes.h"

#include <iterator>

namespace marlowen {

namespace {

constexpr unsigned shaped = UsesFootprint | KeepsEmpty | KeepsUnselected | Decays;
constexpr unsigned weighted = shaped | UsesStrength | UsesFalloff | UsesAlpha | HeedsMask;
constexpr unsigned plain = weighted & ~static_cast<unsigned>(UsesAlpha);
constexpr unsigned reverting = weighted & ~static_cast<unsigned>(KeepsEmpty | KeepsUnselected);
constexpr unsigned moving = weighted & ~static_cast<unsigned>(UsesStrength);
constexpr unsigned masking = UsesFootprint | UsesStrength | UsesFalloff | UsesAlpha | UsesMode;

using enum ToolKind;

// clang-format off
constexpr ToolRow rows[] = {
    {Tool::Smooth, Brush, "Smooth", "Smooth", "smooth_tool", "",
     weighted | UsesMode, dabSmooth, nullptr},
    {Tool::Smudge, Brush, "Smudge", "Smudge", "smudge_tool", "",
     weighted | UsesMode, dabSmudge, nullptr},
    {Tool::Deposit, Brush, "Deposit", "Deposit", "deposit_tool", "Ceiling",
     weighted | UsesOption | Inverts, dabDeposit, dabStampRaise},
    {Tool::Remove, Brush, "Remove", "Remove", "remove_tool", "Floor",
     weighted | UsesOption | Inverts, dabRemove, dabStampLower},
    {Tool::UndoBrush, Brush, "Undo", "Undo", "undo_tool", "",
     reverting, dabUndo, nullptr},
    {Tool::Erase, Brush, "Erase", "Erase", "erase_tool", "",
     shaped, dabErase, nullptr},
    {Tool::Magic, Click, "Magic", "Magic", "magic_selection_tool", "",
     UsesTolerance, nullptr, nullptr},
    {Tool::Rectangle, Shape, "Rectangle", "Rectangle", "rectangle_selection_tool", "",
     0, nullptr, nullptr},
    {Tool::Elliptical, Shape, "Elliptical", "Elliptical", "elliptical_selection_tool", "",
     0, nullptr, nullptr},
    {Tool::Polygon, Shape, "Polygon", "Polygon", "polygon_selection_tool", "",
     0, nullptr, nullptr},
    {Tool::Crop, Shape, "Crop", "Crop", "crop_tool", "",
     0, nullptr, nullptr},
    {Tool::HeightBrush, Brush, "Brush", "Brush", "paint_selection_tool", "",
     shaped | UsesSample, dabHeight, nullptr},
    {Tool::Sample, Click, "Sample", "Sample", "sample_selection", "",
     UsesSample, nullptr, nullptr},
    {Tool::Fill, Click, "Fill", "Fill", "fill_selection", "",
     UsesSample, nullptr, nullptr},
    {Tool::Clay, Brush, "Clay", "Clay", "clay_tool", "",
     weighted | Inverts, dabClay, dabStampClay},
    {Tool::Flatten, Brush, "Flatten", "Flatten", "flatten_tool", "",
     plain, dabFlatten, nullptr},
    {Tool::Scrape, Brush, "Scrape", "Scrape", "scrape_tool", "",
     plain | Inverts, dabScrape, nullptr},
    {Tool::Pinch, Brush, "Pinch", "Pinch", "pinch_tool", "",
     weighted, dabPinch, nullptr},
    {Tool::Move, Brush, "Move", "Move", "move_tool", "",
     moving, dabMove, nullptr},
    {Tool::Mask, Brush, "Mask", "Mask", "mask_tool", "",
     masking, dabMask, nullptr},
    {Tool::None, None, "None", "", "", "",
     0, nullptr, nullptr},
};
// clang-format on
static_assert(std::size(rows) == Tool::None + 1);

} // namespace

std::span<const ToolRow> toolTable()
{
    return rows;
}

const ToolRow *toolRow(int type)
{
    return type >= 0 && type <= Tool::None ? &rows[type] : nullptr;
}

} // namespace marlowen
