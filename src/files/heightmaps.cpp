#include "files/heightmaps.h"

#include "files/safefile.h"
#include "relief/grid/reliefstream.h"

#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <new>
#include <optional>

namespace marlowen {

namespace {

static_assert(std::endian::native == std::endian::little, "rows are written as they lie in memory");

constexpr qint64 longestHeader = 256;

struct PfmHeader
{
    int width = 0;
    int height = 0;
    bool littleEndian = true;
    qint64 bytes = 0; ///< of the header itself
};

Failure invalid(const QString &detail)
{
    return {QStringLiteral("Invalid File"), QStringLiteral("Error! Not a PFM Height Map"), detail};
}

bool isSpace(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

/// The next word of the text and the one separator after it.
QByteArray nextWord(const QByteArray &text, qint64 &position)
{
    while (position < text.size() && isSpace(text[position]))
        ++position;
    const qint64 start = position;
    while (position < text.size() && !isSpace(text[position]))
        ++position;
    const QByteArray word = text.mid(start, position - start);
    // Without the separator the word may be cut.
    if (position == text.size())
        return {};
    ++position;
    return word;
}

std::optional<PfmHeader> parseHeader(const QByteArray &text)
{
    PfmHeader header;
    bool widthOk = false;
    bool heightOk = false;
    bool scaleOk = false;
    if (nextWord(text, header.bytes) != "Pf")
        return {};
    header.width = nextWord(text, header.bytes).toInt(&widthOk);
    header.height = nextWord(text, header.bytes).toInt(&heightOk);
    const double scale = nextWord(text, header.bytes).toDouble(&scaleOk);
    if (!widthOk || !heightOk || !scaleOk || header.width < 1 || header.height < 1)
        return {};
    header.littleEndian = scale < 0.0;
    return header;
}

bool readRows(QFile &file, const PfmHeader &header, FloatGrid &grid)
{
    const qint64 bytes = static_cast<qint64>(grid.columns()) * static_cast<qint64>(sizeof(float));
    for (int y = header.height - 1; y >= 0; --y) {
        float *row = grid.row(y);
        if (file.read(reinterpret_cast<char *>(row), bytes) != bytes)
            return false;
        if (!header.littleEndian)
            qbswap<sizeof(float)>(row, header.width, row);
    }
    return true;
}

QImage greyImage(const GridView &grid)
{
    const auto [lowest, highest] = std::minmax_element(grid.values, grid.values + grid.cells());
    const double low = *lowest;
    const double range = static_cast<double>(*highest) - low;
    const double scale = range > 0.0 ? std::numeric_limits<quint16>::max() / range : 0.0;
    QImage image(grid.width, grid.height, QImage::Format_Grayscale16);
    for (int y = 0; y < image.height(); ++y) {
        quint16 *line = reinterpret_cast<quint16 *>(image.scanLine(y));
        const float *row = grid.row(y);
        for (int x = 0; x < grid.width; ++x)
            line[x] =
                static_cast<quint16>(std::lround((static_cast<double>(row[x]) - low) * scale));
    }
    return image;
}

} // namespace

Outcome savePfm(const GridView &grid, const QString &path)
{
    return writeSafely(path, [&grid](QIODevice &device) {
        const QByteArray header = "Pf\n" + QByteArray::number(grid.width) + ' ' +
                                  QByteArray::number(grid.height) + "\n-1.0\n";
        bool ok = device.write(header) == header.size();
        const qint64 bytes = static_cast<qint64>(grid.width) * static_cast<qint64>(sizeof(float));
        for (int y = grid.height - 1; y >= 0 && ok; --y)
            ok = device.write(reinterpret_cast<const char *>(grid.row(y)), bytes) == bytes;
        return ok;
    });
}

Result<FloatGrid> loadPfm(const QString &path)
{
    QFile file(path);
    if (const Outcome opened = openRegularFile(file, openFailed()); !opened)
        return opened.failure();
    const std::optional<PfmHeader> header = parseHeader(file.peek(longestHeader));
    if (!header)
        return invalid(QStringLiteral("the header is not that of a grey PFM"));
    const qint64 cells = static_cast<qint64>(header->width) * header->height;
    const bool held = cells <= (file.size() - header->bytes) / static_cast<qint64>(sizeof(float));
    if (cells > std::numeric_limits<int>::max() || !held || !file.seek(header->bytes))
        return loadFailed(QStringLiteral("the file is shorter than its header says"));
    try {
        FloatGrid grid(header->width, header->height);
        if (!readRows(file, *header, grid))
            return loadFailed(file.errorString());
        return grid;
    } catch (const std::bad_alloc &) {
        return loadFailed(QStringLiteral("not enough memory"));
    }
}

std::unique_ptr<Relief> reliefOf(const FloatGrid &grid)
{
    auto relief = std::make_unique<Relief>(grid.width, grid.height);
    std::copy(grid.values.begin(), grid.values.end(), relief->heights().data());
    relief->referenceLayer().copyFrom(relief->heights());
    const auto [lowest, highest] = std::minmax_element(grid.values.begin(), grid.values.end());
    relief->rangeMaximum = static_cast<double>(*highest) - static_cast<double>(*lowest);
    return relief;
}

Result<std::unique_ptr<Relief>> loadHeightMap(const QString &path)
{
    Result<FloatGrid> loaded = loadPfm(path);
    if (!loaded)
        return loaded.failure();
    FloatGrid grid = loaded.take();
    repairHeights(grid.values);
    return reliefOf(grid);
}

Outcome saveHeightPng(const GridView &grid, const QString &path)
{
    const QImage image = greyImage(grid);
    if (image.isNull())
        return saveFailed(QStringLiteral("the relief is too large for a PNG"));
    return writeSafely(path, [&image](QIODevice &device) {
        return QImageWriter(&device, QByteArrayLiteral("png")).write(image);
    });
}

} // namespace marlowen
