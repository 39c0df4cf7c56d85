#include "cli/scriptstate.h"

#include <cstdio>

namespace marlowen {

bool ScriptState::print(const QByteArray &line)
{
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    return std::fflush(stdout) == 0 && !std::ferror(stdout);
}

Failure scriptFailure(const QString &sentence)
{
    return {QStringLiteral("Script Failed"), sentence};
}

} // namespace marlowen
