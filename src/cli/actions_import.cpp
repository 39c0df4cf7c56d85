#include "cli/fieldkeys.h"
#include "cli/scriptaction.h"
#include "cli/scriptstate.h"

namespace marlowen {

namespace {

Outcome needImport(ScriptState &state)
{
    if (!state.bench.session().active())
        return scriptFailure(QStringLiteral("no import is open"));
    return {};
}

Outcome importAction(ScriptState &state, const QJsonObject &arguments)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    ImportSession &session = state.bench.session();
    session.setSettings(withValues(importFields(), session.settings(), arguments));
    return {};
}

Outcome updateAction(ScriptState &state, const QJsonObject &)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    state.bench.session().update(&state.progress());
    return {};
}

Outcome acceptAction(ScriptState &state, const QJsonObject &)
{
    if (const Outcome open = needImport(state); !open)
        return open;
    state.bench.acceptImport();
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
