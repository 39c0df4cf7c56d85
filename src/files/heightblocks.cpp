#include "files/heightblocks.h"

#include "files/fio/fiostream.h"

#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

namespace marlowen {

namespace {

static_assert(std::endian::native == std::endian::little,
              "heights are written as they lie in memory");

constexpr qint64 blockCells = 65536;
constexpr qint64 cellBytes = sizeof(float);
/// Faster than the usual level 6 by a third and larger by a few hundredths.
constexpr int deflateLevel = 3;
/// Largest number of bytes that one deflated byte can stand for.
constexpr qint64 highestRatio = 1032;

enum BlockForm : quint8 { Plain = 0, Deflated = 1 };

struct BlockHead
{
    quint8 form = Plain;
    quint32 bytes = 0;
};

constexpr int headBytes = 5;

/// The zlib stream of the bytes; nothing when it is not shorter.
std::optional<QByteArray> deflated(const char *bytes, qint64 count)
{
    QByteArray packed(count - 1, Qt::Uninitialized);
    auto size = static_cast<uLongf>(packed.size());
    if (compress2(reinterpret_cast<Bytef *>(packed.data()), &size,
                  reinterpret_cast<const Bytef *>(bytes), static_cast<uLong>(count),
                  deflateLevel) != Z_OK)
        return {};
    packed.truncate(static_cast<qsizetype>(size));
    return packed;
}

bool inflateInto(char *bytes, qint64 count, const QByteArray &packed)
{
    auto size = static_cast<uLongf>(count);
    auto taken = static_cast<uLong>(packed.size());
    return uncompress2(reinterpret_cast<Bytef *>(bytes), &size,
                       reinterpret_cast<const Bytef *>(packed.constData()), &taken) == Z_OK &&
           size == static_cast<uLongf>(count) && taken == static_cast<uLong>(packed.size());
}

bool writeBlock(FioStream &fio, const char *bytes, qint64 count)
{
    const std::optional<QByteArray> packed = deflated(bytes, count);
    const qint64 stored = packed ? packed->size() : count;
    char head[headBytes];
    head[0] = packed ? Deflated : Plain;
    qToBigEndian(static_cast<quint32>(stored), head + 1);
    return fio.writeData(head, headBytes) &&
           fio.writeData(packed ? packed->constData() : bytes, static_cast<int>(stored));
}

bool readBlockInto(FioStream &fio, char *bytes, qint64 count)
{
    char head[headBytes];
    if (!fio.readData(head, headBytes))
        return false;
    const qint64 stored = qFromBigEndian<quint32>(head + 1);
    if (head[0] == Plain && stored == count)
        return fio.readData(bytes, static_cast<int>(count));
    QByteArray packed;
    if (head[0] != Deflated || stored >= count)
        return fio.failCorrupted();
    return fio.readBlock(packed, stored) &&
           (inflateInto(bytes, count, packed) || fio.failCorrupted());
}

} // namespace

bool writeHeightBlocks(FioStream &fio, const GridView &heights, Progress &progress)
{
    const qint64 cells = heights.cells();
    for (qint64 first = 0; first < cells; first += blockCells) {
        const qint64 count = std::min(blockCells, cells - first);
        const auto *bytes = reinterpret_cast<const char *>(heights.values + first);
        if (progress.cancelled() || !writeBlock(fio, bytes, count * cellBytes))
            return false;
        progress.advance(static_cast<double>(first + count) / static_cast<double>(cells));
    }
    return true;
}

bool heightBlocksFit(qint64 cells, qint64 bytes)
{
    return cells * cellBytes / highestRatio <= bytes;
}

bool readHeightBlocks(FioStream &fio, FloatGrid &heights, Progress &progress)
{
    const qint64 cells = heights.cells();
    heights.values.clear();
    for (qint64 first = 0; first < cells; first += blockCells) {
        const qint64 count = std::min(blockCells, cells - first);
        heights.values.resize(static_cast<size_t>(first + count));
        auto *bytes = reinterpret_cast<char *>(heights.values.data() + first);
        if (progress.cancelled() || !readBlockInto(fio, bytes, count * cellBytes))
            return false;
        progress.advance(static_cast<double>(first + count) / static_cast<double>(cells));
    }
    return true;
}

} // namespace marlowen
