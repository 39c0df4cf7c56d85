#include "render/engines/facetshader.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions_2_1>

namespace marlowen {

FacetShader::FacetShader()
{
    _buildProgram(":/marlowen2/shaders/facet120.vert", ":/marlowen2/shaders/facet120.frag",
                  Shader3d);
    m_placementLocation = m_gl->glGetUniformLocation(m_program, "Placement");
    m_backLocation = m_gl->glGetUniformLocation(m_program, "BackMaterial");
    m_gl->glGenBuffers(BufferCount, m_buffers.data());
}

FacetShader::~FacetShader()
{
    if (QOpenGLContext::currentContext())
        m_gl->glDeleteBuffers(BufferCount, m_buffers.data());
}

void FacetShader::setData(const ShaderMesh &mesh)
{
    setVertices(mesh);
    setFacets(mesh.indices);
}

void FacetShader::setFacets(std::span<const uint32_t> corners)
{
    m_indexBytes = static_cast<uint32_t>(corners.size_bytes());
    m_gl->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[Indices]);
    m_gl->glBufferData(GL_ELEMENT_ARRAY_BUFFER, m_indexBytes, corners.data(), GL_STATIC_DRAW);
    m_gl->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_uploadedIndexBytes += m_indexBytes;
}

void FacetShader::setVertices(const ShaderMesh &mesh)
{
    m_positionBytes = static_cast<uint32_t>(mesh.positions.size_bytes());
    m_gl->glBindBuffer(GL_ARRAY_BUFFER, m_buffers[Positions]);
    m_gl->glBufferData(GL_ARRAY_BUFFER, m_positionBytes, mesh.positions.data(), GL_STATIC_DRAW);
    m_gl->glBindBuffer(GL_ARRAY_BUFFER, 0);
    m_uploadedVertexBytes += m_positionBytes;
}

void FacetShader::bind()
{
    _bindProgram(Shader3d);
    m_gl->glUniformMatrix4fv(m_placementLocation, 1, GL_FALSE, placement.data());
    m_gl->glUniform4fv(m_backLocation, 1, backFace.data());
    m_gl->glFrontFace(inverted ? GL_CW : GL_CCW);
    m_gl->glBindBuffer(GL_ARRAY_BUFFER, m_buffers[Positions]);
    m_gl->glEnableClientState(GL_VERTEX_ARRAY);
    m_gl->glVertexPointer(3, GL_FLOAT, 0, nullptr);
    m_gl->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[Indices]);
}

void FacetShader::release()
{
    m_gl->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    m_gl->glDisableClientState(GL_VERTEX_ARRAY);
    m_gl->glBindBuffer(GL_ARRAY_BUFFER, 0);
    m_gl->glFrontFace(GL_CCW);
    m_gl->glDisable(GL_BLEND);
    m_gl->glUseProgram(0);
    m_checkerboard->release(0);
}

void FacetShader::draw()
{
    if (m_positionBytes == 0 || m_indexBytes == 0)
        return;
    const auto [first, count] = _drawnIndices();
    const auto *offset = reinterpret_cast<const void *>(sizeof(uint32_t) * uintptr_t{first});
    m_gl->glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count), GL_UNSIGNED_INT, offset);
}

} // namespace marlowen
