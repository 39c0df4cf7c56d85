#pragma once

#include "render/engines/shader.h"

namespace marlowen {

/// Draws the facets of a model, flat and lit, front and back in different colours, from buffers of
/// OpenGL 2.1. Of the data it uses positions and indices, which are three corners a facet instead
/// of strips; the arrays may be freed after setData() and setVertices().
class FacetShader : public Shader
{
public:
    /// Throws a C string when the program cannot be made.
    FacetShader();
    ~FacetShader() override;

    void bind() override;
    void release() override;
    void draw() override;
    void setData(const ShaderMesh &mesh) override;
    void setVertices(const ShaderMesh &mesh) override;
    /// Other facets of the same vertices: three corners each, which may be freed afterwards.
    void setFacets(std::span<const uint32_t> corners);
    /// Does nothing: a model changes by its placement.
    void updateVertices(const VertexBlock &) override {}

    /// From the positions to where the facets stand in model space, column-major; lighting is
    /// computed there. Used by the next bind, as are the fields below.
    std::array<float, 16> placement = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    /// Colour of the sides that turn clockwise as seen.
    Rgba backFace = {0.5F, 0.5F, 0.5F, 1.0F};
    /// The sides that turn clockwise are the front ones.
    bool inverted = false;

private:
    enum Buffer { Positions, Indices, BufferCount };
    std::array<uint32_t, BufferCount> m_buffers{};
    int32_t m_placementLocation = -1;
    int32_t m_backLocation = -1;
};

} // namespace marlowen
