#include "ui/controllers/updatecontroller.h"

#include "base/qevsettings.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"

#include <QAction>
#include <QCoreApplication>
#include <QDateTime>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFile>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr CommandRow commandRows[] = {
    {"checkForUpdates", QT_TRANSLATE_NOOP("Commands", "Check For Updates"), "update",
     QT_TRANSLATE_NOOP("Commands", "Asks the maker's server for a newer version."), "",
     QT_TRANSLATE_NOOP("Commands", "A check or a download is under way.")},
    {"dailyUpdates", QT_TRANSLATE_NOOP("Commands", "Check Once a Day"), "update",
     QT_TRANSLATE_NOOP("Commands", "Looks for a newer version at the first start of a day."), "",
     "", true},
    {"installUpdate", QT_TRANSLATE_NOOP("Commands", "Install Update"), "exit",
     QT_TRANSLATE_NOOP("Commands", "Closes Marlowen and starts the installer."), "",
     QT_TRANSLATE_NOOP("Commands", "No update has been downloaded.")},
};

const QString dailyKey = QStringLiteral("updates/daily");
const QString lastCheckKey = QStringLiteral("updates/lastCheck");
constexpr qint64 longestReadme = 1 << 20;

QMessageBox *boxOver(QWidget *window, const QString &title, const QString &text)
{
    auto *box = new QMessageBox(window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(title);
    box->setText(text);
    return box;
}

QString readmeText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(longestReadme)) : QString();
}

} // namespace

UpdateController::UpdateController(CommandSet &commands, QWidget *window, const QUrl &base)
    : QObject(window)
    , m_commands(commands)
    , m_window(window)
    , m_downloads(m_network, base)
{
    connect(commands["checkForUpdates"], &QAction::triggered, this,
            &UpdateController::checkForUpdates);
    connect(commands["installUpdate"], &QAction::triggered, this, &UpdateController::launchUpdate);
    QAction *daily = commands["dailyUpdates"];
    daily->setChecked(QevSettings().value(dailyKey, false).toBool());
    connect(daily, &QAction::toggled, this, [](bool on) { QevSettings().setValue(dailyKey, on); });
    connect(&m_downloads, &DownloadManager::finished, this, &UpdateController::_downloaded);
    _enableInstall();
}

void UpdateController::addCommands(CommandSet &commands)
{
    commands.add(commandRows);
}

QList<const char *> UpdateController::commands()
{
    QList<const char *> ids;
    for (const CommandRow &row : commandRows)
        ids.append(row.id);
    return ids;
}

void UpdateController::start()
{
    const QevSettings settings;
    if (!settings.contains(dailyKey))
        _askForDaily();
    else if (settings.value(dailyKey).toBool() &&
             dailyCheckDue(settings.value(lastCheckKey).toDateTime(),
                           QDateTime::currentDateTimeUtc()))
        _check(Asked::Daily);
}

void UpdateController::_askForDaily()
{
    QMessageBox *box = boxOver(
        m_window, tr("Check For Updates"),
        tr("Should Marlowen look for updates once a day? It sends the number of your version "
           "to the maker's server and nothing else."));
    box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box->setDefaultButton(QMessageBox::No);
    connect(box, &QMessageBox::finished, this, [this](int answer) {
        const bool yes = answer == QMessageBox::Yes;
        // Toggling stores the answer only when it changes.
        QevSettings().setValue(dailyKey, yes);
        m_commands["dailyUpdates"]->setChecked(yes);
        if (yes)
            _check(Asked::Daily);
    });
    box->open();
}

void UpdateController::checkForUpdates()
{
    qDebug("in checkForUpdates");
    _check(Asked::ByUser);
}

void UpdateController::_check(Asked asked)
{
    QAction *command = m_commands["checkForUpdates"];
    if (!command->isEnabled())
        return;
    command->setEnabled(false);
    emit said(tr("Looking for updates..."), 0);
    QevSettings().setValue(lastCheckKey, QDateTime::currentDateTimeUtc());
    const QPointer<UpdateController> self(this);
    const auto offered = m_downloads.checkForUpdate(DLInstaller, programVersion());
    // The window may have been closed meanwhile.
    if (!self)
        return;
    command->setEnabled(true);
    const Version newest = offered ? newestUpdate(*offered) : Version();
    if (!newest.isEmpty())
        _prompt(newest);
    if (offered && newest.isEmpty())
        emit said(tr("There is no newer version."), 5000);
    else
        emit said({}, 0);
    if (offered || asked == Asked::Daily)
        return;
    QMessageBox *box = boxOver(m_window, tr("Failed"), tr("Check for update failed"));
    box->setIcon(QMessageBox::Warning);
    box->open();
}

