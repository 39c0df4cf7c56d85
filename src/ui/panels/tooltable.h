#pragma once

#include "relief/tool.h"

#include <QString>

#include <span>

/// Apart from the engine's table of the same names, which windows do not read.
inline namespace toolControls {

/// What a tool reads of the tool parameters, the relief's flags and the alpha brush. Controls of
/// what the current tool does not read are disabled.
enum ToolUse : unsigned {
    UsesFootprint = 1U << 0U, ///< size, form, aspect, angle, smooth paths, symmetry
    UsesStrength = 1U << 1U,
    UsesFalloff = 1U << 2U, ///< falloff and hardness
    UsesMode = 1U << 3U,
    UsesDecay = 1U << 4U,
    UsesKeepTransparency = 1U << 5U,
    UsesLimit = 1U << 6U, ///< ceiling or floor
    UsesTolerance = 1U << 7U,
    UsesAlpha = 1U << 8U,
    UsesInvert = 1U << 9U,
};

/// One tool as people see it.
struct ToolRow
{
    Tool::Type type;
    const char *label;    ///< "Smooth"
    const char *longName; ///< "Smooth Tool"
    const char *icon;     ///< for icon()
    const char *effect;   ///< one sentence: what it does
    unsigned uses;        ///< ToolUse bits
};

/// Every tool but None, brushes first, in the order of the ribbon.
std::span<const ToolRow> toolTable();

/// The row of a type; null for None and unknown types.
const ToolRow *toolRow(Tool::Type type);

} // namespace toolControls
