#include "files/workspacefile.h"

#include "base/sessionlog.h"
#include "files/safefile.h"
#include "relief/grid/reliefstream.h"

#include <QDataStream>
#include <QFile>

#include <new>

namespace marlowen {

namespace {

constexpr quint32 magic = 0x50744D77; // "PtMw"
constexpr quint32 newestVersion = 1;

Result<std::unique_ptr<Relief>> readReliefOf(QDataStream &stream, const QString &path)
{
    ReliefRead read = readRelief(stream);
    if (!read.relief)
        return loadFailed(QStringLiteral("the file is shorter than its header says"));
    if (read.repaired > 0) {
        logWarning() << path << ": " << read.repaired << " invalid values were replaced\n";
        logFlush();
    }
    return std::move(read.relief);
}

} // namespace

Outcome saveWorkspace(const Relief &relief, const QString &path)
{
    return writeSafely(path, [&relief](QIODevice &device) {
        QDataStream stream(&device);
        stream << magic << newestVersion;
        return stream.status() == QDataStream::Ok && writeRelief(stream, relief);
    });
}

Result<std::unique_ptr<Relief>> loadWorkspace(const QString &path)
{
    QFile file(path);
    if (const Outcome opened = openRegularFile(file, openFailed()); !opened)
        return opened.failure();
    QDataStream stream(&file);
    quint32 foundMagic = 0;
    quint32 version = 0;
    stream >> foundMagic >> version;
    if (stream.status() != QDataStream::Ok || foundMagic != magic || version > newestVersion)
        return Failure{QStringLiteral("Invalid File"),
                       QStringLiteral("Error! File has invalid Magic Number or Version")};
    try {
        return readReliefOf(stream, path);
    } catch (const std::bad_alloc &) {
        return loadFailed(QStringLiteral("not enough memory"));
    }
}

} // namespace marlowen
