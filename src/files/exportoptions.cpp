#include "files/exportoptions.h"

#include <QtGlobal>

namespace marlowen {

namespace {

using O = ExportOptions;

constexpr double smallestLength = 1e-6; ///< inches
constexpr double largestLength = 1000.0;

// clang-format off
constexpr Field<O> rows[] = {
    {&O::quality,
     {.key = "quality", .label = QT_TRANSLATE_NOOP("Fields", "Quality"),
      .hint = QT_TRANSLATE_NOOP("Fields", "High writes every triangle of the grid; Medium and Low write fewer."),
      .flags = TakesQuality, .range = {0, 2}, .choices = "High|Medium|Low", .anyCase = true,
      .option = {"--quality"}}},
    {&O::tolerance,
     {.key = "tolerance", .label = QT_TRANSLATE_NOOP("Fields", "Tolerance"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Reduces the mesh, with errors up to this height in inches, in place of a quality."),
      .flags = TakesTolerance, .range = {smallestLength, largestLength},
      .option = {"--tolerance", "INCHES"}}},
    {&O::facets,
     {.key = "facets", .label = QT_TRANSLATE_NOOP("Fields", "Model Size"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Writes at most this many facets; 0 sets no limit."),
      .flags = TakesFacets, .range = {0, std::numeric_limits<int>::max()},
      .option = {"--facets", "N"}}},
    {&O::standardStl,
     {.key = "standardStl", .label = QT_TRANSLATE_NOOP("Fields", "Standard STL"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Writes the 32-bit facet count that most programs read, also in a reduced mesh."),
      .flags = TakesStandardStl, .option = {"--standard-stl"}}},
    {&O::solid,
     {.key = "solid", .label = QT_TRANSLATE_NOOP("Fields", "Solid"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Closes the mesh with walls and a base of this thickness in inches."),
      .flags = TakesSolid, .range = {smallestLength, largestLength},
      .option = {"--solid", "INCHES"}}},
};
// clang-format on

} // namespace

FieldTable<ExportOptions> exportFields()
{
    return rows;
}

} // namespace marlowen
