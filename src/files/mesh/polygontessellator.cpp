#include "files/mesh/polygontessellator.h"

#include "files/mesh/convexquad.h"

#include <GL/glu.h>

#include <limits>
#include <new>
#include <string>

namespace marlowen {

namespace {

constexpr quint32 lastIndex = std::numeric_limits<quint32>::max();

/// The tessellator hands vertex data through as a pointer, never following it; 0 would mean none.
void *asData(quint32 index)
{
    return reinterpret_cast<void *>(static_cast<quintptr>(index) + 1);
}

quint32 asIndex(const void *data)
{
    return static_cast<quint32>(reinterpret_cast<quintptr>(data) - 1);
}

} // namespace

/// Called by the tessellator, which is C code: nothing may be thrown through it.
struct PolygonTessellator::Callbacks
{
    static void vertex(void *data, void *object)
    {
        auto *self = static_cast<PolygonTessellator *>(object);
        self->m_triangle[self->m_filled++] = asIndex(data);
        if (self->m_filled < 3)
            return;
        self->m_filled = 0;
        try {
            self->m_mesh.triangles.push_back(self->m_triangle);
        } catch (const std::bad_alloc &) {
            self->m_outOfMemory = true;
        }
    }

    static void combine(GLdouble point[3], void *neighbours[4], GLfloat[4], void **result,
                        void *object)
    {
        auto *self = static_cast<PolygonTessellator *>(object);
        try {
            self->m_newPoints.push_back({point[0], point[1], point[2]});
            *result = asData(static_cast<quint32>(lastIndex - (self->m_newPoints.size() - 1)));
        } catch (const std::bad_alloc &) {
            self->m_outOfMemory = true;
            *result = neighbours[0];
        }
    }

    /// Its presence makes the tessellator give plain triangles only.
    static void edgeFlag(GLboolean, void *) {}

    static void error(GLenum code, void *object)
    {
        auto *self = static_cast<PolygonTessellator *>(object);
        try {
            const QString text = QStringLiteral("0x%1, error code = %2")
                                     .arg(reinterpret_cast<quintptr>(object), 0, 16)
                                     .arg(code);
            self->m_problems.add("Tessellation error: obj = ", text.toStdString());
        } catch (const std::bad_alloc &) {
            self->m_outOfMemory = true;
        }
    }
};

PolygonTessellator::PolygonTessellator(TriangleMesh &mesh, MeshProblems &problems)
    : m_mesh(mesh)
    , m_problems(problems)
{
}

PolygonTessellator::~PolygonTessellator()
{
    if (m_tessellator)
        gluDeleteTess(m_tessellator);
}

void PolygonTessellator::cut(std::span<const quint32> corners)
{
    if (corners.size() != 4 || !_cutQuad(corners))
        tessellate(corners);
}

bool PolygonTessellator::_makeTessellator()
{
    m_tessellator = gluNewTess();
    if (!m_tessellator) {
        m_problems.add("Failed to allocate GLUtesselator");
        return false;
    }
    const auto set = [this](GLenum which, auto *function) {
        gluTessCallback(m_tessellator, which, reinterpret_cast<_GLUfuncptr>(function));
    };
    set(GLU_TESS_ERROR_DATA, Callbacks::error);
    set(GLU_TESS_VERTEX_DATA, Callbacks::vertex);
    set(GLU_TESS_EDGE_FLAG_DATA, Callbacks::edgeFlag);
    set(GLU_TESS_COMBINE_DATA, Callbacks::combine);
    return true;
}

bool PolygonTessellator::_cutQuad(std::span<const quint32> corners)
{
    const auto point = [&](size_t i) { return m_mesh.positions[corners[i]]; };
    const std::optional<QuadCut> quad = cutConvexQuad({point(0), point(1), point(2), point(3)});
    if (!quad)
        return false;
    for (const auto &[a, b, c] : *quad)
        m_mesh.triangles.push_back({corners[a], corners[b], corners[c]});
    return true;
}

void PolygonTessellator::tessellate(std::span<const quint32> corners)
{
    if (!m_tessellator && !_makeTessellator())
        return;
    m_filled = 0;
    m_outOfMemory = false;
    gluTessBeginPolygon(m_tessellator, this);
    gluTessBeginContour(m_tessellator);
    for (const quint32 corner : corners) {
        MeshPoint point = m_mesh.positions[corner];
        gluTessVertex(m_tessellator, point.data(), asData(corner));
    }
    gluTessEndContour(m_tessellator);
    gluTessEndPolygon(m_tessellator);
    if (m_outOfMemory)
        throw std::bad_alloc();
}

void PolygonTessellator::finish()
{
    if (m_newPoints.empty())
        return;
    const auto first = static_cast<quint32>(m_mesh.positions.size());
    m_mesh.positions.insert(m_mesh.positions.end(), m_newPoints.begin(), m_newPoints.end());
    for (MeshTriangle &triangle : m_mesh.triangles) {
        for (quint32 &index : triangle)
            index = index < first ? index : first + (lastIndex - index);
    }
}

} // namespace marlowen
