#include "ui/pages/toolspage.h"

#include "relief/tools/tooltable.h"
#include "ui/commandset.h"
#include "ui/panels/panelcontrols.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>

namespace marlowen {

namespace {

QAction *makeAction(CommandSet &commands, const ToolRow &row, const char *iconName,
                    const char *keys)
{
    const QByteArray label = toolText(row.label).toUtf8();
    const QByteArray hint = toolText(row.hint).toUtf8();
    const QByteArray longName = longToolName(row).toUtf8();
    QAction *action = commands.add({iconName, label.constData(), iconName, hint.constData(), keys,
                                    "", true, longName.constData()});
    action->setData(row.type);
    return action;
}

} // namespace

ToolActions::ToolActions(CommandSet &commands, QObject *parent)
    : QObject(parent)
    , m_commands(commands)
    , m_group(new QActionGroup(this))
    , m_selectionErase(nullptr)
{
    for (const ToolRow *row : toolsInOrder()) {
        m_group->addAction(makeAction(commands, *row, row->icon, row->keys));
        if (row->type == Tool::Erase)
            m_selectionErase = makeAction(commands, *row, "erase_selection_tool", "");
    }
    connect(m_group, &QActionGroup::triggered, this, [this](const QAction *action) {
        emit chosen(static_cast<Tool::Type>(action->data().toInt()));
    });
    connect(m_selectionErase, &QAction::triggered, this, [this] { emit chosen(Tool::Erase); });
}

QAction *ToolActions::action(Tool::Type type) const
{
    for (QAction *action : m_group->actions()) {
        if (action->data().toInt() == type)
            return action;
    }
    return nullptr;
}

void ToolActions::showTool(Tool::Type type)
{
    if (QAction *chosenAction = action(type))
        chosenAction->setChecked(true);
    m_selectionErase->setChecked(type == Tool::Erase);
}

void ToolActions::setReason(const QString &reason)
{
    for (QAction *action : m_group->actions())
        m_commands.setReason(action, reason);
    m_commands.setReason(m_selectionErase, reason);
}

void ToolsPage::addCommands(CommandSet &commands)
{
    for (const OperationRow &row : operationTable()) {
        if (row.group != OperationGroup::None)
            commands.add({row.id, row.label, row.icon, row.hint, row.keys, ""});
    }
}

ToolsPage::ToolsPage(RibbonPage &page, CommandSet &commands, const ToolActions &tools,
                     QObject *parent)
    : QObject(parent)
    , m_group(page.addGroup(tr("Sculpting Tools")))
{
    _addTools(tools, ToolGroup::Sculpting);
    m_group->addSeparator();
    _addTools(tools, ToolGroup::Masking);
    _addOperations(commands, OperationGroup::Masking);
    m_group->addSeparator();
    _addTools(tools, ToolGroup::Restoring);
    _addOperations(commands, OperationGroup::Filters);
}

void ToolsPage::_addTools(const ToolActions &tools, ToolGroup group)
{
    for (const ToolRow *row : toolsInOrder()) {
        if (row->group != group)
            continue;
        m_group->addLargeButton(tools.action(row->type));
        if (*row->optionLabel)
            _addLimit(*row);
    }
}

void ToolsPage::_addOperations(const CommandSet &commands, OperationGroup group)
{
    for (const OperationRow &row : operationTable()) {
        if (row.group == group)
            m_group->addSmallButton(commands[row.id]);
    }
}

void ToolsPage::_addLimit(const ToolRow &row)
{
    auto *box = new QCheckBox(toolText(row.optionLabel));
    box->setObjectName(QString::fromLatin1(row.optionLabel).toLower());
    connect(box, &QCheckBox::clicked, this, &ToolsPage::limitChanged);
    m_group->addRow(box);
    m_limits.push_back({&row, box});
}

void ToolsPage::showLimit(Tool::Type type, bool on, const QString &reason)
{
    for (const Limit &limit : m_limits) {
        const bool own = type == limit.tool->type;
        const QString other = tr("Choose the %1 first.").arg(longToolName(*limit.tool));
        const QString why = reason.isEmpty() && !own ? other : reason;
        limit.box->setEnabled(why.isEmpty());
        limit.box->setChecked(own && on);
        limit.box->setToolTip(why.isEmpty() ? toolText(limit.tool->optionHint) : why);
    }
}

} // namespace marlowen
