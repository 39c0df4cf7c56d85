#include "base/qevsettings.h"

#include <QFileInfo>

namespace marlowen {

namespace {

constexpr char organisation[] = "Brindlemark";
constexpr char migratedKey[] = "migratedFromMarlowen2";
constexpr qsizetype recentFilesLimit = 5;

} // namespace

QevSettings::QevSettings(QObject *parent)
    : QSettings(QSettings::UserScope, QString::fromLatin1(organisation),
                QStringLiteral("Marlowen3"), parent)
{
}

QStringList QevSettings::recentFiles() const
{
    return value(QStringLiteral("recentFiles")).toStringList();
}

void QevSettings::addRecentFile(const QString &path)
{
    QStringList files{path};
    for (const QString &old : recentFiles()) {
        if (files.size() == recentFilesLimit)
            break;
        if (old != path)
            files.append(old);
    }
    setValue(QStringLiteral("recentFiles"), files);
    sync();
}

void QevSettings::setLastFile(const QString &file)
{
    const QString canonical = QFileInfo(file).canonicalFilePath();
    setValue(QStringLiteral("lastDir"), canonical);
    addRecentFile(canonical);
}

QString QevSettings::lastFolder() const
{
    const QFileInfo last(lastFile());
    return last.exists() ? last.canonicalPath() : QString();
}

QString QevSettings::lastFile() const
{
    return value(QStringLiteral("lastDir")).toString();
}

void QevSettings::setLastExportFile(const QString &file)
{
    setValue(QStringLiteral("lastExportDir"), QFileInfo(file).canonicalPath());
}

QString QevSettings::lastExportFolder() const
{
    return value(QStringLiteral("lastExportDir")).toString();
}

bool QevSettings::useLegacyShader() const
{
    return value(QStringLiteral("useLegacyShader"), false).toBool();
}

void QevSettings::setUseLegacyShader(bool on)
{
    setValue(QStringLiteral("useLegacyShader"), on);
}

bool QevSettings::darkTheme() const
{
    return value(QStringLiteral("ui/themeMode"), 0).toInt() == 1;
}

void QevSettings::setThemeMode(int mode)
{
    setValue(QStringLiteral("ui/themeMode"), mode);
}

void migrateSettings()
{
    QevSettings current;
    if (current.value(QString::fromLatin1(migratedKey), false).toBool())
        return;
    const QSettings previous(QSettings::UserScope, QString::fromLatin1(organisation),
                             QStringLiteral("Marlowen2"));
    for (const QString &key : previous.allKeys()) {
        if (!current.contains(key))
            current.setValue(key, previous.value(key));
    }
    current.setValue(QString::fromLatin1(migratedKey), true);
    current.sync();
}

} // namespace marlowen
