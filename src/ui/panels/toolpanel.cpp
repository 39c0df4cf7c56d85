#include "ui/panels/toolpanel.h"

#include "ui/icons.h"
#include "ui/panels/choicerow.h"
#include "ui/panels/panelcontrols.h"
#include "ui/panels/toolnames.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <cmath>
#include <vector>

namespace marlowen {

namespace {

constexpr double percentSteps = 100.0;

/// A check box in the label column with the slider that it switches on.
QWidget *switchedRow(QCheckBox *box, SliderField *field)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(box);
    layout->addWidget(field, 1);
    return row;
}

} // namespace

const std::array<ToolPanel::NumberRow, ToolPanel::numberCount> &ToolPanel::_numberRows()
{
    using Range = SliderField::Range;
    static const std::array<NumberRow, numberCount> rows{{
        {"Tool Size", "Radius of the brush: 100 is a tenth of the relief's diagonal. Keys [ and ].",
         Range{1, 100, 1, 10, 30, 0, {}}, UsesFootprint,
         [](const ToolParams &p) { return p.size * percentSteps; },
         [](ToolParams &p, double v) { p.size = v / percentSteps; },
         [](ToolPanel &t) { emit t.ToolSizeChanged(t.m_params.size); }},
        {"Tool Strength", "How much one touch does.", Range{1, 100, 1, 10, 50, 0, {}}, UsesStrength,
         [](const ToolParams &p) { return std::sqrt(p.strength) * percentSteps; },
         [](ToolParams &p, double v) { p.strength = (v / percentSteps) * (v / percentSteps); },
         [](ToolPanel &t) { emit t.ToolStrengthChanged(t.m_params.strength); }},
        {"Tool Hardness", "How far from the centre the full effect reaches.",
         Range{0, 100, 1, 10, 50, 0, {}}, UsesFalloff,
         [](const ToolParams &p) { return p.hardness * percentSteps; },
         [](ToolParams &p, double v) { p.hardness = v / percentSteps; },
         [](ToolPanel &t) { emit t.ToolHardnessChanged(t.m_params.hardness); }},
        {"Aspect", "How many times longer than wide the brush is.", Range{1, 15, 0.1, 1, 1, 1, {}},
         UsesFootprint, [](const ToolParams &p) { return p.aspect; },
         [](ToolParams &p, double v) { p.aspect = v; },
         [](ToolPanel &t) { emit t.ToolAspectChanged(t.m_params.aspect); }},
        {"Angle", "Turns the brush.", Range{-90, 90, 1, 15, 0, 0, QStringLiteral("°")},
         UsesFootprint, [](const ToolParams &p) { return p.angle; },
         [](ToolParams &p, double v) { p.angle = v; },
         [](ToolPanel &t) { emit t.ToolAngleChanged(t.m_params.angle); }},
        {"Decay Length", "How long the stroke lasts: 100 is a hundred radii.",
         Range{0, 100, 1, 10, 50, 0, {}}, Decays,
         [](const ToolParams &p) { return p.decayLength * percentSteps; },
         [](ToolParams &p, double v) { p.decayLength = v / percentSteps; },
         [](ToolPanel &t) { emit t.ToolDecayLengthChanged(t.m_params.decayLength); }},
        {"Smooth Length", "Points that are drawn into one smooth curve.",
         Range{10, 200, 1, 10, 50, 0, {}}, UsesFootprint,
         [](const ToolParams &p) { return double(p.smoothLength); },
         [](ToolParams &p, double v) { p.smoothLength = int32_t(std::lround(v)); },
         [](ToolPanel &t) { emit t.ToolSmoothLengthChanged(t.m_params.smoothLength); }},
        {"Tolerance", "How much of the relief's range the heights may differ.",
         Range{0.01, 0.99, 0.01, 0.1, 0.02, 2, {}}, UsesTolerance,
         [](const ToolParams &p) { return p.tolerance; },
         [](ToolParams &p, double v) { p.tolerance = v; },
         [](ToolPanel &t) { emit t.ToolToleranceChanged(t.m_params.tolerance); }},
    }};
    return rows;
}

const std::array<ToolPanel::CheckRow, ToolPanel::checkCount> &ToolPanel::_checkRows()
{
    static const std::array<CheckRow, checkCount> rows{{
        {"Keep Transparency", "Empty cells, whose height is 0, stay empty.", KeepsEmpty,
         &ToolParams::keepTransparency, &ToolPanel::ToolKeepTransparencyChanged},
        {"Decay Length", "The stroke fades out along its way.", Decays, &ToolParams::useDecay,
         &ToolPanel::ToolUseDecayLengthChanged},
        {"Smooth Tool Paths", "The stroke follows a smooth curve through the pointer's way.",
         UsesFootprint, &ToolParams::smoothToolPaths, &ToolPanel::ToolUseSmoothingChanged},
        {"Ceiling",
         "Nothing is built above the highest, or cut below the lowest, place under the "
         "brush.",
         UsesOption, &ToolParams::ceilingOrFloor, &ToolPanel::ToolCeilingOrFloorChanged},
        {"Continuous", "Only what is joined to the place you click.", UsesTolerance,
         &ToolParams::continuous, &ToolPanel::ToolContinuousChanged},
    }};
    return rows;
}

