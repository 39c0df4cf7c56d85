#include "ui/panels/toolpanel.h"

#include "relief/tools/alphabrush.h"
#include "relief/tools/toolfields.h"
#include "relief/tools/tooltable.h"
#include "ui/icons.h"
#include "ui/panels/alphacontrols.h"
#include "ui/panels/choicerow.h"
#include "ui/panels/panelcontrols.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace marlowen {

const std::array<ToolPanel::NumberRow, ToolPanel::numberCount> &ToolPanel::_numberRows()
{
    using P = ToolParams;
    const auto field = [](auto member) { return &fieldOf(toolFields(), member); };
    static const std::array<NumberRow, numberCount> rows{{
        {field(&P::size), [](ToolPanel &t) { emit t.ToolSizeChanged(t.m_params.size); }},
        {field(&P::strength),
         [](ToolPanel &t) { emit t.ToolStrengthChanged(t.m_params.strength); }},
        {field(&P::hardness),
         [](ToolPanel &t) { emit t.ToolHardnessChanged(t.m_params.hardness); }},
        {field(&P::aspect), [](ToolPanel &t) { emit t.ToolAspectChanged(t.m_params.aspect); }},
        {field(&P::angle), [](ToolPanel &t) { emit t.ToolAngleChanged(t.m_params.angle); }},
        {field(&P::decayLength),
         [](ToolPanel &t) { emit t.ToolDecayLengthChanged(t.m_params.decayLength); }},
        {field(&P::smoothLength),
         [](ToolPanel &t) { emit t.ToolSmoothLengthChanged(t.m_params.smoothLength); }},
        {field(&P::tolerance),
         [](ToolPanel &t) { emit t.ToolToleranceChanged(t.m_params.tolerance); }},
    }};
    return rows;
}

const std::array<ToolPanel::CheckRow, ToolPanel::checkCount> &ToolPanel::_checkRows()
{
    using P = ToolParams;
    const auto field = [](auto member) { return &fieldOf(toolFields(), member); };
    static const std::array<CheckRow, checkCount> rows{{
        {field(&P::keepTransparency), &ToolPanel::ToolKeepTransparencyChanged},
        {field(&P::useDecay), &ToolPanel::ToolUseDecayLengthChanged},
        {field(&P::smoothToolPaths), &ToolPanel::ToolUseSmoothingChanged},
        {field(&P::ceilingOrFloor), &ToolPanel::ToolCeilingOrFloorChanged},
        {field(&P::continuous), &ToolPanel::ToolContinuousChanged},
    }};
    return rows;
}

const std::array<ToolPanel::FlagRow, ToolPanel::flagCount> &ToolPanel::_flagRows()
{
    static const std::array<FlagRow, flagCount> rows{{
        {QT_TR_NOOP("X"), QT_TR_NOOP("Every stroke is mirrored left to right."), "symmetry_x",
         UsesFootprint, &ToolPanel::SymmetryXChanged},
        {QT_TR_NOOP("Y"), QT_TR_NOOP("Every stroke is mirrored top to bottom."), "symmetry_y",
         UsesFootprint, &ToolPanel::SymmetryYChanged},
        {QT_TR_NOOP("Invert"),
         QT_TR_NOOP("The brush does the opposite: Deposit removes, Remove deposits."), "invert",
         Inverts, &ToolPanel::InvertChanged},
    }};
    return rows;
}

ToolPanel::ToolPanel(QWidget *parent)
    : QWidget(parent)
{
    _makeControls();
    _arrange();
    _showRecord();
}

void ToolPanel::_makeControls()
{
    m_tool = new QComboBox(this);
    m_tool->setAccessibleName(tr("Tool"));
    m_tool->setMaxVisibleItems(int(toolsInOrder().size()));
    for (const ToolRow *row : toolsInOrder()) {
        m_tool->addItem(icon(QLatin1String(row->icon)), longToolName(*row), int(row->type));
        m_tool->setItemData(m_tool->count() - 1, toolText(row->hint), Qt::ToolTipRole);
    }
    connect(m_tool, &QComboBox::activated, this, &ToolPanel::_toolChosen);
    _makeNumbers();
    _makeChecks();
    _makeChoices();
    m_alpha = new AlphaControls(this);
    connect(m_alpha, &AlphaControls::changed, this, &ToolPanel::_enable);
}

void ToolPanel::_makeNumbers()
{
    for (size_t i = 0; i < numberCount; ++i) {
        const NumberRow &row = _numberRows()[i];
        SliderField *slider = makeSlider(row.field->info, row.field->initial(), this);
        if (i == DecayLength || i == SmoothLength) // the check box before it is its label
            slider->label()->hide();
        connect(slider, &SliderField::valueChanged, this, [this, &row](double value) {
            row.field->storeShown(m_params, value);
            row.notify(*this);
        });
        m_numbers[i] = slider;
    }
}

