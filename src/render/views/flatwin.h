#pragma once

#include "relief/selection/selections.h"
#include "render/gestures/placegesture.h"
#include "render/gestures/shapegesture.h"
#include "render/overlays/outlinepainter.h"
#include "render/views/reliefview.h"
#include "render/views/selectionants.h"

namespace marlowen {

/// The 2D view: the relief from straight above, coloured by height in a number of levels, with the
/// selection outlined by travelling dashes. Here selections are drawn, heights are picked, painted,
/// filled and erased, and a crop box is set up.
///
/// Left button: the action of the tool. Rectangle and Elliptical are dragged. Polygon is clicked
/// corner by corner; a double-click, Enter or a click on the first corner closes it, Backspace
/// takes the last corner back. Crop is dragged and then adjusted by its edges, corners and inside.
/// Esc drops a shape; Shift adds it to the selection, Alt subtracts it. Magic, Sample, Fill,
/// Height brush and Erase go through the stroke engine. Other tools do nothing here. Middle button:
/// pan. Wheel as in the 3D view.
class FlatWin : public ReliefView
{
    Q_OBJECT

public:
    explicit FlatWin(QWidget *parent = nullptr);
    ~FlatWin() override;

    /// Forgets the crop box and any shape being drawn, too.
    void setRelief(Relief *relief, bool resize = false) override;

    double quantization() const { return m_quantization; }
    double colorOffset() const { return m_colorOffset; }

    /// The corners of the crop box as cropApply() takes them (stroke points); empty without a box.
    QList<QPointF> cropOutline() const;
    /// The box in cells; empty without one.
    QRect cropBox() const;

    /// An outline of the selection is on screen, its dashes travelling.
    bool outlinePresent() const { return m_ants.present(); }
    /// How far the dashes have travelled.
    int antsPhase() const { return m_ants.phase(); }
    bool antsRunning() const { return m_ants.running(); }

    /// True for the Tool::Type values that act in this view.
    static bool actsHere(int toolType);

public slots:
    /// Shifts the colours; 255 is once around. NaN is ignored.
    void colorOffsetChanged(double offset);
    /// Number of height levels, at least 2.
    void quantizationChanged(double levels);
    /// Forgets a shape being drawn and the crop box.
    void cancelShape();
    /// A rectangle that the left button moves, turns and sizes, in place of the tool's action; the
    /// caller's. Null: none.
    void setPlaceGesture(PlaceGesture *gesture);

signals:
    /// The crop box appeared or vanished.
    void cropChanged(bool present);
    /// Enter or a double-click in the crop box.
    void cropApplyRequested();
    /// The pointer changed the frame of the gesture.
    void placeDragged();
    /// Enter, Esc while there is a gesture.
    void placeApplied();
    void placeCancelled();
    /// A shape was drawn. The receiver makes the edit.
    void shapeDrawn(const marlowen::SelectionEdit &edit);

protected:
    std::unique_ptr<Shader> createShader(bool legacy) override;
    bool hasNormals() const override { return false; }
    void prepareGL(QOpenGLFunctions_2_1 &gl) override;
    void fillVertices(ReliefMesh &mesh, const QRect &vertices) override;
    void configureShader(Shader &shader) override;
    void drawOverlays(QOpenGLFunctions_2_1 &gl) override;
    void releaseOverlays(QOpenGLFunctions_2_1 &gl) override;
    void verticesChanged() override;

    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QSize _grid() const;
    void _checkRange();
    bool _shapeInSync() const;
    void _syncTool();
    void _shapeChanged();
    void _finishShape();
    void _drawShape(QOpenGLFunctions_2_1 &gl);
    void _updateCursor(QPointF position);
    bool _handlesKey(int key) const;
    bool _placePress(QMouseEvent *event);
    bool _placeMove(QMouseEvent *event);
    bool _placeRelease(QMouseEvent *event);
    bool _placeKey(int key);
    void _drawPlace(QOpenGLFunctions_2_1 &gl);
    QPointF _gridAt(QPointF position) const;
    double _pixelInCells() const;

    double m_quantization = 64.0;
    double m_colorOffset = 0.0;
    Qt::KeyboardModifiers m_shapeKeys; ///< held while the shape is drawn
    ShapeGesture m_shape;
    PlaceGesture *m_place = nullptr;
    OutlinePainter m_shapePainter;
    SelectionAnts m_ants;
    bool m_rangeUnchecked = false; ///< heights changed: the range may have, too
    bool m_cropPresent = false;
    bool m_ownCursor = false;
};

} // namespace marlowen
