#include "workbench/livepreview.h"

#include "workbench/workbench.h"

#include <new>

namespace marlowen {

Outcome LivePreview::run(const Operation &operation, Progress *progress)
{
    if (!m_bench.relief())
        return {};
    m_bench.endStroke();
    // What is taken back and what takes its place are one change.
    _takeBack();
    EditRun edit(&m_events, progress);
    edit.isPreview = true;
    const Outcome done = m_bench._run(operation, edit);
    m_bench._show();
    return done;
}

Outcome LivePreview::keep()
{
    if (!active())
        return {};
    try {
        m_bench.m_history.takeOver(m_events);
    } catch (const std::bad_alloc &) {
        drop();
        return m_bench._shortOfMemory();
    }
    m_bench._announce(Step::Edit);
    return {};
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
