#include "files/pictures/pngfile.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>

#include <zlib.h>

namespace marlowen {
namespace {

constexpr qint64 signatureBytes = 8;
constexpr qint64 mostExifBytes = 1 << 20;
constexpr qint64 headerBytes = 13;
/// Largest number of bytes that one compressed byte can stand for.
constexpr qint64 mostExpansion = 1032;

struct Chunk
{
    QByteArray type;
    QByteArray start; ///< its first bytes, all of them when they are few
    qint64 bytes = 0;
    bool sound = false;
};

/// Reads the chunk at the device's position and stops after it. Keeps the start of those that are
/// looked at.
Chunk nextChunk(QIODevice &device)
{
    constexpr qint64 pieceBytes = 1 << 16;
    const QByteArray head = device.read(8);
    if (head.size() < 8)
        return {};
    Chunk chunk{head.sliced(4), {}, qFromBigEndian<quint32>(head.constData())};
    uLong sum = crc32(0, reinterpret_cast<const Bytef *>(head.constData()) + 4, 4);
    const bool kept =
        chunk.type == "IHDR" || (chunk.type == "eXIf" && chunk.bytes <= mostExifBytes);
    for (qint64 left = chunk.bytes; left > 0;) {
        const QByteArray piece = device.read(std::min(left, pieceBytes));
        if (piece.isEmpty())
            return chunk;
        sum = crc32(sum, reinterpret_cast<const Bytef *>(piece.constData()),
                    static_cast<uInt>(piece.size()));
        if (kept)
            chunk.start += piece;
        left -= piece.size();
    }
    const QByteArray stored = device.read(4);
    chunk.sound = stored.size() == 4 && qFromBigEndian<quint32>(stored.constData()) == sum;
    return chunk;
}

/// Bytes of the rows without their compression; 0 when the header makes no sense.
qint64 rowsBytes(const QByteArray &header)
{
    static constexpr int channels[] = {1, 0, 3, 1, 2, 0, 4};
    if (header.size() != headerBytes)
        return 0;
    const auto color = static_cast<size_t>(header[9]);
    if (color >= std::size(channels))
        return 0;
    const qint64 width = qFromBigEndian<quint32>(header.constData());
    const qint64 height = qFromBigEndian<quint32>(header.constData() + 4);
    const qint64 rowBits = width * header[8] * channels[color];
    return std::min<qint64>(height, 1LL << 31) * (1 + rowBits / 8);
}

/// The orientation in a TIFF header with its first directory.
int orientationIn(const QByteArray &exif)
{
    const bool little = exif.startsWith("II");
    const auto number16 = [&exif, little](qsizetype at) -> quint32 {
        if (at < 0 || at + 2 > exif.size())
            return 0;
        const char *bytes = exif.constData() + at;
        return little ? qFromLittleEndian<quint16>(bytes) : qFromBigEndian<quint16>(bytes);
    };
    const auto number32 = [number16, little](qsizetype at) {
        const quint32 first = number16(at);
        const quint32 second = number16(at + 2);
        return little ? second << 16U | first : first << 16U | second;
    };
    constexpr quint32 orientationTag = 0x0112;
    constexpr qsizetype entryBytes = 12;
    const qsizetype directory = number32(4);
    const quint32 entries = number16(directory);
    for (quint32 i = 0; i < entries; ++i) {
        const qsizetype entry = directory + 2 + entryBytes * static_cast<qsizetype>(i);
        if (number16(entry) == orientationTag)
            return static_cast<int>(number16(entry + 8));
    }
    return 1;
}

} // namespace

PngReport inspectPng(QIODevice &device)
{
    PngReport report;
    qint64 promised = 0;
    qint64 compressed = 0;
    bool grey = false;
    device.seek(signatureBytes);
    Chunk chunk;
    do {
        chunk = nextChunk(device);
        if (!chunk.sound) {
            report.damage = device.atEnd() ? QStringLiteral("the picture is cut short")
                                           : QStringLiteral("a checksum of the picture is wrong");
            break;
        }
        if (chunk.type == "IHDR") {
            promised = rowsBytes(chunk.start);
            grey = promised > 0 && chunk.start[9] == 0;
        }
        if (chunk.type == "tRNS")
            report.clearGrey = grey;
        if (chunk.type == "IDAT")
            compressed += chunk.bytes;
        if (chunk.type == "eXIf")
            report.orientation = orientationIn(chunk.start);
    } while (chunk.type != "IEND");
    if (report.damage.isEmpty() && promised / mostExpansion > compressed)
        report.damage = QStringLiteral("the picture is cut short");
    if (report.orientation < 1 || report.orientation > 8)
        report.orientation = 1;
    device.seek(0);
    return report;
}

} // namespace marlowen
