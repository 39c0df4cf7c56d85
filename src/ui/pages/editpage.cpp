#include "ui/pages/editpage.h"

#include "relief/grid/physicalsize.h"
#include "relief/grid/typedranges.h"
#include "relief/selection/selectionmodifiers.h"
#include "relief/tools/toolfields.h"
#include "ui/commandset.h"
#include "ui/pages/toolspage.h"
#include "ui/panels/panelcontrols.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/ribbon/ribbonpage.h"
#include "ui/ribbon/sliderfield.h"

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QSignalBlocker>

namespace marlowen {

namespace {

constexpr CommandRow commandRows[] = {
    {"cropApply", QT_TRANSLATE_NOOP("Commands", "Apply"), "accept",
     QT_TRANSLATE_NOOP("Commands", "Empties everything outside the crop box."), "",
     QT_TRANSLATE_NOOP("Commands", "Choose Crop and drag a box in the 2D view first.")},
    {"selectNone", QT_TRANSLATE_NOOP("Commands", "Select None"), "select_none",
     QT_TRANSLATE_NOOP("Commands", "Clears the selection: tools act everywhere."), "Ctrl+D",
     QT_TRANSLATE_NOOP("Commands", "Nothing is selected.")},
    {"reselect", QT_TRANSLATE_NOOP("Commands", "Reselect"), "reselect",
     QT_TRANSLATE_NOOP("Commands", "Restores the last selection."), "Ctrl+Shift+D",
     QT_TRANSLATE_NOOP("Commands", "There is no earlier selection of this size.")},
    {"selectAll", QT_TRANSLATE_NOOP("Commands", "Select All"), "select_all",
     QT_TRANSLATE_NOOP("Commands", "Selects every cell."), "Ctrl+A", ""},
    {"selectInvert", QT_TRANSLATE_NOOP("Commands", "Invert Selection"), "invert_selection",
     QT_TRANSLATE_NOOP("Commands", "Inverts the selection."), "Ctrl+I",
     QT_TRANSLATE_NOOP("Commands", "Nothing is selected.")},
    {"selectGrow", QT_TRANSLATE_NOOP("Commands", "Grow"), "grow_selection",
     QT_TRANSLATE_NOOP("Commands", "Widens the selection by the number of cells below."), "",
     QT_TRANSLATE_NOOP("Commands", "Nothing is selected.")},
    {"selectShrink", QT_TRANSLATE_NOOP("Commands", "Shrink"), "shrink_selection",
     QT_TRANSLATE_NOOP("Commands", "Narrows the selection by the number of cells below."), "",
     QT_TRANSLATE_NOOP("Commands", "Nothing is selected.")},
};

constexpr int firstGrowth = 4;

} // namespace

void EditPage::addCommands(CommandSet &commands)
{
    commands.add(commandRows);
    for (const SelectionModifierRow &row : selectionModifiers())
        commands.add(CommandRow{row.command, row.name, row.icon, row.hint, "", "", true});
}

EditPage::EditPage(RibbonPage &page, CommandSet &commands, const ToolActions &tools,
                   QObject *parent)
    : QObject(parent)
    , m_commands(commands)
{
    _addShapes(page, tools);
    _addMagic(tools);
    _addHeights(tools);
}

void EditPage::_addShapes(RibbonPage &page, const ToolActions &tools)
{
    m_group = page.addGroup(tr("Selection"));
    _addTools(tools, ToolGroup::Cropping);
    m_group->addSmallButton(m_commands["cropApply"]);
    m_group->addSeparator();
    _addTools(tools, ToolGroup::Shapes);
    m_group->breakColumn();
    auto *modes = new QActionGroup(this);
    int modifier = 0;
    for (const SelectionModifierRow &row : selectionModifiers()) {
        QAction *action = m_commands[row.command];
        action->setData(modifier++);
        modes->addAction(action);
        m_group->addSmallButton(action);
    }
    modes->actions().constFirst()->setChecked(true);
    connect(modes, &QActionGroup::triggered, this, [this](const QAction *action) {
        emit modifierChosen(static_cast<SelectionModifier>(action->data().toInt()));
    });
    m_group->addLargeButton(m_commands["selectNone"]);
    for (const char *id : {"reselect", "selectAll", "selectInvert"})
        m_group->addSmallButton(m_commands[id]);
    m_group->breakColumn(); // the number stands below its commands in narrow windows too
    for (const char *id : {"selectGrow", "selectShrink"})
        m_group->addSmallButton(m_commands[id]);
    m_growBy = new NumberField;
    m_growBy->setObjectName(QStringLiteral("growBy"));
    m_growBy->setDecimals(0);
    m_growBy->setRange(growthRange.minimum, growthRange.maximum);
    m_growBy->setValue(firstGrowth);
    m_growBy->setSuffix(tr(" cells"));
    m_growBy->setAccessibleName(tr("Grow and shrink by"));
    m_growBy->setToolTip(tr("How far Grow and Shrink go"));
    m_group->addRow(m_growBy);
}

int EditPage::growBy() const
{
    return qRound(m_growBy->value());
}

void EditPage::_addMagic(const ToolActions &tools)
{
    m_group->addSeparator();
    _addTools(tools, ToolGroup::Picking);
    const auto &tolerance = fieldOf(toolFields(), &ToolParams::tolerance);
    const auto &continuous = fieldOf(toolFields(), &ToolParams::continuous);
    m_tolerance = new SliderField(QString(), sliderRange(tolerance.info, tolerance.initial()));
    m_tolerance->setObjectName(QStringLiteral("tolerance"));
    m_tolerance->setMinimumWidth(140);
    m_tolerance->setHint(fieldText(tolerance.info.hint));
    m_group->addRow(m_tolerance, fieldText(tolerance.info.label));
    m_continuous = new QCheckBox(fieldText(continuous.info.label));
    m_continuous->setObjectName(QStringLiteral("continuous"));
    m_continuous->setToolTip(fieldText(continuous.info.hint));
    m_group->addRow(m_continuous);
    connect(m_tolerance, &SliderField::valueChanged, this, &EditPage::toleranceChanged);
    connect(m_continuous, &QCheckBox::clicked, this, &EditPage::continuousChanged);
}

void EditPage::_addHeights(const ToolActions &tools)
{
    m_group->addSeparator();
    m_sample = new NumberField;
    m_sample->setObjectName(QStringLiteral("sampleValue"));
    m_sample->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_sample->setFixedWidth(96);
    showSample(0.0, 0);
    m_sample->setAccessibleName(tr("Sampled height"));
    m_sample->setToolTip(tr("The height that Brush and Fill use"));
    _addTools(tools, ToolGroup::Heights);
    m_group->addLargeButton(tools.selectionErase());
    connect(m_sample, &NumberField::valueChanged, this, &EditPage::sampleEdited);
    // The exact height may be another one that is shown alike.
    connect(m_sample, &NumberField::typed, this, &EditPage::sampleEdited);
}

void EditPage::_addTools(const ToolActions &tools, ToolGroup group)
{
    for (const ToolRow *row : toolsInOrder()) {
        if (row->group != group)
            continue;
        m_group->addLargeButton(tools.action(row->type));
        if (row->type == Tool::Sample)
            m_group->addRow(m_sample);
    }
}

void EditPage::showParams(const ToolParams &params)
{
    m_tolerance->showValue(params.tolerance);
    m_continuous->setChecked(params.continuous);
}

void EditPage::showSample(double inches, int unit)
{
    const LengthUnit &shown = lengthUnits[static_cast<size_t>(unit)];
    const QSignalBlocker quiet(m_sample);
    m_inchesPerUnit = shown.inches;
    m_sample->setDecimals(shown.decimals);
    m_sample->setMaximum(sampleRangeInches.maximum / shown.inches);
    m_sample->setSingleStep(shown.inches < 1.0 ? 0.5 : 0.01);
    m_sample->setSuffix(QLatin1Char(' ') + unitLabel(shown));
    m_sample->setValue(inches / shown.inches);
}

double EditPage::sample() const
{
    return m_sample->value() * m_inchesPerUnit;
}

} // namespace marlowen
