#include "render/views/facetwin.h"

#include "render/camera/depthimage.h"
#include "render/engines/facetshader.h"
#include "render/meshes/pixelfacets.h"
#include "render/views/statustext.h"

#include <QMouseEvent>
#include <QOpenGLFunctions_2_1>

#include <algorithm>
#include <limits>
#include <new>

namespace marlowen {

namespace {

/// A software driver draws so many in a frame of a moving camera.
constexpr size_t mostCoarseFacets = 50000;
constexpr size_t denseFacets = 300000;
/// The largest count in the buffers of the driver.
constexpr size_t mostFacets = std::numeric_limits<uint32_t>::max() / sizeof(MeshTriangle);

constexpr Shader::Rgba backFaceColor = {0.86F, 0.38F, 0.24F, 1.0F};

/// From the front, from above, a little from the left.
Quaternion firstRotation()
{
    return multiplied(rotationAbout({1.0, 0.0, 0.0}, -48.0), rotationAbout({0.0, 0.0, 1.0}, 24.0));
}

std::span<const uint32_t> cornersOf(const TriangleMesh &mesh)
{
    if (mesh.triangles.empty())
        return {};
    return {mesh.triangles.front().data(), 3 * mesh.triangles.size()};
}

} // namespace

FacetWin::FacetWin(QWidget *parent)
    : SurfaceView(parent)
{
    setAccessibleName(tr("Model"));
    enableTurning();
}

FacetWin::~FacetWin()
{
    releaseGL();
}

void FacetWin::setMesh(const TriangleMesh *mesh, const ModelBox &box)
{
    m_mesh = mesh;
    m_box = box;
    m_scene = {};
    m_uploaded = false;
    if (mesh)
        setRotation(firstRotation());
    invalidatePicture();
}

void FacetWin::setStand(const Stand &stand)
{
    m_stand = stand;
    m_scene = sceneOf(m_box, stand.placement);
    m_sizeBox.setSizes(stand.sizes);
    refreshStatus();
    invalidatePicture();
}

void FacetWin::setMaterial(const Material &material)
{
    m_look.material = material;
    invalidatePicture();
}

void FacetWin::setLightPos(int index)
{
    m_look.lightPos = index;
    invalidatePicture();
}

SceneBox FacetWin::sceneBox() const
{
    return m_mesh ? m_scene.box : SceneBox();
}

std::unique_ptr<Shader> FacetWin::createShader(bool)
{
    return std::make_unique<FacetShader>();
}

void FacetWin::prepareGL(QOpenGLFunctions_2_1 &gl)
{
    m_functions = &gl;
    m_uploaded = false;
}

bool FacetWin::updateSurface(Shader &shader)
{
    if (std::exchange(m_uploaded, true))
        return false;
    m_coarse.reset();
    if (m_mesh)
        _upload(shader);
    else
        shader.setData({});
    return true;
}

void FacetWin::_upload(Shader &shader)
{
    const FacetFrame frame = frameOf(m_box);
    const size_t facets = m_mesh->triangles.size();
    if (facets > mostCoarseFacets) {
        const CoarseFacets coarse = coarsened(*m_mesh, frame, mostCoarseFacets);
        m_coarse = std::make_unique<FacetShader>();
        m_coarse->setData({coarse.positions, {}, {}, coarse.corners});
    }
    if (facets > mostFacets)
        return shader.setData({});
    const std::vector<float> vertices = facetVertices(*m_mesh, frame);
    std::span<const uint32_t> corners;
    if (!_picksFacets())
        corners = cornersOf(*m_mesh);
    shader.setData({vertices, {}, {}, corners});
    ++work().fullRebuilds;
}

void FacetWin::drawSurface(Shader &shader, const Detail &detail)
{
    if (!m_mesh)
        return;
    const size_t most = std::min(mostFacets, detail.mostFacets);
    const bool fewer = m_coarse && m_mesh->triangles.size() > most;
    FacetShader &whole = static_cast<FacetShader &>(shader);
    if (_picksFacets() && !fewer)
        _setSeenFacets(whole);
    _draw(fewer ? *m_coarse : whole);
    SizeBox::draw(*m_functions, m_scene.box, backdrop().lightness() < 128 ? Qt::white : Qt::black);
}

bool FacetWin::isDense() const
{
    return m_mesh && m_mesh->triangles.size() > denseFacets;
}

void FacetWin::_setSeenFacets(FacetShader &shader) const
{
    const ViewMatrices &view = drawnMatrices();
    const FacetPicture picture{
        frameOf(m_box), multiplied(view.projection, multiplied(view.modelview, m_scene.placement)),
        pixels()};
    try {
        shader.setFacets(facetsOverPixels(*m_mesh, picture));
    } catch (const std::bad_alloc &) {
        shader.setFacets(cornersOf(*m_mesh));
    }
}

void FacetWin::_draw(FacetShader &shader)
{
    m_look.applyTo(shader);
    shader.backFace = backFaceColor;
    shader.inverted = m_stand.inverted;
    std::copy(m_scene.placement.begin(), m_scene.placement.end(), shader.placement.begin());
    shader.bind();
    shader.draw();
    shader.release();
}

void FacetWin::drawOverlays(QOpenGLFunctions_2_1 &gl)
{
    if (m_mesh)
        m_sizeBox.drawSizes(gl, m_scene.box, drawnMatrices(), devicePixelRatioF());
    SurfaceView::drawOverlays(gl);
}

void FacetWin::releaseOverlays(QOpenGLFunctions_2_1 &gl)
{
    m_sizeBox.release();
    m_coarse.reset();
    SurfaceView::releaseOverlays(gl);
}

QString FacetWin::statusText(const Vector &point) const
{
    const double cells = m_stand.cellsPerUnit / m_scene.perUnit; // in a unit of the scene
    const SceneBox relief{m_scene.box.width * cells, m_scene.box.height * cells, 0.0, 0.0};
    return marlowen::statusText(
        {point.x * cells, point.y * cells, (point.z - m_scene.box.zMin) * cells}, relief);
}

int FacetWin::modeForPress(const QMouseEvent &event)
{
    return event.button() == Qt::LeftButton ? int(RotateMode) : SurfaceView::modeForPress(event);
}

} // namespace marlowen