void ToolPanel::_makeChecks()
{
    for (size_t i = 0; i < checkCount; ++i) {
        const CheckRow &row = _checkRows()[i];
        m_checks[i] = makeCheckBox(row.field->info, this);
        connect(m_checks[i], &QCheckBox::toggled, this, [this, &row](bool on) {
            row.field->store(m_params, on);
            _enable();
            emit(this->*row.notify)(on);
        });
    }
    for (size_t i = 0; i < flagCount; ++i) {
        const FlagRow &row = _flagRows()[i];
        m_flags[i] = new QCheckBox(tr(row.label), this);
        m_flags[i]->setIcon(icon(QLatin1String(row.icon)));
        connect(m_flags[i], &QCheckBox::toggled, this, [this, &row](bool on) {
            _enable();
            emit(this->*row.notify)(on);
        });
    }
    m_flags[SymmetryX]->setAccessibleName(tr("Symmetry X"));
    m_flags[SymmetryY]->setAccessibleName(tr("Symmetry Y"));
}

ChoiceRow *ToolPanel::_makeChoice(int32_t ToolParams::*member, void (*notify)(ToolPanel &))
{
    const ParamField &field = fieldOf(toolFields(), member);
    ChoiceRow *row = makeChoices(field.info, this);
    connect(row, &ChoiceRow::chosen, this, [this, &field, notify](int choice) {
        field.store(m_params, choice);
        _enable();
        notify(*this);
    });
    return row;
}

void ToolPanel::_makeChoices()
{
    m_mode = _makeChoice(&ToolParams::mode,
                         [](ToolPanel &t) { emit t.ToolModeChanged(Tool::Mode(t.m_params.mode)); });
    m_form = _makeChoice(&ToolParams::form,
                         [](ToolPanel &t) { emit t.ToolFormChanged(Tool::Form(t.m_params.form)); });
    m_falloff = _makeChoice(&ToolParams::falloff, [](ToolPanel &t) {
        emit t.ToolFalloffChanged(Tool::Falloff(t.m_params.falloff));
    });
}

void ToolPanel::_arrange()
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(8, 6, 8, 8);
    column->setSpacing(4);
    column->addWidget(m_tool);
    for (const Number number : {Size, Strength, Hardness})
        column->addWidget(m_numbers[number]);
    column->addWidget(m_mode);
    column->addLayout(checkRow({m_checks[Limit], m_flags[Invert]}));
    column->addWidget(m_checks[KeepTransparency]);
    addSection(*column, tr("Brush"));
    column->addWidget(m_falloff);
    column->addWidget(m_form);
    column->addWidget(m_numbers[Aspect]);
    column->addWidget(m_numbers[Angle]);
    addSection(*column, tr("Stroke"));
    column->addWidget(switchedRow(m_checks[UseDecay], m_numbers[DecayLength]));
    column->addWidget(switchedRow(m_checks[SmoothPaths], m_numbers[SmoothLength]));
    addSection(*column, tr("Symmetry"));
    column->addLayout(checkRow({m_flags[SymmetryX], m_flags[SymmetryY]}));
    addSection(*column, tr("Alpha Brush"));
    column->addWidget(m_alpha);
    m_magic = new QWidget(this);
    auto *magic = new QVBoxLayout(m_magic);
    magic->setContentsMargins(0, 0, 0, 0);
    magic->setSpacing(column->spacing());
    addSection(*magic, tr("Magic Selection"));
    magic->addWidget(m_numbers[Tolerance]);
    magic->addWidget(m_checks[Continuous]);
    column->addWidget(m_magic);
    column->addStretch(1);
    _alignLabels();
    tabInLayoutOrder(*column);
}

/// The check boxes in place of labels are wider than all labels and have a common width.
void ToolPanel::_alignLabels()
{
    std::vector<SliderField *> fields(m_numbers.begin(), m_numbers.end());
    fields.push_back(m_alpha->repeat());
    int width = 0;
    for (const SliderField *field : fields) {
        if (!field->label()->isHidden())
            width = std::max(width, field->label()->sizeHint().width());
    }
    alignFields(fields, width);
    for (ChoiceRow *row : {m_mode, m_form, m_falloff})
        row->setLabelWidth(width);
    m_alpha->setLabelWidth(width);
    for (const Check check : {UseDecay, SmoothPaths})
        m_checks[check]->setFixedWidth(m_checks[SmoothPaths]->sizeHint().width());
}

