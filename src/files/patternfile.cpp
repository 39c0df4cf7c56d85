#include "files/patternfile.h"

#include "base/sessionlog.h"
#include "files/fio/fio.h"
#include "files/fio/fioheader.h"
#include "files/heightblocks.h"
#include "files/heightmaps.h"
#include "files/heightpicture.h"
#include "files/safefile.h"
#include "relief/grid/reliefstream.h"

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <cmath>
#include <limits>
#include <new>

namespace marlowen {

namespace {

constexpr quint16 newestVersion = 1;

/// One row an attribute.
struct AttributeRow
{
    quint8 key;
    QString PatternAttributes::*text;
};

constexpr AttributeRow attributeRows[] = {
    {1, &PatternAttributes::title},
    {2, &PatternAttributes::author},
    {3, &PatternAttributes::units},
    {4, &PatternAttributes::created},
};

/// A double that reads back unchanged; the container's own doubles keep ten digits.
QString exactText(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

bool writeInfo(Fio &fio, const PatternToSave &pattern)
{
    FioHeader header;
    header.type = FioHeader::patternType;
    header.version = newestVersion;
    for (const AttributeRow &row : attributeRows)
        header.setAttribute(row.key, pattern.attributes.*row.text);
    return header.write(fio) && fio.write(static_cast<quint32>(pattern.heights.width)) &&
           fio.write(static_cast<quint32>(pattern.heights.height)) &&
           fio.write(exactText(pattern.zScale)) &&
           fio.write(heightThumbnail(pattern.heights, pattern.zScale, patternThumbnailSide));
}

bool readHeader(Fio &fio, PatternAttributes &attributes)
{
    FioHeader header;
    if (!header.read(fio))
        return false;
    if (header.type != FioHeader::patternType || header.version < 1)
        return fio.failCorrupted();
    if (header.version > newestVersion)
        return fio.fail(Fio::newerVersionMessage());
    for (const AttributeRow &row : attributeRows)
        attributes.*row.text = header.attribute(row.key);
    return true;
}

/// Reads everything up to the heights; the thumbnail stays encoded, as the container's images are.
bool readInfo(Fio &fio, PatternInfo &info, QByteArray &thumbnail)
{
    quint32 width = 0;
    quint32 height = 0;
    if (!readHeader(fio, info.attributes) || !fio.read(width) || !fio.read(height) ||
        !fio.read(info.zScale))
        return false;
    constexpr auto most = static_cast<quint64>(std::numeric_limits<int>::max());
    if (width < 1 || height < 1 || quint64{width} * height > most || !std::isfinite(info.zScale))
        return fio.failCorrupted();
    info.width = static_cast<int>(width);
    info.height = static_cast<int>(height);
    quint32 thumbnailBytes = 0;
    return fio.read(thumbnailBytes) && fio.readBlock(thumbnail, thumbnailBytes);
}

/// Looks at the size before the picture is decoded.
bool decodeThumbnail(Fio &fio, QByteArray &encoded, QImage &thumbnail)
{
    QBuffer buffer(&encoded);
    QImageReader reader(&buffer, "png");
    const QSize size = reader.size();
    constexpr int most = patternThumbnailSide;
    return (size.width() <= most && size.height() <= most && reader.read(&thumbnail)) ||
           fio.fail(QStringLiteral("Image decode failure"));
}

bool readWhole(Fio &fio, const QFile &file, Pattern &pattern, Progress &progress)
{
    fio.pushDigest();
    QByteArray thumbnail;
    if (!readInfo(fio, pattern.info, thumbnail))
        return false;
    pattern.heights.width = pattern.info.width;
    pattern.heights.height = pattern.info.height;
    if (!heightBlocksFit(pattern.heights.cells(), file.size() - file.pos()))
        return fio.fail(QStringLiteral("the file is shorter than its header says"));
    if (!readHeightBlocks(fio, pattern.heights, progress))
        return false;
    const QByteArray expected = fio.popDigest();
    QByteArray stored;
    if (!fio.readBlock(stored, expected.size()))
        return false;
    return (stored == expected || fio.fail(QStringLiteral("the checksum does not match"))) &&
           fio.checkEnd() && decodeThumbnail(fio, thumbnail, pattern.info.thumbnail);
}

/// Messages of the container that say enough on their own are kept; the others become the detail.
Failure invalidPattern(const FioStream &fio, const QFile &file)
{
    const QString title = QStringLiteral("Invalid File");
    if (fio.errorString() == FioStream::newerVersionMessage())
        return {title, fio.errorString()};
    // A device has no words for a read that ends early.
    const bool ended =
        file.error() == QFileDevice::NoError && fio.errorString() == file.errorString();
    return {title, QStringLiteral("Error! The pattern file is damaged or not a pattern file"),
            ended ? QStringLiteral("the file ends too early") : fio.errorString()};
}

void repair(Pattern &pattern, const QString &path)
{
    const qsizetype repaired = repairHeights(pattern.heights.values);
    if (repaired == 0)
        return;
    logWarning() << path << ": " << repaired << " invalid values were replaced\n";
    logFlush();
}

} // namespace

PatternAttributes newPatternAttributes(const QString &path, const QString &units)
{
    PatternAttributes attributes;
    attributes.title = QFileInfo(path).completeBaseName();
    attributes.units = units;
    attributes.created = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    return attributes;
}

Outcome savePattern(const PatternToSave &pattern, const QString &path, Progress &progress)
{
    QString reason;
    const Outcome saved = writeSafely(path, [&](QIODevice &device) {
        Fio fio;
        fio.attach(&device);
        fio.pushDigest();
        const bool written =
            writeInfo(fio, pattern) && writeHeightBlocks(fio, pattern.heights, progress);
        const QByteArray digest = fio.popDigest();
        const bool ok = written && fio.writeData(digest.constData(), int(digest.size()));
        reason = fio.errorString();
        return ok;
    });
    if (!saved && saved.failure().detail.isEmpty())
        return Failure{saved.failure().title, saved.failure().sentence, reason};
    return saved;
}

Result<Pattern> loadPattern(const QString &path, Progress &progress)
{
    QFile file(path);
    if (const Outcome opened = openRegularFile(file, openFailed()); !opened)
        return opened.failure();
    Fio fio;
    fio.attach(&file);
    Pattern pattern;
    try {
        if (!readWhole(fio, file, pattern, progress))
            return progress.cancelled() ? loadFailed() : invalidPattern(fio, file);
    } catch (const std::bad_alloc &) {
        return loadFailed(QStringLiteral("not enough memory"));
    }
    repair(pattern, path);
    return pattern;
}

Result<std::unique_ptr<Relief>> openPattern(const QString &path)
{
    Progress quiet;
    const Result<Pattern> loaded = loadPattern(path, quiet);
    if (!loaded)
        return loaded.failure();
    try {
        std::unique_ptr<Relief> relief = reliefOf(loaded.value().heights);
        relief->zScale = loaded.value().info.zScale;
        return relief;
    } catch (const std::bad_alloc &) {
        return loadFailed(QStringLiteral("not enough memory"));
    }
}

Result<PatternInfo> readPatternInfo(const QString &path)
{
    QFile file(path);
    if (const Outcome opened = openRegularFile(file, openFailed()); !opened)
        return opened.failure();
    Fio fio;
    fio.attach(&file);
    PatternInfo info;
    QByteArray thumbnail;
    if (!readInfo(fio, info, thumbnail) || !decodeThumbnail(fio, thumbnail, info.thumbnail))
        return invalidPattern(fio, file);
    return info;
}

} // namespace marlowen
