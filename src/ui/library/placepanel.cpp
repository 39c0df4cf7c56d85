#include "ui/library/placepanel.h"

#include "relief/grid/physicalsize.h"
#include "ui/panels/panelcontrols.h"
#include "ui/ribbon/numberfield.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr double mostCells = 1e6;
constexpr int labelWidth = 62;
constexpr int narrowField = 70; ///< where the panel is narrow
constexpr int narrowButton = 60;
constexpr int shortSlider = 40; ///< shorter ones are left out

double cellsPerUnit(int unit)
{
    return cellsPerInch * lengthUnits[static_cast<size_t>(unit)].inches;
}

} // namespace

PlacePanel::PlacePanel(QWidget *parent)
    : QWidget(parent)
    , m_title(new QLabel)
    , m_x(_makeCentre(tr("X")))
    , m_y(_makeCentre(tr("Y")))
    , m_join(new QComboBox)
{
    for (NumberField *field : {m_x, m_y})
        field->setMinimumWidth(narrowField);
    QFont bold = font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(8, 4, 8, 8);
    column->setSpacing(6);
    column->addWidget(m_title);
    auto *grid = new QGridLayout;
    grid->setSpacing(6);
    const FieldInfo &join = fieldOf(placementFields(), &Placement::join).info;
    const auto addRow = [grid](int row, const QString &text, QWidget *control) {
        auto *label = new QLabel(text);
        label->setFixedWidth(labelWidth);
        grid->addWidget(label, row, 0);
        grid->addWidget(control, row, 1);
    };
    addRow(0, tr("X"), m_x);
    addRow(1, tr("Y"), m_y);
    addRow(2, fieldText(join.label), m_join);
    grid->setColumnStretch(1, 1);
    column->addLayout(grid);
    _fillJoins(join);
    QList<SliderField *> sliders;
    for (double Placement::*member :
         {&Placement::angle, &Placement::scale, &Placement::strength, &Placement::softEdge}) {
        sliders << _makeSlider(member);
        column->addWidget(sliders.last());
    }
    alignFields({sliders.data(), static_cast<size_t>(sliders.size())}, labelWidth);
    column->addLayout(_makeButtons());
}

void PlacePanel::_fillJoins(const FieldInfo &join)
{
    m_join->setObjectName(QLatin1String(join.key));
    m_join->setAccessibleName(fieldText(join.label));
    m_join->setMinimumWidth(narrowField);
    m_join->setToolTip(fieldText(join.hint));
    m_join->addItems(fieldText(join.choices).split(QLatin1Char('|')));
    connect(m_join, &QComboBox::activated, this, [this](int choice) {
        Placement placement = m_placement;
        placement.join = choice;
        _change(placement);
    });
}

QLayout *PlacePanel::_makeButtons()
{
    auto *apply = new QPushButton(tr("Apply"));
    apply->setObjectName(QStringLiteral("placeApply"));
    apply->setToolTip(tr("Adds the pattern to the relief as one undo step (Enter in the "
                         "2D view)"));
    auto *cancel = new QPushButton(tr("Cancel"));
    cancel->setObjectName(QStringLiteral("placeCancel"));
    cancel->setToolTip(tr("Leaves the relief unchanged (Esc)"));
    cancel->setShortcut(Qt::Key_Escape);
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {apply, cancel}) {
        button->setMinimumWidth(narrowButton);
        buttons->addWidget(button, 1);
    }
    connect(apply, &QPushButton::clicked, this, &PlacePanel::applied);
    connect(cancel, &QPushButton::clicked, this, &PlacePanel::cancelled);
    return buttons;
}

NumberField *PlacePanel::_makeCentre(const QString &label)
{
    auto *field = new NumberField;
    field->setObjectName(QStringLiteral("place") + label);
    field->setAccessibleName(label);
    field->setToolTip(tr("Where the middle of the pattern is, from the left or lower edge of the "
                         "relief"));
    connect(field, &NumberField::valueChanged, this, [this] {
        Placement placement = m_placement;
        placement.centre = QPointF(m_x->value(), m_y->value()) * cellsPerUnit(m_unit);
        _change(placement);
    });
    return field;
}

SliderField *PlacePanel::_makeSlider(double Placement::*member)
{
    const Field<Placement> &row = fieldOf(placementFields(), member);
    SliderField *slider = makeSlider(row.info, row.initial(), this);
    slider->setHint(fieldText(row.info.hint));
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    policy.setRetainSizeWhenHidden(true);
    slider->slider()->setSizePolicy(policy);
    slider->slider()->setMinimumWidth(1);
    m_sliders << Slider{member, slider};
    connect(slider, &SliderField::valueChanged, this, [this, member](double shown) {
        Placement placement = m_placement;
        fieldOf(placementFields(), member).storeShown(placement, shown);
        _change(placement);
    });
    return slider;
}

void PlacePanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    for (const Slider &slider : m_sliders)
        slider.field->slider()->setVisible(slider.field->slider()->width() >= shortSlider);
}

void PlacePanel::setName(const QString &name)
{
    m_title->setText(tr("Place %1").arg(name));
}

void PlacePanel::setUnit(int unit)
{
    m_unit = unit;
    _showCentre();
}

void PlacePanel::_showCentre()
{
    const LengthUnit &unit = lengthUnits[static_cast<size_t>(m_unit)];
    const QSignalBlocker quiet[] = {QSignalBlocker(m_x), QSignalBlocker(m_y)};
    for (NumberField *field : {m_x, m_y}) {
        field->setDecimals(unit.decimals);
        field->setSuffix(QLatin1Char(' ') + unitLabel(unit));
        field->setRange(-mostCells / cellsPerUnit(m_unit), mostCells / cellsPerUnit(m_unit));
        field->setSingleStep(1.0 / cellsPerUnit(m_unit));
    }
    m_x->setValue(m_placement.centre.x() / cellsPerUnit(m_unit));
    m_y->setValue(m_placement.centre.y() / cellsPerUnit(m_unit));
}

void PlacePanel::showPlacement(const Placement &placement)
{
    m_placement = placement;
    _showCentre();
    m_join->setCurrentIndex(placement.join);
    for (const Slider &slider : m_sliders)
        slider.field->showValue(fieldOf(placementFields(), slider.member).shown(placement));
}

void PlacePanel::_change(const Placement &placement)
{
    if (placement == m_placement)
        return;
    m_placement = placement;
    emit changed(placement);
}

} // namespace marlowen
