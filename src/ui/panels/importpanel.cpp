#include "ui/panels/importpanel.h"

#include "relief/grid/physicalsize.h"
#include "relief/grid/typedranges.h"
#include "ui/icons.h"
#include "ui/panels/noticebar.h"
#include "ui/panels/panelcontrols.h"
#include "ui/ribbon/numberfield.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace marlowen {

namespace {

double cellsIn(int unit)
{
    return lengthUnits[static_cast<size_t>(unit)].inches * cellsPerInch;
}

} // namespace

ImportPanel::ImportPanel(ImportSession *session, QWidget *parent)
    : QWidget(parent)
    , m_session(session)
{
    m_handOver.setSingleShot(true);
    m_handOver.setInterval(0);
    connect(&m_handOver, &QTimer::timeout, this, &ImportPanel::flush);
    for (const auto check : {&ImportSettings::flipY, &ImportSettings::preview,
                             &ImportSettings::invertZ, &ImportSettings::transparency})
        _makeCheck(check);
    _makeNotice();
    _makeDepth();
    _makeButtons();
    _arrange();
    refresh();
}

QCheckBox *ImportPanel::_makeCheck(bool ImportSettings::*member)
{
    const SettingField &field = fieldOf(importFields(), member);
    QCheckBox *box = makeCheckBox(field.info, this);
    m_checks.push_back({&field, box});
    connect(box, &QCheckBox::toggled, this, [this, &field](bool on) {
        field.store(m_wanted, on);
        _changed();
    });
    return box;
}

void ImportPanel::_makeSlider(const SettingField &field)
{
    SliderField *slider = makeSlider(field.info, field.initial(), this);
    m_numbers.push_back({&field, slider});
    m_content->layout()->addWidget(slider);
    connect(slider, &SliderField::valueChanged, this, [this, &field](double value) {
        field.storeShown(m_wanted, value);
        _changed();
    });
}

void ImportPanel::_makeDepth()
{
    const FieldInfo &info = fieldOf(importFields(), &ImportSettings::depth).info;
    m_depthLabel = new QLabel(fieldText(info.label), this);
    m_depth = new NumberField(this);
    m_depth->setObjectName(QLatin1String(info.label));
    m_depth->setAccessibleName(m_depthLabel->text());
    m_depthLabel->setBuddy(m_depth);
    m_depth->setSpecialValueText(tr("As in the file")); // of 0
    connect(m_depth, &NumberField::valueChanged, this, [this](double value) {
        m_wanted.depth = value * cellsIn(m_unit);
        emit DepthChosen(m_wanted.depth);
        _changed();
    });
}

void ImportPanel::setUnit(int unit)
{
    m_unit = unit;
    _showDepth();
}

void ImportPanel::_showDepth()
{
    const LengthUnit &unit = lengthUnits[static_cast<size_t>(m_unit)];
    const QSignalBlocker quiet(m_depth);
    m_depth->setDecimals(unit.decimals);
    m_depth->setRange(0.0, importDepthRangeInches.maximum / unit.inches);
    m_depth->setSingleStep(unit.inches < 1.0 ? 0.5 : 0.05);
    m_depth->setSuffix(QLatin1Char(' ') + unitLabel(unit));
    m_depth->setValue(m_wanted.depth / cellsIn(m_unit));
}

void ImportPanel::_makeButtons()
{
    m_update = new QPushButton(icon(QStringLiteral("update")), tr("Update"), this);
    connect(m_update, &QPushButton::clicked, this, [this] {
        flush();
        emit UpdateClicked();
    });
    m_compare = new QPushButton(tr("Compare"), this);
    connect(m_compare, &QPushButton::pressed, this, [this] {
        flush();
        m_session->compare(true);
    });
    connect(m_compare, &QPushButton::released, this, [this] { m_session->compare(false); });
    m_accept = new QPushButton(icon(QStringLiteral("accept")), tr("Accept"), this);
    connect(m_accept, &QPushButton::clicked, this, [this] {
        flush();
        emit AcceptClicked();
    });
}

void ImportPanel::_makeNotice()
{
    m_notice = new NoticeBar(tr("A relief counts its rows from the bottom: flip the picture?"),
                             tr("Flip Y"), this);
    m_notice->hide();
    connect(m_notice, &NoticeBar::accepted, this, [this] { _answerFlip(true); });
    connect(m_notice, &NoticeBar::dismissed, this, [this] { _answerFlip(false); });
    // The check box answers it as well.
    connect(m_checks.front().box, &QCheckBox::clicked, this, &ImportPanel::FlipAnswered);
}

void ImportPanel::_answerFlip(bool flip)
{
    if (flip)
        m_checks.front().box->setChecked(true);
    m_checks.front().box->setFocus(); // else the next field would take what is typed
    flush();
    emit FlipAnswered();
}

void ImportPanel::askToFlip(bool ask)
{
    m_notice->setVisible(ask);
}

