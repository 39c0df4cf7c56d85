#include "ui/progressbox.h"

#include <QApplication>
#include <QProgressDialog>

namespace marlowen {

namespace {

constexpr qint64 patienceMs = 500;
constexpr qint64 frameMs = 40;
constexpr int steps = 1000;
constexpr int narrowest = 320; ///< pixels: the second line changes its length

} // namespace

int ProgressBox::s_atWork = 0;

ProgressBox::ProgressBox(const QString &label, QWidget *window)
    : m_label(label)
    , m_window(window)
{
    ++s_atWork;
    m_since.start();
}

ProgressBox::~ProgressBox()
{
    --s_atWork;
}

bool ProgressBox::anyAtWork()
{
    return s_atWork > 0;
}

void ProgressBox::advance(double fraction)
{
    const qint64 now = m_since.elapsed();
    if (now < patienceMs || now - m_lastShownMs < frameMs)
        return;
    m_lastShownMs = now;
    const QString text = m_state.isEmpty() ? m_label : m_label + QLatin1Char('\n') + m_state;
    if (!m_dialog) {
        m_dialog =
            std::make_unique<QProgressDialog>(text, QObject::tr("Cancel"), 0, steps, m_window);
        m_dialog->setWindowModality(Qt::ApplicationModal);
        m_dialog->setWindowFlag(Qt::WindowStaysOnTopHint);
        m_dialog->setWindowTitle(QStringLiteral("Marlowen"));
        m_dialog->setMinimumDuration(0);
        m_dialog->setAutoClose(false);
        m_dialog->setAutoReset(false);
        m_dialog->setMinimumWidth(narrowest);
        m_dialog->show();
    }
    if (text != m_dialog->labelText())
        m_dialog->setLabelText(text);
    m_dialog->setValue(qBound(0, qRound(fraction * steps), steps));
    QApplication::processEvents();
}

bool ProgressBox::cancelled() const
{
    return m_dialog && m_dialog->wasCanceled();
}

} // namespace marlowen
