#include "render/meshes/gridfacets.h"

#include "base/rowsharing.h"
#include "render/meshes/cornerlists.h"
#include "render/meshes/pixelcover.h"
#include "render/meshes/reliefmesh.h"

#include <array>

namespace marlowen {

namespace {

/// Strips of facets that a thread takes at a time.
constexpr int bandStrips = 32;

/// From a position to a pixel.
struct ToPixels
{
    std::array<float, 4> x;
    std::array<float, 4> y;

    explicit ToPixels(const GridPicture &picture)
    {
        const auto fill = [&](size_t axis, int length, std::array<float, 4> &row) {
            std::ranges::transform(toPixels(picture.toPicture, axis, length), row.begin(),
                                   [](double factor) { return static_cast<float>(factor); });
        };
        fill(0, picture.size.width(), x);
        fill(1, picture.size.height(), y);
    }
};

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

/// The vertices of a row that count.
struct RowOfVertices
{
    const float *position;
    int floats; ///< from one to the next
    int count;
};

CELL_LOOP void place(const RowOfVertices &row, const ToPixels &to, float *x, float *y)
{
    const auto [position, floats, count] = row;
    const auto [xx, xy, xz, x0] = to.x;
    const auto [yx, yy, yz, y0] = to.y;
    for (int i = 0; i < count; ++i) {
        const float *p = position + floats * i;
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

/// The facets of a band of strips.
class BandFacets
{
public:
    explicit BandFacets(const GridPicture &picture)
        : m_picture(picture)
        , m_pairs(stepsOver(picture.columns - 1, picture.step))
        , m_toPixels(picture)
        , m_bounds(boundsOf(picture.drawn))
        , m_upper(m_pairs + 1)
        , m_lower(m_pairs + 1)
        , m_firstSeen(static_cast<size_t>(m_pairs))
        , m_secondSeen(m_firstSeen.size())
    {
    }

    std::vector<uint32_t> of(int strip, int end)
    {
        std::vector<uint32_t> corners(static_cast<size_t>(end - strip) * 6 * m_firstSeen.size() +
                                      3);
        uint32_t *out = corners.data();
        _place(strip, m_upper);
        for (; strip < end; ++strip) {
            _place(strip + 1, m_lower);
            test({m_lower.x.data(), m_lower.y.data(), m_upper.x.data(), m_upper.y.data()}, m_pairs,
                 m_bounds, {m_firstSeen.data(), m_secondSeen.data()});
            out = _append(strip, out);
            std::swap(m_upper, m_lower);
        }
        return {corners.data(), out}; // without the room for those that are not seen
    }

private:
    /// The first vertex of a row that counts.
    size_t _vertex(int row) const
    {
        return static_cast<size_t>(std::min(row * m_picture.step, m_picture.rows - 1)) *
               static_cast<size_t>(m_picture.columns);
    }

    void _place(int row, PlacedRow &placed)
    {
        const float *first = m_picture.positions.data() + 3 * _vertex(row);
        place({first, 3 * m_picture.step, m_pairs}, m_toPixels, placed.x.data(), placed.y.data());
        place({first + 3 * (m_picture.columns - 1), 0, 1}, m_toPixels, &placed.x.back(),
              &placed.y.back());
    }

    // Every facet is written, and the next one over it when it is not seen.
    uint32_t *_append(int strip, uint32_t *out) const
    {
        const auto upper = static_cast<uint32_t>(_vertex(strip));
        const auto lower = static_cast<uint32_t>(_vertex(strip + 1));
        const auto write = [&out](std::array<uint32_t, 3> corners, int seen) {
            std::copy(corners.begin(), corners.end(), out);
            out += 3 * seen;
        };
        const auto step = static_cast<uint32_t>(m_picture.step);
        const auto last = static_cast<uint32_t>(m_picture.columns - 1);
        for (uint32_t at = 0, i = 0; at < last; at += step, ++i) {
            const uint32_t next = std::min(at + step, last);
            write({lower + at, upper + at, lower + next}, m_firstSeen[i]);
            write({lower + next, upper + at, upper + next}, m_secondSeen[i]);
        }
        return out;
    }

    const GridPicture &m_picture;
    int m_pairs; ///< of facets in a strip
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
    if (first >= last || picture.columns < 2)
        return {};
    const int firstStrip = first / picture.step;
    const int strips = stepsOver(last, picture.step) - firstStrip;
    std::vector<std::vector<uint32_t>> found(
        static_cast<size_t>((strips + bandStrips - 1) / bandStrips));
    shareRows({strips, bandStrips}, [&](int strip, int end) {
        found[static_cast<size_t>(strip / bandStrips)] =
            BandFacets(picture).of(firstStrip + strip, firstStrip + end);
    });
    return joined(found);
}

} // namespace marlowen
