#include "files/workspacethumbnail.h"

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
            const double height = realAt(row.constData() + column * cellBytes);
            grid.row(y)[x] = std::isfinite(height) && height > 0.0 ? float(height) : 0.0F;
        }
    }
    return sampled;
}

/// Diffuse light from the top left on a warm material.
QImage lit(const SampledHeights &sampled)
{
    const FloatGrid &grid = sampled.heights;
    const double slope = sampled.zScale / (2.0 * sampled.stride);
    QImage image(grid.width, grid.height, QImage::Format_ARGB32);
    const auto at = [&grid](int x, int y) {
        return grid.row(std::clamp(y, 0, grid.height - 1))[std::clamp(x, 0, grid.width - 1)];
    };
    for (int y = 0; y < grid.height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(grid.height - 1 - y));
        for (int x = 0; x < grid.width; ++x) {
            const double dx = double(at(x + 1, y) - at(x - 1, y)) * slope;
            const double dy = double(at(x, y + 1) - at(x, y - 1)) * slope;
            // Light direction (-0.5, 0.5, 0.707), normal (-dx, -dy, 1).
            const double cosine = (0.5 * dx - 0.5 * dy + 0.707) / std::sqrt(dx * dx + dy * dy + 1);
            const double light = std::clamp(0.18 + 0.95 * cosine, 0.0, 1.15);
            const auto shade = [light](double full) { return std::min(255, int(full * light)); };
            line[x] =
                at(x, y) == 0.0F ? qRgba(0, 0, 0, 0) : qRgb(shade(232), shade(205), shade(170));
        }
    }
    return image;
}

} // namespace

QImage workspaceThumbnail(const QString &path, int side)
{
    QFile file(path);
    if (side < 1 || !openRegularFile(file, {}))
        return {};
    const std::optional<SampledHeights> sampled = sample(file, side);
    return sampled ? lit(*sampled) : QImage();
}

} // namespace marlowen
