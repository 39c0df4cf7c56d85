#pragma once

#include "relief/tools/toolparams.h"
#include "render/camera/axislock.h"
#include "render/camera/camera.h"
#include "render/camera/depthimage.h"
#include "render/views/reliefchanges.h"
#include "render/views/reliefmesh.h"

#include <QColor>
#include <QOpenGLWidget>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

class QOpenGLFunctions_2_1;

namespace marlowen {

class FootprintPainter;
class Relief;
class ReliefPicture;
class SculptEngine;
class Shader;

/// What both views of a relief have in common: camera, vertex data, the kept picture of the relief
/// with its depth, picking, strokes from the pointer, wheel, status line. A derived view adds its
/// shader, its vertices and what it draws on top.
///
/// The relief is drawn into a framebuffer object, anew only when relief, camera, shader fields or
/// size changed; overlays are drawn over it in every frame. Views own neither the relief, the tool,
/// the engine nor the changes.
class ReliefView : public QOpenGLWidget
{
    Q_OBJECT

public:
    enum ViewMode { NoMode, PanMode, ZoomMode, RotateMode, RotatingMode, SculptMode };

    explicit ReliefView(QWidget *parent = nullptr);
    /// A derived view calls releaseGL() in its own destructor.
    ~ReliefView() override;

    /// Shows another relief, or none. With `resize` the camera shows all of it, else the camera
    /// stays. To be called before the old relief is deleted.
    virtual void setRelief(Relief *relief, bool resize = false);
    Relief *relief() const { return m_relief; }
    /// The record the brush is read from; the wheel writes size and strength into it. Null: the
    /// view's own record.
    void setTool(ToolParams *tool);
    ToolParams &tool() const { return *m_tool; }
    /// Strokes go through it; without one, or while it is attached to another relief, the pointer
    /// only looks.
    void setEngine(SculptEngine *engine) { m_engine = engine; }
    SculptEngine *engine() const { return m_engine; }
    /// Share one with the other views of the same relief; null: the view's own.
    void setChanges(ReliefChanges *changes);
    ReliefChanges *changes() const { return m_changes; }

    /// What lies behind the relief.
    void setBackdrop(const QColor &color);
    /// Interaction mode (ViewMode) and its cursor; any other value sets the default cursor.
    void setMode(int mode);
    int mode() const { return m_mode; }

    const Camera &camera() const { return m_camera; }
    /// Of the camera as it is now.
    ViewMatrices matrices() const;
    QRect drawRegion() const { return m_mesh.region(); }
    int lodStep() const { return m_mesh.step(); }

    struct PickResult
    {
        bool hit = false;
        Vector point; ///< model space: stroke point in x and y, height in z
    };
    /// The relief under a logical position, from the depth of the picture; draws that first when
    /// the camera moved since. During a stroke the depth is that of its beginning.
    PickResult pick(QPoint position);

    /// Work done since construction.
    struct Counters
    {
        int fullRebuilds = 0;         ///< all vertices computed
        int partialRefreshes = 0;     ///< only vertices of changed cells computed
        qint64 refreshedVertices = 0; ///< computed by partial refreshes
        int pictures = 0;             ///< times the relief was rasterised
        int depthReads = 0;
    };
    const Counters &counters() const { return m_counters; }
    /// Null before the first paint or when no drawing engine could be made.
    const Shader *shader() const { return m_shader.get(); }
    /// Why nothing can be drawn; empty as long as something can.
    const QString &message() const { return m_message; }

public slots:
    void zoomAll();
    /// Step 0..3 adds -0.01, +0.01, -0.1, +0.1 to the tool size.
    void brushSizeStep(int step);
    /// Repaints with whatever the relief, the tool or the alpha brush became.
    void refresh();
    /// Percent of the normal size of the mouse pointers of all views; stored in the settings.
    void setCursorScale(int percent);

signals:
    void statusChanged(const QString &text);
    void cameraChanged();
    void toolSizeUpdated(double size);
    void toolStrengthUpdated(double strength);
    /// A stroke (or click) of the pointer changed the relief.
    void reliefEdited();
    /// The Sample tool picked a height.
    void sampleChanged(double height);

protected:
    // What a derived view supplies.

