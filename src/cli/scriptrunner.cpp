#include "cli/scriptrunner.h"

#include "cli/clifiles.h"
#include "cli/scriptaction.h"
#include "cli/scriptstate.h"

#include <QIODevice>
#include <QJsonDocument>

#include <new>

namespace marlowen {

namespace {

Outcome runAction(ScriptState &state, const QJsonObject &object)
{
    const QString doKey = QStringLiteral("do");
    const QJsonValue name = object.value(doKey);
    if (!name.isString())
        return scriptFailure(QStringLiteral("the key \"do\" must name an action"));
    const ScriptAction *action = findAction(name.toString());
    if (!action)
        return scriptFailure(QStringLiteral("unknown action \"%1\"").arg(name.toString()));
    if (const QString wrong = checkKeys(object, action->keys, doKey); !wrong.isEmpty())
        return scriptFailure(QStringLiteral("%1: %2").arg(name.toString(), wrong));
    if (action->needsRelief && !state.relief())
        return scriptFailure(QStringLiteral("%1: there is no relief").arg(name.toString()));
    try {
        return action->run(state, object);
    } catch (const std::bad_alloc &) {
        return scriptFailure(QStringLiteral("%1: not enough memory").arg(name.toString()));
    }
}

} // namespace

Outcome runScriptLine(ScriptState &state, const QByteArray &line)
{
    if (line.contains('\0'))
        return scriptFailure(QStringLiteral("the line contains a NUL byte"));
    const QByteArray text = line.trimmed();
    if (text.isEmpty() || text.startsWith('#'))
        return {};
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        return scriptFailure(QStringLiteral("not JSON: %1").arg(error.errorString()));
    if (!document.isObject())
        return scriptFailure(QStringLiteral("a line must be one JSON object"));
    return runAction(state, document.object());
}

Outcome runScript(ScriptState &state, QIODevice &script, const QString &name)
{
    for (int number = 1;; ++number) {
        QByteArray line = script.readLine();
        if (line.isEmpty())
            return {};
        if (state.progress().cancelled())
            return scriptFailure(QStringLiteral("%1:%2: interrupted").arg(name).arg(number));
        if (number == 1 && line.startsWith("\xEF\xBB\xBF"))
            line.remove(0, 3);
        if (const Outcome done = runScriptLine(state, line); !done)
            return scriptFailure(QStringLiteral("%1:%2: %3")
                                     .arg(name, QString::number(number), oneLine(done.failure())));
    }
}

} // namespace marlowen
