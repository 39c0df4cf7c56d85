#include "cli/scriptrunner.h"
#include "cli/scriptstate.h"
#include "fuzzinput.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace marlowen;

/// Whether a value keeps the work small.
static bool isSmall(const QJsonValue &value)
{
    if (value.isDouble())
        return std::abs(value.toDouble()) <= 300.0;
    const QJsonArray list = value.toArray();
    const QJsonObject object = value.toObject();
    return std::all_of(list.begin(), list.end(), [](const QJsonValue &v) { return isSmall(v); }) &&
           std::all_of(object.begin(), object.end(),
                       [](const QJsonValueConstRef &v) { return isSmall(v); });
}

/// Lines that name files could write anywhere; the readers of files have separate targets.
static bool isWanted(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line.trimmed()).object();
    return !object.contains(QLatin1String("file")) && isSmall(object) &&
           object.value(QLatin1String("do")) != QLatin1String("info");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Progress silent;
    ScriptState state(silent);
    for (const QByteArray &line : fuzz::bytesOf(data, size).split('\n')) {
        if (isWanted(line))
            runScriptLine(state, line);
    }
    return 0;
}
