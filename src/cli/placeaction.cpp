#include "cli/placeaction.h"

#include "cli/clifiles.h"
#include "cli/fieldkeys.h"
#include "cli/scriptpoints.h"
#include "cli/scriptstate.h"
#include "files/patternfile.h"
#include "relief/operations/placement.h"

#include <algorithm>
#include <iterator>

namespace marlowen {

namespace {

Outcome place(ScriptState &state, const QJsonObject &arguments)
{
    const QString path = arguments.value(QLatin1String("file")).toString();
    const Result<Pattern> loaded = loadPattern(path, state.progress());
    if (!loaded)
        return aboutFile(path, loaded.failure());
    Placement placement = withValues(placementFields(), Placement{}, arguments);
    placement.centre = pointOf(arguments.value(QLatin1String("centre")));
    const Pattern &pattern = loaded.value();
    return state.bench.apply(placeOperation(
        std::make_shared<PlacedPattern>(pattern.heights.view(), pattern.info.zScale), placement));
}

/// "scale: 0.001..1000, default 1. The field's hint."
QString helpLine(const Field<Placement> &field)
{
    const FieldInfo &info = field.info;
    const QString range =
        *info.choices ? QString::fromLatin1(info.choices).replace(u'|', QStringLiteral(", "))
                      : QStringLiteral("%1..%2, default %3")
                            .arg(info.range.minimum)
                            .arg(info.range.maximum)
                            .arg(field.initial());
    return QStringLiteral("  %1 %2. %3\n")
        .arg(QLatin1String(info.key), -9)
        .arg(range, QLatin1String(info.hint));
}

} // namespace

ScriptAction placeAction()
{
    std::vector<ScriptKey> keys{{"file", KeyType::Text, true}, {"centre", KeyType::Point, true}};
    std::ranges::copy(keysOf(placementFields()), std::back_inserter(keys));
    return {"place", std::move(keys), place};
}

QString placeHelp()
{
    QString help = QStringLiteral(
        "The action \"place\" lays the pattern in \"file\" (.ptr) onto the relief, its middle at\n"
        "\"centre\", [column, row] in cells from the outer corner of the lowest left cell. It\n"
        "respects selection and mask and is one undo step. Its other keys:\n");
    for (const Field<Placement> &field : placementFields())
        help += helpLine(field);
    return help;
}

} // namespace marlowen
