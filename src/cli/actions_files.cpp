#include "cli/clifiles.h"
#include "cli/fieldkeys.h"
#include "cli/modelfiles.h"
#include "cli/scriptaction.h"
#include "cli/scriptstate.h"
#include "files/formats.h"
#include "files/heightmaps.h"
#include "import/openfile.h"
#include "relief/grid/reliefstream.h"

#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr double largestHeight = std::numeric_limits<float>::max();
constexpr int largestSide = std::numeric_limits<int>::max();
constexpr char layerNames[] = "heights|reference|mask|selection";

enum class Layer { Heights, Reference, Mask, Selection };

Layer layerOf(const QJsonObject &arguments)
{
    return static_cast<Layer>(
        choiceIndex(layerNames, arguments.value(QLatin1String("layer")).toString()));
}

QString fileOf(const QJsonObject &arguments)
{
    return arguments.value(QLatin1String("file")).toString();
}

GridLayer &gridLayer(Relief &relief, Layer layer)
{
    switch (layer) {
    case Layer::Reference:
        return relief.referenceLayer();
    case Layer::Mask:
        return relief.maskLayer();
    case Layer::Selection:
        return relief.selectionLayer();
    default:
        return relief.heights();
    }
}

Outcome newAction(ScriptState &state, const QJsonObject &arguments)
{
    const int width = arguments.value(QLatin1String("width")).toInt();
    const int height = arguments.value(QLatin1String("height")).toInt();
    const float level = static_cast<float>(arguments.value(QLatin1String("level")).toDouble());
    if (static_cast<qint64>(width) * height > largestSide)
        return scriptFailure(QStringLiteral("new: the relief would have too many cells"));
    auto relief = std::make_unique<Relief>(width, height);
    if (level != 0.0F)
        std::fill_n(relief->heights().data(), relief->cells(), level);
    state.bench.take(std::move(relief));
    return {};
}

Outcome openAction(ScriptState &state, const QJsonObject &arguments)
{
    const QString path = fileOf(arguments);
    const QJsonObject settings = arguments.value(QLatin1String("import")).toObject();
    if (!settings.isEmpty() && formatOf(path) && !takesImportSettings(path))
        return aboutFile(path, scriptFailure(notImported()));
    const ImportSettings import = withValues(importFields(), ImportSettings{}, settings);
    if (opensAsModel(path))
        return openModelAction(state, arguments, import);
    if (arguments.contains(QLatin1String(relativeIndicesKey)))
        return aboutFile(path, scriptFailure(notAModel()));
    Result<std::unique_ptr<Relief>> opened = openFile(path, import);
    if (!opened)
        return opened.failure();
    state.bench.take(opened.take(), fileOf(arguments));
    return {};
}

/// Values that the layer may not hold become the nearest that it may.
void fit(std::vector<float> &values, Layer layer)
{
    if (layer == Layer::Selection)
        std::replace_if(
            values.begin(), values.end(), [](float v) { return std::isnan(v); }, 0.0F);
    else
        repairHeights(values);
    if (layer == Layer::Mask)
        std::replace_if(
            values.begin(), values.end(), [](float v) { return v > 1.0F; }, 1.0F);
}

void markLoaded(Relief &relief, Layer layer)
{
    relief.heightsChanged = relief.heightsChanged || layer == Layer::Heights;
    relief.appearanceChanged = relief.appearanceChanged || layer == Layer::Mask;
    relief.selectionActive = relief.selectionActive || layer == Layer::Selection;
    relief.frameRegion = relief.rect();
}

Outcome loadAction(ScriptState &state, const QJsonObject &arguments)
{
    const Layer layer = layerOf(arguments);
    Result<FloatGrid> read = loadPfm(fileOf(arguments));
    if (!read)
        return aboutFile(fileOf(arguments), read.failure());
    FloatGrid grid = read.take();
    if (!state.relief() && layer == Layer::Heights)
        state.bench.take(std::make_unique<Relief>(grid.width, grid.height));
    if (!state.relief())
        return scriptFailure(QStringLiteral("load: there is no relief"));
    Relief &relief = *state.relief();
    if (relief.width() != grid.width || relief.height() != grid.height)
        return scriptFailure(QStringLiteral("%1: %2 x %3 cells do not fit a relief of %4 x %5")
                                 .arg(fileOf(arguments))
                                 .arg(grid.width)
                                 .arg(grid.height)
                                 .arg(relief.width())
                                 .arg(relief.height()));
    fit(grid.values, layer);
    // Not recorded: the history does not change.
    return state.bench.apply({QStringLiteral("Load"), [&](Relief &loaded, const EditRun &) {
                                  std::copy(grid.values.begin(), grid.values.end(),
                                            gridLayer(loaded, layer).data());
                                  markLoaded(loaded, layer);
                                  return Outcome();
                              }});
}

