#include "render/views/pixelfacets.h"

#include "base/rowsharing.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Facets and positions that a thread takes at a time.
constexpr size_t pieceSize = size_t{1} << 16;
/// Pixels by which a driver may see a corner elsewhere.
constexpr float tolerance = 1.0F / 64.0F;
/// Beyond this many pixels floats are too coarse to tell.
constexpr float farAway = 16384.0F;
/// A facet over more pixels than this is surely over the middle of one.
constexpr int fewPixels = 4;

struct Place
{
    float x; ///< pixels from the left
    float y; ///< from the lower edge
};

size_t pieces(size_t count)
{
    return (count + pieceSize - 1) / pieceSize;
}

/// Calls work(first, end) for all of `count`, several at a time.
template <typename Work>
void share(size_t count, Work work)
{
    shareRows({static_cast<int>(pieces(count)), 1}, [&](int piece, int endPiece) {
        for (; piece < endPiece; ++piece) {
            const size_t first = static_cast<size_t>(piece) * pieceSize;
            work(first, std::min(count, first + pieceSize));
        }
    });
}

std::vector<Place> placesOf(const TriangleMesh &mesh, const FacetPicture &picture)
{
    // From -1..1 to pixels.
    const double halfWidth = picture.pixels.width() / 2.0;
    const double halfHeight = picture.pixels.height() / 2.0;
    const Matrix &m = picture.toPicture;
    std::vector<Place> places(mesh.positions.size());
    share(places.size(), [&](size_t at, size_t end) {
        for (; at < end; ++at) {
            const auto point = picture.frame.at(mesh.positions[at]);
            const double px = point[0];
            const double py = point[1];
            const double pz = point[2];
            places[at] = {
                static_cast<float>((m[0] * px + m[4] * py + m[8] * pz + m[12] + 1.0) * halfWidth),
                static_cast<float>((m[1] * px + m[5] * py + m[9] * pz + m[13] + 1.0) * halfHeight)};
        }
    });
    return places;
}

/// From one pixel to another, with both, or none.
struct Pixels
{
    int first;
    int last;
    int count() const { return last - first + 1; }
};

/// Pixels of a row or a column whose middles lie between low and high, all but exactly.
Pixels pixelsBetween(float low, float high, int pixels)
{
    const float first = std::max(0.0F, low - 0.5F - tolerance);
    const float last = std::min(static_cast<float>(pixels - 1), high - 0.5F + tolerance);
    if (!(first <= last))
        return {0, -1};
    const int below = static_cast<int>(first);
    return {below + (static_cast<float>(below) < first ? 1 : 0), static_cast<int>(last)};
}

using Corners = std::array<Place, 3>;

/// `slack` is the tolerance times the length of the longest edge or more.
bool covers(const Corners &corners, float x, float y, float slack)
{
    const auto side = [&](const Place &a, const Place &b) {
        return (a.x - x) * (b.y - y) - (a.y - y) * (b.x - x);
    };
    const auto &[a, b, c] = corners;
    const float ab = side(a, b);
    const float bc = side(b, c);
    const float ca = side(c, a);
    return std::min({ab, bc, ca}) >= -slack || std::max({ab, bc, ca}) <= slack;
}

bool liesOverPixel(const Corners &corners, QSize picture)
{
    const auto &[a, b, c] = corners;
    const float left = std::min({a.x, b.x, c.x});
    const float right = std::max({a.x, b.x, c.x});
    const float low = std::min({a.y, b.y, c.y});
    const float high = std::max({a.y, b.y, c.y});
    const Pixels columns = pixelsBetween(left, right, picture.width());
    const Pixels rows = pixelsBetween(low, high, picture.height());
    if (columns.count() <= 0 || rows.count() <= 0)
        return false;
    const bool isFar = std::min(left, low) < -farAway || std::max(right, high) > farAway;
    if (isFar || columns.count() > fewPixels || rows.count() > fewPixels ||
        columns.count() * rows.count() > fewPixels)
        return true;
    const float slack = tolerance * ((right - left) + (high - low));
    for (int row = rows.first; row <= rows.last; ++row) {
        for (int column = columns.first; column <= columns.last; ++column) {
            if (covers(corners, static_cast<float>(column) + 0.5F, static_cast<float>(row) + 0.5F,
                       slack))
                return true;
        }
    }
    return false;
}

} // namespace

std::vector<uint32_t> facetsOverPixels(const TriangleMesh &mesh, const FacetPicture &picture)
{
    const std::vector<Place> places = placesOf(mesh, picture);
    std::vector<std::vector<uint32_t>> found(pieces(mesh.triangles.size()));
    share(mesh.triangles.size(), [&](size_t at, size_t end) {
        std::vector<uint32_t> &mine = found[at / pieceSize];
        mine.reserve(3 * (end - at));
        for (; at < end; ++at) {
            const auto [a, b, c] = mesh.triangles[at];
            if (liesOverPixel({places[a], places[b], places[c]}, picture.pixels))
                mine.insert(mine.end(), {a, b, c});
        }
    });
    size_t count = 0;
    for (const std::vector<uint32_t> &part : found)
        count += part.size();
    std::vector<uint32_t> corners;
    corners.reserve(count);
    for (const std::vector<uint32_t> &part : found)
        corners.insert(corners.end(), part.begin(), part.end());
    return corners;
}

} // namespace marlowen
