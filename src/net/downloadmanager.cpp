#include "net/downloadmanager.h"

#include "files/safefile.h"
#include "net/networkmanager.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <utility>

namespace marlowen {

namespace {

constexpr int checkSeconds = 20;
constexpr int downloadSeconds = 3600;
constexpr qint64 longestChannelFile = 1024;
const QString powerShell = QStringLiteral("powershell.exe");

Failure downloadFailed(const QString &detail)
{
    return {QStringLiteral("Failed"), QStringLiteral("The update could not be downloaded"), detail};
}

/// Installers are Windows programs, under any name.
bool isInstaller(const QByteArray &data)
{
    return data.startsWith("MZ");
}

} // namespace

DownloadManager::DownloadManager(NetworkManager &network, QUrl base, QString folder)
    : m_network(network)
    , m_base(std::move(base))
    , m_folder(std::move(folder))
{
}

DownloadManager::~DownloadManager() = default;

QString DownloadManager::channel() const
{
    QFile file(m_folder + QDir::separator() + QStringLiteral("update.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("release");
    const QString text = QString::fromUtf8(file.read(longestChannelFile)).simplified();
    return text.section(QLatin1Char(' '), 0, 0);
}

QString DownloadManager::filePath(DLTypeEnum kind, const Version &version) const
{
    return m_folder + QDir::separator() + downloadFileName(kind, version);
}

Version DownloadManager::downloadedUpdate() const
{
    QList<Version> versions;
    const QStringList names = QDir(m_folder).entryList(QDir::Files);
    for (const QString &name : names) {
        const QString text = QFileInfo(name).completeBaseName().section(QLatin1Char('_'), 1);
        const Version version = parseVersion(text);
        if (!version.isEmpty() && name == downloadFileName(DLInstaller, version))
            versions.append(version);
    }
    return newestUpdate(versions);
}

std::optional<QList<Version>> DownloadManager::checkForUpdate(DLTypeEnum kind,
                                                              const Version &version)
{
    const QUrl url = checkUrl({m_base, channel()}, kind, version);
    return offeredVersions(
        m_network._callInternet(NetworkManager::Get, url, {}, checkSeconds, nullptr));
}

void DownloadManager::download(const Version &version)
{
    if (isDownloading())
        return;
    m_version = version;
    _fetch(DLInstaller);
}

void DownloadManager::cancel()
{
    if (!m_response)
        return;
    // It may be the one whose signal is being delivered.
    disconnect(m_response.get(), nullptr, this, nullptr);
    m_response.release()->deleteLater();
}

void DownloadManager::_fetch(DLTypeEnum kind)
{
    m_response = std::make_unique<NetworkResponse>();
    NetworkResponse *response = m_response.get();
    if (kind == DLInstaller)
        connect(response, &NetworkResponse::progressed, this, &DownloadManager::progressed);
    connect(response, &NetworkResponse::finished, this,
            [this, kind](const QVariantMap &reply) { _fetched(kind, reply); });
    const QUrl url = fileUrl({m_base, channel()}, kind, m_version);
    m_network._callInternet(NetworkManager::Get, url, {}, downloadSeconds, response);
}

void DownloadManager::_fetched(DLTypeEnum kind, const QVariantMap &reply)
{
    cancel();
    const Outcome stored = _store(kind, reply.value(QStringLiteral("data")).toByteArray());
    if (kind == DLInstaller && stored)
        _fetch(DLReadme);
    else
        emit finished(kind == DLInstaller ? stored : Outcome());
}

Outcome DownloadManager::_store(DLTypeEnum kind, const QByteArray &data) const
{
    if (data.isEmpty())
        return downloadFailed(QStringLiteral("the server sent no file"));
    if (kind == DLInstaller && !isInstaller(data))
        return downloadFailed(QStringLiteral("what the server sent is no installer"));
    return writeSafely(filePath(kind, m_version),
                       [&data](QIODevice &device) { return device.write(data) == data.size(); });
}

bool DownloadManager::canLaunch()
{
    return !QStandardPaths::findExecutable(powerShell).isEmpty();
}

bool DownloadManager::open(DLTypeEnum kind, const QString &path)
{
    qDebug("Launching Marlowen Update");
    const QFileInfo file(path);
    const bool ours = file.isFile() && file.canonicalPath() == QDir(m_folder).canonicalPath();
    bool started = false;
    if (ours && kind == DLReadme)
        started = QDesktopServices::openUrl(QUrl::fromLocalFile(file.canonicalFilePath()));
    else if (ours && kind == DLInstaller)
        started = QProcess::startDetached(powerShell, launchArguments(file.canonicalFilePath()));
    if (!started)
        qDebug("Failed to launch");
    return started;
}

QStringList launchArguments(const QString &installer)
{
    QString path = QDir::toNativeSeparators(installer);
    static const QRegularExpression harmless(QStringLiteral(R"(^[\w:\\/.-]+$)"));
    // PowerShell parses the joined arguments as a command.
    if (!harmless.match(path).hasMatch()) {
        path.replace(QLatin1Char('\''), QLatin1String("''"));
        path = QLatin1Char('\'') + path + QLatin1Char('\'');
    }
    return {QStringLiteral("-Command"), QStringLiteral("Start-Process"), path};
}

} // namespace marlowen
