#include "recovery/recoveryfolder.h"

#include "base/datafolder.h"

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marlowen {

namespace {

const QString lockName = QStringLiteral("lock");
const QString journalName = QStringLiteral("journal");

/// The lock of a folder; below 0 when another process has it.
int lockOf(const QString &folder)
{
    const QByteArray path = QFile::encodeName(folder + QLatin1Char('/') + lockName);
    const int lock = open(path.constData(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lock < 0)
        return -1;
    // The previous holder may have deleted the folder meanwhile.
    struct stat status
    {
    };
    if (flock(lock, LOCK_EX | LOCK_NB) == 0 && fstat(lock, &status) == 0 && status.st_nlink > 0)
        return lock;
    close(lock);
    return -1;
}

bool isOwn(const QString &folder)
{
    struct stat status
    {
    };
    return lstat(QFile::encodeName(folder).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

} // namespace

QString recoveryRoot()
{
    return dataFolder() + QDir::separator() + QStringLiteral("recovery");
}

RecoveryFolder::RecoveryFolder(RecoveryFolder &&other) noexcept
    : m_path(std::exchange(other.m_path, {}))
    , m_lock(std::exchange(other.m_lock, -1))
{
}

RecoveryFolder &RecoveryFolder::operator=(RecoveryFolder &&other) noexcept
{
    std::swap(m_path, other.m_path);
    std::swap(m_lock, other.m_lock);
    return *this;
}

RecoveryFolder::~RecoveryFolder()
{
    if (m_lock >= 0)
        close(m_lock);
}

std::optional<RecoveryFolder> RecoveryFolder::make(const QString &root)
{
    if (mkdir(QFile::encodeName(root).constData(), 0700) != 0 && !isOwn(root))
        return {};
    // Another window may delete the folder before it is locked.
    for (int attempt = 0; attempt < 3; ++attempt) {
        QByteArray name = QFile::encodeName(root + QStringLiteral("/window-XXXXXX"));
        if (!mkdtemp(name.data()))
            return {};
        const QString path = QFile::decodeName(name);
        if (const int lock = lockOf(path); lock >= 0)
            return RecoveryFolder(path, lock);
    }
    return {};
}

std::optional<RecoveryFolder> RecoveryFolder::take(const QString &path)
{
    if (!isOwn(path))
        return {};
    const int lock = lockOf(path);
    if (lock < 0)
        return {};
    return RecoveryFolder(path, lock);
}

QString RecoveryFolder::journal() const
{
    return m_path + QLatin1Char('/') + journalName;
}

void RecoveryFolder::discard()
{
    if (m_lock < 0)
        return;
    QFile::remove(journal());
    QFile::remove(journal() + QStringLiteral(".new"));
    QFile::remove(m_path + QLatin1Char('/') + lockName);
    QDir().rmdir(m_path);
    close(std::exchange(m_lock, -1));
}

} // namespace marlowen
