#include "render/engines/vboshader.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions_3_3_Core>
#include <QOpenGLVersionFunctionsFactory>

#include <algorithm>

namespace marlowen {

namespace {

constexpr uint32_t stripEnd = 0xFFFFFFFF;

QOpenGLFunctions_3_3_Core *currentFunctions()
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    return context ? QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_3_3_Core>(context)
                   : nullptr;
}

} // namespace

VboEngine::VboEngine(ShaderType type)
    : m_type(type)
    , m_buffers(currentFunctions())
{
    if (!m_buffers)
        throw "OpenGL 3.3 is not available...aborting!";
    m_attributes.push_back({3});
    if (type == Shader3d)
        m_attributes.push_back({3});
    m_attributes.push_back({1});

    m_buffers->glGenVertexArrays(1, &m_vertexArray);
    for (Attribute &attribute : m_attributes)
        m_buffers->glGenBuffers(1, &attribute.buffer);
    for (uint32_t *buffer : {&m_indexBuffer, &m_facetBuffer})
        m_buffers->glGenBuffers(1, buffer);
}

VboEngine::~VboEngine()
{
    m_buffers = currentFunctions();
    if (!m_buffers)
        return;
    for (const Attribute &attribute : m_attributes)
        m_buffers->glDeleteBuffers(1, &attribute.buffer);
    for (const uint32_t buffer : {m_indexBuffer, m_facetBuffer})
        m_buffers->glDeleteBuffers(1, &buffer);
    m_buffers->glDeleteVertexArrays(1, &m_vertexArray);
}

void VboEngine::setData(const ShaderMesh &mesh)
{
    const std::span<const uint32_t> indices = mesh.indices;
    m_indexBytes = static_cast<uint32_t>(indices.size_bytes());
    m_buffers->glBindVertexArray(m_vertexArray);
    _uploadVertices(mesh);
    m_buffers->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer);
    m_buffers->glBufferData(GL_ELEMENT_ARRAY_BUFFER, m_indexBytes, indices.data(), GL_STATIC_DRAW);
    m_uploadedIndexBytes += m_indexBytes;
    // One more attribute over the selection buffer, which no program reads.
    const auto unread = static_cast<GLuint>(m_attributes.size());
    m_buffers->glEnableVertexAttribArray(unread);
    m_buffers->glVertexAttribPointer(unread, 1, GL_UNSIGNED_INT, GL_FALSE, 0, nullptr);
    m_buffers->glBindVertexArray(0);
    m_buffers->glBindBuffer(GL_ARRAY_BUFFER, 0);
    m_buffers->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void VboEngine::setVertices(const ShaderMesh &mesh)
{
    m_buffers->glBindVertexArray(m_vertexArray);
    _uploadVertices(mesh);
    m_buffers->glBindVertexArray(0);
    m_buffers->glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void VboEngine::_uploadVertices(const ShaderMesh &mesh)
{
    m_attributes.front().data = mesh.positions;
    if (m_type == Shader3d)
        m_attributes[1].data = mesh.normals;
    m_attributes.back().data = mesh.selection;
    m_positionBytes = static_cast<uint32_t>(mesh.positions.size_bytes());
    m_normalBytes = m_type == Shader3d ? static_cast<uint32_t>(mesh.normals.size_bytes()) : 0;
    m_selectionBytes = static_cast<uint32_t>(mesh.selection.size_bytes());

    for (size_t i = 0; i < m_attributes.size(); ++i) {
        const Attribute &attribute = m_attributes[i];
        const auto index = static_cast<GLuint>(i);
        m_buffers->glBindBuffer(GL_ARRAY_BUFFER, attribute.buffer);
        const size_t bytes = attribute.data.size_bytes();
        m_buffers->glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes),
                                attribute.data.data(), GL_STATIC_DRAW);
        m_buffers->glEnableVertexAttribArray(index);
        m_buffers->glVertexAttribPointer(index, static_cast<GLint>(attribute.floats), GL_FLOAT,
                                         GL_FALSE, 0, nullptr);
        m_uploadedVertexBytes += bytes;
    }
}

void VboEngine::updateVertices(const VertexBlock &given)
{
    VertexBlock block = given;
    if (block.stride == block.count) {
        block.count *= block.rows;
        block.rows = 1;
    }
    for (const Attribute &attribute : m_attributes) {
        const uint64_t vertexBytes = attribute.floats * sizeof(float);
        m_buffers->glBindBuffer(GL_ARRAY_BUFFER, attribute.buffer);
        for (uint32_t row = 0; row < block.rows; ++row) {
            const uint64_t offset =
                (block.first + static_cast<uint64_t>(row) * block.stride) * vertexBytes;
            if (offset >= attribute.data.size_bytes())
                break;
            const uint64_t bytes =
                std::min(block.count * vertexBytes, attribute.data.size_bytes() - offset);
            m_buffers->glBufferSubData(
                GL_ARRAY_BUFFER, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(bytes),
                reinterpret_cast<const char *>(attribute.data.data()) + offset);
            m_uploadedVertexBytes += bytes;
        }
    }
    m_buffers->glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void VboEngine::bind()
{
    _bindProgram(m_type);
    m_buffers->glPrimitiveRestartIndex(stripEnd);
    m_buffers->glEnable(GL_PRIMITIVE_RESTART);
    m_buffers->glBindVertexArray(m_vertexArray);
}

void VboEngine::release()
{
    m_buffers->glDisable(GL_PRIMITIVE_RESTART);
    m_buffers->glDisable(GL_BLEND);
    m_buffers->glUseProgram(0);
    m_buffers->glBindVertexArray(0);
    m_checkerboard->release(0);
}

bool VboEngine::_isComplete() const
{
    return m_positionBytes && m_selectionBytes && m_indexBytes &&
           (m_normalBytes || m_type == Shader2d);
}

void VboEngine::drawFacets(std::span<const uint32_t> corners)
{
    if (!_isComplete() || corners.empty())
        return;
    m_buffers->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_facetBuffer);
    m_buffers->glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(corners.size_bytes()),
                            corners.data(), GL_STREAM_DRAW);
    m_uploadedIndexBytes += corners.size_bytes();
    m_buffers->glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(corners.size()), GL_UNSIGNED_INT,
                              nullptr);
    m_buffers->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer);
}

void VboEngine::draw()
{
    if (!_isComplete())
        return;
    const auto [first, count] = _drawnIndices();
    const auto *offset = reinterpret_cast<const void *>(sizeof(uint32_t) * uintptr_t{first});
    m_buffers->glDrawElements(GL_TRIANGLE_STRIP, static_cast<GLsizei>(count), GL_UNSIGNED_INT,
                              offset);
}

VboShader::VboShader()
    : VboEngine(Shader3d)
{
    _buildProgram(":/marlowen2/shaders/lit330.vert", ":/marlowen2/shaders/lit330.frag", Shader3d);
    _buildQuickProgram(":/marlowen2/shaders/litquick330.vert", Shader3d);
}

VboShader2d::VboShader2d()
    : VboEngine(Shader2d)
{
    _buildProgram(":/marlowen2/shaders/height330.vert", ":/marlowen2/shaders/height330.frag",
                  Shader2d);
    _buildQuickProgram(":/marlowen2/shaders/heightquick330.vert", Shader2d);
}

} // namespace marlowen
