#include "import/wholeimage.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <cstdlib>

namespace marlowen {

namespace {

constexpr uchar endOfImage = 0xD9;
constexpr uchar startOfScan = 0xDA;

bool hasNoLength(uchar marker)
{
    // Restart and start-of-image markers, TEM, and the zero that stuffs a data byte of FF.
    return (marker >= 0xD0 && marker <= 0xD8) || marker <= 0x01;
}

/// Position behind the next FF byte run and its marker, which goes to `marker`; -1 at the end.
qsizetype nextMarker(const QByteArray &bytes, qsizetype from, uchar &marker)
{
    qsizetype at = bytes.indexOf('\xFF', from);
    while (at >= 0 && at < bytes.size() && bytes[at] == '\xFF')
        ++at;
    if (at < 0 || at >= bytes.size())
        return -1;
    marker = static_cast<uchar>(bytes[at]);
    return at + 1;
}

/// Walks the segments, whose contents may hold thumbnails with ends of their own.
bool jpegCutShort(const QByteArray &bytes)
{
    qsizetype at = 2;
    uchar marker = 0;
    while ((at = nextMarker(bytes, at, marker)) >= 0) {
        if (marker == endOfImage)
            return false;
        if (hasNoLength(marker))
            continue;
        if (at + 2 > bytes.size())
            return true;
        at += qFromBigEndian<quint16>(bytes.constData() + at);
        if (marker != startOfScan && at > bytes.size())
            return true;
    }
    return true;
}

/// Only uncompressed formats have a length that is known beforehand.
bool bmpCutShort(const QByteArray &header, qint64 size)
{
    constexpr qsizetype plainHeader = 34;
    if (header.size() < plainHeader)
        return true;
    const char *bytes = header.constData();
    const quint32 infoBytes = qFromLittleEndian<quint32>(bytes + 14);
    const quint32 compression = qFromLittleEndian<quint32>(bytes + 30);
    constexpr quint32 plain = 0;
    constexpr quint32 bitFields = 3;
    constexpr quint32 smallestInfo = 40;
    if (infoBytes < smallestInfo || (compression != plain && compression != bitFields))
        return false;
    const qint64 offset = qFromLittleEndian<quint32>(bytes + 10);
    const qint64 width = qFromLittleEndian<qint32>(bytes + 18);
    const qint64 height = std::abs(static_cast<qint64>(qFromLittleEndian<qint32>(bytes + 22)));
    const qint64 rowBytes = (width * qFromLittleEndian<quint16>(bytes + 28) + 31) / 32 * 4;
    return height > 0 && rowBytes > (size - offset) / height;
}

} // namespace

bool imageCutShort(QIODevice &device)
{
    constexpr qint64 headerBytes = 64;
    const QByteArray header = device.peek(headerBytes);
    bool cut = false;
    if (header.startsWith("BM")) {
        cut = bmpCutShort(header, device.size());
    } else if (header.startsWith("\xFF\xD8")) {
        cut = jpegCutShort(device.readAll());
        device.seek(0);
    }
    return cut;
}

} // namespace marlowen
