#include "cli/thumbnailcommand.h"

#include "cli/clifiles.h"
#include "cli/quietdecoders.h"
#include "files/filethumbnail.h"
#include "files/safefile.h"

#include <QFile>
#include <QIODevice>

namespace marlowen {

namespace {

constexpr int smallest = 16;
constexpr int largest = 1024;

Failure wrong(const QString &sentence)
{
    return {QStringLiteral("Usage"), sentence};
}

/// Why no picture could be made of the file.
Failure noPicture(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return openFailed(file.errorString());
    return {QStringLiteral("Thumbnail"),
            QStringLiteral("no workspace, pattern or image that can be read")};
}

} // namespace

Result<ThumbnailJob> parseThumbnail(const QStringList &arguments)
{
    ThumbnailJob job;
    QStringList files = arguments;
    const qsizetype option = files.indexOf(QStringLiteral("--size"));
    if (option >= 0) {
        bool whole = false;
        job.size = files.value(option + 1).toInt(&whole);
        if (!whole || job.size < smallest || job.size > largest)
            return wrong(QStringLiteral("--size needs a whole number from %1 to %2")
                             .arg(smallest)
                             .arg(largest));
        files.remove(option, 2);
    }
    if (files.size() != 2 || files[0].startsWith(QLatin1String("--")) ||
        files[1].startsWith(QLatin1String("--")))
        return wrong(QStringLiteral("thumbnail needs a FILE and a PICTURE"));
    job.file = files[0];
    job.picture = files[1];
    return job;
}

Outcome runThumbnail(const ThumbnailJob &job)
{
    const QuietDecoders quiet;
    const QImage image = fileThumbnail(job.file, job.size);
    if (image.isNull())
        return aboutFile(job.file, noPicture(job.file));
    const Outcome done = writeSafely(
        job.picture, [&image](QIODevice &device) { return image.save(&device, "PNG"); });
    return done ? done : aboutFile(job.picture, done.failure());
}

} // namespace marlowen
