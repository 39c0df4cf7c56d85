#include "app/qevapplication.h"

#include "base/sessionlog.h"
#include "ui/mainwindow.h"

#include <QFileOpenEvent>
#include <QMessageBox>

namespace marlowen {

QevApplication::QevApplication(int &argc, char **argv)
    : QApplication(argc, argv)
{
    installEventFilter(this);
}

QevApplication::~QevApplication()
{
    logClose();
}

void QevApplication::setMainWindow(MainWindow *window)
{
    m_mainWindow = window;
}

bool QevApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const char *text) {
        reportFatalError(text);
        return false;
    }
}

bool QevApplication::event(QEvent *event)
{
    if (event->type() != QEvent::FileOpen)
        return QApplication::event(event);
    if (m_mainWindow)
        m_mainWindow->openFile(static_cast<QFileOpenEvent *>(event)->file(), 1);
    return false;
}

void reportFatalError(const char *text)
{
    logCritical() << text << "\n";
    logFlush();
    QMessageBox::critical(nullptr, QStringLiteral("Fatal Error"), QString::fromUtf8(text));
    QApplication::closeAllWindows();
    logClose();
}

} // namespace marlowen
