#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace marlowen {

class CommandSet;
class Workbench;

/// The file commands: new, open, save, and the guard of unsaved work. Dialogs stand over the
/// window.
class FileController : public QObject
{
    Q_OBJECT

public:
    FileController(Workbench &bench, QWidget *window);

    /// Opens the file by the end of its name. False when nothing was opened; what is open stays.
    bool openFile(const QString &path);
    void newRelief();
    void chooseFileToOpen();
    void openLastFile();
    /// False when the user cancelled or the file could not be written.
    bool save();
    bool saveAs();
    /// The unsaved-work guard: true when what is open may be replaced.
    bool mayLoseWork();

    /// "Brindlemark Marlowen 3 - name *"
    QString windowTitle() const;
    /// Enables what can act now; the rest says why it cannot.
    void setupControls(CommandSet &commands) const;

signals:
    /// A file was opened or saved: the list of recent files changed.
    void filesChanged();
    /// A line for the status bar, shown for so many milliseconds.
    void said(const QString &text, int milliseconds);

private:
    bool _load(const QString &path);
    bool _saveTo(const QString &path);
    void _remember(const QString &path);

    Workbench &m_bench;
    QWidget *m_window;
};

} // namespace marlowen