Outcome saveAction(ScriptState &state, const QJsonObject &arguments)
{
    const QString path = fileOf(arguments);
    if (const Outcome done = state.bench.save(path); !done)
        return aboutFile(path, done.failure());
    return {};
}

Outcome exportAction(ScriptState &state, const QJsonObject &arguments)
{
    const ExportOptions options = withValues(exportFields(), ExportOptions{}, arguments);
    return writeFile({*state.relief(), fileOf(arguments), options, &state.progress(),
                      arguments.value(QLatin1String("author")).toString()});
}

Outcome dumpAction(ScriptState &state, const QJsonObject &arguments)
{
    const Relief &relief = *state.relief();
    const GridLayer &layer = gridLayer(*state.relief(), layerOf(arguments));
    const Outcome done =
        savePfm({layer.constData(), relief.width(), relief.height()}, fileOf(arguments));
    if (!done)
        return aboutFile(fileOf(arguments), done.failure());
    return {};
}

Outcome printLine(ScriptState &state, const QJsonObject &line)
{
    if (!state.print(QJsonDocument(line).toJson(QJsonDocument::Compact)))
        return scriptFailure(QStringLiteral("standard output cannot be written"));
    return {};
}

Outcome infoAction(ScriptState &state, const QJsonObject &)
{
    if (state.bench.model)
        return printLine(state, describe(*state.bench.model));
    if (!state.relief())
        return scriptFailure(QStringLiteral("info: there is no relief"));
    const SculptUndo &history = state.bench.history();
    QJsonObject description = describe(*state.relief());
    description.insert(
        QLatin1String("undo"),
        QJsonObject{{QLatin1String("events"), history.count()},
                    {QLatin1String("cursor"), history.cursor()},
                    {QLatin1String("bytes"), static_cast<qint64>(history.totalSize())}});
    description.insert(QLatin1String("sampleHeight"),
                       static_cast<double>(state.relief()->sampleHeight));
    return printLine(state, description);
}

/// The file, the import settings and the options of reading a mesh.
std::vector<ScriptKey> openKeys(const ScriptKey &file)
{
    static const std::vector<ScriptKey> importKeys = keysOf(importFields());
    std::vector<ScriptKey> keys{file,
                                {.name = "import", .type = KeyType::Object, .nested = &importKeys}};
    std::ranges::copy(keysOf(modelFields(), OfReading), std::back_inserter(keys));
    return keys;
}

/// The file, and the options that some format takes.
std::vector<ScriptKey> exportKeys(const ScriptKey &file)
{
    std::vector<ScriptKey> keys{file, {"author", KeyType::Text}};
    if (knownExportOptions() != 0)
        std::ranges::copy(keysOf(exportFields(), knownExportOptions()), std::back_inserter(keys));
    return keys;
}

} // namespace

const std::vector<ScriptAction> &fileActions()
{
    static const ScriptKey file{"file", KeyType::Text, true};
    static const ScriptKey layer{
        .name = "layer", .type = KeyType::Choice, .required = true, .choices = layerNames};
    static const std::vector<ScriptAction> actions{
        {"new",
         {{"width", KeyType::Integer, true, 1.0, largestSide},
          {"height", KeyType::Integer, true, 1.0, largestSide},
          {"level", KeyType::Number, false, 0.0, largestHeight}},
         newAction,
         false},
        {"open", openKeys(file), openAction, false},
        {"load", {layer, file}, loadAction, false},
        {"save", {file}, saveAction},
        {"export", exportKeys(file), exportAction},
        {"dump", {layer, file}, dumpAction},
        {"info", {}, infoAction, false},
    };
    return actions;
}

} // namespace marlowen
