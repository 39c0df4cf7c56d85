#include "base/datafolder.h"

#include <QDir>

namespace marlowen {

namespace {

QString madeFolder(const QString &path)
{
    QDir().mkpath(path);
    return path;
}

} // namespace

QString dataFolder()
{
    return madeFolder(QDir::homePath() + QDir::separator() + QStringLiteral("Marlowen3"));
}

QString downloadFolder()
{
    return madeFolder(dataFolder() + QDir::separator() + QStringLiteral("download"));
}

} // namespace marlowen
