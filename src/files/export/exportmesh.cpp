#include "files/export/exportmesh.h"

#include "files/export/flatbase.h"
#include "files/export/pulse.h"

#include <cmath>

namespace marlowen {

namespace {

/// Of length 1, with zeros that are positive.
SurfacePoint unit(const SurfacePoint &v)
{
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return {v[0] / length + 0.0, v[1] / length + 0.0, v[2] / length + 0.0};
}

} // namespace

ExportMesh::ExportMesh(CellSurface surface, double baseThickness, Progress &progress)
    : m_surface(std::move(surface))
    , m_thickness(baseThickness)
{
    Pulse pulse(progress);
    m_walls = m_surface.border(pulse);
    if (m_surface.facets())
        m_base.emplace(m_surface.heights(), m_surface.zFactor(),
                       withoutInnerCells(*m_surface.facets(), m_surface.heights().width, pulse));
}

StlFacet ExportMesh::upward(const std::array<SurfacePoint, 3> &corners)
{
    const auto &[a, b, c] = corners;
    const SurfacePoint u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const SurfacePoint v{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    return {corners, unit({u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                           u[0] * v[1] - u[1] * v[0]})};
}

SurfacePoint ExportMesh::wallNormal(const CellEdge &edge) const
{
    const SurfacePoint from = m_surface.point(edge[0]);
    const SurfacePoint to = m_surface.point(edge[1]);
    return unit({to[1] - from[1], from[0] - to[0], 0.0});
}

} // namespace marlowen
