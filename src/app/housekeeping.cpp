#include "app/housekeeping.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace marlowen {

namespace {

constexpr qint64 secondsOfDay = 24 * 60 * 60;

bool isOld(const QFileInfo &entry, const QDateTime &now)
{
    const QDateTime born = entry.birthTime();
    return born.isValid() && born.addSecs(secondsOfDay) < now;
}

} // namespace

void scrubOldLogs(const QString &folder, const QDateTime &now)
{
    for (const QFileInfo &log : QDir(folder).entryInfoList({QStringLiteral("*.log")})) {
        if (isOld(log, now))
            QFile::remove(log.filePath());
    }
}

void cleanTemporaryFolders(const QString &folder, const QDateTime &now)
{
    const auto kinds = QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks;
    for (const QFileInfo &found : QDir(folder).entryInfoList({QStringLiteral("tmp_*")}, kinds)) {
        if (!isOld(found, now))
            continue;
        QDir temporary(found.filePath());
        for (const QString &mesh : temporary.entryList({QStringLiteral("stltmp*")}))
            temporary.remove(mesh);
        QDir().rmdir(found.filePath());
    }
}

} // namespace marlowen
