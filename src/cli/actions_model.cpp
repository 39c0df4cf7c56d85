#include "cli/clifiles.h"
#include "cli/fieldkeys.h"
#include "cli/modelfiles.h"
#include "cli/scriptaction.h"

#include <QJsonArray>

namespace marlowen {

namespace {

Outcome needModel(const ScriptState &state)
{
    if (!state.bench.model)
        return scriptFailure(QStringLiteral("no mesh is open"));
    return {};
}

Outcome orientAction(ScriptState &state, const QJsonObject &arguments)
{
    if (const Outcome open = needModel(state); !open)
        return open;
    FacetShape &shape = state.bench.model->shape;
    if (arguments.value(QLatin1String("reset")).toBool())
        shape.resetOrientation();
    for (const QJsonValue word : arguments.value(QLatin1String("rotate")).toArray())
        shape.turn(*modelTurnOf(word.toString()));
    if (const QJsonArray factors = arguments.value(QLatin1String("scale")).toArray();
        !factors.isEmpty())
        shape.setScale({factors[0].toDouble(), factors[1].toDouble(), factors[2].toDouble()});
    ModelOptions options{.unit = static_cast<int>(shape.unit())};
    options = withValues(modelFields(), options, arguments);
    shape.setUnit(static_cast<size_t>(options.unit));
    return {};
}

Outcome rasterizeAction(ScriptState &state, const QJsonObject &)
{
    if (const Outcome open = needModel(state); !open)
        return open;
    auto &model = state.bench.model;
    const QString file = model->file;
    const ShapeImport import{.settings = model->settings, .shapeDone = [&model] { model.reset(); }};
    Result<std::unique_ptr<Relief>> relief =
        rasteriseFile(file, model->shape, import, state.progress());
    if (!relief)
        return relief.failure();
    state.bench.take(relief.take(), file);
    return {};
}

std::vector<ScriptKey> orientKeys()
{
    std::vector<ScriptKey> keys{
        {"reset", KeyType::Boolean},
        {.name = "rotate", .type = KeyType::Words, .choices = modelTurnWords()},
        {.name = "scale",
         .type = KeyType::Three,
         .minimum = modelScaleRange.minimum,
         .maximum = modelScaleRange.maximum},
    };
    for (const ScriptKey &key : keysOf(modelFields(), OfSize))
        keys.push_back(key);
    return keys;
}

} // namespace

Outcome openModelAction(ScriptState &state, const QJsonObject &arguments,
                        const ImportSettings &settings)
{
    const QString path = arguments.value(QLatin1String("file")).toString();
    const ModelOptions options = withValues(modelFields(), ModelOptions{}, arguments);
    Result<OpenedModel> opened = openModelFile(path, options, state.progress());
    if (!opened)
        return opened.failure();
    auto &model = state.bench.model;
    model = std::make_unique<ModelOnBench>(ModelOnBench{opened.take(), path, settings});
    model->shape.shrinkToLimit();
    return {};
}

const std::vector<ScriptAction> &modelActions()
{
    static const std::vector<ScriptAction> actions{
        {"orient", orientKeys(), orientAction, false},
        {"rasterize", {}, rasterizeAction, false},
    };
    return actions;
}

} // namespace marlowen
