#include "files/stlwriter.h"

#include "files/safefile.h"
#include "files/stlframe.h"
#include "relief/grid/cellcode.h"
#include "relief/grid/heightscan.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"

#include <QDataStream>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace marlowen {

namespace {

/// The upward unit normals of the triangles of one kind in a row of squares.
struct Normals
{
    explicit Normals(size_t count)
        : x(count)
        , y(count)
        , z(count)
    {
    }

    std::vector<float> x;
    std::vector<float> y;
    std::vector<float> z;
};

/// Z values of one grid row: exact for the slopes, narrowed for the vertices.
struct RowZ
{
    explicit RowZ(size_t count)
        : exact(count)
        , stored(count)
    {
    }

    std::vector<double> exact;
    std::vector<float> stored;
};

CELL_LOOP void fillZ(const float *heights, double zFactor, RowZ &row)
{
    double *exact = row.exact.data();
    float *stored = row.stored.data();
    const size_t count = row.exact.size();
    for (size_t i = 0; i < count; ++i) {
        exact[i] = static_cast<double>(heights[i]) / cellsPerInch * zFactor;
        stored[i] = static_cast<float>(exact[i]);
    }
}

/// Normal (-slopeX, -slopeY, 1) / length of the planes whose Z rises from `low` to `highX` along X
/// and from `lowY` to `highY` along Y within one cell.
struct Slopes
{
    const double *lowX;
    const double *highX;
    const double *lowY;
    const double *highY;
};

CELL_LOOP void fillNormals(const Slopes &slopes, Normals &normals)
{
    const Slopes s = slopes;
    float *x = normals.x.data();
    float *y = normals.y.data();
    float *z = normals.z.data();
    const size_t count = normals.x.size();
    for (size_t i = 0; i < count; ++i) {
        // Falls instead of rises: the negative of a level rise would be a negative zero.
        const double dx = (s.lowX[i] - s.highX[i]) * cellsPerInch;
        const double dy = (s.lowY[i] - s.highY[i]) * cellsPerInch;
        const double scale = 1.0 / std::sqrt(1.0 + dx * dx + dy * dy);
        x[i] = static_cast<float>(dx * scale);
        y[i] = static_cast<float>(dy * scale);
        z[i] = static_cast<float>(scale);
    }
}

bool empty(float a, float b, float c)
{
    return a == 0.0F && b == 0.0F && c == 0.0F;
}

struct SquareCounts
{
    const float *upper;
    const float *lower;
};

CELL_LOOP uint32_t countRow(const SquareCounts &rows, int width)
{
    const float *upper = rows.upper;
    const float *lower = rows.lower;
    uint32_t count = 0;
    for (int c = 0; c + 1 < width; ++c) {
        const bool shared = upper[c + 1] != 0.0F || lower[c] != 0.0F;
        count +=
            (shared || upper[c] != 0.0F ? 1U : 0U) + (shared || lower[c + 1] != 0.0F ? 1U : 0U);
    }
    return count;
}

uint32_t countFacets(const GridView &grid)
{
    uint32_t count = 0;
    for (int r = 0; r + 1 < grid.height; ++r)
        count += countRow({grid.row(r), grid.row(r + 1)}, grid.width);
    return count;
}

/// Everything the squares between two grid rows need.
class GridRows
{
public:
    explicit GridRows(const StlGrid &grid)
        : m_grid(grid)
        , m_upper(columns())
        , m_lower(columns())
        , m_first(columns() - 1)
        , m_second(columns() - 1)
        , m_x(columns())
    {
        for (size_t c = 0; c < m_x.size(); ++c)
            m_x[c] = static_cast<float>(static_cast<double>(c) / cellsPerInch);
        fillZ(grid.heights.row(0), grid.zFactor, m_lower);
    }

    size_t columns() const { return static_cast<size_t>(m_grid.heights.width); }

