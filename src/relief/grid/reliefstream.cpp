#include "relief/grid/reliefstream.h"
#include "relief/grid/cellcode.h"

#include "relief/grid/relief.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace marlowen {

namespace {

constexpr qsizetype blockCells = 32 * 1024;
constexpr qint64 bytesPerCell = 2 * sizeof(double); // height and reference height
constexpr qint64 scalarBytes = 3 * sizeof(double);

using Block = std::vector<quint64>;

char *bytesOf(Block &block)
{
    return reinterpret_cast<char *>(block.data());
}

CELL_LOOP void pack(const float *values, quint64 *packed, qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i)
        packed[i] = qToBigEndian(std::bit_cast<quint64>(static_cast<double>(values[i])));
}

CELL_LOOP void unpack(const quint64 *packed, float *values, qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i)
        values[i] = static_cast<float>(std::bit_cast<double>(qFromBigEndian(packed[i])));
}

bool writeLayer(QDataStream &stream, const GridLayer &layer, Block &block)
{
    for (qsizetype first = 0; first < layer.size(); first += blockCells) {
        const qsizetype count = std::min(blockCells, layer.size() - first);
        pack(layer.constData() + first, block.data(), count);
        const int bytes = static_cast<int>(count) * static_cast<int>(sizeof(quint64));
        if (stream.writeRawData(bytesOf(block), bytes) != bytes)
            return false;
    }
    return true;
}

/// Fills the layer; the number of repaired values is added to `repaired`.
bool readLayer(QDataStream &stream, GridLayer &layer, qsizetype &repaired)
{
    Block block(static_cast<size_t>(std::min(blockCells, layer.size())));
    float *values = layer.data();
    for (qsizetype first = 0; first < layer.size(); first += blockCells) {
        const qsizetype count = std::min(blockCells, layer.size() - first);
        const int bytes = static_cast<int>(count) * static_cast<int>(sizeof(quint64));
        if (stream.readRawData(bytesOf(block), bytes) != bytes)
            return false;
        unpack(block.data(), values + first, count);
        repaired += repairHeights({values + first, static_cast<size_t>(count)});
    }
    return true;
}

bool fits(const QDataStream &stream, qint64 width, qint64 height)
{
    if (width < 1 || height < 1 || width * height > std::numeric_limits<int>::max())
        return false;
    const QIODevice *device = stream.device();
    if (!device || device->isSequential())
        return true;
    return device->size() - device->pos() >= scalarBytes + width * height * bytesPerCell;
}

qsizetype repairScalars(Relief &relief)
{
    qsizetype repaired = 0;
    const auto require = [&repaired](bool valid, double &value, double substitute) {
        if (valid)
            return;
        value = substitute;
        ++repaired;
    };
    require(std::isfinite(relief.zScale), relief.zScale, 1.0);
    require(std::isfinite(relief.rangeMinimum), relief.rangeMinimum, 0.0);
    require(std::isfinite(relief.rangeMaximum), relief.rangeMaximum, 0.0);
    return repaired;
}

} // namespace

bool writeRelief(QDataStream &stream, const Relief &relief)
{
    stream << static_cast<qint32>(relief.width()) << static_cast<qint32>(relief.height());
    stream << relief.zScale << relief.rangeMinimum << relief.rangeMaximum;
    Block block(static_cast<size_t>(std::min(blockCells, relief.cells())));
    return writeLayer(stream, relief.heights(), block) &&
           writeLayer(stream, relief.referenceLayer(), block) && stream.status() == QDataStream::Ok;
}

ReliefRead readRelief(QDataStream &stream)
{
    qint32 width = 0;
    qint32 height = 0;
    stream >> width >> height;
    if (stream.status() != QDataStream::Ok || !fits(stream, width, height))
        return {};
    ReliefRead read{std::make_unique<Relief>(width, height), 0};
    Relief &relief = *read.relief;
    stream >> relief.zScale >> relief.rangeMinimum >> relief.rangeMaximum;
    if (!readLayer(stream, relief.heights(), read.repaired) ||
        !readLayer(stream, relief.referenceLayer(), read.repaired) ||
        stream.status() != QDataStream::Ok)
        return {};
    read.repaired += repairScalars(relief);
    return read;
}

CELL_LOOP qsizetype repairHeights(std::span<float> all)
{
    float *values = all.data();
    const auto count = static_cast<qsizetype>(all.size());
    uint32_t repaired = 0;
    for (qsizetype i = 0; i < count; ++i) {
        const bool valid = values[i] >= 0.0F && values[i] <= std::numeric_limits<float>::max();
        repaired += valid ? 0U : 1U;
        values[i] = valid ? values[i] : 0.0F;
    }
    return repaired;
}

} // namespace marlowen
