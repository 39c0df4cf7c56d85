#include "files/workspacethumbnail.h"

#include "files/heightpicture.h"
#include "files/safefile.h"
#include "relief/grid/floatgrid.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

namespace marlowen {

namespace {

constexpr quint32 magic = 0x50744D77;
constexpr qint64 headerBytes = 40;
constexpr qint64 cellBytes = 8;
constexpr qint64 layers = 2;

struct Header
{
    int width = 0;
    int height = 0;
    double zScale = 1.0;
};

/// Every `stride`-th cell of the file, row 0 first.
struct SampledHeights
{
    FloatGrid heights;
    double stride = 1.0;
    double zScale = 1.0;
};

double realAt(const char *bytes)
{
    const auto bits = qFromBigEndian<quint64>(bytes);
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::optional<Header> readHeader(QFile &file)
{
    char bytes[headerBytes];
    if (file.read(bytes, headerBytes) != headerBytes || qFromBigEndian<quint32>(bytes) != magic)
        return {};
    const Header header{qFromBigEndian<qint32>(bytes + 8), qFromBigEndian<qint32>(bytes + 12),
                        realAt(bytes + 16)};
    if (header.width < 1 || header.height < 1 || !std::isfinite(header.zScale))
        return {};
    const qint64 rowBytes = header.width * cellBytes * layers;
    if (header.height > (file.size() - headerBytes) / rowBytes)
        return {};
    return header;
}

std::optional<SampledHeights> sample(QFile &file, int side)
{
    const std::optional<Header> header = readHeader(file);
    if (!header)
        return {};
    SampledHeights sampled;
    sampled.stride = std::max(1.0, double(std::max(header->width, header->height)) / side);
    sampled.zScale = header->zScale;
    sampled.heights = FloatGrid(std::max(1, int(header->width / sampled.stride)),
                                std::max(1, int(header->height / sampled.stride)));
    FloatGrid &grid = sampled.heights;
    QByteArray row(header->width * cellBytes, Qt::Uninitialized);
    for (int y = 0; y < grid.height; ++y) {
        const auto sourceRow = qint64((y + 0.5) * sampled.stride);
        if (!file.seek(headerBytes + sourceRow * row.size()) ||
            file.read(row.data(), row.size()) != row.size())
            return {};
        for (int x = 0; x < grid.width; ++x) {
            const auto column = qint64((x + 0.5) * sampled.stride);
            grid.row(y)[x] = static_cast<float>(realAt(row.constData() + column * cellBytes));
        }
    }
    return sampled;
}

} // namespace

QImage workspaceThumbnail(const QString &path, int side)
{
    QFile file(path);
    if (side < 1 || !openRegularFile(file, {}))
        return {};
    const std::optional<SampledHeights> sampled = sample(file, side);
    if (!sampled)
        return {};
    const FloatGrid &grid = sampled->heights;
    return litHeights({grid.values.data(), grid.width, grid.height},
                      sampled->zScale / sampled->stride);
}

} // namespace marlowen
