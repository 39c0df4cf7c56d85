#include "render/engines/legacyshader.h"

#include <QOpenGLFunctions_2_1>

namespace marlowen {

namespace {

constexpr uint32_t stripEnd = 0xFFFFFFFF;
constexpr const char *litVertexFile = ":/marlowen2/shaders/lit120.vert";

} // namespace

void LegacyEngine::setData(const float *positions, uint32_t positionBytes, const float *normals,
                           uint32_t normalBytes, const float *selection, uint32_t selectionBytes,
                           const uint32_t *indices, uint32_t indexBytes)
{
    m_positions = positions;
    m_positionBytes = positionBytes;
    if (m_type == Shader3d) {
        m_normals = normals;
        m_normalBytes = normalBytes;
    }
    m_selection = selection;
    m_selectionBytes = selectionBytes;
    m_indices = indices;
    m_indexBytes = indexBytes;
}

void LegacyEngine::setVertices(const float *positions, const float *normals, const float *selection,
                               uint32_t vertexCount)
{
    const auto floatBytes = vertexCount * uint32_t(sizeof(float));
    setData(positions, 3 * floatBytes, normals, 3 * floatBytes, selection, floatBytes, m_indices,
            m_indexBytes);
}

void LegacyEngine::bind()
{
    _bindProgram(m_type);
    m_gl->glEnableVertexAttribArray(0);
}

void LegacyEngine::release()
{
    m_gl->glDisable(GL_BLEND);
    m_gl->glDisableVertexAttribArray(0);
    m_gl->glUseProgram(0);
    m_checkerboard->release();
}

void LegacyEngine::draw()
{
    const auto selected = static_cast<GLuint>(m_gl->glGetAttribLocation(m_program, "selection"));
    const bool lit = m_type == Shader3d;
    if (!m_positions || !m_selection || !m_indices || (lit && !m_normals))
        return;
    const uint32_t count = m_indexBytes / uint32_t(sizeof(uint32_t));
    m_gl->glBegin(GL_TRIANGLE_STRIP);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t vertex = m_indices[i];
        if (vertex == stripEnd) {
            m_gl->glEnd();
            m_gl->glBegin(GL_TRIANGLE_STRIP);
            continue;
        }
        if (lit)
            m_gl->glNormal3fv(m_normals + 3 * vertex);
        m_gl->glVertex3fv(m_positions + 3 * vertex);
        // After the vertex: the value reaches the next one.
        m_gl->glVertexAttrib1f(selected, m_selection[vertex]);
    }
    m_gl->glEnd();
}

LegacyShader::LegacyShader()
    : LegacyEngine(Shader3d)
{
    _buildProgram(litVertexFile, ":/marlowen2/shaders/lit120.frag", Shader3d);
}

LegacyShader2d::LegacyShader2d()
    : LegacyEngine(Shader2d)
{
    // The height colours need the lit program's vertex stage as it is.
    _buildProgram(litVertexFile, ":/marlowen2/shaders/height120.frag", Shader2d);
}

} // namespace marlowen
