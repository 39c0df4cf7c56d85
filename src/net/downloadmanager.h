#pragma once

#include "base/datafolder.h"
#include "base/result.h"
#include "net/updateservice.h"

#include <QObject>

#include <memory>
#include <optional>

namespace marlowen {

class NetworkManager;
class NetworkResponse;

/// Checks for updates, owns the download folder, and starts the downloaded installer.
class DownloadManager : public QObject
{
    Q_OBJECT

public:
    /// The network manager must outlive this object.
    DownloadManager(NetworkManager &network, QUrl base, QString folder = downloadFolder());
    ~DownloadManager() override;

    QString folder() const { return m_folder; }
    /// The first word of "update.txt" in the download folder; "release" without such a file.
    QString channel() const;
    /// Where the file of a version lies once it is downloaded.
    QString filePath(DLTypeEnum kind, const Version &version) const;

    /// The newest version whose installer lies in the folder and that is newer than the program;
    /// empty when there is none.
    Version downloadedUpdate() const;

    /// Asks the service and waits, while other events go on. Nothing when the call fails or the
    /// service does not answer "OK". The caller must check that this object still exists.
    std::optional<QList<Version>> checkForUpdate(DLTypeEnum kind, const Version &version);

    /// Starts to fetch the installer of a version and then its readme; finished() follows. One at a
    /// time.
    void download(const Version &version);
    bool isDownloading() const { return m_response != nullptr; }
    /// Ends a download without finished(); the partial file is removed.
    void cancel();

    /// Starts an installer through PowerShell, or shows a readme with the system's viewer. False
    /// when the file is not in the download folder or nothing starts.
    bool open(DLTypeEnum kind, const QString &path);
    /// Whether this system has the PowerShell that installers are started with.
    static bool canLaunch();

signals:
    /// Of the installer, in bytes; the total is -1 while it is not known.
    void progressed(qint64 received, qint64 total);
    /// The failure is of the installer; a missing readme is none.
    void finished(const marlowen::Outcome &outcome);

private:
    void _fetch(DLTypeEnum kind);
    void _fetched(DLTypeEnum kind, const QVariantMap &reply);
    Outcome _store(DLTypeEnum kind, const QByteArray &data) const;

    NetworkManager &m_network;
    QUrl m_base;
    QString m_folder;
    Version m_version;
    std::unique_ptr<NetworkResponse> m_response;
};

/// The arguments that start an installer through PowerShell; the path in native form.
QStringList launchArguments(const QString &installer);

} // namespace marlowen
