#include "cli/toolrecord.h"

#include "cli/fieldkeys.h"
#include "relief/tools/toolfields.h"

namespace marlowen {

namespace {

QString initialText(const Field<ToolParams> &field)
{
    if (*field.info.choices)
        return QString::fromLatin1(field.info.choices)
            .split(QLatin1Char('|'))
            .at(static_cast<int>(field.initial()));
    if (field.type() == FieldType::Flag)
        return field.initial() != 0.0 ? QStringLiteral("true") : QStringLiteral("false");
    return QString::number(field.initial());
}

} // namespace

const std::vector<ScriptKey> &toolKeys()
{
    static const std::vector<ScriptKey> keys = keysOf(toolFields());
    return keys;
}

void changeTool(ToolParams &tool, const QJsonObject &fields)
{
    tool = withValues(toolFields(), tool, fields);
}

QString toolRecordHelp()
{
    QString text = QStringLiteral("A script starts with this tool record:\n");
    for (const Field<ToolParams> &field : toolFields())
        text += QStringLiteral("  %1 %2\n")
                    .arg(QLatin1String(field.info.key), -18)
                    .arg(initialText(field));
    return text;
}

} // namespace marlowen
