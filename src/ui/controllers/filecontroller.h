#pragma once

#include "import/importsettings.h"
#include "ui/controllers/filestamp.h"

#include <QObject>
#include <QString>

#include <functional>

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

    /// Shows a mesh to be oriented; false when it could not be read. To be set before meshes are
    /// opened.
    std::function<bool(const QString &path)> openModel;

    /// Opens the file by the ending of its name. False when nothing was opened; the open work
    /// stays.
    bool openFile(const QString &path);
    void newRelief();
    void chooseFileToOpen();
    void openLastFile();
    /// False when the user cancelled or the file could not be written.
    bool save();
    bool saveAs();
    /// The depth in cells that pictures are opened with from now on; nothing while something else
    /// than a picture is open.
    void rememberDepth(double cells);
    /// The unsaved-work guard: true when the open work may be replaced.
    bool mayLoseWork();
    /// The program cannot go on: from now on the guard offers no "Cancel".
    void endForGood() { m_ending = true; }

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
    ImportSettings _openingSettings() const;
    int _askAboutWork();
    bool _mayReplace(const QString &path);
    bool _load(const QString &path);
    bool _show(const QString &path);
    bool _saveTo(const QString &path);
    void _remember(const QString &path);

    Workbench &m_bench;
    QWidget *m_window;
    FileStamp m_stamp; ///< of the open file when it was last read or written here
    bool m_ending = false;
};

} // namespace marlowen
