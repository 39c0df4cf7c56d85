#pragma once

#include "cli/commandoptions.h"
#include "cli/scriptstate.h"
#include "import/mesh/openmodel.h"
#include "import/mesh/rasterise.h"

#include <QJsonObject>

#include <optional>

namespace marlowen {

inline constexpr char relativeIndicesKey[] = "relativeIndices";

/// As openModel(); prints the problems of the file on standard error. The failure names the file.
Result<OpenedModel> openModelFile(const QString &path, const ModelOptions &options,
                                  Progress &progress);
/// As importShape(); the failure names the file.
Result<std::unique_ptr<Relief>> rasteriseFile(const QString &path, const FacetShape &shape,
                                              const ShapeImport &import, Progress &progress);

/// What a model is, under the key "mesh": corners, facets, problems, box, unit, area.
QJsonObject describe(const OpenedModel &model);

/// Why mesh options do not fit a file.
QString notAModel();

/// What the command line asks of a model.
struct ModelWish
{
    ModelOptions options;
    std::vector<ModelTurn> turns;
    std::optional<std::array<double, 3>> scale; ///< in place of the automatic shrink
    bool given = false;                         ///< some option was
};
/// The options of a wish, which outlives them.
std::vector<CommandOption> modelOptionsFor(ModelWish &wish);
/// Turns and scales a model that was just opened with the wish's options.
void orient(FacetShape &shape, const ModelWish &wish);

/// The turn of a word ("left"); none when it is not a turn.
std::optional<ModelTurn> modelTurnOf(const QString &word);
/// "left|right|...".
const char *modelTurnWords();

/// The script action "open" for a mesh.
Outcome openModelAction(ScriptState &state, const QJsonObject &arguments,
                        const ImportSettings &settings);

} // namespace marlowen
