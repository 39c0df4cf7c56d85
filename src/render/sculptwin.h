#pragma once

#include "render/arcball.h"
#include "render/reliefview.h"

class GizmoPainter;
struct Material;

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

    /// Copies colours and shininess into the shader and repaints.
    void setMaterial(const Material &material);
    /// Direction towards the light, in model space.
    void setLightDirection(const std::array<float, 3> &direction);

    Quaternion rotation() const { return m_arcball.rotation(); }
    void setRotation(const Quaternion &rotation);

    /// Share of the normal size that the mouse pointers of both views have, 1..4; read from the
    /// settings once a process.
    static double cursorScale();

public slots:
    /// One of the eight light positions.
    void setLightPos(int index);
    /// Percent; written to the settings, applied to the pointers at once.
    void setCursorScale(int percent);

protected:
    std::unique_ptr<Shader> createShader() override;
    void fillVertices(ReliefMesh &mesh, const QRect &vertices) override;
    void configureShader(Shader &shader) override;
    void drawOverlays(QOpenGLFunctions_2_1 &gl) override;
    void releaseOverlays() override;
    int modeForPress(const QMouseEvent &event) override;
    void dragCamera(QPoint from, QPoint to) override;
    void endCameraDrag(int mode) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    int _gizmoFaceAt(QPoint position) const;
    void _applyLook();

    /// The shader's look, kept so that it can be set before the shader exists.
    struct Look
    {
        std::array<float, 4> ambient = {0.05375F, 0.05F, 0.06625F, 0.82F};
        std::array<float, 4> diffuse = {0.18275F, 0.17F, 0.22525F, 0.82F};
        std::array<float, 4> specular = {0.332741F, 0.328634F, 0.346435F, 0.82F};
        float shininess = 38.4F;
        std::array<float, 3> light = {-0.51F, 0.4182F, 1.0F};
    };

    Arcball m_arcball;
    Look m_look;
    std::unique_ptr<GizmoPainter> m_gizmo;
    bool m_onGizmo = false;
    QPoint m_dragStart;
};
