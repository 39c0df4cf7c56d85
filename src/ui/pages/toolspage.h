#pragma once

#include "relief/operations/operationtable.h"
#include "relief/tools/tooltable.h"

#include <QObject>

#include <vector>

class QActionGroup;
class QCheckBox;
class QAction;

namespace marlowen {

class CommandSet;
class RibbonGroup;
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

    /// Shows the tool's "Ceiling" or "Floor"; those of other tools are disabled. A reason says why
    /// none can be used now.
    void showLimit(Tool::Type type, bool on, const QString &reason);

signals:
    void limitChanged(bool on);

private:
    /// The check box of a tool's "Ceiling" or "Floor".
    struct Limit
    {
        const ToolRow *tool;
        QCheckBox *box;
    };

    void _addTools(const ToolActions &tools, ToolGroup group);
    void _addOperations(const CommandSet &commands, OperationGroup group);
    void _addLimit(const ToolRow &row);

    RibbonGroup *m_group;
    std::vector<Limit> m_limits;
};

} // namespace marlowen
