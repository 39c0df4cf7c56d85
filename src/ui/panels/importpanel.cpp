#include "ui/panels/importpanel.h"

#include "ui/icons.h"
#include "ui/panels/panelcontrols.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace marlowen {

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
    _makeButtons();
    _arrange();
    refresh();
}

void ImportPanel::_makeCheck(bool ImportSettings::*member)
{
    const SettingField &field = fieldOf(importFields(), member);
    QCheckBox *box = makeCheckBox(field.info, this);
    m_checks.push_back({&field, box});
    connect(box, &QCheckBox::toggled, this, [this, &field](bool on) {
        field.store(m_wanted, on);
        _changed();
    });
}

template <typename Value>
void ImportPanel::_makeNumber(Value ImportSettings::*member)
{
    const SettingField &field = fieldOf(importFields(), member);
    SliderField *slider = makeSlider(field.info, field.initial(), this);
    m_numbers.push_back({&field, slider});
    layout()->addWidget(slider);
    connect(slider, &SliderField::valueChanged, this, [this, &field](double value) {
        field.storeShown(m_wanted, value);
        _changed();
    });
}

void ImportPanel::_makeButtons()
{
    m_update = new QPushButton(icon(QStringLiteral("update")), tr("Update"), this);
    connect(m_update, &QPushButton::clicked, this, [this] {
        flush();
        emit UpdateClicked();
    });
    m_accept = new QPushButton(icon(QStringLiteral("accept")), tr("Accept"), this);
    connect(m_accept, &QPushButton::clicked, this, [this] {
        flush();
        emit AcceptClicked();
    });
}

void ImportPanel::_arrange()
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 8, 12, 12);
    column->setSpacing(6);
    auto *checks = new QGridLayout;
    checks->setHorizontalSpacing(16);
    checks->setVerticalSpacing(6);
    for (int i = 0; i < int(m_checks.size()); ++i)
        checks->addWidget(m_checks[size_t(i)].box, i / 2, i % 2);
    checks->setColumnStretch(2, 1);
    column->addLayout(checks);
    column->addSpacing(4);
    _makeNumber(&ImportSettings::smoothing);
    _makeNumber(&ImportSettings::raiseLower);
    const SliderField *widest = m_numbers.back().slider;
    _makeNumber(&ImportSettings::trim);
    addSection(*column, tr("Tilt"));
    _makeNumber(&ImportSettings::tiltVertical);
    _makeNumber(&ImportSettings::tiltHorizontal);
    column->addSpacing(8);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_update);
    buttons->addWidget(m_accept);
    column->addLayout(buttons);
    column->addStretch(1);
    std::vector<SliderField *> sliders;
    for (const NumberControl &number : m_numbers)
        sliders.push_back(number.slider);
    alignFields(sliders, widest->label()->sizeHint().width());
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
    if (m_wanted != m_session->settings())
        m_session->change(m_wanted);
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
    _enable();
}

QString ImportPanel::_reason(const SettingField &field) const
{
    const bool open = m_session->active();
    if (!open && !field.info.has(StartsNextImport))
        return tr("No import is open.");
    const bool waits = open && !m_wanted.preview && field.info.has(NeedsPreview);
    return waits ? tr("Check Preview first.") : QString();
}

void ImportPanel::_enable()
{
    for (const CheckControl &check : m_checks)
        showReason(*check.box, fieldText(check.field->info.hint), _reason(*check.field));
    for (const NumberControl &number : m_numbers)
        showReason(*number.slider, fieldText(number.field->info.hint), _reason(*number.field));
    // Without a bas-relief there is nothing that an update could add.
    m_update->setVisible(m_session->settings().basRelief);
    showReason(*m_update, tr("Computes the bas-relief again."),
               m_session->dirty() ? QString() : tr("The bas-relief is up to date."));
    showReason(*m_accept, tr("Ends the import; the relief is ready to be sculpted."),
               m_session->active() ? QString() : tr("No import is open."));
}

} // namespace marlowen
