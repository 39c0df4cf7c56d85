#pragma once

#include "render/light/surfacelook.h"
#include "render/views/reliefview.h"

namespace marlowen {

/// The 3D view: the lit relief, turned with a virtual trackball, with the brush footprint under the
/// pointer and an orientation gizmo in the top-left corner.
///
/// Left button: stroke (Ctrl keeps it on a line, Alt inverts the tool), or turning when pressed on
/// the gizmo; a double-click on a gizmo face looks straight at that face. Middle button: turn, with
/// Shift pan. Ctrl and right button: turn. Wheel: zoom about the pointer; with Alt tool size, with
/// Ctrl tool strength (Shift: larger steps).
class SculptWin : public ReliefView
{
    Q_OBJECT

public:
    explicit SculptWin(QWidget *parent = nullptr);
    ~SculptWin() override;

    /// Colours and shininess of the relief.
    void setMaterial(const Material &material);
    const Material &material() const { return m_look.material; }

    /// Times the gizmo was drawn anew.
    int gizmoPictures() const;

public slots:
    /// One of the eight light positions; any other index counts as the first.
    void setLightPos(int index);

protected:
    std::unique_ptr<Shader> createShader(bool legacy) override;
    void prepareGL(QOpenGLFunctions_2_1 &gl) override;
    void fillVertices(ReliefMesh &mesh, const QRect &vertices) override;
    void configureShader(Shader &shader) override;
    void drawOverlays(QOpenGLFunctions_2_1 &gl) override;

private:
    SurfaceLook m_look;
};

} // namespace marlowen
