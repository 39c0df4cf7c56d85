#include "cli/clifiles.h"
#include "cli/placeaction.h"
#include "cli/scriptaction.h"
#include "cli/scriptpoints.h"
#include "cli/scriptstate.h"
#include "relief/operations/operationtable.h"
#include "relief/selection/selectionmodifiers.h"
#include "relief/selection/selections.h"

#include <QByteArrayList>

#include <algorithm>
#include <map>

namespace marlowen {

namespace {

constexpr char shapeNames[] = "rectangle|ellipse|polygon|magic|none";

/// A selection as the script gives it; the corners may lie off the grid.
struct Choice
{
    QPointF point;
    QList<QPoint> cells;
    SelectionModifier modifier;
    ToolParams tool; ///< tolerance and continuity of the magic selection
};

/// One shape: the key that says where it is and how many cells it takes, and how it is selected.
struct Shape
{
    const char *key; ///< null for none
    int cells;       ///< exactly so many; 0: any number
    void (*select)(Relief &relief, const Choice &choice);
};

/// In the order of shapeNames.
const Shape shapes[] = {
    {"cells", 2,
     [](Relief &relief, const Choice &choice) {
         selectRectangle(relief, choice.cells[0], choice.cells[1], choice.modifier);
     }},
    {"cells", 2,
     [](Relief &relief, const Choice &choice) {
         selectEllipse(relief, choice.cells[0], choice.cells[1], choice.modifier);
     }},
    {"cells", 0,
     [](Relief &relief, const Choice &choice) {
         selectPolygon(relief, choice.cells, choice.modifier);
     }},
    {"point", 0,
     [](Relief &relief, const Choice &choice) {
         const MagicSelection magic{choice.point, choice.tool.tolerance, choice.tool.continuous};
         magicSelect(relief, magic, choice.modifier);
     }},
    {nullptr, 0, [](Relief &relief, const Choice &) { selectNone(relief); }},
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
    const QString modifier = arguments.value(QLatin1String("modifier"))
                                 .toString(QLatin1String(selectionModifiers().front().name));
    const Choice choice{
        pointOf(arguments.value(QLatin1String("point"))),
        cellsOf(arguments.value(QLatin1String("cells"))),
        static_cast<SelectionModifier>(choiceIndex(selectionModifierNames(), modifier)),
        state.bench.tool};
    return state.bench.apply(
        selectionOperation([&shape, &choice](Relief &relief) { shape.select(relief, choice); }));
}

/// Every row of the operation table with this action; their words distinguish them.
std::vector<const OperationRow *> rowsOf(const QString &action)
{
    std::vector<const OperationRow *> found;
    for (const OperationRow &row : operationTable()) {
        if (action == QLatin1String(row.action))
            found.push_back(&row);
    }
    return found;
}

Outcome operationAction(ScriptState &state, const QJsonObject &arguments)
{
    const QString action = arguments.value(QLatin1String("do")).toString();
    const QString word = arguments.value(QLatin1String("op")).toString();
    const auto rows = rowsOf(action);
    const OperationRow &row = **std::ranges::find_if(
        rows, [&word](const OperationRow *known) { return word == QLatin1String(known->word); });
    OperationInput input;
    for (const OperationNumber &number : row.numbers)
        input.numbers.push_back(arguments.value(QLatin1String(number.key)).toDouble());
    if (row.takesPoints)
        input.points = pointsOf(arguments.value(QLatin1String("points")));
    Outcome done = state.bench.apply(operation(row, input), &state.progress());
    if (!done)
        return scriptFailure(QStringLiteral("%1: %2").arg(action, oneLine(done.failure())));
    return done;
}

/// "clear|invert"; empty for an action of one row. The text is never freed.
const char *wordsOf(const QString &action)
{
    static std::map<QString, QByteArray> known;
    QByteArrayList words;
    for (const OperationRow *row : rowsOf(action)) {
        if (*row->word)
            words.append(row->word);
    }
    return known.try_emplace(action, words.join('|')).first->second.constData();
}

ScriptAction actionOf(const OperationRow &row)
{
    std::vector<ScriptKey> keys;
    if (*row.word)
        keys.push_back({.name = "op",
                        .type = KeyType::Choice,
                        .required = true,
                        .choices = wordsOf(QLatin1String(row.action))});
    for (const OperationNumber &number : row.numbers)
        keys.push_back({number.key, number.whole ? KeyType::Integer : KeyType::Number, true,
                        number.range.minimum, number.range.maximum});
    if (row.takesPoints)
        keys.push_back({"points", KeyType::Points, true});
    return {row.action, keys, operationAction};
}

std::vector<ScriptAction> allActions()
{
    std::vector<ScriptAction> actions{
        {"select",
         {{.name = "shape", .type = KeyType::Choice, .required = true, .choices = shapeNames},
          {"cells", KeyType::Cells},
          {"point", KeyType::Point},
          {.name = "modifier", .type = KeyType::Choice, .choices = selectionModifierNames()}},
         selectAction}};
    for (const OperationRow &row : operationTable()) {
        if (rowsOf(QLatin1String(row.action)).front() == &row)
            actions.push_back(actionOf(row));
    }
    actions.push_back(placeAction());
    return actions;
}

} // namespace

const std::vector<ScriptAction> &reliefActions()
{
    static const std::vector<ScriptAction> actions = allActions();
    return actions;
}

} // namespace marlowen