void UpdateController::_prompt(const Version &version)
{
    QMessageBox *box =
        boxOver(m_window, tr("Update Available"), tr("A Marlowen 3 update is available."));
    QPushButton *upgrade = box->addButton(tr("Upgrade Now"), QMessageBox::AcceptRole);
    box->setDefaultButton(upgrade);
    box->addButton(tr("Skip"), QMessageBox::RejectRole);
    connect(upgrade, &QPushButton::clicked, this, [this, version] { _download(version); });
    box->open();
}

void UpdateController::_download(const Version &version)
{
    m_version = version;
    m_commands["checkForUpdates"]->setEnabled(false);
    // Not modal: one can go on sculpting meanwhile.
    m_progress = new QProgressDialog(tr("Downloading the update..."), tr("Cancel"), 0, 0, m_window);
    m_progress->setAttribute(Qt::WA_DeleteOnClose);
    m_progress->setWindowTitle(tr("Update"));
    m_progress->setAutoClose(false);
    m_progress->setAutoReset(false);
    connect(&m_downloads, &DownloadManager::progressed, m_progress,
            [this](qint64 received, qint64 total) {
                constexpr qint64 kilobyte = 1024;
                m_progress->setMaximum(static_cast<int>(qMax(total, qint64{0}) / kilobyte));
                m_progress->setValue(static_cast<int>(received / kilobyte));
            });
    connect(m_progress, &QProgressDialog::canceled, this, [this] {
        m_downloads.cancel();
        m_progress->deleteLater();
        m_commands["checkForUpdates"]->setEnabled(true);
    });
    m_progress->show();
    m_downloads.download(version);
}

void UpdateController::_downloaded(const Outcome &outcome)
{
    m_commands["checkForUpdates"]->setEnabled(true);
    if (m_progress) {
        // Closing it counts as a cancel otherwise.
        m_progress->disconnect(this);
        m_progress->close();
    }
    if (outcome) {
        _enableInstall();
        _showDownloaded();
        return;
    }
    const Failure &failure = outcome.failure();
    QMessageBox *box = boxOver(m_window, failure.title, failure.sentence);
    box->setInformativeText(asSentence(failure.detail));
    box->setIcon(QMessageBox::Warning);
    box->open();
}

void UpdateController::_showDownloaded()
{
    auto *dialog = new QDialog(m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Update"));
    dialog->resize(560, 400);
    auto *readme = new QPlainTextEdit(readmeText(m_downloads.filePath(DLReadme, m_version)));
    readme->setReadOnly(true);
    readme->setPlaceholderText(tr("The update is downloaded. It has no readme."));
    auto *buttons = new QDialogButtonBox;
    const bool launches = DownloadManager::canLaunch();
    buttons->addButton(launches ? tr("Install Update") : tr("Open Folder"),
                       QDialogButtonBox::AcceptRole);
    buttons->addButton(tr("Later"), QDialogButtonBox::RejectRole);
    auto *layout = new QVBoxLayout(dialog);
    layout->addWidget(readme);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    connect(dialog, &QDialog::accepted, this, &UpdateController::launchUpdate);
    dialog->open();
}

void UpdateController::_enableInstall()
{
    m_commands["installUpdate"]->setEnabled(!m_downloads.downloadedUpdate().isEmpty());
}

void UpdateController::launchUpdate()
{
    if (!DownloadManager::canLaunch()) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(m_downloads.folder()));
        return;
    }
    const QString installer = m_downloads.filePath(DLInstaller, m_downloads.downloadedUpdate());
    // The installer replaces files that are in use; unsaved work is asked about as always.
    if (m_downloads.open(DLInstaller, installer))
        m_window->close();
}

} // namespace marlowen
