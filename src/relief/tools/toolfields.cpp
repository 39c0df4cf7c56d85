#include "relief/tools/toolfields.h"

#include "relief/tools/tooltable.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace marlowen {

namespace {

using P = ToolParams;

constexpr FieldControl percent{0, 100, 1, 10, 0, "", percentScale};

// clang-format off
constexpr Field<P> writtenRows[] = {
    {&P::type, {.key = "type", .label = QT_TRANSLATE_NOOP("Fields", "Tool"), .hint = ""}},
    {&P::mode,
     {.key = "mode", .label = QT_TRANSLATE_NOOP("Fields", "Mode"), .hint = "", .flags = UsesMode, .range = {0, 2},
      .choices = "Normal|Raise|Lower"}},
    {&P::form,
     {.key = "form", .label = QT_TRANSLATE_NOOP("Fields", "Form"), .hint = "", .flags = UsesFootprint, .range = {0, 1},
      .choices = "Round|Square", .icons = "form_round|form_square"}},
    {&P::size,
     {.key = "size", .label = QT_TRANSLATE_NOOP("Fields", "Tool Size"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Radius of the brush: 100 is a tenth of the relief's diagonal. Keys [ and ]."),
      .flags = UsesFootprint, .range = {0.01, 1.0}, .control = {1, 100, 1, 10, 0, "", percentScale},
      .usable = {0, 10}}},
    {&P::strength,
     {.key = "strength", .label = QT_TRANSLATE_NOOP("Fields", "Tool Strength"), .hint = QT_TRANSLATE_NOOP("Fields", "Effect of one dab."),
      .flags = UsesStrength, .range = {0, 1},
      .control = {1, 100, 1, 10, 0, "", squaredPercentScale}, .usable = {0, 1}}},
    {&P::hardness,
     {.key = "hardness", .label = QT_TRANSLATE_NOOP("Fields", "Tool Hardness"),
      .hint = QT_TRANSLATE_NOOP("Fields", "How far from the centre the full effect reaches."),
      .flags = UsesFalloff, .range = {0, 1}, .control = percent, .usable = {0, 1}}},
    // Limited, because the time to trace the outline grows with the aspect.
    {&P::aspect,
     {.key = "aspect", .label = QT_TRANSLATE_NOOP("Fields", "Aspect"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Length of the brush divided by its width."),
      .flags = UsesFootprint, .range = {0.01, 1000}, .control = {1, 15, 0.1, 1, 1},
      .usable = {0.01, 1e6}}},
    {&P::angle,
     {.key = "angle", .label = QT_TRANSLATE_NOOP("Fields", "Angle"), .hint = QT_TRANSLATE_NOOP("Fields", "Turns the brush."),
      .flags = UsesFootprint, .range = {-360, 360}, .control = {-90, 90, 1, 15, 0, "°"},
      .usable = {-1e6, 1e6}}},
    {&P::useDecay,
     {.key = "useDecay", .label = QT_TRANSLATE_NOOP("Fields", "Decay Length"),
      .hint = QT_TRANSLATE_NOOP("Fields", "The stroke fades out along its path."), .flags = Decays}},
    {&P::decayLength,
     {.key = "decayLength", .label = QT_TRANSLATE_NOOP("Fields", "Decay Length"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Length of the stroke: 100 is a hundred radii."),
      .flags = Decays, .range = {0, 1}, .control = percent, .usable = {0, 1e6}}},
    {&P::keepTransparency,
     {.key = "keepTransparency", .label = QT_TRANSLATE_NOOP("Fields", "Keep Transparency"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Empty cells, whose height is 0, stay empty."), .flags = KeepsEmpty}},
    {&P::smoothToolPaths,
     {.key = "smoothToolPaths", .label = QT_TRANSLATE_NOOP("Fields", "Smooth Tool Paths"),
      .hint = QT_TRANSLATE_NOOP("Fields", "The stroke follows a smooth curve along the pointer's path."),
      .flags = UsesFootprint}},
    {&P::smoothLength,
     {.key = "smoothLength", .label = QT_TRANSLATE_NOOP("Fields", "Smooth Length"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Number of points joined into one smooth curve."),
      .flags = UsesFootprint, .range = {1, 1e6}, .control = {10, 200, 1, 10},
      .usable = {2, std::numeric_limits<int>::max()}}},
    {&P::ceilingOrFloor,
     {.key = "ceilingOrFloor", .label = QT_TRANSLATE_NOOP("Fields", "Ceiling / Floor"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Heights stay below the highest, or above the lowest, height under the brush."),
      .flags = UsesOption}},
    {&P::tolerance,
     {.key = "tolerance", .label = QT_TRANSLATE_NOOP("Fields", "Tolerance"),
      .hint = QT_TRANSLATE_NOOP("Fields", "How much higher or lower than the clicked cell, as a share of the relief's range."),
      .flags = UsesTolerance, .range = {0.01, 0.99}, .control = {0.01, 0.99, 0.01, 0.1, 2},
      .usable = {0, 1}}},
    {&P::continuous,
     {.key = "continuous", .label = QT_TRANSLATE_NOOP("Fields", "Continuous"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Only cells that touch the clicked one through their sides."),
      .flags = UsesTolerance}},
    {&P::falloff,
     {.key = "falloff", .label = QT_TRANSLATE_NOOP("Fields", "Falloff"), .hint = "", .flags = UsesFalloff, .range = {0, 3},
      .choices = "Smooth|Linear|Sphere|Constant",
      .icons = "falloff_smooth|falloff_linear|falloff_sphere|falloff_constant", .usable = {0, 3}}},
};
// clang-format on

/// The names of all tools in the order of Tool::Type.
std::string typeNames()
{
    std::string names;
    for (const ToolRow &row : toolTable())
        names += (names.empty() ? "" : "|") + std::string(row.id);
    return names;
}

} // namespace

const FieldInfo alphaRepeatField{
    .key = "repeat",
    .label = QT_TRANSLATE_NOOP("Fields", "Repeat"),
    .hint = QT_TRANSLATE_NOOP("Fields", "Number of tiles across the brush."),
    .range = {1, 1000},
    .control = {1, 20, 1, 5}};

FieldTable<ToolParams> toolFields()
{
    static const std::string types = typeNames();
    static const auto rows = [] {
        auto complete = std::to_array(writtenRows);
        complete.front().info.choices = types.c_str();
        return complete;
    }();
    return rows;
}

double onControl(double ToolParams::*member, double value)
{
    const FieldControl &control = fieldOf(toolFields(), member).info.control;
    return std::clamp(value, control.scale.stored(control.minimum),
                      control.scale.stored(control.maximum));
}

} // namespace marlowen
