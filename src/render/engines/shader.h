#pragma once

#include <QOpenGLTexture>

#include <array>
#include <cstdint>
#include <memory>
#include <span>

class QOpenGLFunctions_2_1;

namespace marlowen {

/// What a view wants drawn: the lit relief of the 3D view or the height-coloured one of the 2D
/// view.
enum ShaderType : int32_t { Shader3d, Shader2d };

/// The vertex data of a surface. The arrays stay the caller's.
struct ShaderMesh
{
    std::span<const float> positions;  ///< x, y, z a vertex
    std::span<const float> normals;    ///< x, y, z a vertex, of any length; the 2D classes ignore
                                       ///< them
    std::span<const float> selection;  ///< one value a vertex, 0 is not selected, negative a mask
    std::span<const uint32_t> indices; ///< triangle strips, separated by 0xFFFFFFFF
};

/// A block of vertices of a row-major vertex grid: `rows` runs of `count` vertices, the first run
/// starting at vertex `first`, each next one `stride` vertices later.
struct VertexBlock
{
    uint32_t first = 0;
    uint32_t count = 0;
    uint32_t rows = 1;
    uint32_t stride = 0;
};

/// Draws one relief from vertex data that a view built. A view creates it with
/// ShaderFactory::getShader, owns it, and per frame calls bind, draw, release. Every call, the
/// destructor included, needs the view's OpenGL context to be current.
///
/// The arrays given to setData belong to the caller and must stay at the same addresses until the
/// next setData or setVertices: the legacy engine draws straight from them and the buffer engine
/// reads the changed vertices from them in updateVertices.
class Shader
{
public:
    virtual ~Shader();

    /// Makes the program current, reads the current fixed-function modelview and projection
    /// matrices, uploads the fields below, binds the floor texture to unit 0 and enables blending.
    virtual void bind() = 0;
    /// Undoes what bind enabled.
    virtual void release() = 0;
    /// Issues the strips of `drawn`; draws nothing while the data is incomplete or the index array
    /// is empty.
    virtual void draw() = 0;
    /// Issues facets of three corners each, numbers of vertices, instead of the strips. An engine
    /// that cannot issues the strips.
    virtual void drawFacets(std::span<const uint32_t> corners)
    {
        (void)corners;
        draw();
    }
    /// Whether drawFacets() issues the facets.
    virtual bool drawsFacets() const { return false; }
    /// Replaces the whole data.
    virtual void setData(const ShaderMesh &mesh) = 0;
    /// Replaces the vertices and keeps the indices of the last setData, ignoring those of the mesh:
    /// for a grid of the same number of columns and rows as before.
    virtual void setVertices(const ShaderMesh &mesh) = 0;
    /// Uploads vertices that the caller changed in place in the arrays last given. Parts of the
    /// block beyond the data are ignored.
    virtual void updateVertices(const VertexBlock &block) = 0;

    /// Bytes handed to OpenGL since construction; the legacy engine uploads none.
    uint64_t uploadedVertexBytes() const { return m_uploadedVertexBytes; }
    uint64_t uploadedIndexBytes() const { return m_uploadedIndexBytes; }

    /// A part of the indices; the default is all of them.
    struct IndexRange
    {
        uint32_t first = 0;
        uint32_t count = UINT32_MAX;
    };
    IndexRange drawn;
    /// Colours are computed at the vertices, for less work a pixel; only the buffer engine can.
    bool quick = false;

    using Vector3 = std::array<float, 3>;
    using Rgba = std::array<float, 4>; ///< 0..1; a material's alpha is the strength of its term

    /// Written by the views and the material controls between frames; used by the next bind.
    int32_t size = 1; ///< the relief's larger dimension in cells
    Vector3 lightPosition = {0.0F, 0.0F,
                             0.0F}; ///< used as a direction in model space, unnormalised
    Rgba ambient = {0.0F, 0.0F, 0.0F, 1.0F};
    Rgba diffuse = {1.0F, 1.0F, 1.0F, 1.0F};
    Rgba specular = {0.0F, 0.0F, 0.0F, 1.0F};
    float shininess = 0.0F;
    float colorOffset = 0.0F; ///< shifts the height colours, period 255
    float minZ = 0.0F;        ///< range of the height colours, in the z of the vertices
    float maxZ = 0.0F;

protected:
    /// The location of each uniform of the program; -1 where the program has none.
    struct Locations
    {
        int32_t modelview = -1;
        int32_t projection = -1;
        int32_t normalMatrix = -1;
        int32_t lightPosition = -1;
        int32_t ambientMaterial = -1;
        int32_t diffuseMaterial = -1;
        int32_t specularMaterial = -1;
        int32_t shinyness = -1;
        int32_t colorOffset = -1;
        int32_t textureUnit0 = -1;
        int32_t size = -1;
        int32_t minZ = -1;
        int32_t maxZ = -1;
    };

    /// Loads the floor pattern; throws a C string when the context has no OpenGL 2.1 functions.
    Shader();
    Shader(const Shader &) = delete;
    Shader &operator=(const Shader &) = delete;

    /// Builds the program of the two resource files and looks up the uniforms of the kind. Throws a
    /// C string when it does not compile or link; the compile log goes to the debug messages.
    void _buildProgram(const char *vertexFile, const char *fragmentFile, ShaderType type);
    /// The same for the program that `quick` asks for.
    void _buildQuickProgram(const char *vertexFile, ShaderType type);
    /// What there is of `drawn`.
    IndexRange _drawnIndices() const;
    /// What bind does on both engines.
    void _bindProgram(ShaderType type);

    uint32_t m_program = 0;
    uint32_t m_positionBytes = 0;
    uint32_t m_normalBytes = 0;
    uint32_t m_selectionBytes = 0;
    uint32_t m_indexBytes = 0;
    std::unique_ptr<QOpenGLTexture> m_checkerboard;
    std::array<float, 16> m_modelview = {}; ///< column-major, as of the last bind
    std::array<float, 16> m_projection = {};
    std::array<float, 9> m_normalMatrix = {};
    Locations m_locations;
    uint64_t m_uploadedVertexBytes = 0;
    uint64_t m_uploadedIndexBytes = 0;
    QOpenGLFunctions_2_1 *m_gl = nullptr; ///< owned by the context

private:
    uint32_t _build(const char *vertexFile, const char *fragmentFile);
    Locations _locate(uint32_t program, ShaderType type);
    void _uploadMaterial(const Locations &at);

    uint32_t m_quickProgram = 0;
    Locations m_quickLocations;
};

/// The drawing engines: OpenGL 3.3 buffer objects, or OpenGL 2.1 immediate mode.
enum class DrawingEngine { Vbo, Legacy };

/// The engine for an OpenGL version string such as "4.5 (Compatibility Profile) Mesa": buffers from
/// 3.3 on unless the legacy engine is asked for. Only the number the string begins with counts,
/// in any locale.
DrawingEngine drawingEngineFor(const char *version, bool useLegacyShader);

class ShaderFactory
{
public:
    /// A new object for the current OpenGL context, owned by the caller; null for an unknown type.
    /// Obeys the setting "useLegacyShader". Ends the process when there is no context; throws a C
    /// string when a program does not compile or link.
    static Shader *getShader(ShaderType type);
};

} // namespace marlowen
