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

#include <cmath>

namespace marlowen {

namespace {

int tenths(double degrees)
{
    return int(std::lround(degrees * 10));
}

} // namespace

const std::array<ImportPanel::CheckRow, ImportPanel::checkCount> &ImportPanel::_checkRows()
{
    static const std::array<CheckRow, checkCount> rows{{
        {"Flip Y",
         "Turns the picture top to bottom: reliefs count their rows from the bottom, so this sets "
         "lettering right.",
         &ImportSettings::flipY, true},
        {"Preview", "Shows the result of the controls below; off, the picture as it is.",
         &ImportSettings::preview, false},
        {"Invert Z", "Dark becomes high and bright becomes low; the background stays empty.",
         &ImportSettings::invertZ, true},
        {"Transparency", "The empty background stays empty when the relief is smoothed.",
         &ImportSettings::transparency, true},
    }};
    return rows;
}

const std::array<ImportPanel::NumberRow, ImportPanel::numberCount> &ImportPanel::_numberRows()
{
    using Range = SliderField::Range;
    static const std::array<NumberRow, numberCount> rows{{
        {"Smoothing", "Passes of smoothing.", Range{0, 5, 0.1, 0.5, 0, 1, {}},
         [](const ImportSettings &s) { return s.smoothing; },
         [](ImportSettings &s, double v) { s.smoothing = v; }, true},
        {"Raise / Lower", "Sinks the figure into its background, or lifts it out.",
         Range{-100, 100, 1, 10, 0, 0, QStringLiteral(" %")},
         [](const ImportSettings &s) { return double(s.raiseLower); },
         [](ImportSettings &s, double v) { s.raiseLower = int(std::lround(v)); }, false},
        {"Trim", "Cells taken from the figure's outline.", Range{0, 20, 1, 1, 0, 0, {}},
         [](const ImportSettings &s) { return double(s.trim); },
         [](ImportSettings &s, double v) { s.trim = int(std::lround(v)); }, false},
        {"Vertical", "Tilts the figure about the horizontal axis.",
         Range{-10, 10, 0.1, 2, 0, 1, QStringLiteral("°")},
         [](const ImportSettings &s) { return s.tiltVertical / 10.0; },
         [](ImportSettings &s, double v) { s.tiltVertical = tenths(v); }, true},
        {"Horizontal", "Tilts the figure about the vertical axis.",
         Range{-10, 10, 0.1, 2, 0, 1, QStringLiteral("°")},
         [](const ImportSettings &s) { return s.tiltHorizontal / 10.0; },
         [](ImportSettings &s, double v) { s.tiltHorizontal = tenths(v); }, true},
    }};
    return rows;
}

ImportPanel::ImportPanel(ImportSession *session, QWidget *parent)
    : QWidget(parent)
    , m_session(session)
{
    m_handOver.setSingleShot(true);
    m_handOver.setInterval(0);
    connect(&m_handOver, &QTimer::timeout, this, &ImportPanel::flush);
    _makeControls();
    _makeButtons();
    _arrange();
    refresh();
}

void ImportPanel::_makeControls()
{
    for (size_t i = 0; i < checkCount; ++i) {
        const CheckRow &row = _checkRows()[i];
        m_checks[i] = new QCheckBox(tr(row.label), this);
        connect(m_checks[i], &QCheckBox::toggled, this, [this, &row](bool on) {
            m_wanted.*row.member = on;
            _changed();
        });
    }
    for (size_t i = 0; i < numberCount; ++i) {
        const NumberRow &row = _numberRows()[i];
        m_numbers[i] = new SliderField(tr(row.label), row.range, this);
        m_numbers[i]->setObjectName(QLatin1String(row.label));
        connect(m_numbers[i], &SliderField::valueChanged, this, [this, &row](double value) {
            row.store(m_wanted, value);
            _changed();
        });
    }
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
    for (size_t i = 0; i < checkCount; ++i)
        checks->addWidget(m_checks[i], int(i) / 2, int(i) % 2);
    checks->setColumnStretch(2, 1);
    column->addLayout(checks);
    column->addSpacing(4);
    for (const Number number : {Smoothing, RaiseLower, Trim})
        column->addWidget(m_numbers[number]);
    addSection(*column, tr("Tilt"));
    column->addWidget(m_numbers[TiltVertical]);
    column->addWidget(m_numbers[TiltHorizontal]);
    column->addSpacing(8);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_update);
    buttons->addWidget(m_accept);
    column->addLayout(buttons);
    column->addStretch(1);
    alignFields(m_numbers, m_numbers[RaiseLower]->label()->sizeHint().width());
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
        m_session->setSettings(m_wanted);
    _enable();
}

void ImportPanel::refresh()
{
    if (m_handOver.isActive()) {
        _enable();
        return;
    }
    m_wanted = m_session->settings();
    for (size_t i = 0; i < checkCount; ++i) {
        const QSignalBlocker quiet(m_checks[i]);
        m_checks[i]->setChecked(m_wanted.*_checkRows()[i].member);
    }
    for (size_t i = 0; i < numberCount; ++i)
        m_numbers[i]->showValue(_numberRows()[i].shown(m_wanted));
    _enable();
}

void ImportPanel::_enable()
{
    const bool open = m_session->active();
    const QString closed = tr("No import is open.");
    for (size_t i = 0; i < checkCount; ++i) {
        const CheckRow &row = _checkRows()[i];
        showReason(*m_checks[i], tr(row.hint), open || row.opening ? QString() : closed);
    }
    for (size_t i = 0; i < numberCount; ++i) {
        const NumberRow &row = _numberRows()[i];
        QString reason = open || row.opening ? QString() : closed;
        if (open && !m_wanted.preview)
            reason = tr("Check Preview first.");
        showReason(*m_numbers[i], tr(row.hint), reason);
    }
    // Without a generator there is nothing that an update could add.
    m_update->setVisible(bool(m_session->basReliefGenerator));
    showReason(*m_update, tr("Makes the bas-relief anew."),
               m_session->dirty() ? QString() : tr("The bas-relief is up to date."));
    showReason(*m_accept, tr("Ends the import; the relief is ready to be sculpted."),
               open ? QString() : closed);
}

} // namespace marlowen
