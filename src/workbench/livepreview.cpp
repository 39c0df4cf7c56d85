#include "workbench/livepreview.h"

#include "workbench/workbench.h"

namespace marlowen {

Outcome LivePreview::run(const Operation &operation, Progress *progress)
{
    if (!m_bench.relief())
        return {};
    m_bench.endStroke();
    // What is taken back and what takes its place are one change.
    _takeBack();
    const Outcome done = m_bench._run(operation, m_events, progress);
    m_bench._show();
    return done;
}

void LivePreview::keep()
{
    if (!active())
        return;
    m_bench.m_history.takeOver(m_events);
    m_bench._announce(Step::Edit);
}

void LivePreview::drop()
{
    if (_takeBack())
        m_bench._show();
}

bool LivePreview::_takeBack()
{
    const bool shown = active();
    while (m_events.canUndo())
        m_events.undo();
    m_events.clear();
    return shown;
}

} // namespace marlowen
