#include "cli/clifiles.h"
#include "cli/quietdecoders.h"
#include "cli/scriptaction.h"
#include "cli/scriptpoints.h"
#include "cli/scriptstate.h"
#include "cli/toolrecord.h"
#include "files/alphaimage.h"
#include "import/imageimport.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tool.h"
#include "relief/tools/toolfields.h"

namespace marlowen {

namespace {

Outcome toolAction(ScriptState &state, const QJsonObject &arguments)
{
    changeTool(state.bench.tool, arguments);
    return {};
}

Outcome symmetry(ScriptState &state, const QJsonObject &arguments)
{
    Relief &relief = *state.relief();
    relief.symmetryX = arguments.value(QLatin1String("x")).toBool(relief.symmetryX);
    relief.symmetryY = arguments.value(QLatin1String("y")).toBool(relief.symmetryY);
    return {};
}

Outcome invertAction(ScriptState &state, const QJsonObject &arguments)
{
    state.relief()->invert = arguments.value(QLatin1String("on")).toBool();
    return {};
}

/// The grey values of a picture file, which must be square.
Result<FloatGrid> squarePicture(const QString &path)
{
    const QuietDecoders quiet;
    const Result<QImage> read = readWholeImage(path);
    if (!read)
        return aboutFile(path, read.failure());
    const QImage &image = read.value();
    if (image.width() != image.height())
        return aboutFile(path,
                         scriptFailure(QStringLiteral("an alpha image must be square, not %1 x %2")
                                           .arg(image.width())
                                           .arg(image.height())));
    return alphaGrid(image);
}

Outcome alpha(ScriptState &, const QJsonObject &arguments)
{
    AlphaBrush &brush = AlphaBrush::instance();
    const QJsonValue file = arguments.value(QLatin1String("file"));
    if (file.isNull())
        brush.setImage({});
    if (file.isString()) {
        const Result<FloatGrid> grid = squarePicture(file.toString());
        if (!grid)
            return grid.failure();
        brush.setImage(grid.value().view());
    }
    const QJsonValue mode = arguments.value(QLatin1String("mode"));
    if (mode.isString())
        brush.mode = choiceIndex(alphaModeNames, mode.toString());
    brush.repeatCount = arguments.value(QLatin1String("repeat")).toInt(brush.repeatCount);
    return {};
}

/// A press and release at one point.
void click(ScriptState &state, Tool::Type type, QPointF point)
{
    ToolParams params = state.bench.tool;
    params.type = type;
    state.bench.engine().beginStroke(params, point);
    state.bench.engine().endStroke(point);
    state.bench.strokeEnded();
}

Outcome stroke(ScriptState &state, const QJsonObject &arguments)
{
    const QList<StrokePoint> points = strokePointsOf(arguments.value(QLatin1String("points")));
    SculptEngine &engine = state.bench.engine();
    engine.beginStroke(state.bench.tool, points.front());
    for (const StrokePoint &point : points.mid(1)) {
        engine.addStrokePoint(point);
        engine.flush();
    }
    engine.endStroke(points.back());
    state.bench.strokeEnded();
    return {};
}

Outcome sample(ScriptState &state, const QJsonObject &arguments)
{
    click(state, Tool::Sample, pointOf(arguments.value(QLatin1String("point"))));
    return {};
}

Outcome setSample(ScriptState &state, const QJsonObject &arguments)
{
    const double height = arguments.value(QLatin1String("height")).toDouble();
    state.relief()->sampleHeight = static_cast<float>(height);
    return {};
}

Outcome fill(ScriptState &state, const QJsonObject &)
{
    click(state, Tool::Fill, {});
    return {};
}

int stepCount(const QJsonObject &arguments)
{
    return arguments.value(QLatin1String("steps")).toInt(1);
}

Outcome undoAction(ScriptState &state, const QJsonObject &arguments)
{
    for (int step = stepCount(arguments); step > 0 && state.bench.history().canUndo(); --step)
        state.bench.undo();
    return {};
}

Outcome redoAction(ScriptState &state, const QJsonObject &arguments)
{
    for (int step = stepCount(arguments); step > 0 && state.bench.history().canRedo(); --step)
        state.bench.redo();
    return {};
}

} // namespace

const std::vector<ScriptAction> &strokeActions()
{
    static const ScriptKey steps{"steps", KeyType::Integer, false, 1.0};
    static const std::vector<ScriptAction> actions{
        {"tool", toolKeys(), toolAction, false},
        {"symmetry", {{"x", KeyType::Boolean}, {"y", KeyType::Boolean}}, symmetry},
        {"invert", {{"on", KeyType::Boolean, true}}, invertAction},
        {"alpha",
         {{"file", KeyType::TextOrNull},
          {.name = "mode", .type = KeyType::Choice, .choices = alphaModeNames},
          {alphaRepeatField.key, KeyType::Integer, false, alphaRepeatField.range.minimum,
           alphaRepeatField.range.maximum}},
         alpha,
         false},
        {"stroke", {{"points", KeyType::StrokePoints, true}}, stroke},
        {"sample", {{"point", KeyType::Point, true}}, sample},
        {"setSample",
         {{"height", KeyType::Number, true, 0.0, std::numeric_limits<float>::max()}},
         setSample},
        {"fill", {}, fill},
        {"undo", {steps}, undoAction},
        {"redo", {steps}, redoAction},
    };
    return actions;
}

} // namespace marlowen
