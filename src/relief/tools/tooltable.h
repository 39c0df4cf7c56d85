#pragma once

#include "relief/tools/tool.h"

#include <span>

namespace marlowen {

struct Dab;

/// What a tool makes use of, as a set of bits: the controls it shows, and what its dabs respect.
enum ToolUse : unsigned {
    UsesFootprint = 1U << 0, ///< size, form, aspect, angle, smoothed paths
    UsesStrength = 1U << 1,
    UsesFalloff = 1U << 2, ///< falloff profile and hardness
    UsesMode = 1U << 3,    ///< Raise and Lower
    UsesOption = 1U << 4,  ///< ceilingOrFloor
    UsesAlpha = 1U << 5,
    UsesSample = 1U << 6,    ///< paints the sampled height
    UsesTolerance = 1U << 7, ///< tolerance and continuous
    KeepsEmpty = 1U << 8,    ///< heeds keepTransparency
    KeepsUnselected = 1U << 9,
    Decays = 1U << 10,
    HeedsMask = 1U << 11,
    Inverts = 1U << 12, ///< the relief's invert flag changes what it does
};

/// How a tool is worked.
enum class ToolKind { Brush, Click, Shape, None };

using DabFunction = bool (*)(const Dab &dab);

/// One tool. The ribbon, the tool panel, the scripts, the tests and the benchmarks read these rows.
struct ToolRow
{
    Tool::Type type;
    ToolKind kind;
    const char *id;          ///< name in scripts
    const char *label;       ///< text on the ribbon
    const char *icon;        ///< icon resource
    const char *optionLabel; ///< text of ceilingOrFloor, empty for tools without it
    unsigned uses;           ///< ToolUse bits
    DabFunction dab;         ///< null for tools without dabs
    DabFunction stamp;       ///< in place of dab while an alpha image stamps; may be null

    bool has(ToolUse use) const { return (uses & use) != 0; }
};

/// All tools in the order of Tool::Type.
std::span<const ToolRow> toolTable();
/// The row of a type; null for numbers that are no type.
const ToolRow *toolRow(int type);

} // namespace marlowen
