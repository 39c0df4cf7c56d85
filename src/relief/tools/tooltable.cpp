#include "relief/tools/tooltable.h"

#include <QtGlobal>

#include <algorithm>
#include <array>

namespace marlowen {

// The brushes, one file each in strokes/brushes. Every function applies one dab and returns whether
// a stored value changed.
bool dabSmooth(const Dab &dab);
bool dabSmudge(const Dab &dab);
bool dabDeposit(const Dab &dab);
bool dabRemove(const Dab &dab);
bool dabClay(const Dab &dab);
bool dabFlatten(const Dab &dab);
bool dabScrape(const Dab &dab);
bool dabUndo(const Dab &dab);
bool dabErase(const Dab &dab);
bool dabHeight(const Dab &dab);
bool dabMask(const Dab &dab);
bool dabMove(const Dab &dab);
bool dabPinch(const Dab &dab);
bool dabStamp(const Dab &dab);

namespace {

constexpr unsigned shaped = UsesFootprint | UsesAlpha | KeepsEmpty | KeepsUnselected | Decays;
constexpr unsigned weighted = shaped | UsesStrength | UsesFalloff | HeedsMask;
/// For the brushes on which alpha images have no effect.
constexpr unsigned plain = weighted & ~static_cast<unsigned>(UsesAlpha);
constexpr unsigned reverting = weighted & ~static_cast<unsigned>(KeepsEmpty | KeepsUnselected);
constexpr unsigned moving = weighted & ~static_cast<unsigned>(UsesStrength);
constexpr unsigned masking =
    UsesFootprint | UsesStrength | UsesFalloff | UsesAlpha | UsesMode | PaintsMask;

// clang-format off
/// In the order of Tool::Type; tools that the type does not name follow None.
constexpr ToolRow written[] = {
    {.id = "Smooth", .label = QT_TRANSLATE_NOOP("Tools", "Smooth"), .icon = "smooth_tool", .keys = "S",
     .hint = QT_TRANSLATE_NOOP("Tools", "Evens out roughness."),
     .group = ToolGroup::Sculpting, .order = 1, .uses = weighted | UsesMode, .dab = dabSmooth},
    {.id = "Smudge", .label = QT_TRANSLATE_NOOP("Tools", "Smudge"), .icon = "smudge_tool", .keys = "G",
     .hint = QT_TRANSLATE_NOOP("Tools", "Picks up material where the stroke begins and drags it along."),
     .group = ToolGroup::Sculpting, .order = 7, .uses = weighted | UsesMode | DabsAtCells,
     .dab = dabSmudge},
    {.id = "Deposit", .label = QT_TRANSLATE_NOOP("Tools", "Deposit"), .icon = "deposit_tool", .keys = "D",
     .hint = QT_TRANSLATE_NOOP("Tools", "Adds material."),
     .group = ToolGroup::Sculpting, .order = 3, .uses = weighted | UsesOption | Inverts,
     .effect = ToolEffect::Raise, .inverse = Tool::Remove, .optionLabel = QT_TRANSLATE_NOOP("Tools", "Ceiling"),
     .optionHint = QT_TRANSLATE_NOOP("Tools", "Deposit stops at the highest height under the brush."),
     .dab = dabDeposit, .stamp = dabStamp},
    {.id = "Remove", .label = QT_TRANSLATE_NOOP("Tools", "Remove"), .icon = "remove_tool", .keys = "R",
     .hint = QT_TRANSLATE_NOOP("Tools", "Removes material."),
     .group = ToolGroup::Sculpting, .order = 4, .uses = weighted | UsesOption | Inverts,
     .effect = ToolEffect::Lower, .inverse = Tool::Deposit, .optionLabel = QT_TRANSLATE_NOOP("Tools", "Floor"),
     .optionHint = QT_TRANSLATE_NOOP("Tools", "Remove stops at the lowest height under the brush."),
     .dab = dabRemove, .stamp = dabStamp},
    {.id = "Undo", .label = QT_TRANSLATE_NOOP("Tools", "Undo"), .icon = "undo_tool", .keys = "U",
     .hint = QT_TRANSLATE_NOOP("Tools", "Restores the heights of the opened or imported relief."),
     .group = ToolGroup::Restoring, .order = 1, .uses = reverting, .dab = dabUndo},
    {.id = "Erase", .label = QT_TRANSLATE_NOOP("Tools", "Erase"), .icon = "erase_tool", .keys = "E",
     .hint = QT_TRANSLATE_NOOP("Tools", "Cuts holes: the height becomes 0."),
     .group = ToolGroup::Restoring, .order = 2, .uses = shaped | DabsIn2d, .dab = dabErase},
    {.id = "Magic", .label = QT_TRANSLATE_NOOP("Tools", "Magic"), .icon = "magic_selection_tool", .keys = "W",
     .hint = QT_TRANSLATE_NOOP("Tools", "Selects cells of about the height of the cell you click."),
     .kind = ToolKind::Click, .group = ToolGroup::Picking, .uses = UsesTolerance},
    {.id = "Rectangle", .label = QT_TRANSLATE_NOOP("Tools", "Rectangle"), .icon = "rectangle_selection_tool", .keys = "B",
     .hint = QT_TRANSLATE_NOOP("Tools", "Selects a rectangle."),
     .kind = ToolKind::Shape, .shape = ToolShape::Rectangle, .group = ToolGroup::Shapes, .order = 2},
    {.id = "Elliptical", .label = QT_TRANSLATE_NOOP("Tools", "Elliptical"), .icon = "elliptical_selection_tool", .keys = "O",
     .hint = QT_TRANSLATE_NOOP("Tools", "Selects an ellipse."),
     .kind = ToolKind::Shape, .shape = ToolShape::Ellipse, .group = ToolGroup::Shapes, .order = 1},
    {.id = "Polygon", .label = QT_TRANSLATE_NOOP("Tools", "Polygon"), .icon = "polygon_selection_tool", .keys = "Y",
     .hint = QT_TRANSLATE_NOOP("Tools", "Selects the polygon between the corners you click."),
     .kind = ToolKind::Shape, .shape = ToolShape::Polygon, .group = ToolGroup::Shapes, .order = 3},
    {.id = "Crop", .label = QT_TRANSLATE_NOOP("Tools", "Crop"), .icon = "crop_tool", .keys = "X",
     .hint = QT_TRANSLATE_NOOP("Tools", "Drag a box around the part to keep, then Apply."),
     .kind = ToolKind::Shape, .shape = ToolShape::CropBox, .group = ToolGroup::Cropping},
    {.id = "Brush", .label = QT_TRANSLATE_NOOP("Tools", "Brush"), .icon = "paint_selection_tool", .keys = "H",
     .hint = QT_TRANSLATE_NOOP("Tools", "Paints the sampled height."),
     .group = ToolGroup::Heights, .order = 2, .uses = shaped | UsesSample | DabsIn2d, .dab = dabHeight},
    {.id = "Sample", .label = QT_TRANSLATE_NOOP("Tools", "Sample"), .icon = "sample_selection", .keys = "I",
     .hint = QT_TRANSLATE_NOOP("Tools", "Picks up the height you click, for Brush and Fill."),
     .kind = ToolKind::Click, .group = ToolGroup::Heights, .order = 1, .uses = UsesSample},
    {.id = "Fill", .label = QT_TRANSLATE_NOOP("Tools", "Fill"), .icon = "fill_selection", .keys = "J",
     .hint = QT_TRANSLATE_NOOP("Tools", "Fills the selection with the sampled height."),
     .kind = ToolKind::Click, .group = ToolGroup::Heights, .order = 3, .uses = UsesSample},
    {.id = "Clay", .label = QT_TRANSLATE_NOOP("Tools", "Clay"), .icon = "clay_tool", .keys = "C",
     .hint = QT_TRANSLATE_NOOP("Tools", "Adds flat strips of clay."),
     .group = ToolGroup::Sculpting, .order = 5, .uses = weighted | Inverts | UsesPlane,
     .effect = ToolEffect::Raise, .dab = dabClay, .stamp = dabStamp},
    {.id = "Flatten", .label = QT_TRANSLATE_NOOP("Tools", "Flatten"), .icon = "flatten_tool", .keys = "L",
     .hint = QT_TRANSLATE_NOOP("Tools", "Moves heights toward the mean height under the brush."),
     .group = ToolGroup::Sculpting, .order = 2, .uses = plain | UsesPlane, .dab = dabFlatten},
    {.id = "Scrape", .label = QT_TRANSLATE_NOOP("Tools", "Scrape"), .icon = "scrape_tool", .keys = "A",
     .hint = QT_TRANSLATE_NOOP("Tools", "Cuts down heights above the mean height under the brush."),
     .group = ToolGroup::Sculpting, .order = 6, .uses = plain | Inverts | UsesPlane,
     .effect = ToolEffect::Lower, .dab = dabScrape},
    {.id = "Pinch", .label = QT_TRANSLATE_NOOP("Tools", "Pinch"), .icon = "pinch_tool", .keys = "P",
     .hint = QT_TRANSLATE_NOOP("Tools", "Pulls material toward the centre."),
     .group = ToolGroup::Sculpting, .order = 8, .uses = weighted, .dab = dabPinch},
    {.id = "Move", .label = QT_TRANSLATE_NOOP("Tools", "Move"), .icon = "move_tool", .keys = "M",
     .hint = QT_TRANSLATE_NOOP("Tools", "Drags the heights along with the pointer."),
     .group = ToolGroup::Sculpting, .order = 9, .uses = moving, .dab = dabMove},
    {.id = "Mask", .label = QT_TRANSLATE_NOOP("Tools", "Mask"), .icon = "mask_tool", .keys = "K",
     .hint = QT_TRANSLATE_NOOP("Tools", "Protects the painted cells from the other brushes; Lower removes the mask."),
     .group = ToolGroup::Masking, .uses = masking, .dab = dabMask},
    {.id = "None", .label = "", .icon = "", .keys = "", .hint = "", .kind = ToolKind::None},
};
// clang-format on
static_assert(std::size(written) > Tool::None);

/// The rows with their types, which are their places.
constexpr auto rows = [] {
    auto numbered = std::to_array(written);
    for (size_t i = 0; i < numbered.size(); ++i)
        numbered[i].type = static_cast<Tool::Type>(i);
    return numbered;
}();

} // namespace

std::span<const ToolRow> toolTable()
{
    return rows;
}

const ToolRow *toolRow(int type)
{
    return type >= 0 && type < static_cast<int>(rows.size()) ? &rows[static_cast<size_t>(type)]
                                                             : nullptr;
}

const std::vector<const ToolRow *> &toolsInOrder()
{
    static const std::vector<const ToolRow *> sorted = [] {
        std::vector<const ToolRow *> list;
        for (const ToolRow &row : rows) {
            if (row.kind != ToolKind::None)
                list.push_back(&row);
        }
        std::ranges::stable_sort(
            list, {}, [](const ToolRow *row) { return std::pair(row->group, row->order); });
        return list;
    }();
    return sorted;
}

bool heedsAlpha(int type)
{
    const ToolRow *row = toolRow(type);
    return !row || row->has(UsesAlpha);
}

const ToolRow *actingRow(const ToolRow *row, bool inverted)
{
    return row && inverted && row->inverse != Tool::None ? toolRow(row->inverse) : row;
}

} // namespace marlowen