const std::array<ToolPanel::FlagRow, ToolPanel::flagCount> &ToolPanel::_flagRows()
{
    static const std::array<FlagRow, flagCount> rows{{
        {"X", "Every stroke is mirrored left to right.", "symmetry_x", UsesFootprint,
         &ToolPanel::SymmetryXChanged},
        {"Y", "Every stroke is mirrored top to bottom.", "symmetry_y", UsesFootprint,
         &ToolPanel::SymmetryYChanged},
        {"Invert", "The brush does the opposite: Deposit removes, Remove deposits.", "invert",
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
    m_tool->setMaxVisibleItems(int(toolNames().size()));
    for (const ToolName &name : toolNames()) {
        const ToolRow &row = *toolRow(name.type);
        m_tool->addItem(icon(QLatin1String(row.icon)), longToolName(row), int(row.type));
        m_tool->setItemData(m_tool->count() - 1, toolEffect(row.type), Qt::ToolTipRole);
    }
    connect(m_tool, &QComboBox::activated, this, &ToolPanel::_toolChosen);
    _makeNumbers();
    _makeChecks();
    _makeChoices();
    _makeAlpha();
}

void ToolPanel::_makeNumbers()
{
    for (size_t i = 0; i < numberCount; ++i) {
        const NumberRow &row = _numberRows()[i];
        const bool switched = i == DecayLength || i == SmoothLength;
        auto *field = new SliderField(switched ? QString() : tr(row.label), row.range, this);
        field->setObjectName(QLatin1String(row.label));
        field->setAccessibleName(tr(row.label));
        connect(field, &SliderField::valueChanged, this, [this, &row](double value) {
            row.store(m_params, value);
            row.notify(*this);
        });
        m_numbers[i] = field;
    }
}

void ToolPanel::_makeChecks()
{
    for (size_t i = 0; i < checkCount; ++i) {
        const CheckRow &row = _checkRows()[i];
        m_checks[i] = new QCheckBox(tr(row.label), this);
        connect(m_checks[i], &QCheckBox::toggled, this, [this, &row](bool on) {
            m_params.*row.member = on;
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

void ToolPanel::_makeChoices()
{
    m_mode = new ChoiceRow(tr("Mode"), {{"Normal", ""}, {"Raise", ""}, {"Lower", ""}}, this);
    connect(m_mode, &ChoiceRow::chosen, this, [this](int mode) {
        m_params.mode = mode;
        emit ToolModeChanged(Tool::Mode(mode));
    });
    m_form = new ChoiceRow(tr("Form"), {{"Round", "form_round"}, {"Square", "form_square"}}, this);
    connect(m_form, &ChoiceRow::chosen, this, [this](int form) {
        m_params.form = form;
        emit ToolFormChanged(Tool::Form(form));
    });
    m_falloff = new ChoiceRow(tr("Falloff"),
                              {{"Smooth", "falloff_smooth"},
                               {"Linear", "falloff_linear"},
                               {"Sphere", "falloff_sphere"},
                               {"Constant", "falloff_constant"}},
                              this);
    connect(m_falloff, &ChoiceRow::chosen, this, [this](int falloff) {
        m_params.falloff = falloff;
        _enable();
        emit ToolFalloffChanged(Tool::Falloff(falloff));
    });
}

void ToolPanel::_makeAlpha()
{
    m_alphaMode = new ChoiceRow(tr("Alpha"), {{"Shape", ""}, {"Tile", ""}, {"Stamp", ""}}, this);
    connect(m_alphaMode, &ChoiceRow::chosen, this, [this](int mode) {
        AlphaBrush::instance().mode = mode;
        _enable();
        emit AlphaModeChanged(AlphaBrush::Mode(mode));
    });
    m_repeat = new SliderField(tr("Repeat"), {1, 20, 1, 5, 3, 0, {}}, this);
    m_repeat->setObjectName(QStringLiteral("Repeat"));
    connect(m_repeat, &SliderField::valueChanged, this, [this](double value) {
        AlphaBrush::instance().repeatCount = int(std::lround(value));
        emit AlphaRepeatChanged(AlphaBrush::instance().repeatCount);
    });
}

void ToolPanel::_arrange()
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 8, 12, 12);
    column->setSpacing(6);
    column->addWidget(m_tool);
    for (const Number number : {Size, Strength, Hardness})
        column->addWidget(m_numbers[number]);
    column->addWidget(m_mode);
    column->addWidget(m_checks[Limit]);
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
    auto *flags = new QHBoxLayout;
    flags->setSpacing(16);
    for (QCheckBox *flag : m_flags)
        flags->addWidget(flag);
    flags->addStretch(1);
    column->addLayout(flags);
    addSection(*column, tr("Alpha Brush"));
    column->addWidget(m_alphaMode);
    column->addWidget(m_repeat);
    addSection(*column, tr("Magic Selection"));
    column->addWidget(m_numbers[Tolerance]);
    column->addWidget(m_checks[Continuous]);
    column->addStretch(1);
    _alignLabels(m_checks[SmoothPaths]->sizeHint().width());
}

void ToolPanel::_alignLabels(int width)
{
    std::vector<SliderField *> fields(m_numbers.begin(), m_numbers.end());
    fields.push_back(m_repeat);
    alignFields(fields, width);
    for (ChoiceRow *row : {m_mode, m_form, m_falloff, m_alphaMode})
        row->setLabelWidth(width);
    for (const Check check : {UseDecay, SmoothPaths})
        m_checks[check]->setFixedWidth(width);
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

void ToolPanel::refreshAlpha()
{
    m_alphaMode->showChoice(AlphaBrush::instance().mode);
    m_repeat->showValue(AlphaBrush::instance().repeatCount);
    _enable();
}

void ToolPanel::_showRecord()
{
    m_tool->setCurrentIndex(m_tool->findData(int(m_params.type)));
    for (size_t i = 0; i < numberCount; ++i)
        m_numbers[i]->showValue(_numberRows()[i].shown(m_params));
    for (size_t i = 0; i < checkCount; ++i) {
        const QSignalBlocker quiet(m_checks[i]);
        m_checks[i]->setChecked(m_params.*_checkRows()[i].member);
    }
    m_mode->showChoice(m_params.mode);
    m_form->showChoice(m_params.form);
    m_falloff->showChoice(m_params.falloff);
    refreshAlpha();
}

/// Flatten and Scrape are the only brushes that an alpha brush leaves as they are.
QString ToolPanel::_noAlphaReason() const
{
    const bool deaf = m_params.type == Tool::Flatten || m_params.type == Tool::Scrape;
    return _reason(deaf ? UsesAlpha : UsesFootprint);
}

bool ToolPanel::_alphaActs() const
{
    return AlphaBrush::instance().loaded() && _noAlphaReason().isEmpty();
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

/// Inverted, Deposit and Remove change places.
QString ToolPanel::_limitLabel() const
{
    const bool inverted = m_flags[Invert]->isChecked();
    int type = m_params.type;
    if (inverted && (type == Tool::Deposit || type == Tool::Remove))
        type = type == Tool::Deposit ? Tool::Remove : Tool::Deposit;
    const ToolRow *row = toolRow(type);
    return row && *row->optionLabel ? tr(row->optionLabel) : tr("Ceiling / Floor");
}

void ToolPanel::_enable()
{
    m_tool->setToolTip(toolEffect(Tool::Type(m_params.type)));
    for (size_t i = 0; i < checkCount; ++i)
        showReason(*m_checks[i], tr(_checkRows()[i].hint), _reason(_checkRows()[i].use));
    for (size_t i = 0; i < flagCount; ++i)
        showReason(*m_flags[i], tr(_flagRows()[i].hint), _reason(_flagRows()[i].use));
    m_checks[Limit]->setText(_limitLabel());
    m_mode->setReason(_reason(UsesMode));
    _enableNumbers();
    _enableAlpha();
}

void ToolPanel::_enableNumbers()
{
    const int alphaMode = AlphaBrush::instance().mode;
    const bool stamped = _alphaActs() && alphaMode == AlphaBrush::Stamp;
    const bool shaped = _alphaActs() && alphaMode != AlphaBrush::Tile;
    std::array<QString, numberCount> reasons;
    for (size_t i = 0; i < numberCount; ++i)
        reasons[i] = _reason(_numberRows()[i].use);
    reasons[Hardness] = _alphaReason(UsesFalloff, stamped);
    if (reasons[Hardness].isEmpty() && m_params.falloff == Tool::ConstantFalloff)
        reasons[Hardness] = tr("A constant falloff has no hardness.");
    reasons[Aspect] = _alphaReason(UsesFootprint, shaped);
    if (reasons[DecayLength].isEmpty() && !m_params.useDecay)
        reasons[DecayLength] = tr("Check Decay Length first.");
    if (reasons[SmoothLength].isEmpty() && !m_params.smoothToolPaths)
        reasons[SmoothLength] = tr("Check Smooth Tool Paths first.");
    for (size_t i = 0; i < numberCount; ++i)
        showReason(*m_numbers[i], tr(_numberRows()[i].hint), reasons[i]);
    m_falloff->setReason(_alphaReason(UsesFalloff, stamped));
    m_form->setReason(_alphaReason(UsesFootprint, shaped));
}

void ToolPanel::_enableAlpha()
{
    QString reason = _noAlphaReason();
    if (reason.isEmpty() && !AlphaBrush::instance().loaded())
        reason = tr("Choose an alpha brush in the library first.");
    m_alphaMode->setReason(reason);
    if (reason.isEmpty() && AlphaBrush::instance().mode != AlphaBrush::Tile)
        reason = tr("Only Tile repeats the alpha brush.");
    showReason(*m_repeat, tr("Tiles across the brush."), reason);
}

} // namespace marlowen
