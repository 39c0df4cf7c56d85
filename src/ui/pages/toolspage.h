#pragma once

#include "relief/tools/tool.h"

#include <QObject>

class QActionGroup;
class QCheckBox;
class QAction;

namespace marlowen {

class CommandSet;
class RibbonPage;

/// The actions that choose a tool, one a tool, exclusive; each carries its shortcut. "Erase" has a
/// second action for the page of the selections.
class ToolActions : public QObject
{
    Q_OBJECT

public:
    explicit ToolActions(CommandSet &commands, QObject *parent);

    QAction *action(Tool::Type type) const;
    QAction *selectionErase() const { return m_selectionErase; }
    /// Checks the actions of the type without a signal.
    void showTool(Tool::Type type);
    /// Disables all with a reason; an empty one enables.
    void setReason(const QString &reason);

signals:
    void chosen(Tool::Type type);

private:
    CommandSet &m_commands;
    QActionGroup *m_group;
    QAction *m_selectionErase;
};

/// The controls of the page "Sculpting Tools".
class ToolsPage : public QObject
{
    Q_OBJECT

public:
    ToolsPage(RibbonPage &page, CommandSet &commands, const ToolActions &tools, QObject *parent);

    static void addCommands(CommandSet &commands);

    /// Shows the tool's "Ceiling" or "Floor"; the other one belongs to the other tool. A reason
    /// says why neither can be used now.
    void showLimit(Tool::Type type, bool on, const QString &reason);

signals:
    void limitChanged(bool on);

private:
    QCheckBox *_limitBox(const QString &label, const QString &name);

    QCheckBox *m_ceiling;
    QCheckBox *m_floor;
};

} // namespace marlowen
