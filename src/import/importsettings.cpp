#include "import/importsettings.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cmath>

namespace marlowen {

namespace {

using S = ImportSettings;

/// Beyond it heights would leave the range of their type.
constexpr double largestDepth = 1e30;

/// 2, 4, 8, 16, 32 for the positions 1..5, 4 for any other.
constexpr FieldScale gridSizeScale{
    [](double stored) { return std::log2(stored); },
    [](double shown) { return shown >= 1.0 && shown <= 5.0 ? std::exp2(shown) : 4.0; }};

/// 2 to the power of the position.
constexpr FieldScale contrastScale{
    [](double stored) { return std::log2(stored); },
    [](double shown) { return std::exp2(std::clamp(shown, 1.0, 16.0)); }};

constexpr std::array smoothnessSteps{20000.0,   50000.0,   100000.0,  200000.0,  500000.0,
                                     1000000.0, 2000000.0, 5000000.0, 10000000.0};

/// 20000 .. 10000000 for the positions 1..9, 100000 for any other.
constexpr FieldScale smoothnessScale{
    [](double stored) {
        const auto step = std::ranges::lower_bound(smoothnessSteps, stored);
        return static_cast<double>(step - smoothnessSteps.begin() + 1);
    },
    [](double shown) {
        const auto step = static_cast<size_t>(std::lround(shown) - 1);
        return step < smoothnessSteps.size() ? smoothnessSteps[step] : 100000.0;
    }};

// clang-format off
constexpr Field<S> rows[] = {
    {&S::flipY,
     {.key = "flipY", .label = QT_TRANSLATE_NOOP("Fields", "Flip Y"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Flips the picture top to bottom, so that lettering reads right: a relief counts its rows from the bottom."),
      .flags = StartsNextImport, .option = {"--flip-y", nullptr, "Turns the picture top to bottom."}}},
    {&S::invertZ,
     {.key = "invertZ", .label = QT_TRANSLATE_NOOP("Fields", "Invert Z"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Makes dark high and bright low; the background stays empty."),
      .flags = StartsNextImport, .option = {"--invert-z"}}},
    {&S::transparency,
     {.key = "transparency", .label = QT_TRANSLATE_NOOP("Fields", "Transparency"),
      .hint = QT_TRANSLATE_NOOP("Fields", "The empty background stays empty when the relief is smoothed."),
      .flags = StartsNextImport, .option = {"--no-transparency", nullptr, "Smoothing also fills empty cells."}}},
    {&S::preview,
     {.key = "preview", .label = QT_TRANSLATE_NOOP("Fields", "Preview"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Shows the result of the controls below; off, the picture as it is."),
      .flags = KeepsBasRelief}},
    {&S::deband,
     {.key = "deband", .label = QT_TRANSLATE_NOOP("Fields", "Debanding"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Smooths the terraces of a picture with few levels, by half a level at most; pictures with fine levels or noise hardly change."),
      .flags = InMainColumn | StartsNextImport, .range = {0, 1},
      .control = {0, 100, 1, 10, 0, " %", percentScale}, .option = {"--deband"}}},
    {&S::smoothing,
     {.key = "smoothing", .label = QT_TRANSLATE_NOOP("Fields", "Smoothing"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Passes of smoothing."),
      .flags = InMainColumn | StartsNextImport | NeedsPreview, .range = {0, 5},
      .control = {0, 5, 0.1, 0.5, 1}, .option = {"--smoothing"}}},
    {&S::raiseLower,
     {.key = "raiseLower", .label = QT_TRANSLATE_NOOP("Fields", "Raise / Lower"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Lowers the figure by percent of its range; negative values raise it."),
      .flags = InMainColumn | NeedsPreview, .range = {-100, 100},
      .control = {-100, 100, 1, 10, 0, " %"}, .option = {"--raise-lower"}}},
    {&S::trim,
     {.key = "trim", .label = QT_TRANSLATE_NOOP("Fields", "Trim"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Cells removed from the figure's outline."),
      .flags = InMainColumn | NeedsPreview, .range = {0, 20},
      .control = {0, 20, 1, 1}, .option = {"--trim"}}},
    {&S::tiltHorizontal,
     {.key = "tiltHorizontal", .label = QT_TRANSLATE_NOOP("Fields", "Horizontal"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Tilts the figure about the vertical axis."),
      .flags = StartsNextImport | NeedsPreview, .range = {-100, 100},
      .control = {-10, 10, 0.1, 2, 1, "°", tenthsScale}, 
      .option = {"--tilt", "H", "Tilts the figure about the vertical (H) and the horizontal (V) axis, in tenths of a degree."}}},
    {&S::tiltVertical,
     {.key = "tiltVertical", .label = QT_TRANSLATE_NOOP("Fields", "Vertical"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Tilts the figure about the horizontal axis."),
      .flags = StartsNextImport | NeedsPreview, .range = {-100, 100},
      .control = {-10, 10, 0.1, 2, 1, "°", tenthsScale}, .option = {"--tilt", "V"}}},
    {&S::depth,
     {.key = "depth", .label = QT_TRANSLATE_NOOP("Fields", "Depth"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Height of the whole range; 0 takes every value of the source as a height in cells."),
      .range = {0, largestDepth}, .option = {"--depth", "D"}}},
    {&S::basRelief,
     {.key = "basRelief", .label = QT_TRANSLATE_NOOP("Fields", "On / Off"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Makes a bas-relief: compresses the range of heights and keeps the detail."),
      .flags = KeepsBasRelief, .option = {"--bas-relief", nullptr, "Makes a bas-relief: compresses the range of heights and keeps the detail."}}},
    {&S::gridSize,
     {.key = "gridSize", .label = QT_TRANSLATE_NOOP("Fields", "Grid Size"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Larger: small forms stand out against their surroundings. Smaller: broad forms keep their order."),
      .flags = WaitsForUpdate | NeedsBasRelief, .range = {2, 32},
      .control = {1, 5, 1, 1, 0, "", gridSizeScale}, .option = {"--bas-relief", "GRID"}}},
    {&S::contrastFactor,
     {.key = "contrastFactor", .label = QT_TRANSLATE_NOOP("Fields", "Contrast Factor"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Larger: flatter, with stronger detail."),
      .flags = WaitsForUpdate | NeedsBasRelief, .range = {2, 65536},
      .control = {1, 16, 1, 1, 0, "", contrastScale}, .option = {"--bas-relief", "CONTRAST"}}},
    {&S::smoothness,
     {.key = "smoothness", .label = QT_TRANSLATE_NOOP("Fields", "Smoothness"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Larger: calmer texture; the forms stay."),
      .flags = WaitsForUpdate | NeedsBasRelief, .range = {20000, 10000000},
      .control = {1, 9, 1, 1, 0, "", smoothnessScale}, .option = {"--bas-relief", "SMOOTHNESS"}}},
};
// clang-format on

} // namespace

FieldTable<ImportSettings> importFields()
{
    return rows;
}

} // namespace marlowen
