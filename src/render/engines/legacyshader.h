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
    void setData(const ShaderMesh &mesh) override;
    void setVertices(const ShaderMesh &mesh) override;
    void updateVertices(const VertexBlock &) override {}

protected:
    explicit LegacyEngine(ShaderType type)
        : m_type(type)
    {
    }

private:
    ShaderType m_type;
    ShaderMesh m_mesh;
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
