#pragma once

#include <QSettings>
#include <QStringList>

namespace marlowen {

/// The per-user settings store. Adds no state: construct one on the stack where it is needed, every
/// construction sees the current content.
class QevSettings : public QSettings
{
    Q_OBJECT

public:
    explicit QevSettings(QObject *parent = nullptr);

    /// Up to five full paths, newest first.
    QStringList recentFiles() const;
    /// Puts the path first, drops an equal (case-sensitive) older entry and everything past five,
    /// and syncs the store.
    void addRecentFile(const QString &path);

    /// Stores the canonical path of the file in "lastDir" and adds it to the recent files. A file
    /// that does not exist has an empty canonical path, which is stored unchanged.
    void setLastFile(const QString &file);
    /// Canonical folder of the last file, empty when that file is gone.
    QString lastFolder() const;
    /// The stored path, unchanged.
    QString lastFile() const;

    /// Stores the canonical folder of the exported file.
    void setLastExportFile(const QString &file);
    QString lastExportFolder() const;

    bool useLegacyShader() const;
    void setUseLegacyShader(bool on);

    /// True when the stored "ui/themeMode" is 1.
    bool darkTheme() const;
    void setThemeMode(int mode);
};

/// Copies what the previous major version's store holds and the current one lacks; at most once a
/// user.
void migrateSettings();

} // namespace marlowen
