#include "cli/scriptaction.h"

namespace marlowen {

const ScriptAction *findAction(const QString &name)
{
    for (const auto *group :
         {&fileActions(), &importActions(), &modelActions(), &strokeActions(), &reliefActions()}) {
        for (const ScriptAction &action : *group) {
            if (name == QLatin1String(action.name))
                return &action;
        }
    }
    return nullptr;
}

} // namespace marlowen
