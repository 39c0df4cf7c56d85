#include "render/meshes/gridfacets.h"

#include "base/rowsharing.h"
#include "render/meshes/pixelcover.h"

#include <array>

namespace marlowen {

namespace {

/// Rows of facets that a thread takes at a time.
constexpr int bandRows = 32;

/// From a position to a pixel: two rows of a matrix.
struct ToPixels
{
    std::array<float, 4> x;
    std::array<float, 4> y;
};

ToPixels toPixels(const GridPicture &picture)
{
    const auto row = [&](size_t axis, double length) {
        std::array<float, 4> result{};
        for (size_t i = 0; i < 4; ++i)
            result[i] = static_cast<float>(picture.toPicture[4 * i + axis] * length / 2.0);
        result[3] += static_cast<float>(length / 2.0 - 0.5);
        return result;
    };
    return {row(0, picture.size.width()), row(1, picture.size.height())};
}

/// Where the vertices of a row are in the picture.
struct PlacedRow
{
    explicit PlacedRow(int columns)
        : x(static_cast<size_t>(columns))
        , y(static_cast<size_t>(columns))
    {
    }

    std::vector<float> x;
    std::vector<float> y;
};

CELL_LOOP void place(const float *position, int count, const ToPixels &to, PlacedRow &placed)
{
    float *x = placed.x.data();
    float *y = placed.y.data();
    const auto [xx, xy, xz, x0] = to.x;
    const auto [yx, yy, yz, y0] = to.y;
    for (int i = 0; i < count; ++i) {
        const float *p = position + 3 * i;
        x[i] = xx * p[0] + xy * p[1] + xz * p[2] + x0;
        y[i] = yx * p[0] + yy * p[1] + yz * p[2] + y0;
    }
}

/// Two rows of vertices in the picture.
struct RowPair
{
    const float *lowerX;
    const float *lowerY;
    const float *upperX;
    const float *upperY;
};

/// 1 for each first and second facet of a pair that is seen, else 0.
struct SeenPairs
{
    int *first;
    int *second;
};

/// Tests `count` pairs of facets between the rows.
CELL_LOOP void test(const RowPair &rows, int count, const PixelBounds &given, const SeenPairs &seen)
{
    const auto [first, second] = seen;
    const PixelBounds bounds = given;
    const auto [lowerX, lowerY, upperX, upperY] = rows;
    for (int i = 0; i < count; ++i) {
        const PixelPlace lower{lowerX[i], lowerY[i]};
        const PixelPlace upper{upperX[i], upperY[i]};
        const PixelPlace nextLower{lowerX[i + 1], lowerY[i + 1]};
        const PixelPlace nextUpper{upperX[i + 1], upperY[i + 1]};
        first[i] = liesOverPixel(lower, upper, nextLower, bounds);
        second[i] = liesOverPixel(nextLower, upper, nextUpper, bounds);
    }
}

/// The facets of a band of rows.
class BandFacets
{
public:
    explicit BandFacets(const GridPicture &picture)
        : m_picture(picture)
        , m_toPixels(toPixels(picture))
        , m_bounds(boundsOf(picture.drawn))
        , m_upper(picture.columns)
        , m_lower(picture.columns)
        , m_firstSeen(static_cast<size_t>(picture.columns))
        , m_secondSeen(m_firstSeen.size())
    {
    }

    std::vector<uint32_t> of(int row, int end)
    {
        std::vector<uint32_t> corners(static_cast<size_t>(end - row) * 6 * m_firstSeen.size());
        uint32_t *out = corners.data();
        _place(row, m_upper);
        for (; row < end; ++row) {
            _place(row + 1, m_lower);
            test({m_lower.x.data(), m_lower.y.data(), m_upper.x.data(), m_upper.y.data()},
                 m_picture.columns - 1, m_bounds, {m_firstSeen.data(), m_secondSeen.data()});
            out = _append(row, out);
            std::swap(m_upper, m_lower);
        }
        corners.resize(static_cast<size_t>(out - corners.data()));
        return corners;
    }

private:
    void _place(int row, PlacedRow &placed)
    {
        const auto first = static_cast<size_t>(row) * static_cast<size_t>(m_picture.columns);
        place(m_picture.positions.data() + 3 * first, m_picture.columns, m_toPixels, placed);
    }

    // Every facet is written, and the next one over it when it is not seen.
    uint32_t *_append(int row, uint32_t *out) const
    {
        const auto columns = static_cast<uint32_t>(m_picture.columns);
        const uint32_t upper = static_cast<uint32_t>(row) * columns;
        const uint32_t lower = upper + columns;
        const auto write = [&out](std::array<uint32_t, 3> corners, int seen) {
            std::copy(corners.begin(), corners.end(), out);
            out += 3 * seen;
        };
        for (uint32_t i = 0; i + 1 < columns; ++i) {
            write({lower + i, upper + i, lower + i + 1}, m_firstSeen[i]);
            write({lower + i + 1, upper + i, upper + i + 1}, m_secondSeen[i]);
        }
        return out;
    }

    const GridPicture &m_picture;
    ToPixels m_toPixels;
    PixelBounds m_bounds;
    PlacedRow m_upper;
    PlacedRow m_lower;
    std::vector<int> m_firstSeen;
    std::vector<int> m_secondSeen;
};

} // namespace

std::vector<uint32_t> facetsOverPixels(const GridPicture &picture, int first, int last)
{
    const int rows = last - first;
    if (rows < 1 || picture.columns < 2)
        return {};
    std::vector<std::vector<uint32_t>> found(static_cast<size_t>((rows + bandRows - 1) / bandRows));
    shareRows({rows, bandRows}, [&](int row, int end) {
        found[static_cast<size_t>(row / bandRows)] =
            BandFacets(picture).of(first + row, first + end);
    });
    size_t count = 0;
    for (const std::vector<uint32_t> &band : found)
        count += band.size();
    std::vector<uint32_t> corners;
    corners.reserve(count);
    for (const std::vector<uint32_t> &band : found)
        corners.insert(corners.end(), band.begin(), band.end());
    return corners;
}

} // namespace marlowen
