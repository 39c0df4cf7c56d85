#include "base/result.h"
#include "cli/importkeys.h"
#include "cli/scriptaction.h"
#include "cli/scriptstate.h"

#include <variant>

namespace marlowen {

namespace {

/// One row an import setting: its key and where its value goes.
struct SettingRow
{
    ScriptKey key;
    std::variant<bool ImportSettings::*, int ImportSettings::*, double ImportSettings::*> member;
};

ScriptKey _flag(const char *name)
{
    return {name, KeyType::Boolean};
}

ScriptKey _whole(const char *name, int minimum, int maximum)
{
    return {name, KeyType::Integer, false, static_cast<double>(minimum),
            static_cast<double>(maximum)};
}

ScriptKey real(const char *name, double minimum, double maximum)
{
    return {name, KeyType::Number, false, minimum, maximum};
}

/// Beyond it heights would leave the range of their type.
constexpr double largestDepth = 1e30;

const std::vector<SettingRow> &settingRows()
{
    using S = ImportSettings;
    static const std::vector<SettingRow> rows{
        {_flag("flipY"), &S::flipY},
        {_flag("invertZ"), &S::invertZ},
        {_flag("transparency"), &S::transparency},
        {_flag("preview"), &S::preview},
        {real("smoothing", 0.0, 5.0), &S::smoothing},
        {_whole("raiseLower", -100, 100), &S::raiseLower},
        {_whole("trim", 0, 20), &S::trim},
        {_whole("tiltHorizontal", -100, 100), &S::tiltHorizontal},
        {_whole("tiltVertical", -100, 100), &S::tiltVertical},
        {real("depth", 0.0, largestDepth), &S::depth},
        {_flag("basRelief"), &S::basRelief},
        {_whole("gridSize", 1, 1024), &S::gridSize},
        {_whole("contrastFactor", 1, 65536), &S::contrastFactor},
        {_whole("smoothness", 1, 1000000000), &S::smoothness},
    };
    return rows;
}

void store(ImportSettings &settings, const SettingRow &row, const QJsonValue &value)
{
    if (const auto *flag = std::get_if<bool ImportSettings::*>(&row.member))
        settings.*(*flag) = value.toBool();
    else if (const auto *whole = std::get_if<int ImportSettings::*>(&row.member))
        settings.*(*whole) = value.toInt();
    else
        settings.*std::get<double ImportSettings::*>(row.member) = value.toDouble();
}

Outcome needImport(ScriptState &state)
{
    if (!state.import().active())
        return scriptFailure(QStringLiteral("no import is open"));
    return {};
}

Outcome _import(ScriptState &state, const QJsonObject &arguments)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    state.import().setSettings(withValues(state.import().settings(), arguments));
    return {};
}

Outcome _update(ScriptState &state, const QJsonObject &)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    if (state.import().settings().basRelief && !state.import().basReliefGenerator)
        return scriptFailure(QStringLiteral("a bas-relief cannot be made by this version"));
    state.import().update(&state.progress());
    return {};
}

Outcome _accept(ScriptState &state, const QJsonObject &)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    state.import().accept();
    return {};
}

} // namespace

const std::vector<ScriptKey> &importKeys()
{
    static const std::vector<ScriptKey> keys = [] {
        std::vector<ScriptKey> list;
        for (const SettingRow &row : settingRows())
            list.push_back(row.key);
        return list;
    }();
    return keys;
}

ImportSettings withValues(ImportSettings settings, const QJsonObject &values)
{
    for (const SettingRow &row : settingRows()) {
        const auto value = values.find(QLatin1String(row.key.name));
        if (value != values.end())
            store(settings, row, *value);
    }
    return settings;
}

const std::vector<ScriptAction> &importActions()
{
    static const std::vector<ScriptAction> actions{
        {"import", importKeys(), _import},
        {"update", {}, _update},
        {"accept", {}, _accept},
    };
    return actions;
}

} // namespace marlowen