void ToolPanel::_toolChosen(int index)
{
    const auto type = Tool::Type(m_tool->itemData(index).toInt());
    if (type == m_params.type)
        return;
    m_params.type = type;
    _enable();
    emit ToolChanged(type);
}

void ToolPanel::showParams(const ToolParams &params)
{
    m_params = params;
    _showRecord();
}

void ToolPanel::showRelief(bool symmetryX, bool symmetryY, bool invert)
{
    const std::array<bool, flagCount> shown{symmetryX, symmetryY, invert};
    for (size_t i = 0; i < flagCount; ++i) {
        const QSignalBlocker quiet(m_flags[i]);
        m_flags[i]->setChecked(shown[i]);
    }
    _enable();
}

void ToolPanel::_showRecord()
{
    m_tool->setCurrentIndex(m_tool->findData(int(m_params.type)));
    for (size_t i = 0; i < numberCount; ++i)
        m_numbers[i]->showValue(_numberRows()[i].field->shown(m_params));
    for (size_t i = 0; i < checkCount; ++i) {
        const QSignalBlocker quiet(m_checks[i]);
        m_checks[i]->setChecked(_checkRows()[i].field->value(m_params) != 0.0);
    }
    m_mode->showChoice(m_params.mode);
    m_form->showChoice(m_params.form);
    m_falloff->showChoice(m_params.falloff);
    m_alpha->refresh();
    _enable();
}

bool ToolPanel::_alphaActs() const
{
    return AlphaBrush::instance().loaded() && _reason(UsesAlpha).isEmpty();
}

QString ToolPanel::_reason(unsigned use) const
{
    const ToolRow *row = toolRow(m_params.type);
    if (!row || row->kind == ToolKind::None)
        return tr("No tool is chosen.");
    return row->uses & use ? QString() : tr("The %1 does not use this.").arg(longToolName(*row));
}

/// As _reason; `overridden` says that the alpha brush takes the control's place.
QString ToolPanel::_alphaReason(unsigned use, bool overridden) const
{
    const QString reason = _reason(use);
    return reason.isEmpty() && overridden ? tr("The alpha brush decides this.") : reason;
}

/// Inverted, the label of the tool that acts in this one's place.
QString ToolPanel::_limitLabel() const
{
    const ToolRow *row = actingRow(toolRow(m_params.type), m_flags[Invert]->isChecked());
    if (!row || !*row->optionLabel)
        return fieldText(_checkRows()[Limit].field->info.label);
    return toolText(row->optionLabel);
}

void ToolPanel::_enable()
{
    const ToolRow *tool = toolRow(m_params.type);
    m_tool->setToolTip(tool && *tool->hint ? toolText(tool->hint) : QString());
    for (size_t i = 0; i < checkCount; ++i) {
        const FieldInfo &info = _checkRows()[i].field->info;
        showReason(*m_checks[i], fieldText(info.hint), _reason(info.flags));
    }
    for (size_t i = 0; i < flagCount; ++i)
        showReason(*m_flags[i], tr(_flagRows()[i].hint), _reason(_flagRows()[i].use));
    m_checks[Limit]->setText(_limitLabel());
    m_magic->setVisible(tool && tool->has(UsesTolerance));
    m_mode->setReason(_reason(UsesMode));
    _enableNumbers();
    m_alpha->setReason(_reason(UsesAlpha));
}

void ToolPanel::_enableNumbers()
{
    const int alphaMode = AlphaBrush::instance().mode;
    const bool stamped = _alphaActs() && alphaMode == AlphaBrush::Stamp;
    const bool shaped = _alphaActs() && alphaMode != AlphaBrush::Tile;
    std::array<QString, numberCount> reasons;
    for (size_t i = 0; i < numberCount; ++i)
        reasons[i] = _reason(_numberRows()[i].field->info.flags);
    reasons[Hardness] = _alphaReason(UsesFalloff, stamped);
    if (reasons[Hardness].isEmpty() && m_params.falloff == Tool::ConstantFalloff)
        reasons[Hardness] = tr("A constant falloff has no hardness.");
    reasons[Aspect] = _alphaReason(UsesFootprint, shaped);
    if (reasons[DecayLength].isEmpty() && !m_params.useDecay)
        reasons[DecayLength] = tr("Check Decay Length first.");
    if (reasons[SmoothLength].isEmpty() && !m_params.smoothToolPaths)
        reasons[SmoothLength] = tr("Check Smooth Tool Paths first.");
    for (size_t i = 0; i < numberCount; ++i)
        showReason(*m_numbers[i], fieldText(_numberRows()[i].field->info.hint), reasons[i]);
    m_falloff->setReason(_alphaReason(UsesFalloff, stamped));
    m_form->setReason(_alphaReason(UsesFootprint, shaped));
}

} // namespace marlowen
