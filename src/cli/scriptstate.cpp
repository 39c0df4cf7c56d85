#include "cli/scriptstate.h"

#include <cstdio>
#include <utility>

namespace marlowen {

ScriptState::~ScriptState()
{
    m_engine.attach(nullptr, nullptr);
    // Events refer to the relief.
    m_undo.clear();
}

void ScriptState::install(std::unique_ptr<Relief> relief)
{
    model.reset();
    m_engine.attach(nullptr, nullptr);
    m_undo.clear();
    m_import.attach(relief.get());
    m_relief = std::move(relief);
    m_engine.attach(m_relief.get(), &m_undo);
}

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
