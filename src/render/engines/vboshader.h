#pragma once

#include "render/engines/shader.h"

#include <vector>

class QOpenGLFunctions_3_3_Core;

namespace marlowen {

/// The buffer engine: one vertex-array object, a buffer an array of the kind, and an index buffer.
class VboEngine : public Shader
{
public:
    ~VboEngine() override;

    void bind() override;
    void release() override;
    void draw() override;
    void drawFacets(std::span<const uint32_t> corners) override;
    bool drawsFacets() const override { return true; }
    void setData(const ShaderMesh &mesh) override;
    void setVertices(const ShaderMesh &mesh) override;
    void updateVertices(const VertexBlock &block) override;

protected:
    /// Generates the objects; the derived class builds its program.
    explicit VboEngine(ShaderType type);

private:
    /// One vertex array: where the caller keeps it and the buffer it is uploaded to. Its place in
    /// m_attributes is its attribute index.
    struct Attribute
    {
        uint32_t floats = 0; ///< a vertex
        uint32_t buffer = 0;
        std::span<const float> data = {};
    };
    bool _isComplete() const;
    void _uploadVertices(const ShaderMesh &mesh);

    ShaderType m_type;
    QOpenGLFunctions_3_3_Core *m_buffers = nullptr; ///< owned by the context
    uint32_t m_vertexArray = 0;
    uint32_t m_indexBuffer = 0;
    uint32_t m_facetBuffer = 0;
    std::vector<Attribute> m_attributes;
};

/// Lit relief through OpenGL 3.3 buffers: positions, normals, selection.
class VboShader : public VboEngine
{
public:
    VboShader();
};

/// Height-coloured relief through OpenGL 3.3 buffers: positions, selection.
class VboShader2d : public VboEngine
{
public:
    VboShader2d();
};

} // namespace marlowen
