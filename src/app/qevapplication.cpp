#include "app/qevapplication.h"

#include "base/sessionlog.h"
#include "ui/mainwindow.h"

#include <QFileOpenEvent>
#include <QMessageBox>
#include <QTimer>

#include <chrono>
#include <utility>

namespace marlowen {

namespace {

constexpr std::chrono::milliseconds dialogPoll{200};

} // namespace

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
    if (m_mainWindow) {
        m_requestedFiles << static_cast<QFileOpenEvent *>(event)->file();
        _openRequestedFiles();
    }
    return false;
}

void QevApplication::_openRequestedFiles()
{
    // A dialog waits for its answer first; no signal follows its end, so check again later.
    if (activeModalWidget()) {
        QTimer::singleShot(dialogPoll, this, &QevApplication::_openRequestedFiles);
        return;
    }
    if (!m_mainWindow)
        return;
    const QStringList files = std::exchange(m_requestedFiles, {});
    for (const QString &file : files)
        m_mainWindow->openFile(file, 1);
}

void reportFatalError(const char *text)
{
    logCritical() << text << "\n";
    logFlush();
    QMessageBox::critical(nullptr, QStringLiteral("Fatal Error"), QString::fromUtf8(text));
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *window = qobject_cast<MainWindow *>(widget))
            window->endForGood();
    }
    QApplication::closeAllWindows();
    logClose();
}

} // namespace marlowen
