#include "cli/scriptaction.h"
#include "cli/scriptpoints.h"
#include "cli/scriptstate.h"
#include "relief/operations/operations.h"
#include "relief/selection/selections.h"

namespace marlowen {

namespace {

constexpr char modifierNames[] = "Normal|Additive|Subtractive";
constexpr char shapeNames[] = "rectangle|ellipse|polygon|magic|none";
constexpr char maskNames[] = "clear|invert";

/// A selection as the script gives it; the corners may lie off the grid.
struct Choice
{
    QPointF point;
    QList<QPoint> cells;
    SelectionModifier modifier;
};

/// One shape: the key that says where it is and how many cells it takes, and how it is selected.
struct Shape
{
    const char *key; ///< null for none
    int cells;       ///< exactly so many; 0: any number
    void (*select)(ScriptState &state, const Choice &choice);
};

/// In the order of shapeNames.
const Shape shapes[] = {
    {"cells", 2,
     [](ScriptState &state, const Choice &choice) {
         selectRectangle(*state.relief(), choice.cells[0], choice.cells[1], choice.modifier);
     }},
    {"cells", 2,
     [](ScriptState &state, const Choice &choice) {
         selectEllipse(*state.relief(), choice.cells[0], choice.cells[1], choice.modifier);
     }},
    {"cells", 0,
     [](ScriptState &state, const Choice &choice) {
         selectPolygon(*state.relief(), choice.cells, choice.modifier);
     }},
    {"point", 0,
     [](ScriptState &state, const Choice &choice) {
         const ToolParams &tool = state.bench.tool;
         const MagicSelection magic{choice.point, tool.tolerance, tool.continuous};
         magicSelect(*state.relief(), magic, choice.modifier);
     }},
    {nullptr, 0, [](ScriptState &state, const Choice &) { selectNone(*state.relief()); }},
};

/// Which of the keys that say where a shape is do not fit it; empty when all is well.
QString wrongPlace(const QString &name, const Shape &shape, const QJsonObject &arguments)
{
    for (const char *key : {"cells", "point"}) {
        const bool given = arguments.contains(QLatin1String(key));
        const bool wanted = shape.key && QLatin1String(key) == QLatin1String(shape.key);
        if (given != wanted)
            return QStringLiteral("select: the shape \"%1\" %2 \"%3\"")
                .arg(name, wanted ? QStringLiteral("needs") : QStringLiteral("takes no"),
                     QLatin1String(key));
    }
    const auto count = cellsOf(arguments.value(QLatin1String("cells"))).size();
    if (shape.cells > 0 && count != shape.cells)
        return QStringLiteral("select: the shape \"%1\" needs two corners in \"cells\"").arg(name);
    return {};
}

Outcome selectAction(ScriptState &state, const QJsonObject &arguments)
{
    const QString name = arguments.value(QLatin1String("shape")).toString();
    const Shape &shape = shapes[choiceIndex(shapeNames, name)];
    if (const QString wrong = wrongPlace(name, shape, arguments); !wrong.isEmpty())
        return scriptFailure(wrong);
    const QString modifier =
        arguments.value(QLatin1String("modifier")).toString(QStringLiteral("Normal"));
    shape.select(state, {pointOf(arguments.value(QLatin1String("point"))),
                         cellsOf(arguments.value(QLatin1String("cells"))),
                         static_cast<SelectionModifier>(choiceIndex(modifierNames, modifier))});
    return {};
}

Outcome mask(ScriptState &state, const QJsonObject &arguments)
{
    constexpr Operation (*operations[])() = {clearMaskOperation, invertMaskOperation};
    const QString name = arguments.value(QLatin1String("op")).toString();
    return state.bench.apply(operations[choiceIndex(maskNames, name)]());
}

Outcome resizeAction(ScriptState &state, const QJsonObject &arguments)
{
    const int width = arguments.value(QLatin1String("width")).toInt();
    const int height = arguments.value(QLatin1String("height")).toInt();
    if (static_cast<qint64>(width) * height > std::numeric_limits<int>::max())
        return scriptFailure(QStringLiteral("resize: the relief would have too many cells"));
    // The present size is no error.
    return state.bench.apply(resizeOperation(width, height), &state.progress());
}

Outcome zScale(ScriptState &state, const QJsonObject &arguments)
{
    return state.bench.apply(zScaleOperation(arguments.value(QLatin1String("value")).toDouble()));
}

Outcome crop(ScriptState &state, const QJsonObject &arguments)
{
    return state.bench.apply(cropOperation(pointsOf(arguments.value(QLatin1String("points")))));
}

} // namespace

const std::vector<ScriptAction> &reliefActions()
{
    static const std::vector<ScriptAction> actions{
        {"select",
         {{.name = "shape", .type = KeyType::Choice, .required = true, .choices = shapeNames},
          {"cells", KeyType::Cells},
          {"point", KeyType::Point},
          {.name = "modifier", .type = KeyType::Choice, .choices = modifierNames}},
         selectAction},
        {"mask",
         {{.name = "op", .type = KeyType::Choice, .required = true, .choices = maskNames}},
         mask},
        {"resize",
         {{"width", KeyType::Integer, true, 2.0}, {"height", KeyType::Integer, true, 2.0}},
         resizeAction},
        {"zscale",
         {{"value", KeyType::Number, true, zScaleRange.minimum, zScaleRange.maximum}},
         zScale},
        {"crop", {{"points", KeyType::Points, true}}, crop},
    };
    return actions;
}

} // namespace marlowen
