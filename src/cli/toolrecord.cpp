#include "cli/toolrecord.h"

#include "relief/tools/tooltable.h"

#include <string>

namespace marlowen {

namespace {

/// One field of the tool record: its key, how a value that passed its check gets into it, and how
/// its value is written.
struct RecordField
{
    ScriptKey key;
    void (*set)(ToolParams &tool, const QJsonValue &value, const ScriptKey &key);
    QString (*text)(const ToolParams &tool, const ScriptKey &key);
};

/// The names of all tools in the order of Tool::Type.
const char *typeNames()
{
    static const std::string names = [] {
        std::string list;
        for (const ToolRow &row : toolTable())
            list += (list.empty() ? "" : "|") + std::string(row.id);
        return list;
    }();
    return names.c_str();
}

template <int32_t ToolParams::*field>
RecordField choice(const char *name, const char *choices)
{
    return {{.name = name, .type = KeyType::Choice, .choices = choices},
            [](ToolParams &tool, const QJsonValue &value, const ScriptKey &key) {
                tool.*field = choiceIndex(key.choices, value.toString());
            },
            [](const ToolParams &tool, const ScriptKey &key) {
                return QString::fromLatin1(key.choices).split(QLatin1Char('|')).at(tool.*field);
            }};
}

template <double ToolParams::*field>
RecordField _number(const char *name, double minimum, double maximum)
{
    return {{.name = name, .type = KeyType::Number, .minimum = minimum, .maximum = maximum},
            [](ToolParams &tool, const QJsonValue &value, const ScriptKey &) {
                tool.*field = value.toDouble();
            },
            [](const ToolParams &tool, const ScriptKey &) { return QString::number(tool.*field); }};
}

template <int32_t ToolParams::*field>
RecordField count(const char *name, double minimum, double maximum)
{
    return {{.name = name, .type = KeyType::Integer, .minimum = minimum, .maximum = maximum},
            [](ToolParams &tool, const QJsonValue &value, const ScriptKey &) {
                tool.*field = value.toInt();
            },
            [](const ToolParams &tool, const ScriptKey &) { return QString::number(tool.*field); }};
}

template <bool ToolParams::*field>
RecordField flag(const char *name)
{
    return {{.name = name, .type = KeyType::Boolean},
            [](ToolParams &tool, const QJsonValue &value, const ScriptKey &) {
                tool.*field = value.toBool();
            },
            [](const ToolParams &tool, const ScriptKey &) {
                return tool.*field ? QStringLiteral("true") : QStringLiteral("false");
            }};
}

const std::vector<RecordField> &_fields()
{
    static const std::vector<RecordField> fields{
        choice<&ToolParams::type>("type", typeNames()),
        choice<&ToolParams::mode>("mode", "Normal|Raise|Lower"),
        choice<&ToolParams::form>("form", "Round|Square"),
        choice<&ToolParams::falloff>("falloff", "Smooth|Linear|Sphere|Constant"),
        _number<&ToolParams::size>("size", 0.01, 1.0),
        _number<&ToolParams::strength>("strength", 0.0, 1.0),
        _number<&ToolParams::hardness>("hardness", 0.0, 1.0),
        _number<&ToolParams::aspect>("aspect", 0.01, 1000.0),
        _number<&ToolParams::angle>("angle", -360.0, 360.0),
        flag<&ToolParams::useDecay>("useDecay"),
        _number<&ToolParams::decayLength>("decayLength", 0.0, 1.0),
        flag<&ToolParams::keepTransparency>("keepTransparency"),
        flag<&ToolParams::smoothToolPaths>("smoothToolPaths"),
        count<&ToolParams::smoothLength>("smoothLength", 1.0, 1e6),
        flag<&ToolParams::ceilingOrFloor>("ceilingOrFloor"),
        _number<&ToolParams::tolerance>("tolerance", 0.01, 0.99),
        flag<&ToolParams::continuous>("continuous"),
    };
    return fields;
}

} // namespace

const std::vector<ScriptKey> &toolKeys()
{
    static const std::vector<ScriptKey> keys = [] {
        std::vector<ScriptKey> list;
        for (const RecordField &field : _fields())
            list.push_back(field.key);
        return list;
    }();
    return keys;
}

void changeTool(ToolParams &tool, const QJsonObject &fields)
{
    for (const RecordField &field : _fields()) {
        const auto value = fields.constFind(QLatin1String(field.key.name));
        if (value != fields.constEnd())
            field.set(tool, *value, field.key);
    }
}

QString toolRecordHelp()
{
    QString text = QStringLiteral("A script starts with this tool record:\n");
    for (const RecordField &field : _fields())
        text += QStringLiteral("  %1 %2\n")
                    .arg(QLatin1String(field.key.name), -18)
                    .arg(field.text({}, field.key));
    return text;
}

} // namespace marlowen
