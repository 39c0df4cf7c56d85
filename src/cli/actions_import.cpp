#include "cli/fieldkeys.h"
#include "cli/scriptaction.h"
#include "cli/scriptstate.h"

namespace marlowen {

namespace {

Outcome needImport(ScriptState &state)
{
    if (!state.import().active())
        return scriptFailure(QStringLiteral("no import is open"));
    return {};
}

Outcome importAction(ScriptState &state, const QJsonObject &arguments)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    state.import().setSettings(withValues(importFields(), state.import().settings(), arguments));
    return {};
}

Outcome updateAction(ScriptState &state, const QJsonObject &)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    if (state.import().settings().basRelief && !state.import().basReliefGenerator)
        return scriptFailure(QStringLiteral("a bas-relief cannot be made by this version"));
    state.import().update(&state.progress());
    return {};
}

Outcome acceptAction(ScriptState &state, const QJsonObject &)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    state.import().accept();
    return {};
}

} // namespace

const std::vector<ScriptAction> &importActions()
{
    static const std::vector<ScriptAction> actions{
        {"import", keysOf(importFields()), importAction},
        {"update", {}, updateAction},
        {"accept", {}, acceptAction},
    };
    return actions;
}

} // namespace marlowen
