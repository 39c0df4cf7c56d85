#pragma once

#include "render/light/surfacelook.h"
#include "render/meshes/facetscene.h"
#include "render/overlays/sizebox.h"
#include "render/views/surfaceview.h"

namespace marlowen {

class FacetShader;

/// The preview of a model that is being oriented: its lit facets, the back ones in a second colour,
/// in the box of its sizes above the plane that it will be carved down to. The hand is that of the
/// 3D view; with nothing to sculpt the left button turns too.
///
/// A model of many facets is drawn with fewer while the pointer moves it and the driver is slow. At
/// rest such a driver gets only those that are to be seen in the picture.
class FacetWin : public SurfaceView
{
    Q_OBJECT

public:
    explicit FacetWin(QWidget *parent = nullptr);
    ~FacetWin() override;

    /// Shows another model, seen from the front and above, or none. The mesh stays the caller's; a
    /// new call comes before it goes. `box` is the one about its triangles.
    void setMesh(const TriangleMesh *mesh, const ModelBox &box = {});

    /// The placement of the model.
    struct Stand
    {
        ModelPlacement placement;
        double cellsPerUnit = 1.0;    ///< of the relief to be
        std::array<QString, 3> sizes; ///< texts along x, y and z as seen
        bool inverted = false;        ///< the back sides of the facets count as the front ones
    };
    void setStand(const Stand &stand);

    void setMaterial(const Material &material);
    void setLightPos(int index);

protected:
    SceneBox sceneBox() const override;
    std::unique_ptr<Shader> createShader(bool legacy) override;
    void prepareGL(QOpenGLFunctions_2_1 &gl) override;
    bool updateSurface(Shader &shader) override;
    void drawSurface(Shader &shader, const Detail &detail) override;
    bool isDense() const override;
    void drawOverlays(QOpenGLFunctions_2_1 &gl) override;
    void releaseOverlays(QOpenGLFunctions_2_1 &gl) override;
    QString statusText(const Vector &point) const override;
    int modeForPress(const QMouseEvent &event) override;

private:
    void _upload(Shader &shader);
    void _draw(FacetShader &shader);
    /// All facets would take the driver long.
    bool _picksFacets() const { return slowDriver() && isDense(); }
    void _setSeenFacets(FacetShader &shader) const;

    const TriangleMesh *m_mesh = nullptr;
    ModelBox m_box;
    Stand m_stand;
    FacetScene m_scene;
    SurfaceLook m_look;
    QOpenGLFunctions_2_1 *m_functions = nullptr; ///< owned by the context
    std::unique_ptr<FacetShader> m_coarse;       ///< null when the model has few facets
    SizeBox m_sizeBox;
    bool m_uploaded = false;
};

} // namespace marlowen
