#pragma once

#include <QDateTime>
#include <QFileInfo>

namespace marlowen {

/// Distinguishes two versions of a file.
struct FileStamp
{
    QDateTime modified; ///< invalid when there is no file
    qint64 size = 0;
    bool operator==(const FileStamp &) const = default;
};

inline FileStamp stampOf(const QString &path)
{
    const QFileInfo file(path);
    return {file.lastModified(), file.size()};
}

} // namespace marlowen
