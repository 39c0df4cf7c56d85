#include "ui/pages/editpage.h"

#include "ui/commandset.h"
#include "ui/pages/toolspage.h"
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
    {"cropApply", "Apply", "accept", "Empties everything outside the crop box.", "",
     "Choose Crop and drag a box in the 2D view first."},
    {"modeNormal", "Normal", "exit", "The next shape replaces the selection.", "", "", true},
    {"modeAdditive", "Additive", "additive_selection", "The next shape is added to the selection.",
     "", "", true},
    {"modeSubtractive", "Subtractive", "subtractive_selection",
     "The next shape is taken out of the selection.", "", "", true},
    {"selectNone", "Select None", "select_none", "Lets tools act everywhere again.", "Ctrl+D",
     "Nothing is selected."},
};

/// In the order of SelectionModifier.
constexpr const char *modifierCommands[] = {"modeNormal", "modeAdditive", "modeSubtractive"};

constexpr double highestSample = 1e6;

} // namespace

void EditPage::addCommands(CommandSet &commands)
{
    commands.add(commandRows);
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
    m_group->addLargeButton(tools.action(Tool::Crop));
    m_group->addSmallButton(m_commands["cropApply"]);
    m_group->addSeparator();
    for (const Tool::Type type : {Tool::Elliptical, Tool::Rectangle, Tool::Polygon})
        m_group->addLargeButton(tools.action(type));
    m_group->breakColumn();
    auto *modes = new QActionGroup(this);
    int modifier = 0;
    for (const char *id : modifierCommands) {
        QAction *action = m_commands[id];
        action->setData(modifier++);
        modes->addAction(action);
        m_group->addSmallButton(action);
    }
    m_commands["modeNormal"]->setChecked(true);
    connect(modes, &QActionGroup::triggered, this, [this](const QAction *action) {
        emit modifierChosen(static_cast<SelectionModifier>(action->data().toInt()));
    });
    m_group->addLargeButton(m_commands["selectNone"]);
}

void EditPage::_addMagic(const ToolActions &tools)
{
    m_group->addSeparator();
    m_group->addLargeButton(tools.action(Tool::Magic));
    m_tolerance = new SliderField(QString(), {0.01, 0.99, 0.01, 0.1, 0.02, 2, {}});
    m_tolerance->setObjectName(QStringLiteral("tolerance"));
    m_tolerance->setMinimumWidth(140);
    m_tolerance->setHint(
        tr("How much higher or lower than the clicked cell, as a share of the relief's range."));
    m_group->addRow(m_tolerance, tr("Tolerance"));
    m_continuous = new QCheckBox(tr("Continuous"));
    m_continuous->setObjectName(QStringLiteral("continuous"));
    m_continuous->setToolTip(tr("Only cells that touch the clicked one through their sides"));
    m_group->addRow(m_continuous);
    connect(m_tolerance, &SliderField::valueChanged, this, &EditPage::toleranceChanged);
    connect(m_continuous, &QCheckBox::clicked, this, &EditPage::continuousChanged);
}

void EditPage::_addHeights(const ToolActions &tools)
{
    m_group->addSeparator();
    m_group->addLargeButton(tools.action(Tool::Sample));
    m_sample = new NumberField;
    m_sample->setObjectName(QStringLiteral("sampleValue"));
    m_sample->setDecimals(1);
    m_sample->setRange(0.0, highestSample);
    m_sample->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_sample->setFixedWidth(72);
    m_sample->setAccessibleName(tr("Sampled height"));
    m_sample->setToolTip(tr("The height that Brush and Fill use"));
    m_group->addRow(m_sample);
    for (const Tool::Type type : {Tool::HeightBrush, Tool::Fill})
        m_group->addLargeButton(tools.action(type));
    m_group->addLargeButton(tools.selectionErase());
    connect(m_sample, &NumberField::valueChanged, this, &EditPage::sampleEdited);
}

void EditPage::showParams(const ToolParams &params)
{
    m_tolerance->showValue(params.tolerance);
    m_continuous->setChecked(params.continuous);
}

void EditPage::showSample(double height)
{
    const QSignalBlocker quiet(m_sample);
    m_sample->setValue(height);
}

double EditPage::sample() const
{
    return m_sample->value();
}

} // namespace marlowen
