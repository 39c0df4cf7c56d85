#include "base/datafolder.h"

#include <QDir>

namespace {

QString _madeFolder(const QString &path)
{
    QDir().mkpath(path);
    return path;
}

} // namespace

QString dataFolder()
{
    return _madeFolder(QDir::homePath() + QDir::separator() + QStringLiteral("Marlowen3"));
}

QString downloadFolder()
{
    return _madeFolder(dataFolder() + QDir::separator() + QStringLiteral("download"));
}
