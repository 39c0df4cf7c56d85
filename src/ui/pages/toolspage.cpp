#include "ui/pages/toolspage.h"

#include "relief/tools/tooltable.h"
#include "ui/commandset.h"
#include "ui/panels/toolnames.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>

namespace marlowen {

namespace {

struct ToolKey
{
    Tool::Type type;
    const char *keys;
};
constexpr ToolKey toolKeys[] = {
    {Tool::Smooth, "S"}, {Tool::Flatten, "L"},    {Tool::Deposit, "D"},     {Tool::Remove, "R"},
    {Tool::Clay, "C"},   {Tool::Scrape, "A"},     {Tool::Smudge, "G"},      {Tool::Pinch, "P"},
    {Tool::Move, "M"},   {Tool::Mask, "K"},       {Tool::UndoBrush, "U"},   {Tool::Erase, "E"},
    {Tool::Crop, "X"},   {Tool::Elliptical, "O"}, {Tool::Rectangle, "B"},   {Tool::Polygon, "Y"},
    {Tool::Magic, "W"},  {Tool::Sample, "I"},     {Tool::HeightBrush, "H"}, {Tool::Fill, "J"},
};

constexpr CommandRow commandRows[] = {
    {"maskClear", "Clear", "mask_clear", "Takes the mask off the whole relief.", "", ""},
    {"maskInvert", "Invert", "mask_invert", "Masks what is free and frees what is masked.", "", ""},
};

const char *keysOf(Tool::Type type)
{
    for (const ToolKey &key : toolKeys) {
        if (key.type == type)
            return key.keys;
    }
    return "";
}

QAction *makeAction(CommandSet &commands, const ToolName &tool, const char *iconName,
                    const char *keys)
{
    const ToolRow &row = *toolRow(tool.type);
    const QByteArray longName = longToolName(row).toUtf8();
    QAction *action = commands.add(
        {iconName, row.label, iconName, tool.effect, keys, "", true, longName.constData()});
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
    for (const ToolName &tool : toolNames()) {
        m_group->addAction(makeAction(commands, tool, toolRow(tool.type)->icon, keysOf(tool.type)));
        if (tool.type == Tool::Erase)
            m_selectionErase = makeAction(commands, tool, "erase_selection_tool", "");
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
    commands.add(commandRows);
}

ToolsPage::ToolsPage(RibbonPage &page, CommandSet &commands, const ToolActions &tools,
                     QObject *parent)
    : QObject(parent)
    , m_ceiling(_limitBox(tr("Ceiling"), QStringLiteral("ceiling")))
    , m_floor(_limitBox(tr("Floor"), QStringLiteral("floor")))
{
    RibbonGroup *group = page.addGroup(tr("Sculpting Tools"));
    const auto add = [&](Tool::Type type) { group->addLargeButton(tools.action(type)); };
    add(Tool::Smooth);
    add(Tool::Flatten);
    add(Tool::Deposit);
    group->addRow(m_ceiling);
    add(Tool::Remove);
    group->addRow(m_floor);
    for (const Tool::Type type : {Tool::Clay, Tool::Scrape, Tool::Smudge, Tool::Pinch, Tool::Move})
        add(type);
    group->addSeparator();
    add(Tool::Mask);
    group->addSmallButton(commands["maskClear"]);
    group->addSmallButton(commands["maskInvert"]);
    group->addSeparator();
    add(Tool::UndoBrush);
    add(Tool::Erase);
}

QCheckBox *ToolsPage::_limitBox(const QString &label, const QString &name)
{
    auto *box = new QCheckBox(label);
    box->setObjectName(name);
    connect(box, &QCheckBox::clicked, this, &ToolsPage::limitChanged);
    return box;
}

void ToolsPage::showLimit(Tool::Type type, bool on, const QString &reason)
{
    struct Limit
    {
        QCheckBox *box;
        Tool::Type tool;
        QString effect;
        QString otherTool;
    };
    const Limit limits[] = {
        {m_ceiling, Tool::Deposit, tr("Deposit stops at the highest height under the brush."),
         tr("Choose the Deposit tool first.")},
        {m_floor, Tool::Remove, tr("Remove stops at the lowest height under the brush."),
         tr("Choose the Remove tool first.")},
    };
    for (const Limit &limit : limits) {
        const bool own = type == limit.tool;
        const QString why = reason.isEmpty() && !own ? limit.otherTool : reason;
        limit.box->setEnabled(why.isEmpty());
        limit.box->setChecked(own && on);
        limit.box->setToolTip(why.isEmpty() ? limit.effect : why);
    }
}

} // namespace marlowen
