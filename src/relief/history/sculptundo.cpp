#include "relief/history/sculptundo.h"

#include "base/sessionlog.h"

#include <QAction>

#include <utility>

namespace marlowen {

void SculptUndo::setActions(QAction *undoAction, QAction *redoAction)
{
    m_undoAction = undoAction;
    m_redoAction = redoAction;
    _updateActions();
}

void SculptUndo::push(std::unique_ptr<SculptUndoEvent> event)
{
    while (m_cursor < count()) {
        m_total -= m_events.back()->size();
        m_events.pop_back();
    }
    // One event may account for more than the sum has room for.
    uint64_t total = uint64_t{m_total} + event->size();
    event->serial = ++m_lastSerial;
    m_events.push_back(std::move(event));
    ++m_cursor;
    if (total > byteLimit) {
        logInfo() << "Undo size = " << total << " limit = " << byteLimit << " ... Trimming\n";
        logFlush();
    }
    while (total > byteLimit && m_cursor >= 1) {
        total -= m_events.front()->size();
        m_oldestState = m_events.front()->serial;
        m_events.erase(m_events.begin());
        --m_cursor;
    }
    m_total = static_cast<uint32_t>(total);
    _updateActions();
}

void SculptUndo::undo()
{
    while (m_cursor > 0) {
        SculptUndoEvent &event = *m_events[static_cast<size_t>(--m_cursor)];
        if (!event.undone) {
            event.undone = true;
            event.undo();
        }
        if (m_cursor > 0 && m_events[static_cast<size_t>(m_cursor) - 1]->groupEnd)
            break;
    }
    _updateActions();
}

void SculptUndo::redo()
{
    while (m_cursor < count()) {
        SculptUndoEvent &event = *m_events[static_cast<size_t>(m_cursor++)];
        if (event.undone) {
            event.undone = false;
            event.redo();
        }
        if (event.groupEnd)
            break;
    }
    _updateActions();
}

void SculptUndo::markGroupEnd()
{
    if (m_cursor > 0)
        m_events[static_cast<size_t>(m_cursor) - 1]->groupEnd = true;
}

void SculptUndo::nameStep(const QString &name)
{
    if (m_cursor > 0)
        m_events[static_cast<size_t>(m_cursor) - 1]->name = name;
}

void SculptUndo::takeOver(SculptUndo &other)
{
    for (const std::unique_ptr<SculptUndoEvent> &event : other.m_events)
        event->complete();
    for (std::unique_ptr<SculptUndoEvent> &event : other.m_events) {
        event->groupEnd = false;
        push(std::move(event));
    }
    markGroupEnd();
    other.m_events.clear();
    other.clear();
}

SculptUndo::Events SculptUndo::stepToUndo() const
{
    int first = m_cursor;
    while (first > 0 && (first == m_cursor || !m_events[static_cast<size_t>(first) - 1]->groupEnd))
        --first;
    return Events(m_events).subspan(static_cast<size_t>(first),
                                    static_cast<size_t>(m_cursor - first));
}

SculptUndo::Events SculptUndo::stepToRedo() const
{
    int end = m_cursor;
    while (end < count() && (end == m_cursor || !m_events[static_cast<size_t>(end) - 1]->groupEnd))
        ++end;
    return Events(m_events).subspan(static_cast<size_t>(m_cursor),
                                    static_cast<size_t>(end - m_cursor));
}

uint64_t SculptUndo::state() const
{
    return m_cursor > 0 ? m_events[static_cast<size_t>(m_cursor) - 1]->serial : m_oldestState;
}

void SculptUndo::clear()
{
    m_oldestState = ++m_lastSerial;
    m_events.clear();
    m_cursor = 0;
    m_total = 0;
    _updateActions();
}

void SculptUndo::adopt(SculptUndo &other)
{
    clear();
    m_oldestState = ++m_lastSerial;
    m_events = std::exchange(other.m_events, {});
    for (const std::unique_ptr<SculptUndoEvent> &event : m_events)
        event->serial = ++m_lastSerial;
    m_cursor = std::exchange(other.m_cursor, 0);
    m_total = std::exchange(other.m_total, 0);
    other.clear();
    _updateActions();
}

void SculptUndo::_updateActions()
{
    if (m_undoAction)
        m_undoAction->setEnabled(canUndo());
    if (m_redoAction)
        m_redoAction->setEnabled(canRedo());
}

} // namespace marlowen
