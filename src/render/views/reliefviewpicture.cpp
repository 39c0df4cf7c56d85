#include "relief/grid/relief.h"
#include "render/camera/levelofdetail.h"
#include "render/engines/shader.h"
#include "render/meshes/gridfacets.h"
#include "render/overlays/footprint.h"
#include "render/overlays/footprintpainter.h"
#include "render/overlays/symmetrypainter.h"
#include "render/views/reliefview.h"

#include <algorithm>
#include <new>
#include <utility>

namespace marlowen {

// The half of ReliefView that draws.

bool ReliefView::updateSurface(Shader &shader)
{
    const PendingCells pending = m_changes->take(m_changesView);
    const QSize grid = m_relief ? QSize(m_relief->width(), m_relief->height()) : QSize();
    const bool full = pending.full || m_verticesStale || grid != m_grid;
    m_verticesStale = false;
    m_grid = grid;
    if (full && m_relief)
        m_range = m_changes->heightRange();
    const QRect visible = visibleCells(sceneBox(), matrices());
    if (full || needsRebuild({m_mesh.region(), m_mesh.step()}, visible, grid, size())) {
        _rebuildVertices(shader, visible);
        return true;
    }
    const QRegion touched = m_mesh.verticesTouchedBy(pending.cells);
    if (touched.isEmpty())
        return false;
    _refreshVertices(shader, touched);
    return true;
}

void ReliefView::_rebuildVertices(Shader &shader, const QRect &visible)
{
    if (!m_relief || visible.isEmpty()) {
        m_mesh.clear();
        m_refreshed = {};
        m_indicesStale = true;
        verticesChanged();
        return;
    }
    m_refreshed = {};
    m_range = m_changes->heightRange();
    const MeshLayout layout = layoutFor(visible, m_grid, size());
    if (m_mesh.layOut(layout.region, layout.step, hasNormals()))
        m_indicesStale = true;
    fillVertices(m_mesh, m_mesh.vertices());
    if (std::exchange(m_indicesStale, false))
        shader.setData(m_mesh.arrays());
    else
        shader.setVertices(m_mesh.arrays());
    ++work().fullRebuilds;
    verticesChanged();
}

void ReliefView::_refreshVertices(Shader &shader, const QRegion &vertices)
{
    const auto columns = static_cast<uint32_t>(m_mesh.columns());
    for (const QRect &rect : vertices) {
        fillVertices(m_mesh, rect);
        const auto left = static_cast<uint32_t>(rect.left());
        const auto top = static_cast<uint32_t>(rect.top());
        shader.updateVertices({top * columns + left, static_cast<uint32_t>(rect.width()),
                               static_cast<uint32_t>(rect.height()), columns});
        work().refreshedVertices += qint64(rect.width()) * rect.height();
    }
    m_refreshed = vertices.boundingRect();
    ++work().partialRefreshes;
    verticesChanged();
}

void ReliefView::drawSurface(Shader &shader, const Detail &detail)
{
    if (m_mesh.vertexCount() == 0)
        return;
    shader.size = std::max(m_relief->width(), m_relief->height());
    configureShader(shader);
    const QRect cells = visibleCells(drawnBox(), drawnMatrices(), detail.part);
    if (cells.isEmpty())
        return;
    const int first = std::max(0, cells.top() - m_mesh.region().top()) / m_mesh.step();
    const int last = (cells.bottom() - m_mesh.region().top()) / m_mesh.step() + 1;
    shader.drawn = m_mesh.strips(detail.mostFacets, first, last);
    shader.quick = detail.quick;
    shader.bind();
    if (shader.drawsFacets() && _isFine(detail))
        _drawSeenFacets(shader, detail, {first, last});
    else
        shader.draw();
    shader.release();
}

/// Many facets of that picture are over no middle of a pixel.
bool ReliefView::_isFine(const Detail &detail) const
{
    return slowDriver() && detail.quick && 2 * facets(detail.mostFacets) > pixelCount();
}

/// Draws the facets between two rows of vertices without those that change nothing in the picture.
void ReliefView::_drawSeenFacets(Shader &shader, const Detail &detail, std::pair<int, int> rows)
{
    const ViewMatrices &view = drawnMatrices();
    const GridPicture picture{m_mesh.arrays().positions,
                              m_mesh.columns(),
                              m_mesh.rows(),
                              m_mesh.stepOf(detail.mostFacets) / m_mesh.step(),
                              multiplied(view.projection, view.modelview),
                              pixels(),
                              pixelsOf(detail.part, pixels())};
    try {
        shader.drawFacets(
            facetsOverPixels(picture, rows.first, std::min(rows.second, m_mesh.rows() - 1)));
    } catch (const std::bad_alloc &) {
        shader.draw();
    }
}

QRectF ReliefView::changedPart(const Detail &detail) const
{
    if (m_refreshed.isEmpty())
        return {};
    // The facets around a vertex reach to the next ones.
    const int reach = m_mesh.stepOf(detail.mostFacets);
    const auto cell = [this](QPoint vertex) {
        return m_mesh.region().topLeft() + vertex * m_mesh.step();
    };
    const QRect cells(cell(m_refreshed.topLeft()), cell(m_refreshed.bottomRight()));
    return coveredPart(cells.adjusted(-reach, -reach, reach, reach), drawnBox(), drawnMatrices());
}

/// More facets than pixels.
bool ReliefView::isDense() const
{
    return m_mesh.facets() > pixelCount();
}

void ReliefView::drawFootprint(QOpenGLFunctions_2_1 &gl)
{
    if (!canEdit() || !hasFootprint(m_tool->type))
        return;
    drawSymmetryAxes(gl, *m_relief, camera().zoom, devicePixelRatioF());
    if (!pointerInside())
        return;
    const PickResult at = pick(lastPos());
    if (!at.hit)
        return;
    for (const QPointF &image : mirrorImages(*m_relief, {at.point.x, at.point.y}))
        m_footprint->draw(gl, *m_relief, *m_tool, {image, camera().zoom, devicePixelRatioF()});
}

} // namespace marlowen
