#include "ui/viewmenu.h"

#include "relief/tools/toolfields.h"
#include "relief/tools/tooltable.h"
#include "render/views/reliefview.h"
#include "ui/commandset.h"
#include "ui/mainwindow.h"
#include "ui/panels/panelcontrols.h"

#include <QAction>
#include <QMenu>
#include <QWidgetAction>

namespace marlowen {

namespace {

/// The slider of a tool parameter as a row of the menu. It calls `slot` with the stored value.
template <typename Slot>
void addSlider(QMenu &menu, MainWindow &window, double ToolParams::*member, Slot slot)
{
    const Field<ToolParams> &field = fieldOf(toolFields(), member);
    const ToolParams &tool = window.workbench().tool;
    const ToolRow *row = toolRow(tool.type);
    SliderField *slider = makeSlider(field.info, field.initial(), &menu);
    slider->showValue(field.shown(tool));
    slider->setHint(fieldText(field.info.hint));
    slider->setEnabled(row && row->uses & field.info.flags);
    slider->setContentsMargins(12, 4, 12, 4);
    slider->setLabelWidth(slider->fontMetrics().horizontalAdvance(QStringLiteral("Tool Strength")));
    QObject::connect(
        slider, &SliderField::valueChanged, &window,
        [&window, &field, slot](double v) { (window.*slot)(field.info.control.scale.stored(v)); });
    auto *action = new QWidgetAction(&menu);
    action->setDefaultWidget(slider);
    menu.addAction(action);
}

void addTools(QMenu &menu, MainWindow &window, const CommandSet &commands)
{
    const ToolRow *current = toolRow(window.workbench().tool.type);
    QMenu *tools = menu.addMenu(QObject::tr("Tool"));
    if (current && *current->icon)
        tools->setIcon(commands[current->icon]->icon());
    ToolGroup group = ToolGroup::None;
    for (const ToolRow *row : toolsInOrder()) {
        if (group != ToolGroup::None && row->group != group)
            tools->addSeparator();
        group = row->group;
        tools->addAction(commands[row->icon]);
    }
}

} // namespace

void showViewMenu(MainWindow &window, ReliefView &view, QPoint position)
{
    CommandSet &commands = window.commands();
    QMenu menu(&view);
    menu.setFont(window.font());
    addTools(menu, window, commands);
    addSlider(menu, window, &ToolParams::size, &MainWindow::toolSizeUpdated);
    addSlider(menu, window, &ToolParams::strength, &MainWindow::toolStrengthUpdated);
    menu.addSeparator();
    for (const char *id : {"undo", "redo", "selectNone", "zoomAll"})
        menu.addAction(commands[id]);
    menu.exec(view.mapToGlobal(position));
}

} // namespace marlowen
