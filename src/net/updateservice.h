#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <optional>

namespace marlowen {

/// The update service's language as pure functions; docs/updates.md describes it for those who run
/// one.

/// Major, minor and, if given, build; empty for no version.
using Version = QList<int>;

/// One digit of major, a point or underscore, three digits of minor, optionally a point or
/// underscore and five digits of build, optionally a comma and a word. Empty for any other text.
Version parseVersion(const QString &text);

/// -1, 0 or 1 as a is older than, equal to or newer than b. An empty version is older than all
/// others; a missing minor or build counts as 0.
int compareVersions(const Version &a, const Version &b);

/// "3_000_00019" with the separator '_'; without the build where there is none or it is 0. The
/// version must not be empty.
QString versionAsText(const Version &version, QChar separator);

/// The version of this program.
Version programVersion();

/// The newest version of the list that is newer than the program; empty when there is none.
Version newestUpdate(const QList<Version> &offered);

/// Kinds of downloads.
enum DLTypeEnum : int { DLInstaller = 0, DLReadme = 1 };

/// The download's name in requests and file names; empty for other values.
QString downloadName(DLTypeEnum kind);
/// The file of a version in the download folder, without the folder.
QString downloadFileName(DLTypeEnum kind, const Version &version);

/// Where updates come from.
struct UpdateService
{
    QUrl base;
    QString channel; ///< "release" unless the user has another
};

/// The address given when the program was built; empty when none was, or none that may be called.
QUrl updateBaseUrl();

/// The request for the available versions, with the installed one. Empty for an unknown kind.
QUrl checkUrl(const UpdateService &service, DLTypeEnum kind, const Version &version);
/// Asks for the file of a version. Empty for an unknown kind.
QUrl fileUrl(const UpdateService &service, DLTypeEnum kind, const Version &version);

/// The versions that a reply to checkUrl() offers; elements that are not versions are dropped.
/// Nothing when the reply is empty or its status is not "OK".
std::optional<QList<Version>> offeredVersions(const QVariantMap &reply);

/// Whether a day has passed since the last check, or the clock has gone back since.
bool dailyCheckDue(const QDateTime &lastCheck, const QDateTime &now);

} // namespace marlowen
