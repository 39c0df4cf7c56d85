#pragma once

#include "files/mesh/trianglemesh.h"

#include <optional>

namespace marlowen {

/// Corners 0..3 of the two triangles of a quad.
using QuadCut = std::array<std::array<quint8, 3>, 2>;

/// How the GLU tessellator cuts a quad whose projection is convex beyond doubt: the same diagonal
/// and the same orientation (the order of the triangles and their first corners may differ). None
/// when rounding could matter; then the tessellator must be asked.
std::optional<QuadCut> cutConvexQuad(const std::array<MeshPoint, 4> &corners);

} // namespace marlowen