    /// Row r must follow row r - 1.
    void write(int r, StlFacetBuffer &buffer)
    {
        std::swap(m_upper, m_lower);
        fillZ(m_grid.heights.row(r + 1), m_grid.zFactor, m_lower);
        const double *upper = m_upper.exact.data();
        const double *lower = m_lower.exact.data();
        fillNormals({upper, upper + 1, upper, lower}, m_first);
        fillNormals({lower, lower + 1, upper + 1, lower + 1}, m_second);
        pack(r, buffer);
    }

private:
    void pack(int r, StlFacetBuffer &buffer) const
    {
        const float *above = m_grid.heights.row(r);
        const float *below = m_grid.heights.row(r + 1);
        const float y0 = static_cast<float>(r / cellsPerInch);
        const float y1 = static_cast<float>((r + 1) / cellsPerInch);
        const float *z0 = m_upper.stored.data();
        const float *z1 = m_lower.stored.data();
        const float *x = m_x.data();
        const auto put = [&buffer](const std::array<float, 12> &facet) {
            std::memcpy(buffer.next(), facet.data(), sizeof(facet));
            buffer.take();
        };
        for (size_t c = 0; c + 1 < columns(); ++c) {
            if (!empty(above[c], above[c + 1], below[c]))
                put({m_first.x[c], m_first.y[c], m_first.z[c], x[c], y0, z0[c], x[c + 1], y0,
                     z0[c + 1], x[c], y1, z1[c]});
            if (!empty(below[c], above[c + 1], below[c + 1]))
                put({m_second.x[c], m_second.y[c], m_second.z[c], x[c], y1, z1[c], x[c + 1], y0,
                     z0[c + 1], x[c + 1], y1, z1[c + 1]});
        }
    }

    const StlGrid &m_grid;
    RowZ m_upper;
    RowZ m_lower;
    Normals m_first;
    Normals m_second;
    std::vector<float> m_x;
};

bool writeRows(QDataStream &stream, const StlGrid &grid)
{
    const int squares = grid.heights.height - 1;
    Progress silent;
    Progress &progress = grid.progress ? *grid.progress : silent;
    GridRows rows(grid);
    StlFacetBuffer buffer(stream, 2 * rows.columns());
    for (int r = 0; r < squares; ++r) {
        rows.write(r, buffer);
        buffer.flushWhenFull();
        if (r % 64 == 0)
            progress.advance(static_cast<double>(r) / squares);
        if (!isOk(stream) || progress.cancelled())
            return false;
    }
    buffer.flush();
    progress.advance(1.0);
    return isOk(stream);
}

} // namespace

bool writeGridStl(QDataStream &stream, const StlGrid &grid)
{
    writeStlHeader(stream, grid.header);
    stream << countFacets(grid.heights);
    if (!isOk(stream))
        return false;
    if (grid.heights.height < 2 || grid.heights.width < 2)
        return true;
    return writeRows(stream, grid);
}

bool writeMeshStl(QDataStream &stream, const std::vector<StlFacet> &facets,
                  const QByteArray &header)
{
    writeStlHeader(stream, header);
    stream << static_cast<quint64>(facets.size());
    StlFacetBuffer buffer(stream, 1);
    for (const StlFacet &facet : facets) {
        buffer.put(facet);
        buffer.flushWhenFull();
        if (!isOk(stream))
            return false;
    }
    buffer.flush();
    return isOk(stream);
}

Outcome heightsFitMeshes(const Relief &relief)
{
    const HeightRange range =
        scanHeights({relief.heights().constData(), static_cast<size_t>(relief.cells())});
    const double farthest = std::max(std::abs(range.minimum), std::abs(range.maximum));
    if (farthest * std::abs(relief.zScale) / cellsPerInch <= std::numeric_limits<float>::max())
        return {};
    return saveFailed(QStringLiteral("heights times Z scale are too large for a mesh"));
}

Outcome exportGridStl(const Relief &relief, const QString &path, Progress *progress)
{
    if (const Outcome fits = heightsFitMeshes(relief); !fits)
        return fits;
    return writeSafely(path, [&relief, progress](QIODevice &device) {
        QDataStream stream(&device);
        return writeGridStl(stream,
                            {{relief.heights().constData(), relief.width(), relief.height()},
                             relief.zScale,
                             stlHeaderText(),
                             progress});
    });
}

} // namespace marlowen
