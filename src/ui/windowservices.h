#pragma once

#include <QObject>
#include <QUrl>

#include <functional>

class QWidget;

namespace marlowen {

class CenterArea;
class CommandSet;
class HelpWindow;
class RecoveryController;
class UpdateController;
class Workbench;

/// The services of the window that do not edit: recovery, updates, help.
class WindowServices : public QObject
{
    Q_OBJECT

public:
    struct Parts
    {
        Workbench &bench;
        CommandSet &commands;
        CenterArea &center;
        /// The unsaved-work guard: true when the open work may be replaced.
        std::function<bool()> mayLoseWork;
    };
    /// Everything given outlives this object; `updates` is where updates come from, empty for
    /// nowhere.
    WindowServices(Parts parts, QWidget *window, const QUrl &updates);

    /// Adds the commands; those of updates only when there is an address.
    static void addCommands(CommandSet &commands, const QUrl &updates);
    /// The commands of the file page: under the file commands, and at the foot.
    static QList<const char *> fileCommands();
    static QList<const char *> footCommands(const QUrl &updates);

    /// Looks for unsaved work of earlier windows; when the window is up, for updates too.
    void start();
    void setupControls();
    /// Waits until unsaved work is safe until the next start; false when it is not.
    bool leaveForNextStart();
    /// Removes the unsaved work that is kept, except work left for the next start.
    void windowCloses();

signals:
    /// A line for the status bar, shown for so many milliseconds, 0 until the next one.
    void said(const QString &text, int milliseconds);

private:
    void _connectUpdates(const QUrl &updates);
    void _showManual();

    Parts m_parts;
    QWidget *m_window;
    RecoveryController *m_recovery;
    UpdateController *m_updates = nullptr;
    HelpWindow *m_help = nullptr;
};

} // namespace marlowen
