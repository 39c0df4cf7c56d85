#pragma once

#include "render/engines/shader.h"

namespace marlowen {

/// The legacy engine: feeds the program vertex by vertex straight from the caller's arrays. Each
/// vertex carries the selection value of the vertex issued before it.
class LegacyEngine : public Shader
{
public:
    void bind() override;
    void release() override;
    void draw() override;
    void setData(const float *positions, uint32_t positionBytes, const float *normals,
                 uint32_t normalBytes, const float *selection, uint32_t selectionBytes,
                 const uint32_t *indices, uint32_t indexBytes) override;
    void setVertices(const float *positions, const float *normals, const float *selection,
                     uint32_t vertexCount) override;
    void updateVertices(const VertexBlock &) override {}

protected:
    explicit LegacyEngine(ShaderType type)
        : m_type(type)
    {
    }

private:
    ShaderType m_type;
    const float *m_positions = nullptr;
    const float *m_normals = nullptr;
    const float *m_selection = nullptr;
    const uint32_t *m_indices = nullptr;
};

/// Lit relief in OpenGL 2.1 immediate mode.
class LegacyShader : public LegacyEngine
{
public:
    LegacyShader();
};

/// Height-coloured relief in OpenGL 2.1 immediate mode.
class LegacyShader2d : public LegacyEngine
{
public:
    LegacyShader2d();
};

} // namespace marlowen
