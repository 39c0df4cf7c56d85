#pragma once

#include "relief/tools/tool.h"

#include <span>
#include <vector>

namespace marlowen {

struct Dab;

/// What a tool makes use of, as a set of bits: the controls it shows, and what its dabs respect.
enum ToolUse : unsigned {
    UsesFootprint = 1U << 0, ///< size, form, aspect, angle, smoothed paths
    UsesStrength = 1U << 1,
    UsesFalloff = 1U << 2,   ///< falloff profile and hardness
    UsesMode = 1U << 3,      ///< Raise and Lower
    UsesOption = 1U << 4,    ///< ceilingOrFloor
    UsesAlpha = 1U << 5,     ///< an alpha image acts on its footprint
    UsesSample = 1U << 6,    ///< paints the sampled height
    UsesTolerance = 1U << 7, ///< tolerance and continuous
    KeepsEmpty = 1U << 8,    ///< heeds keepTransparency
    KeepsUnselected = 1U << 9,
    Decays = 1U << 10,
    HeedsMask = 1U << 11,
    Inverts = 1U << 12,     ///< the relief's invert flag changes what it does
    UsesPlane = 1U << 13,   ///< works toward the mean of its footprint (Dab::plane)
    PaintsMask = 1U << 14,  ///< changes the mask in place of the heights
    DabsAtCells = 1U << 15, ///< its dabs lie one cell apart however large it is
    DabsIn2d = 1U << 16,    ///< a brush that acts in the 2D view, too
};

/// What the pointer draws with a tool of the kind Shape.
enum class ToolShape { None, Rectangle, Ellipse, Polygon, CropBox };

/// How a tool is worked.
enum class ToolKind { Brush, Click, Shape, None };

/// Where the window shows a tool; each is one group of the ribbon, and tools are listed in this
/// order.
enum class ToolGroup { Sculpting, Masking, Restoring, Cropping, Shapes, Picking, Heights, None };

/// The way a tool moves heights.
enum class ToolEffect { None, Raise, Lower };

using DabFunction = bool (*)(const Dab &dab);

/// One tool. The ribbon, the tool panel, the shortcuts, the scripts, the footprint, the tests and
/// the benchmarks read these rows.
struct ToolRow
{
    Tool::Type type = Tool::None; ///< its place in the table
    const char *id;               ///< name in scripts
    const char *label;            ///< text on the ribbon
    const char *icon;             ///< icon resource
    const char *keys;             ///< shortcut
    const char *hint;             ///< one sentence: what it does
    ToolKind kind = ToolKind::Brush;
    ToolShape shape = ToolShape::None;
    ToolGroup group = ToolGroup::None;
    int order = 0;     ///< within its group
    unsigned uses = 0; ///< ToolUse bits
    ToolEffect effect = ToolEffect::None;
    Tool::Type inverse = Tool::None; ///< the tool that acts in its place when the relief inverts
    const char *optionLabel = "";    ///< text of ceilingOrFloor, empty for tools without it
    const char *optionHint = "";
    DabFunction dab = nullptr;   ///< null for tools without dabs
    DabFunction stamp = nullptr; ///< in place of dab while an alpha image stamps; may be null

    bool has(ToolUse use) const { return (uses & use) != 0; }
};

/// All tools in the order of Tool::Type.
std::span<const ToolRow> toolTable();
/// The row of a type; null for numbers outside Tool::Type.
const ToolRow *toolRow(int type);
/// Every tool but None in the order in which the window shows them.
const std::vector<const ToolRow *> &toolsInOrder();
/// Whether an alpha image acts on the footprint of a type; true for numbers outside Tool::Type.
bool heedsAlpha(int type);
/// The tool that acts: the inverse of the row, if it has one, when `inverted`.
const ToolRow *actingRow(const ToolRow *row, bool inverted);

} // namespace marlowen
