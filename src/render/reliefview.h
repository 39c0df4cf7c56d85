#pragma once

#include "relief/toolparams.h"
#include "render/axislock.h"
#include "render/camera.h"
#include "render/depthimage.h"
#include "render/reliefchanges.h"
#include "render/reliefmesh.h"

#include <QOpenGLWidget>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

class FootprintPainter;
class QOpenGLFunctions_2_1;
class ReliefPicture;
class Relief;
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
    ~ReliefView() override;

    /// Shows another relief, or none. With `resize` the widget takes the relief's size, one logical
    /// pixel a cell. To be called before the old relief is deleted.
    void setRelief(Relief *relief, bool resize = false);
    Relief *relief() const { return m_relief; }
    /// The record the brush is read from; the wheel writes size and strength into it. Null: the
    /// view's own record.
    void setTool(ToolParams *tool);
    ToolParams &tool() const { return *m_tool; }
    /// Strokes go through it; without one the pointer only looks. It must be attached to the same
    /// relief.
    void setEngine(SculptEngine *engine) { m_engine = engine; }
    /// Share one with the other views of the same relief; null: the view's own.
    void setChanges(ReliefChanges *changes);
    ReliefChanges *changes() const { return m_changes; }

    /// What lies behind the relief.
    void setBackdrop(const QColor &color);
    /// Interaction mode (ViewMode) and its cursor; any other value sets the default cursor.
    void setMode(int mode);
    int mode() const { return m_mode; }

    const Camera &camera() const { return m_camera; }
    /// As drawn last, or as they would be drawn now when the camera has changed since.
    ViewMatrices matrices() const;
    QRect drawRegion() const { return m_mesh.region(); }
    int lodStep() const { return m_mesh.step(); }

    struct PickResult
    {
        bool hit = false;
        Vector point; ///< model space: stroke point in x and y, height in z
    };
    /// The relief under a logical position, from the depth of the last picture.
    PickResult pick(QPoint position);

    /// Work done since construction.
    struct Counters
    {
        int fullRebuilds = 0;     ///< all vertices computed
        int partialRefreshes = 0; ///< paints that refreshed only changed cells
        int pictures = 0;         ///< times the relief was rasterised
        int depthReads = 0;
        qint64 refreshedVertices = 0;
    };
    const Counters &counters() const { return m_counters; }
    /// Null before the first paint or when no drawing engine could be made.
    const Shader *shader() const { return m_shader.get(); }

public slots:
    void zoomAll();
    /// Step 0..3 adds -0.01, +0.01, -0.1, +0.1 to the tool size.
    void brushSizeStep(int step);
    /// Repaints with whatever the relief, the tool or the alpha brush became.
    void refresh();

signals:
    void statusChanged(const QString &text);
    void toolSizeUpdated(double size);
    void toolStrengthUpdated(double strength);
    /// A stroke (or click) of the pointer changed the relief.
    void reliefEdited();
    /// The Sample tool picked a height.
    void sampleChanged(double height);

protected:
    // What a derived view supplies.
    virtual std::unique_ptr<Shader> createShader() = 0;
    /// The arrays a vertex has besides positions.
    virtual bool hasNormals() const { return true; }
    /// Computes these vertices (rectangle of vertex columns and rows) of the mesh from the relief.
    virtual void fillVertices(ReliefMesh &mesh, const QRect &vertices) = 0;
    /// Fields of the shader that follow from the vertices; called whenever those changed.
    virtual void configureShader(Shader &shader) { (void)shader; }
    /// Over the relief, in every frame. The fixed-function matrices and the viewport are the
    /// relief's; blending is off, depth test and depth writes are off.
    virtual void drawOverlays(QOpenGLFunctions_2_1 &gl) { (void)gl; }
    /// Releases what drawOverlays made; the context is current.
    virtual void releaseOverlays() {}
    /// A new relief was set or the relief got another size.
    virtual void reliefReplaced() {}
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
    Shader *currentShader() const { return m_shader.get(); }
    /// The picture must be drawn anew though neither relief nor camera changed: shader fields did.
    void invalidatePicture();
    /// All vertices must be computed anew though the relief did not change.
    void invalidateVertices();
    /// Heights the vertices were computed with, unscaled, as of the last full rebuild.
    ReliefChanges::HeightRange heightRange() const { return m_range; }
    ReliefBox reliefBox() const;
    QPoint lastPos() const { return m_lastPos; }
    bool pointerInside() const { return m_pointerInside; }
    /// Draws the tool's footprint on the surface at the picked point.
    void drawFootprint(QOpenGLFunctions_2_1 &gl, const PickResult &at);

private slots:
    void statusTimeout();

private:
    void _releaseGL();
    void _updateVertices();
    void _rebuildVertices(const QRect &visible);
    void _refreshVertices(const QRegion &cells);
    void _drawPicture();
    void _logErrors(QOpenGLFunctions_2_1 &gl);
    void _paintMessage();
    void _ensureDepth();
    void _cameraChanged();
    void _pressStroke(const QMouseEvent &event);
    void _moveStroke(const QMouseEvent &event);
    void _releaseStroke(const QMouseEvent &event);
    void _throughEngine(const std::function<void(SculptEngine &)> &call);
    bool _wheelTool(const QWheelEvent &event, int delta);
    void _setToolSize(double size);

    Relief *m_relief = nullptr;
    ToolParams m_ownTool;
    ToolParams *m_tool = &m_ownTool;
    SculptEngine *m_engine = nullptr;
    QPointer<ReliefChanges> m_changes;
    int m_changesView = -1;

    Camera m_camera;
    ViewMatrices m_drawn; ///< what the kept picture was drawn with
    ReliefChanges::HeightRange m_range;
    ReliefMesh m_mesh;
    QRect m_visible; ///< visible cells when the mesh was built
    DepthImage m_depth;
    std::unique_ptr<ReliefPicture> m_picture;
    std::unique_ptr<Shader> m_shader;
    std::unique_ptr<FootprintPainter> m_footprint;
    QString m_message; ///< why nothing can be drawn
    Counters m_counters;
    QColor m_backdrop;

    bool m_pictureStale = true;
    bool m_verticesStale = true;
    bool m_depthStale = true;
    bool m_depthHeld = false; ///< a stroke keeps the depth it began with
    bool m_statusPending = false;
    bool m_pointerInside = true;
    int m_mode = NoMode;
    int m_savedMode = NoMode;
    QPoint m_lastPos;
    AxisLock m_axisLock;
    bool m_strokeEdited = false;
    QTimer m_statusTimer;
};
