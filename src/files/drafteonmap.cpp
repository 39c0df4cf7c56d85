#include "files/drafteonmap.h"

#include "files/safefile.h"
#include "relief/grid/relief.h"

#include <QDataStream>

#include <algorithm>
#include <bit>
#include <limits>
#include <vector>

namespace marlowen {

namespace {

static_assert(std::endian::native == std::endian::little,
              "values are written as they lie in memory");

constexpr double fullScale = 1048576.0;
constexpr double smallestKept = 0.1;
constexpr qsizetype blockCells = 64 * 1024;

void scaleBlock(const float *heights, float *scaled, qsizetype count, double lowest, double range)
{
    for (qsizetype i = 0; i < count; ++i) {
        const double value = (static_cast<double>(heights[i]) - lowest) * fullScale / range;
        scaled[i] = static_cast<float>(value < smallestKept ? 0.0 : value);
    }
}

} // namespace

bool writeDrafteonMap(QDataStream &stream, const Relief &relief)
{
    const float *heights = relief.heights().constData();
    const auto [lowest, highest] = std::minmax_element(heights, heights + relief.cells());
    const double low = *lowest;
    const double range = *highest == *lowest ? 1.0 : static_cast<double>(*highest) - low;
    const double largest = std::numeric_limits<qint32>::max();
    stream.setByteOrder(QDataStream::BigEndian);
    stream << qint32{2} << static_cast<qint32>(relief.width())
           << static_cast<qint32>(relief.height()) << static_cast<qint32>(std::min(range, largest));
    std::vector<float> block(static_cast<size_t>(std::min(blockCells, relief.cells())));
    for (qsizetype first = 0; first < relief.cells(); first += blockCells) {
        const qsizetype count = std::min(blockCells, relief.cells() - first);
        scaleBlock(heights + first, block.data(), count, low, range);
        stream.writeRawData(reinterpret_cast<const char *>(block.data()),
                            static_cast<int>(count) * static_cast<int>(sizeof(float)));
        if (stream.status() != QDataStream::Ok)
            return false;
    }
    return true;
}

Outcome exportDrafteonMap(const Relief &relief, const QString &path)
{
    const auto write = [&relief](QIODevice &device) {
        QDataStream stream(&device);
        return writeDrafteonMap(stream, relief);
    };
    return writeSafely(path, write, openFailed());
}

} // namespace marlowen
