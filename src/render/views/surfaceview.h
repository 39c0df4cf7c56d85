#pragma once

#include "render/camera/arcball.h"
#include "render/camera/camera.h"
#include "render/camera/depthimage.h"
#include "render/camera/levelofdetail.h"
#include "render/views/glcanvas.h"
#include "render/views/picturequality.h"

#include <QColor>
#include <QTimer>

#include <memory>

class QOpenGLFunctions_2_1;

namespace marlowen {

class KeptPicture;
class Shader;
class Turntable;

/// A view of any surface under a camera: OpenGL context, camera moved by
/// pointer and wheel, a kept picture of the surface with its depth, picking, status line, and for
/// views that turn the orientation gizmo. A derived view supplies the surface.
///
/// The surface is drawn into a framebuffer object, anew only when surface, camera, shader fields or
/// size changed; overlays are drawn over it in every frame. On a slow driver (without graphics
/// hardware) the picture is a draft while the pointer works on it, and drawn in full at rest:
/// PictureQuality.
class SurfaceView : public GlCanvas
{
    Q_OBJECT

public:
    enum ViewMode { NoMode, PanMode, ZoomMode, RotateMode, RotatingMode, SculptMode };

    explicit SurfaceView(QWidget *parent = nullptr);
    /// A derived view calls releaseGL() in its own destructor.
    ~SurfaceView() override;

    /// The colour behind the surface.
    void setBackdrop(const QColor &color);
    const QColor &backdrop() const { return m_backdrop; }
    /// Interaction mode (ViewMode) and its cursor; any other value sets the default cursor.
    void setMode(int mode);
    int mode() const { return m_mode; }

    const Camera &camera() const { return m_camera; }
    /// Of the present camera.
    ViewMatrices matrices() const;

    struct PickResult
    {
        bool hit = false;
        Vector point; ///< model space
    };
    /// The surface under a logical position, from the depth of the picture; draws that first when
    /// the camera moved since. While the depth is held it stays that of holdDepth(true), as
    /// long as the camera does not move.
    PickResult pick(QPoint position);

    /// Work done since construction.
    struct Counters
    {
        int fullRebuilds = 0;         ///< all vertices computed
        int partialRefreshes = 0;     ///< only vertices of changed cells computed
        qint64 refreshedVertices = 0; ///< computed by partial refreshes
        int pictures = 0;             ///< times the surface was rasterised
        int parts = 0;                ///< of these, times when only a part of it was
        int depthReads = 0;
    };
    const Counters &counters() const { return m_counters; }
    /// The picture is not a draft.
    bool pictureComplete() const { return m_quality == PictureQuality::Complete; }
    PictureQuality::Level pictureLevel() const { return m_quality; }
    /// Null before the first paint or when no drawing engine could be made.
    const Shader *shader() const { return m_shader.get(); }
    /// Why the view cannot draw; empty while it can.
    const QString &message() const { return m_message; }

    /// Makes the drawing engine anew, as the settings ask for now.
    void renewEngine();

    /// Identity in a view that does not turn.
    Quaternion rotation() const;
    /// Ignored by a view that does not turn.
    void setRotation(const Quaternion &rotation);

public slots:
    /// Shows the whole surface from the side that the camera looks from, and again when the view
    /// changes its size, until the user zooms or pans.
    void fit();
    /// Shows the whole surface; a turned view that shows it already turns to the top.
    void zoomAll();
    /// Percent of the normal size of the mouse pointers of all views; stored in the settings.
    void setCursorScale(int percent);

signals:
    /// Text for the status line; empty when the pointer left the surface.
    void statusChanged(const QString &text);
    void cameraChanged();

protected:
    // To be supplied by a derived view.

    /// The box the surface occupies, for projection and picking; without extent when there is none.
    virtual SceneBox sceneBox() const = 0;
    /// The same, computed anew where sceneBox() may lag behind; zoomAll() fits it.
    virtual SceneBox wholeBox() { return sceneBox(); }
    /// A new shader of the view's kind, of the legacy engine when asked. The context is current;
    /// throws a C string when it cannot be made.
    virtual std::unique_ptr<Shader> createShader(bool legacy) = 0;
    /// A context was made, without data. Sets the OpenGL state that a view needs in addition to
    /// that of all views.
    virtual void prepareGL(QOpenGLFunctions_2_1 &gl) { (void)gl; }
    /// Gives the shader the changes, before every frame; true when the picture must be drawn anew
    /// for it.
    virtual bool updateSurface(Shader &shader) = 0;
    /// Facets that are drawn of the surface when so many may be; 0 where it is drawn whole at rest.
    virtual size_t facets(size_t most) const
    {
        (void)most;
        return 0;
    }
    struct Detail
    {
        size_t mostFacets = PictureQuality::allFacets;
        bool quick = false;          ///< less work a pixel
        bool smooth = false;         ///< several samples a pixel
        QRectF part = wholeViewport; ///< nothing shows outside
    };
    /// The part of the viewport in which a picture of that detail changes by the changes that
    /// updateSurface() gave the shader last, the camera being that of the picture; null for all.
    virtual QRectF changedPart(const Detail &detail) const
    {
        (void)detail;
        return {};
    }
    /// Draws the surface, or a coarser one that takes less time; matrices, viewport and depth test
    /// are set.
    virtual void drawSurface(Shader &shader, const Detail &detail) = 0;
    /// The surface has so many small facets that a slow driver draws it with one sample a pixel.
    virtual bool isDense() const { return false; }
    /// Over the surface, in every frame. The fixed-function matrices and the viewport are those of
    /// the picture; blending, depth test, lighting and texturing are off. To be called last by an
    /// override: it draws the gizmo and loses the matrices.
    virtual void drawOverlays(QOpenGLFunctions_2_1 &gl);
    /// Releases the objects of drawOverlays; the context is current.
    virtual void releaseOverlays(QOpenGLFunctions_2_1 &gl);

