#include "files/safefile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

namespace marlowen {

namespace {

bool openFor(QFileDevice &file)
{
    return file.open(QIODevice::WriteOnly);
}

Failure because(Failure failure, const QFileDevice &file)
{
    failure.detail = file.error() == QFileDevice::NoError ? QString() : file.errorString();
    return failure;
}

Outcome writeDirectly(const QString &path, const std::function<bool(QIODevice &)> &write,
                      const Failure &unopened)
{
    QFile file(path);
    if (!openFor(file))
        return because(unopened, file);
    if (!write(file) || !file.flush())
        return because(saveFailed(), file);
    return {};
}

} // namespace

Failure openFailed(const QString &detail)
{
    return {QStringLiteral("Open Failed"), QStringLiteral("Error! File Open Failed"), detail};
}

Failure loadFailed(const QString &detail)
{
    return {QStringLiteral("Load Failed"), QStringLiteral("Error! File I/O Error"), detail};
}

Failure saveFailed(const QString &detail)
{
    return {QStringLiteral("Save Failed"), QStringLiteral("Error! File I/O Error"), detail};
}

Outcome openRegularFile(QFile &file, Failure failure)
{
    const QFileInfo info(file.fileName());
    if (info.isDir())
        failure.detail = QStringLiteral("it is a folder");
    else if (info.exists() && !info.isFile())
        failure.detail = QStringLiteral("it is not a regular file");
    else if (file.open(QIODevice::ReadOnly))
        return {};
    else
        failure.detail = file.errorString();
    return failure;
}

Outcome writeSafely(const QString &path, const std::function<bool(QIODevice &)> &write,
                    const Failure &unopened)
{
    // A rename would put an ordinary file in the place of a device.
    const QFileInfo target(path);
    if (target.exists() && !target.isFile() && !target.isDir())
        return writeDirectly(path, write, unopened);
    QSaveFile file(path);
    if (!openFor(file))
        return because(unopened, file);
    if (!write(file) || !file.commit())
        return because(saveFailed(), file);
    syncName(path);
    return {};
}

void syncName(const QString &path)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}

} // namespace marlowen
