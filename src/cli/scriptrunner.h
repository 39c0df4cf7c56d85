#pragma once

#include "base/result.h"

#include <QByteArray>
#include <QString>

class QIODevice;

namespace marlowen {

class ScriptState;

/// Runs one line of a script: a JSON object whose "do" names an action. Empty lines and lines that
/// begin with # do nothing.
Outcome runScriptLine(ScriptState &state, const QByteArray &line);

/// Runs a script line by line and stops at the first failure, whose sentence then begins with
/// "name:line: ".
Outcome runScript(ScriptState &state, QIODevice &script, const QString &name);

} // namespace marlowen
