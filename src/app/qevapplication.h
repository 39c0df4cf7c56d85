#pragma once

#include <QApplication>
#include <QPointer>
#include <QStringList>

namespace marlowen {

class MainWindow;

/// The application object of the desktop program. A C-string thrown by an event handler ends the
/// program in an orderly way; file-open requests of the operating system reach the main window;
/// its end closes the session log.
class QevApplication : public QApplication
{
    Q_OBJECT

public:
    QevApplication(int &argc, char **argv);
    ~QevApplication() override;

    /// The window that file-open requests go to; not owned. Requests before it is set, or after it
    /// is gone, are dropped.
    void setMainWindow(MainWindow *window);

    /// Passes the event on. A C-string thrown on the way is reported by reportFatalError() and the
    /// result is false; any other exception passes through.
    bool notify(QObject *receiver, QEvent *event) override;

protected:
    /// Turns QEvent::FileOpen into an open with flag 1, reported as not handled. While a modal
    /// dialog is open the request waits for its end.
    bool event(QEvent *event) override;

private:
    void _openRequestedFiles();

    QPointer<MainWindow> m_mainWindow;
    QStringList m_requestedFiles; ///< not opened yet
};

/// Writes the text to the session log, shows it in the box "Fatal Error", closes all windows and
/// then the log.
void reportFatalError(const char *text);

} // namespace marlowen
