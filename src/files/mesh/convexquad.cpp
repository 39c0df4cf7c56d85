#include "files/mesh/convexquad.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Differences below this share of the whole are left to the tessellator.
constexpr double margin = 1e-6;

using Vector = std::array<double, 3>;

Vector edge(const MeshPoint &from, const MeshPoint &to)
{
    return {to[0] - from[0], to[1] - from[1], to[2] - from[2]};
}

Vector cross(const Vector &a, const Vector &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

size_t longestAxis(const Vector &v)
{
    const size_t xy = std::abs(v[1]) > std::abs(v[0]) ? 1 : 0;
    return std::abs(v[2]) > std::abs(v[xy]) ? 2 : xy;
}

/// Whether `v` points clearly along the axis and to that side.
bool pointsAlong(const Vector &v, size_t axis, double side)
{
    const double length = v[axis] * side;
    const double others = std::max(std::abs(v[(axis + 1) % 3]), std::abs(v[(axis + 2) % 3]));
    return length > others * (1.0 + margin) && length > 0.0;
}

/// Turns at the four corners, as the cross products of the edges that meet there.
std::array<Vector, 4> turnsOf(const std::array<MeshPoint, 4> &corners)
{
    std::array<Vector, 4> edges;
    for (size_t i = 0; i < 4; ++i)
        edges[i] = edge(corners[i], corners[(i + 1) % 4]);
    return {cross(edges[3], edges[0]), cross(edges[0], edges[1]), cross(edges[1], edges[2]),
            cross(edges[2], edges[3])};
}

/// The corner that a sweep along one axis meets last, or first with `last` off. Ties go by the
/// other axis, whose direction is that of `side`.
size_t sweptCorner(const std::array<MeshPoint, 4> &corners, size_t normal, double side, bool last)
{
    const size_t along = (normal + 1) % 3;
    const size_t across = (normal + 2) % 3;
    const auto before = [&](const MeshPoint &a, const MeshPoint &b) {
        return a[along] < b[along] || (a[along] == b[along] && a[across] * side < b[across] * side);
    };
    const auto found = last ? std::max_element(corners.begin(), corners.end(), before)
                            : std::min_element(corners.begin(), corners.end(), before);
    return static_cast<size_t>(found - corners.begin());
}

QuadCut cutFrom(size_t corner)
{
    const auto at = [corner](size_t step) { return static_cast<quint8>((corner + step) % 4); };
    return {{{at(0), at(1), at(2)}, {at(0), at(2), at(3)}}};
}

} // namespace

std::optional<QuadCut> cutConvexQuad(const std::array<MeshPoint, 4> &corners)
{
    const std::array<Vector, 4> turns = turnsOf(corners);
    const size_t normal = longestAxis(turns[0]);
    const double side = turns[0][normal] < 0.0 ? -1.0 : 1.0;
    double widest = 0.0;
    for (const Vector &turn : turns)
        widest = std::max(widest, turn[normal] * side);
    for (const Vector &turn : turns) {
        if (!pointsAlong(turn, normal, side) || !(turn[normal] * side > margin * widest))
            return {};
    }
    // The sweep joins the two chains between its first and its last corner; where both chains have
    // a corner it joins these, where one has both it cuts from the last corner.
    const size_t last = sweptCorner(corners, normal, side, true);
    const size_t first = sweptCorner(corners, normal, side, false);
    const bool opposite = (last + 2) % 4 == first;
    return cutFrom(opposite ? last + 1 : last);
}

} // namespace marlowen
