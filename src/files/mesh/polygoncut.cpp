#include "files/mesh/polygoncut.h"

#include <GL/glu.h>

#include <chrono>
#include <new>
#include <thread>

namespace marlowen {

namespace {

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
struct PolygonCut::Callbacks
{
    template <typename T>
    static void append(PolygonCut &cut, std::vector<T> &list, const T &value)
    {
        try {
            list.push_back(value);
        } catch (const std::bad_alloc &) {
            cut.m_outOfMemory = true;
        }
    }

    static void vertex(void *data, void *object)
    {
        auto *cut = static_cast<PolygonCut *>(object);
        append(*cut, cut->m_indices, asIndex(data));
    }

    static void combine(GLdouble point[3], void *neighbours[4], GLfloat[4], void **result,
                        void *object)
    {
        auto *cut = static_cast<PolygonCut *>(object);
        const size_t number = cut->m_newPoints.size();
        // GLU cannot be left from here; going on would take ever more memory.
        while (cut->m_abandoned)
            std::this_thread::sleep_for(std::chrono::hours(1));
        append(*cut, cut->m_newPoints, MeshPoint{point[0], point[1], point[2]});
        const bool taken = cut->m_newPoints.size() > number;
        *result = taken ? asData(static_cast<quint32>(firstNew - number)) : neighbours[0];
    }

    /// Its presence makes the tessellator give plain triangles only.
    static void edgeFlag(GLboolean, void *) {}

    static void error(GLenum code, void *object)
    {
        auto *cut = static_cast<PolygonCut *>(object);
        append(*cut, cut->m_errors, code);
    }
};

PolygonCut::~PolygonCut()
{
    if (m_tessellator)
        gluDeleteTess(m_tessellator);
}

void PolygonCut::setCorners(const LargeVector<MeshPoint> &positions,
                            std::span<const quint32> corners)
{
    m_corners.assign(corners.begin(), corners.end());
    m_points.clear();
    for (const quint32 corner : corners)
        m_points.push_back(positions[corner]);
}

bool PolygonCut::_makeTessellator()
{
    m_tessellator = gluNewTess();
    if (!m_tessellator)
        return false;
    const auto set = [this](GLenum which, auto *function) {
        gluTessCallback(m_tessellator, which, reinterpret_cast<_GLUfuncptr>(function));
    };
    set(GLU_TESS_ERROR_DATA, Callbacks::error);
    set(GLU_TESS_VERTEX_DATA, Callbacks::vertex);
    set(GLU_TESS_EDGE_FLAG_DATA, Callbacks::edgeFlag);
    set(GLU_TESS_COMBINE_DATA, Callbacks::combine);
    return true;
}

void PolygonCut::run() noexcept
{
    m_indices.clear();
    m_newPoints.clear();
    m_errors.clear();
    m_outOfMemory = false;
    if (!m_tessellator && !_makeTessellator()) {
        Callbacks::append(*this, m_errors, 0U);
        return;
    }
    gluTessBeginPolygon(m_tessellator, this);
    gluTessBeginContour(m_tessellator);
    for (size_t i = 0; i < m_corners.size(); ++i)
        gluTessVertex(m_tessellator, m_points[i].data(), asData(m_corners[i]));
    gluTessEndContour(m_tessellator);
    gluTessEndPolygon(m_tessellator);
}

} // namespace marlowen