    /// A new shader of the view's kind, of the legacy engine when asked. The context is current;
    /// throws a C string when it cannot be made.
    virtual std::unique_ptr<Shader> createShader(bool legacy) = 0;
    /// Sets what OpenGL state a view wants beyond that of both; called once for a context.
    virtual void prepareGL(QOpenGLFunctions_2_1 &gl) { (void)gl; }
    /// Vertices carry normals.
    virtual bool hasNormals() const { return true; }
    /// Computes these vertices (rectangle of vertex columns and rows) of the mesh from the relief.
    virtual void fillVertices(ReliefMesh &mesh, const QRect &vertices) = 0;
    /// Sets the shader's fields, `size` excepted; called before every picture.
    virtual void configureShader(Shader &shader) { (void)shader; }
    /// Over the relief, in every frame. The fixed-function matrices and the viewport are those of
    /// the relief's picture; blending, depth test, lighting and texturing are off.
    virtual void drawOverlays(QOpenGLFunctions_2_1 &gl) { (void)gl; }
    /// Releases what drawOverlays made; the context is current.
    virtual void releaseOverlays() {}
    /// The vertices were computed anew, all of them or only some.
    virtual void verticesChanged() {}
    /// Mode that a press starts, NoMode when the press is not the view's.
    virtual int modeForPress(const QMouseEvent &event);
    /// The pointer moved with a button held in modes 1 to 4.
    virtual void dragCamera(QPoint from, QPoint to);
    /// A drag in modes 1 to 4 ended.
    virtual void endCameraDrag(int mode) { (void)mode; }

    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

    void setCamera(const Camera &camera);
    /// The picture must be drawn anew though neither relief nor camera changed: shader fields did.
    void invalidatePicture();
    /// All vertices must be computed anew though the relief did not change.
    void invalidateVertices();
    /// Heights the vertices were computed with, unscaled, as of the last full rebuild.
    HeightRange heightRange() const { return m_range; }
    ReliefBox reliefBox() const;
    /// What the kept picture was drawn with.
    const ViewMatrices &drawnMatrices() const { return m_drawn; }
    QPoint lastPos() const { return m_lastPos; }
    bool pointerInside() const { return m_pointerInside; }
    /// Within drawOverlays: the tool's footprint on the surface under the pointer, if it hits and
    /// the tool has one.
    void drawFootprint(QOpenGLFunctions_2_1 &gl);
    void releaseGL();

private slots:
    void statusTimeout();

private:
    void _makeShader();
    void _updatePicture();
    bool _updateVertices();
    void _rebuildVertices(const QRect &visible);
    void _refreshVertices(const QRegion &cells);
    void _rasterise();
    void _paintOverPicture();
    void _paintMessage();
    void _logErrors();
    void _ensureDepth();
    void _endInteraction(QPoint position);
    void _beginStroke(const QMouseEvent &event);
    void _continueStroke(const QMouseEvent &event);
    void _finishStroke(QPoint position);
    void _throughEngine(const std::function<void(SculptEngine &)> &call);
    bool _wheelTool(Qt::KeyboardModifiers modifiers, int delta);
    void _changeToolSize(double by);

    Relief *m_relief = nullptr;
    ToolParams m_ownTool;
    ToolParams *m_tool = &m_ownTool;
    SculptEngine *m_engine = nullptr;
    ReliefChanges *m_ownChanges;
    QPointer<ReliefChanges> m_changes;
    int m_changesView = -1;

    Camera m_camera;
    ViewMatrices m_drawn;
    HeightRange m_range;
    ReliefMesh m_mesh;
    QSize m_grid; ///< size of the relief that the mesh was built for
    DepthImage m_depth;
    QOpenGLFunctions_2_1 *m_gl = nullptr; ///< owned by the context
    std::unique_ptr<Shader> m_shader;
    std::unique_ptr<ReliefPicture> m_picture;
    std::unique_ptr<FootprintPainter> m_footprint;
    QString m_message;
    Counters m_counters;
    QColor m_backdrop{56, 58, 62};

    bool m_pictureStale = true;
    bool m_verticesStale = true;
    bool m_indicesStale = true;
    bool m_depthStale = true;
    bool m_zoomAllPending = false;
    bool m_statusPending = false;
    bool m_pointerInside = true;
    int m_mode = NoMode;
    int m_savedMode = NoMode;
    Qt::MouseButton m_heldButton = Qt::NoButton;
    QPoint m_lastPos;
    AxisLock m_axisLock;
    bool m_stroking = false; ///< the press hit the relief and the stroke began
    bool m_strokeEdited = false;
    QTimer m_statusTimer;
};

} // namespace marlowen
