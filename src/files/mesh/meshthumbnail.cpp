#include "files/mesh/meshthumbnail.h"

#include "files/heightpicture.h"
#include "files/mesh/meshreader.h"
#include "files/mesh/modelplacement.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr qint64 largestFile = qint64{48} << 20;
/// The lowest points are not empty cells.
constexpr double floorHeight = 1.0;

using Corners = std::array<MeshPoint, 3>;

void raise(FloatGrid &grid, int x, int y, double height)
{
    float &value = grid.row(std::clamp(y, 0, grid.height - 1))[std::clamp(x, 0, grid.width - 1)];
    value = std::max(value, static_cast<float>(height));
}

/// The side of the edge from a to b that a pixel lies on, times the edge's length.
double sideOf(const MeshPoint &a, const MeshPoint &b, double x, double y)
{
    return (b[0] - a[0]) * (y - a[1]) - (b[1] - a[1]) * (x - a[0]);
}

/// Every pixel whose middle lies in the facet, and those of its corners.
void draw(FloatGrid &grid, const Corners &f)
{
    for (const MeshPoint &corner : f)
        raise(grid, static_cast<int>(corner[0]), static_cast<int>(corner[1]), corner[2]);
    const auto [left, right] = std::minmax({f[0][0], f[1][0], f[2][0]});
    const auto [low, high] = std::minmax({f[0][1], f[1][1], f[2][1]});
    const double area = sideOf(f[0], f[1], f[2][0], f[2][1]);
    if (area == 0.0)
        return;
    for (int y = static_cast<int>(low); y <= static_cast<int>(high); ++y) {
        for (int x = static_cast<int>(left); x <= static_cast<int>(right); ++x) {
            const double a = sideOf(f[1], f[2], x, y) / area;
            const double b = sideOf(f[2], f[0], x, y) / area;
            if (a >= 0.0 && b >= 0.0 && a + b <= 1.0)
                raise(grid, x, y, a * f[0][2] + b * f[1][2] + (1.0 - a - b) * f[2][2]);
        }
    }
}

} // namespace

QImage meshThumbnail(const QString &path, int side)
{
    Progress quiet;
    if (side < 1 || QFileInfo(path).size() > largestFile)
        return {};
    const Result<ReadMesh> read = readMesh(path, {}, quiet);
    if (!read)
        return {};
    const TriangleMesh &mesh = read.value().mesh;
    const ModelBox box = boxOf(mesh);
    const double scale = (side - 1) / std::max(box.extent(0), box.extent(1));
    if (!std::isfinite(scale) || !(scale > 0.0) || !(box.extent(0) > 0.0 && box.extent(1) > 0.0))
        return {};
    FloatGrid grid(static_cast<int>(box.extent(0) * scale) + 1,
                   static_cast<int>(box.extent(1) * scale) + 1);
    for (const MeshTriangle &triangle : mesh.triangles) {
        Corners corners{};
        for (size_t i = 0; i < 3; ++i) {
            for (size_t axis = 0; axis < 3; ++axis)
                corners[i][axis] = (mesh.corner(triangle, i)[axis] - box.low[axis]) * scale;
            corners[i][2] += floorHeight;
        }
        draw(grid, corners);
    }
    return litHeights({grid.values.data(), grid.width, grid.height}, 1.0);
}

} // namespace marlowen