    /// Text of the status line for a point of the surface.
    virtual QString statusText(const Vector &point) const;
    /// Mode that a press starts, NoMode when the press is not the view's.
    virtual int modeForPress(const QMouseEvent &event);
    /// A press started SculptMode.
    virtual void beginStroke(const QMouseEvent &event) { (void)event; }
    /// The pointer moved in SculptMode, to lastPos().
    virtual void continueStroke(const QMouseEvent &event) { (void)event; }
    /// SculptMode ended.
    virtual void finishStroke(QPoint position) { (void)position; }
    /// A turn of the wheel that does not zoom; false for one that does.
    virtual bool wheelTurned(Qt::KeyboardModifiers keys, int delta);

    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

    // To be called by a derived view.

    /// The view turns and shows the gizmo; to be called once, by a constructor.
    void enableTurning();
    const Turntable *turntable() const { return m_turntable.get(); }
    void setCamera(const Camera &camera);
    /// Fits a surface of another size, unless the user zoomed or panned since the last fit.
    void fitAgain();
    /// The picture must be drawn anew though neither surface nor camera changed: shader fields did.
    void invalidatePicture();
    /// Keeps the depth that picks read, although the picture changes.
    void holdDepth(bool held) { m_depthHeld = held; }
    /// The matrices of the kept picture.
    const ViewMatrices &drawnMatrices() const { return m_drawn; }
    /// The surface in the kept picture and the present one, if that is drawn in parts, lie within.
    const SceneBox &drawnBox() const { return m_drawnBox; }
    QPoint lastPos() const { return m_lastPos; }
    void setLastPos(QPoint position) { m_lastPos = position; }
    /// Requests a new status line: the surface under the pointer may have changed.
    void refreshStatus() { m_statusPending = true; }
    /// Emits statusChanged(), unless the text is the last one.
    void showStatus(const QString &text);
    /// Draws the view for a change of the surface: a little later while a drag in another view
    /// makes many and the driver is slow.
    void updateLater();
    /// The hand moves the view or the surface.
    bool moving() const { return m_pace.moving(); }
    /// The driver draws with the processor; known from prepareGL() on.
    bool slowDriver() const { return m_pace.slow(); }
    bool pointerInside() const { return m_pointerInside; }
    Counters &work() { return m_counters; }
    void releaseGL();

private slots:
    void statusTimeout();

private:
    void _makeShader();
    void _updatePicture();
    PictureQuality::Level _wantedQuality() const;
    bool _draggedElsewhere() const;
    size_t _costOf(const Detail &detail) const;
    Detail _detailOf(PictureQuality::Level level) const;
    QRectF _partToDraw(PictureQuality::Level wanted) const;
    void _rasterise(bool mayBePart);
    SceneBox _roomyBox() const;
    void _paintOverPicture();
    void _paintFocus();
    void _paintMessage();
    void _logErrors();
    void _ensureDepth();
    bool _fitCamera();
    void _dragCamera(QPoint from, QPoint to);
    void _endInteraction(QPoint position);

    Camera m_camera;
    ViewMatrices m_drawn;
    SceneBox m_drawnBox; ///< around the surface, before and after changes of its parts
    DepthImage m_depth;
    ViewMatrices m_depthMatrices; ///< of the picture that the depth was read from
    Camera m_depthCamera;
    QOpenGLFunctions_2_1 *m_gl = nullptr; ///< owned by the context
    std::unique_ptr<Shader> m_shader;
    std::unique_ptr<KeptPicture> m_picture;
    std::unique_ptr<Turntable> m_turntable;
    QString m_message;
    Counters m_counters;
    QColor m_backdrop{56, 58, 62};

    bool m_pictureStale = true;
    PictureQuality m_pace;
    PictureQuality::Level m_quality = PictureQuality::Nothing;
    Detail m_detail; ///< of the picture
    bool m_depthStale = true;
    bool m_depthHeld = false;
    bool m_fitPending = false;
    bool m_fitted = false;     ///< and neither zoomed nor panned since
    bool m_focusShown = false; ///< the keyboard brought the focus
    bool m_statusPending = false;
    bool m_pointerInside = true;
    int m_mode = NoMode;
    int m_savedMode = NoMode;
    Qt::MouseButton m_heldButton = Qt::NoButton;
    QPoint m_lastPos;
    QTimer m_statusTimer;
    QTimer m_laterTimer; ///< runs until a delayed update
    QString m_status;
};

} // namespace marlowen
