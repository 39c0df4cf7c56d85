#include "render/engines/legacyshader.h"

#include <QOpenGLFunctions_2_1>

namespace marlowen {

namespace {

constexpr uint32_t stripEnd = 0xFFFFFFFF;
constexpr const char *litVertexFile = ":/marlowen2/shaders/lit120.vert";

} // namespace

void LegacyEngine::setData(const ShaderMesh &mesh)
{
    setVertices(mesh);
    m_mesh.indices = mesh.indices;
    m_indexBytes = static_cast<uint32_t>(mesh.indices.size_bytes());
}

void LegacyEngine::setVertices(const ShaderMesh &mesh)
{
    m_mesh.positions = mesh.positions;
    m_positionBytes = static_cast<uint32_t>(mesh.positions.size_bytes());
    if (m_type == Shader3d) {
        m_mesh.normals = mesh.normals;
        m_normalBytes = static_cast<uint32_t>(mesh.normals.size_bytes());
    }
    m_mesh.selection = mesh.selection;
    m_selectionBytes = static_cast<uint32_t>(mesh.selection.size_bytes());
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
    const float *positions = m_mesh.positions.data();
    const float *normals = m_mesh.normals.data();
    const float *selection = m_mesh.selection.data();
    if (!positions || !selection || !m_mesh.indices.data() || (lit && !normals))
        return;
    m_gl->glBegin(GL_TRIANGLE_STRIP);
    const auto [first, count] = _drawnIndices();
    for (const uint32_t index : m_mesh.indices.subspan(first, count)) {
        if (index == stripEnd) {
            m_gl->glEnd();
            m_gl->glBegin(GL_TRIANGLE_STRIP);
            continue;
        }
        const size_t vertex = index;
        if (lit)
            m_gl->glNormal3fv(normals + 3 * vertex);
        m_gl->glVertex3fv(positions + 3 * vertex);
        // After the vertex: the value reaches the next one.
        m_gl->glVertexAttrib1f(selected, selection[vertex]);
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
    // The height colours use the lit program's vertex stage unchanged.
    _buildProgram(litVertexFile, ":/marlowen2/shaders/height120.frag", Shader2d);
}

} // namespace marlowen
