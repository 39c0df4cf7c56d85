#pragma once

#include <QPointer>
#include <QRect>
#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

class QAction;

namespace marlowen {

/// One change that can be taken back. `undone` is false while the change is in force; `groupEnd`
/// marks the last event of one user action.
class SculptUndoEvent
{
public:
    virtual ~SculptUndoEvent() = default;
    virtual void undo() = 0;
    virtual void redo() = 0;
    /// Takes from the relief what redo() needs, if that was left out; the event is in force and the
    /// last one of all. Throws std::bad_alloc.
    virtual void complete() {}
    /// Bytes the event accounts for.
    virtual uint32_t size() const = 0;
    /// Cells of the relief, in its present size, whose heights or mask the event concerns; empty
    /// when none.
    virtual QRect cells() const { return {}; }

    bool undone = false;
    bool groupEnd = false;
    QString name;        ///< name of the step, English; a group has that of its last event
    uint64_t serial = 0; ///< set by the history: higher than that of every event before it
};

/// The linear history of one relief, bounded by the bytes its events account for. Works with or
/// without actions attached. A stroke in progress must be ended before undo() or redo(): its
/// changes have no event yet.
class SculptUndo
{
public:
    static constexpr uint32_t byteLimit = 300000000;

    /// Weak references: the actions whose enabled state follows the stack.
    void setActions(QAction *undoAction, QAction *redoAction);

    /// Records a change that is already in force; drops the redo tail, trims the oldest events.
    void push(std::unique_ptr<SculptUndoEvent> event);
    /// Step by one group; nothing at the ends.
    void undo();
    void redo();
    /// Marks the event just below the cursor, if any, as the last of its group.
    void markGroupEnd();
    /// Names the event just below the cursor, if any.
    void nameStep(const QString &name);
    /// Pushes all events of another history, which are in force, as one group and empties that
    /// one. Throws std::bad_alloc and changes nothing when there is no memory to complete() them.
    void takeOver(SculptUndo &other);
    /// Forgets everything, as for a new relief.
    void clear();
    /// Forgets everything and takes the events of another history with its cursor; empties that
    /// one. The events must be of the relief that this history is of from now on.
    void adopt(SculptUndo &other);

    using Events = std::span<const std::unique_ptr<SculptUndoEvent>>;
    /// The group that undo() or redo() takes next, oldest first; empty at the end.
    Events stepToUndo() const;
    Events stepToRedo() const;
    /// Oldest first, undone ones included.
    Events all() const { return m_events; }
    /// Which state of the relief the history stands at: the same number again exactly when undo or
    /// redo led back to it.
    uint64_t state() const;

    int cursor() const { return m_cursor; }
    int count() const { return static_cast<int>(m_events.size()); }
    uint32_t totalSize() const { return m_total; }
    bool canUndo() const { return m_cursor >= 1; }
    bool canRedo() const { return m_cursor < count(); }

private:
    void _updateActions();

    std::vector<std::unique_ptr<SculptUndoEvent>> m_events;
    int m_cursor = 0;
    uint32_t m_total = 0;
    uint64_t m_lastSerial = 0;
    uint64_t m_oldestState = 0; ///< of the relief before the oldest event
    QPointer<QAction> m_undoAction;
    QPointer<QAction> m_redoAction;
};

} // namespace marlowen