void ImportPanel::_arrange()
{
    m_content = new QWidget(this);
    auto *column = new QVBoxLayout(m_content);
    column->setContentsMargins(12, 8, 12, 4);
    column->setSpacing(6);
    auto *checks = new QGridLayout;
    checks->setHorizontalSpacing(16);
    checks->setVerticalSpacing(6);
    for (int i = 0; i < int(m_checks.size()); ++i)
        checks->addWidget(m_checks[size_t(i)].box, i / 2, i % 2);
    checks->setColumnStretch(2, 1);
    column->addLayout(checks);
    column->addWidget(m_notice); // below the check box that answers it, which stays in its place
    column->addSpacing(4);
    auto *depth = new QHBoxLayout;
    depth->setSpacing(8);
    depth->addWidget(m_depthLabel);
    depth->addWidget(m_depth, 1);
    column->addLayout(depth);
    for (const SettingField &field : importFields()) {
        if (field.info.has(InMainColumn))
            _makeSlider(field);
    }
    addSection(*column, tr("Tilt"));
    _makeNumber(&ImportSettings::tiltVertical);
    _makeNumber(&ImportSettings::tiltHorizontal);
    _addBasRelief(*column);
    column->addWidget(m_accept);
    column->addStretch(1);
    std::vector<SliderField *> sliders;
    int widest = 0;
    for (const NumberControl &number : m_numbers) {
        sliders.push_back(number.slider);
        widest = std::max(widest, number.slider->label()->sizeHint().width());
    }
    alignFields(sliders, widest);
    m_depthLabel->setFixedWidth(widest);
    tabInLayoutOrder(*column);
    m_area = scrolling(m_content);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 12);
    whole->setSpacing(8);
    whole->addWidget(m_area);
    // In sight also where the controls have to scroll.
    auto *last = new QHBoxLayout;
    last->setContentsMargins(12, 0, 12, 0);
    last->addStretch(1);
    last->addWidget(m_accept);
    whole->addLayout(last);
    connect(m_area->verticalScrollBar(), &QScrollBar::rangeChanged, last, [this, last] {
        const QScrollBar &bar = *m_area->verticalScrollBar();
        const int beside = bar.maximum() > bar.minimum() ? bar.sizeHint().width() : 0;
        last->setContentsMargins(12, 0, 12 + beside, 0);
    });
    whole->addStretch(1);
}

void ImportPanel::scrollToTop()
{
    m_area->verticalScrollBar()->setValue(0);
}

void ImportPanel::_addBasRelief(QVBoxLayout &column)
{
    addSection(column, tr("Bas-Relief"));
    auto *first = new QHBoxLayout;
    first->addWidget(_makeCheck(&ImportSettings::basRelief));
    first->addStretch(1);
    first->addWidget(m_compare);
    first->addWidget(m_update);
    column.addLayout(first);
    _makeNumber(&ImportSettings::gridSize);
    _makeNumber(&ImportSettings::contrastFactor);
    _makeNumber(&ImportSettings::smoothness);
}

void ImportPanel::_changed()
{
    _enable();
    if (!m_handOver.isActive())
        m_handOver.start();
}

void ImportPanel::flush()
{
    m_handOver.stop();
    if (m_wanted != m_session->settings()) {
        m_session->change(m_wanted);
        // The user may have cancelled the work that the change asked for.
        if (m_wanted != m_session->settings())
            refresh();
    }
    _enable();
}

void ImportPanel::refresh()
{
    if (m_handOver.isActive()) {
        _enable();
        return;
    }
    m_wanted = m_session->settings();
    for (const CheckControl &check : m_checks) {
        const QSignalBlocker quiet(check.box);
        check.box->setChecked(check.field->value(m_wanted) != 0.0);
    }
    for (const NumberControl &number : m_numbers)
        number.slider->showValue(number.field->shown(m_wanted));
    _showDepth();
    _enable();
}

QString ImportPanel::_reason(const SettingField &field) const
{
    if (!m_session->active())
        return tr("No import is open.");
    if (!m_wanted.preview && field.info.has(NeedsPreview))
        return tr("Check Preview first.");
    if (!m_wanted.basRelief && field.info.has(NeedsBasRelief))
        return tr("Switch the bas-relief on first.");
    return {};
}

QString ImportPanel::_updateReason() const
{
    if (!m_session->active())
        return tr("No import is open.");
    if (!m_wanted.basRelief)
        return tr("Switch the bas-relief on first.");
    if (!m_wanted.preview)
        return tr("Check Preview first.");
    return m_session->dirty() ? QString() : tr("The bas-relief is up to date.");
}

void ImportPanel::_enable()
{
    for (const CheckControl &check : m_checks)
        showReason(*check.box, fieldText(check.field->info.hint), _reason(*check.field));
    for (const NumberControl &number : m_numbers)
        showReason(*number.slider, fieldText(number.field->info.hint), _reason(*number.field));
    const FieldInfo &depth = fieldOf(importFields(), &ImportSettings::depth).info;
    showReason(*m_depth, fieldText(depth.hint),
               m_session->active() ? QString() : tr("No import is open."));
    m_depthLabel->setToolTip(m_depth->toolTip());
    showReason(*m_update, tr("Computes the bas-relief again."), _updateReason());
    showReason(*m_compare, tr("Shows the heights without the bas-relief while it is pressed."),
               m_session->canCompare() ? QString() : tr("No bas-relief is shown."));
    showReason(*m_accept, tr("Ends the import; the relief is ready to be sculpted."),
               m_session->active() ? QString() : tr("No import is open."));
}

} // namespace marlowen
