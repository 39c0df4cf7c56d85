#include "render/meshes/pixelfacets.h"

#include "base/rowsharing.h"
#include "render/meshes/cornerlists.h"
#include "render/meshes/pixelcover.h"

#include <algorithm>

namespace marlowen {

namespace {

/// Facets and positions that a thread takes at a time.
constexpr size_t pieceSize = size_t{1} << 16;

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

std::vector<PixelPlace> placesOf(const TriangleMesh &mesh, const FacetPicture &picture)
{
    // From -1..1 to pixels.
    const double halfWidth = picture.pixels.width() / 2.0;
    const double halfHeight = picture.pixels.height() / 2.0;
    const Matrix &m = picture.toPicture;
    std::vector<PixelPlace> places(mesh.positions.size());
    share(places.size(), [&](size_t at, size_t end) {
        for (; at < end; ++at) {
            const auto point = picture.frame.at(mesh.positions[at]);
            const double px = point[0];
            const double py = point[1];
            const double pz = point[2];
            places[at] = {
                static_cast<float>((m[0] * px + m[4] * py + m[8] * pz + m[12] + 1.0) * halfWidth -
                                   0.5),
                static_cast<float>((m[1] * px + m[5] * py + m[9] * pz + m[13] + 1.0) * halfHeight -
                                   0.5)};
        }
    });
    return places;
}

} // namespace

std::vector<uint32_t> facetsOverPixels(const TriangleMesh &mesh, const FacetPicture &picture)
{
    const std::vector<PixelPlace> places = placesOf(mesh, picture);
    const PixelBounds bounds = boundsOf(QRect({0, 0}, picture.pixels));
    std::vector<std::vector<uint32_t>> found(pieces(mesh.triangles.size()));
    share(mesh.triangles.size(), [&](size_t at, size_t end) {
        std::vector<uint32_t> &mine = found[at / pieceSize];
        mine.reserve(3 * (end - at));
        for (; at < end; ++at) {
            const auto [a, b, c] = mesh.triangles[at];
            const PixelSpan span = spanOf(places[a], places[b], places[c], bounds);
            if (span.isEmpty())
                continue;
            if (span.isLarge() || coversPixel(places[a], places[b], places[c], span))
                mine.insert(mine.end(), {a, b, c});
        }
        mine.shrink_to_fit();
    });
    return joined(found);
}

} // namespace marlowen
