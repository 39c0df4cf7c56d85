#include "ui/ribbon/ribbonmainwindow.h"

#include "ui/ribbon/ribbonbackstage.h"
#include "ui/ribbon/ribbonbar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QShortcut>

namespace marlowen {

RibbonMainWindow::RibbonMainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_bar(new RibbonBar(this))
{
    setMenuWidget(m_bar);
    auto *fold = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F1), this);
    connect(fold, &QShortcut::activated, m_bar, &RibbonBar::toggleMinimized);
    auto *reach = new QShortcut(QKeySequence(Qt::Key_F10), this);
    connect(reach, &QShortcut::activated, m_bar, &RibbonBar::takeFocus);
    qApp->installEventFilter(this);
}

RibbonQuickAccessBar *RibbonMainWindow::quickAccessBar() const
{
    return m_bar->quickAccessBar();
}

RibbonBackstage *RibbonMainWindow::backstage()
{
    if (!m_backstage)
        m_backstage = new RibbonBackstage(tr("File"), this);
    return m_backstage;
}

bool RibbonMainWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowDeactivate)
        m_altAlone = false;
    return QMainWindow::event(event);
}

/// Watches for Alt pressed and let go with nothing between: no key, no button, no wheel.
bool RibbonMainWindow::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        if (QApplication::activeWindow() == this)
            m_altAlone = static_cast<QKeyEvent *>(event)->key() == Qt::Key_Alt;
        break;
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
        m_altAlone = false;
        break;
    case QEvent::KeyRelease:
        if (m_altAlone && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Alt) {
            m_altAlone = false;
            m_bar->takeFocus();
        }
        break;
    default:
        break;
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace marlowen
