#include "ui/panels/tooltable.h"

#include <algorithm>

inline namespace toolControls {

namespace {

constexpr unsigned weighted = UsesFootprint | UsesStrength | UsesFalloff;
constexpr unsigned skipping = UsesDecay | UsesKeepTransparency;

constexpr ToolRow rows[] = {
    {Tool::Smooth, "Smooth", "Smooth Tool", "smooth_tool", "Evens out roughness.",
     weighted | skipping | UsesMode | UsesAlpha},
    {Tool::Flatten, "Flatten", "Flatten Tool", "flatten_tool",
     "Brings everything toward the mean height under the brush.", weighted | skipping},
    {Tool::Deposit, "Deposit", "Deposit Tool", "deposit_tool", "Adds material.",
     weighted | skipping | UsesLimit | UsesAlpha | UsesInvert},
    {Tool::Remove, "Remove", "Remove Tool", "remove_tool", "Takes material away.",
     weighted | skipping | UsesLimit | UsesAlpha | UsesInvert},
    {Tool::Clay, "Clay", "Clay Tool", "clay_tool", "Lays on flat strips of clay.",
     weighted | skipping | UsesAlpha | UsesInvert},
    {Tool::Scrape, "Scrape", "Scrape Tool", "scrape_tool", "Shaves off what stands out.",
     weighted | skipping | UsesInvert},
    {Tool::Smudge, "Smudge", "Smudge Tool", "smudge_tool",
     "Picks material up at the press and drags it along.",
     weighted | skipping | UsesMode | UsesAlpha},
    {Tool::Pinch, "Pinch", "Pinch Tool", "pinch_tool", "Gathers material toward the centre.",
     weighted | skipping | UsesAlpha},
    {Tool::Move, "Move", "Move Tool", "move_tool", "Pushes the shape the way the pointer goes.",
     UsesFootprint | UsesFalloff | skipping | UsesAlpha},
    {Tool::Mask, "Mask", "Mask Tool", "mask_tool",
     "Protects what it paints from the other brushes; Lower takes the mask away.",
     weighted | UsesMode | UsesAlpha},
    {Tool::UndoBrush, "Undo", "Undo Tool", "undo_tool",
     "Brings back the relief as it was opened or imported.", weighted | UsesDecay | UsesAlpha},
    {Tool::Erase, "Erase", "Erase Tool", "erase_tool", "Cuts holes: the height becomes 0.",
     UsesFootprint | skipping | UsesAlpha},
    {Tool::Crop, "Crop", "Crop Tool", "crop_tool", "Drag the part to keep, then Apply.", 0},
    {Tool::Elliptical, "Elliptical", "Elliptical Tool", "elliptical_selection_tool",
     "Selects an ellipse.", 0},
    {Tool::Rectangle, "Rectangle", "Rectangle Tool", "rectangle_selection_tool",
     "Selects a rectangle.", 0},
    {Tool::Polygon, "Polygon", "Polygon Tool", "polygon_selection_tool",
     "Selects what lies between the corners you click.", 0},
    {Tool::Magic, "Magic", "Magic Tool", "magic_selection_tool",
     "Selects what is about as high as the place you click.", UsesTolerance},
    {Tool::Sample, "Sample", "Sample Tool", "sample_selection",
     "Picks up the height you click, for Brush and Fill.", 0},
    {Tool::HeightBrush, "Brush", "Brush Tool", "paint_selection_tool", "Paints the sampled height.",
     UsesFootprint | skipping | UsesAlpha},
    {Tool::Fill, "Fill", "Fill Tool", "fill_selection",
     "Fills the selection with the sampled height.", 0},
};

} // namespace

std::span<const ToolRow> toolTable()
{
    return rows;
}

const ToolRow *toolRow(Tool::Type type)
{
    const auto *row = std::ranges::find(rows, type, &ToolRow::type);
    return row == std::end(rows) ? nullptr : row;
}

} // namespace toolControls
