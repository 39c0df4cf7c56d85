#include "net/updateservice.h"

#include "base/version.h"
#include "net/networkmanager.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace marlowen {

namespace {

/// One row a kind of download, in the order of DLTypeEnum.
struct KindRow
{
    const char *name;
    const char *ending;
};

constexpr std::array<KindRow, 2> kinds{{{"marlowen", ".exe"}, {"readme", ".txt"}}};

const KindRow *rowOf(DLTypeEnum kind)
{
    const auto index = static_cast<size_t>(kind);
    return index < kinds.size() ? &kinds[index] : nullptr;
}

QString padded(int number, int digits)
{
    return QStringLiteral("%1").arg(number, digits, 10, QLatin1Char('0'));
}

int partOf(const Version &version, qsizetype index)
{
    return version.value(index, 0);
}

QString encoded(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QUrl serviceUrl(const UpdateService &service, const char *path, DLTypeEnum kind,
                const Version &version)
{
    if (!rowOf(kind) || version.isEmpty())
        return {};
    QStringList items{QStringLiteral("os=win"), QStringLiteral("name=") + downloadName(kind),
                      QStringLiteral("version=") + versionAsText(version, QLatin1Char('.'))};
    if (!service.channel.isEmpty())
        items.append(QStringLiteral("type=") + encoded(service.channel));
    QUrl url = service.base;
    QString folder = url.path();
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    url.setPath(folder + QLatin1String(path));
    url.setQuery(items.join(QLatin1Char('&')));
    return url;
}

} // namespace

Version parseVersion(const QString &text)
{
    static const QRegularExpression form(QRegularExpression::anchoredPattern(
        QStringLiteral(R"((\d)[\._](\d{3})(?:[\._](\d{5}))?(,(\w+))?)")));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    Version version{match.captured(1).toInt(), match.captured(2).toInt()};
    if (!match.captured(3).isEmpty())
        version.append(match.captured(3).toInt());
    return version;
}

int compareVersions(const Version &a, const Version &b)
{
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() ? (b.isEmpty() ? 0 : -1) : 1;
    for (qsizetype i = 0; i < 3; ++i) {
        if (partOf(a, i) != partOf(b, i))
            return partOf(a, i) > partOf(b, i) ? 1 : -1;
    }
    return 0;
}

QString versionAsText(const Version &version, QChar separator)
{
    QString text = padded(partOf(version, 0), 1) + separator + padded(partOf(version, 1), 3);
    if (partOf(version, 2) != 0)
        text += separator + padded(partOf(version, 2), 5);
    return text;
}

Version programVersion()
{
    return parseVersion(QLatin1String(versionText));
}

Version newestUpdate(const QList<Version> &offered)
{
    const auto older = [](const Version &a, const Version &b) { return compareVersions(a, b) < 0; };
    const auto newest = std::max_element(offered.begin(), offered.end(), older);
    if (newest == offered.end() || compareVersions(*newest, programVersion()) <= 0)
        return {};
    return *newest;
}

QString downloadName(DLTypeEnum kind)
{
    const KindRow *row = rowOf(kind);
    return row ? QLatin1String(row->name) : QString();
}

QString downloadFileName(DLTypeEnum kind, const Version &version)
{
    const KindRow *row = rowOf(kind);
    if (!row || version.isEmpty())
        return {};
    return QStringLiteral("%1_%2").arg(QLatin1String(row->name),
                                       versionAsText(version, QLatin1Char('_'))) +
           QLatin1String(row->ending);
}

QUrl updateBaseUrl()
{
    const QUrl base(QStringLiteral(MARLOWEN_UPDATE_URL));
    return isCallable(base) ? base : QUrl();
}

QUrl checkUrl(const UpdateService &service, DLTypeEnum kind, const Version &version)
{
    return serviceUrl(service, "/checkmarlowen.php", kind, version);
}

QUrl fileUrl(const UpdateService &service, DLTypeEnum kind, const Version &version)
{
    return serviceUrl(service, "/getmarlowen.php", kind, version);
}

std::optional<QList<Version>> offeredVersions(const QVariantMap &reply)
{
    if (reply.value(QStringLiteral("status")).toString() != QLatin1String("OK"))
        return {};
    QList<Version> versions;
    for (const QVariant &element : reply.value(QStringLiteral("version")).toList()) {
        const Version version = parseVersion(element.toString());
        if (!version.isEmpty())
            versions.append(version);
    }
    return versions;
}

bool dailyCheckDue(const QDateTime &lastCheck, const QDateTime &now)
{
    return !lastCheck.isValid() || now < lastCheck || now >= lastCheck.addDays(1);
}

} // namespace marlowen
