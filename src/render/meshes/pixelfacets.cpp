#include "render/meshes/pixelfacets.h"

#include "base/rowsharing.h"
#include "render/meshes/cornerlists.h"
#include "render/meshes/pixelcover.h"

#include <algorithm>
#include <array>
#include <span>

namespace marlowen {

namespace {

/// Facets and positions that a thread takes at a time.
constexpr size_t pieceSize = size_t{1} << 14;

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
    const auto across = toPixels(picture.toPicture, 0, picture.pixels.width());
    const auto up = toPixels(picture.toPicture, 1, picture.pixels.height());
    const auto at = [](const std::array<double, 4> &m, const std::array<float, 3> &point) {
        return static_cast<float>(m[0] * point[0] + m[1] * point[1] + m[2] * point[2] + m[3]);
    };
    std::vector<PixelPlace> places(mesh.positions.size());
    share(places.size(), [&](size_t i, size_t end) {
        for (; i < end; ++i) {
            const std::array<float, 3> point = picture.frame.at(mesh.positions[i]);
            places[i] = {at(across, point), at(up, point)};
        }
    });
    return places;
}

/// Facets that are tested together: their corners in the picture, side by side for the vector
/// units, and what comes of it.
struct Batch
{
    static constexpr size_t size = 256;
    using Values = std::array<float, size>;
    struct Corner
    {
        Values x;
        Values y;
    };
    std::array<Corner, 3> corners;
    std::array<int, size> seen;
};

CELL_LOOP void test(Batch &batch, size_t count, const PixelBounds &given)
{
    const PixelBounds bounds = given;
    const auto &[a, b, c] = batch.corners;
    for (size_t i = 0; i < count; ++i)
        batch.seen[i] = liesOverPixel({a.x[i], a.y[i]}, {b.x[i], b.y[i]}, {c.x[i], c.y[i]}, bounds);
}

/// The facets of a piece of the mesh.
std::vector<uint32_t> seenOf(std::span<const MeshTriangle> facets,
                             const std::vector<PixelPlace> &places, const PixelBounds &bounds)
{
    std::vector<uint32_t> corners(3 * (facets.size() + 1));
    uint32_t *out = corners.data();
    Batch batch{};
    for (size_t first = 0; first < facets.size(); first += Batch::size) {
        const auto some = facets.subspan(first, std::min(Batch::size, facets.size() - first));
        for (size_t i = 0; i < some.size(); ++i) {
            for (size_t corner = 0; corner < 3; ++corner) {
                const PixelPlace place = places[some[i][corner]];
                batch.corners[corner].x[i] = place.x;
                batch.corners[corner].y[i] = place.y;
            }
        }
        test(batch, some.size(), bounds);
        // Every facet is written, and the next one over it when it is not seen.
        for (size_t i = 0; i < some.size(); ++i) {
            std::copy(some[i].begin(), some[i].end(), out);
            out += 3 * batch.seen[i];
        }
    }
    return {corners.data(), out};
}

} // namespace

std::vector<uint32_t> facetsOverPixels(const TriangleMesh &mesh, const FacetPicture &picture)
{
    const std::vector<PixelPlace> places = placesOf(mesh, picture);
    const PixelBounds bounds = boundsOf(QRect({0, 0}, picture.pixels));
    std::vector<std::vector<uint32_t>> found(pieces(mesh.triangles.size()));
    share(mesh.triangles.size(), [&](size_t at, size_t end) {
        found[at / pieceSize] =
            seenOf(std::span(mesh.triangles).subspan(at, end - at), places, bounds);
    });
    return joined(found);
}

} // namespace marlowen
