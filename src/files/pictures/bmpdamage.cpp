#include "files/pictures/bmpdamage.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <bit>
#include <cstdlib>

namespace marlowen {
namespace {

enum Compression : quint32 { Plain = 0, RunLength8 = 1, RunLength4 = 2, BitFields = 3 };

/// The values of the two headers.
struct Header
{
    qint64 dataAt = 0;
    qint64 width = 0;
    qint64 height = 0;
    int bits = 0;
    quint32 compression = Plain;
    quint32 masks[3]{};
};

constexpr qsizetype shortHeaderBytes = 26;
constexpr qsizetype plainHeaderBytes = 54;
constexpr qsizetype maskedHeaderBytes = 66;
constexpr quint32 shortInfoBytes = 12;

template <typename Number>
Number numberAt(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

/// False when the headers are cut short.
bool readHeader(const QByteArray &bytes, Header &header)
{
    if (bytes.size() < shortHeaderBytes)
        return false;
    header.dataAt = numberAt<quint32>(bytes, 10);
    if (numberAt<quint32>(bytes, 14) == shortInfoBytes) {
        header.width = numberAt<quint16>(bytes, 18);
        header.height = numberAt<quint16>(bytes, 20);
        header.bits = numberAt<quint16>(bytes, 24);
        return true;
    }
    if (bytes.size() < plainHeaderBytes)
        return false;
    header.width = numberAt<qint32>(bytes, 18);
    header.height = std::abs(static_cast<qint64>(numberAt<qint32>(bytes, 22)));
    header.bits = numberAt<quint16>(bytes, 28);
    header.compression = numberAt<quint32>(bytes, 30);
    if (header.compression != BitFields)
        return true;
    if (bytes.size() < maskedHeaderBytes)
        return false;
    for (qsizetype i = 0; i < 3; ++i)
        header.masks[i] = numberAt<quint32>(bytes, plainHeaderBytes + 4 * i);
    return true;
}

/// One run of 4 to 8 bits: the decoder drops bits beyond 8, and makes values of few bits too dark.
bool isUsable(quint32 mask)
{
    const int bits = std::popcount(mask);
    return bits >= 4 && bits <= 8 && mask >> std::countr_zero(mask) == (1U << bits) - 1U;
}

bool hasUsableFields(const Header &header)
{
    quint32 seen = 0;
    for (const quint32 mask : header.masks) {
        if (!isUsable(mask) || (seen & mask) != 0)
            return false;
        seen |= mask;
    }
    return header.bits >= 32 || seen >> header.bits == 0;
}

/// Whether run-length data goes on to its end mark, or to the last cell.
bool runsAreWhole(const QByteArray &data, const Header &header)
{
    constexpr uchar endOfRow = 0;
    constexpr uchar endOfPicture = 1;
    constexpr uchar move = 2;
    const qint64 perByte = header.compression == RunLength4 ? 2 : 1;
    qint64 x = 0;
    qint64 y = 0;
    for (qsizetype at = 0; at + 1 < data.size();) {
        const auto count = static_cast<uchar>(data[at]);
        const auto value = static_cast<uchar>(data[at + 1]);
        at += 2;
        if (count > 0) {
            x += count;
        } else if (value == endOfPicture) {
            return true;
        } else if (value == endOfRow) {
            x = 0;
            ++y;
        } else if (value == move) {
            if (at + 1 >= data.size())
                return false;
            x += static_cast<uchar>(data[at]);
            y += static_cast<uchar>(data[at + 1]);
            at += 2;
        } else {
            x += value;
            at += ((value + perByte - 1) / perByte + 1) / 2 * 2; // padded to two bytes
        }
        if (at > data.size())
            return false;
    }
    return y >= header.height || (y == header.height - 1 && x >= header.width);
}

bool rowsAreWhole(QIODevice &device, const Header &header)
{
    if (header.compression == RunLength8 || header.compression == RunLength4)
        return device.seek(header.dataAt) && runsAreWhole(device.readAll(), header);
    const qint64 rowBytes = (header.width * header.bits + 31) / 32 * 4;
    return header.height > 0 && rowBytes <= (device.size() - header.dataAt) / header.height;
}

} // namespace

QString bmpDamage(QIODevice &device)
{
    device.seek(0);
    Header header;
    const bool whole =
        readHeader(device.read(maskedHeaderBytes), header) && rowsAreWhole(device, header);
    device.seek(0);
    if (!whole)
        return QStringLiteral("the picture is cut short");
    if (header.compression == BitFields && !hasUsableFields(header))
        return QStringLiteral("its bit fields are not supported");
    return {};
}

} // namespace marlowen
