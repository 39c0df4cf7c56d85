#pragma once

#include "net/downloadmanager.h"
#include "net/networkmanager.h"

#include <QObject>
#include <QPointer>

class QProgressDialog;
class QWidget;

namespace marlowen {

class CommandSet;

/// The update commands of a window: check on demand and, when the user agreed, once a day at start;
/// prompt, download, readme, install. Nothing of it blocks the window.
class UpdateController : public QObject
{
    Q_OBJECT

public:
    /// Adds the commands, which every window with an update service has.
    static void addCommands(CommandSet &commands);
    /// Their ids, in the order of the file page.
    static QList<const char *> commands();

    /// The commands must have been added, and the base address be callable.
    UpdateController(CommandSet &commands, QWidget *window, const QUrl &base);

    /// Asks once whether to check every day. Checks without a word when the user agreed and a day
    /// has passed; only an update that is found is shown.
    void start();

public slots:
    /// Says so when the check fails; shows the prompt for a newer version.
    void checkForUpdates();
    /// Starts the newest downloaded installer and closes the window; without PowerShell it opens
    /// the folder of the download.
    void launchUpdate();

signals:
    /// A line for the status bar, shown for so many milliseconds, 0 until the next one.
    void said(const QString &text, int milliseconds);

private:
    enum class Asked { ByUser, Daily };

    void _askForDaily();
    void _check(Asked asked);
    void _prompt(const Version &version);
    void _download(const Version &version);
    void _downloaded(const Outcome &outcome);
    void _showDownloaded();
    void _enableInstall();

    CommandSet &m_commands;
    QWidget *m_window;
    NetworkManager m_network;
    DownloadManager m_downloads;
    Version m_version; ///< being downloaded
    QPointer<QProgressDialog> m_progress;
};

} // namespace marlowen
