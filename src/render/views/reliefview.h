#pragma once

#include "relief/grid/reliefchanges.h"
#include "relief/selection/selections.h"
#include "relief/tools/toolparams.h"
#include "render/gestures/pointerstroke.h"
#include "render/meshes/reliefmesh.h"
#include "render/views/surfaceview.h"

#include <QPointer>

#include <memory>

namespace marlowen {

class FootprintPainter;
class Relief;
class SculptEngine;

/// The common part of both views of a relief: vertex data, strokes from the pointer, the
/// tool's footprint, the wheel on the tool. A derived view adds its shader, its vertices and
/// what it draws on top. Views own neither the relief, the tool, the engine nor the changes.
class ReliefView : public SurfaceView
{
    Q_OBJECT

public:
    explicit ReliefView(QWidget *parent = nullptr);
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
    void setEngine(SculptEngine *engine);
    SculptEngine *engine() const { return m_engine; }
    /// Why the pointer only looks: emitted by editRefused().
    void setReason(const QString &reason) { m_reason = reason; }
    /// How the next shape or magic selection combines with the present selection. Shift adds and
    /// Alt subtracts, with any value set here.
    void setSelectionModifier(SelectionModifier modifier) { m_modifier = modifier; }
    SelectionModifier selectionModifier() const { return m_modifier; }
    /// Index in lengthUnits of the unit of the status line; inches at first.
    void setUnit(int unit);
    /// Share one with the other views of the same relief; null: the view's own.
    void setChanges(ReliefChanges *changes);
    ReliefChanges *changes() const { return m_changes; }

    QRect drawRegion() const { return m_mesh.region(); }
    int lodStep() const { return m_mesh.step(); }

public slots:
    /// Step 0..3 adds -0.01, +0.01, -0.1, +0.1 to the tool size.
    void brushSizeStep(int step);
    /// Repaints after a change of the relief, the tool or the alpha brush.
    void refresh();

signals:
    void toolSizeUpdated(double size);
    void toolStrengthUpdated(double strength);
    /// A stroke (or click) of the pointer changed the relief.
    void reliefEdited();
    /// A press would have edited the relief, but for the reason.
    void editRefused(const QString &reason);
    /// The Sample tool picked a height.
    void sampleChanged(double height);
    /// A magic selection changed the selection.
    void selectionChanged();

protected:
    // To be supplied by a derived view.

    /// Vertices carry normals.
    virtual bool hasNormals() const { return true; }
    /// Computes these vertices (rectangle of vertex columns and rows) of the mesh from the
    /// relief.
    virtual void fillVertices(ReliefMesh &mesh, const QRect &vertices) = 0;
    /// Sets the shader's fields, `size` excepted; called before every picture.
    virtual void configureShader(Shader &shader) { (void)shader; }
    /// The vertices were computed anew, all of them or only some.
    virtual void verticesChanged() {}

    SceneBox sceneBox() const override;
    SceneBox wholeBox() override;
    void prepareGL(QOpenGLFunctions_2_1 &gl) override;
    bool updateSurface(Shader &shader) override;
    size_t facets(size_t most) const override { return m_mesh.strips(most).count; }
    void drawSurface(Shader &shader, const Detail &detail) override;
    QRectF changedPart(const Detail &detail) const override;
    bool isDense() const override;
    void releaseOverlays(QOpenGLFunctions_2_1 &gl) override;
    QString statusText(const Vector &point) const override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void beginStroke(const QMouseEvent &event) override;
    void continueStroke(const QMouseEvent &event) override;
    void finishStroke(QPoint position) override;
    bool wheelTurned(Qt::KeyboardModifiers keys, int delta) override;

    /// All vertices must be computed anew though the relief did not change.
    void invalidateVertices();
    /// The engine works on this relief.
    bool canEdit() const;
    /// With these keys held.
    SelectionModifier modifierFor(Qt::KeyboardModifiers keys) const;
    /// Shows why an edit is refused.
    void showReason();
    /// Heights the vertices were computed with, unscaled, as of the last full rebuild.
    HeightRange heightRange() const { return m_range; }
    /// Within drawOverlays: the tool's footprint on the surface under the pointer and at its mirror
    /// images, if it hits and the tool has one, and the axes of the symmetry.
    void drawFootprint(QOpenGLFunctions_2_1 &gl);

private:
    void _rebuildVertices(Shader &shader, const QRect &visible);
    bool _isFine(const Detail &detail) const;
    void _drawSeenFacets(Shader &shader, const Detail &detail, std::pair<int, int> rows);
    void _refreshVertices(Shader &shader, const QRegion &cells);
    PointerStroke::Point _pointAt(QPoint position, Qt::KeyboardModifiers keys);
    void _prepareStroke();
    bool _startStroke(const PointerStroke::Point &press);
    void _enterRelief(QPoint outside, QPoint inside, Qt::KeyboardModifiers keys);
    void _cancelStroke();
    void _changeToolSize(double by);

    Relief *m_relief = nullptr;
    ToolParams m_ownTool;
    ToolParams *m_tool = &m_ownTool;
    SculptEngine *m_engine = nullptr;
    ReliefChanges *m_ownChanges;
    QPointer<ReliefChanges> m_changes;
    int m_changesView = -1;

    HeightRange m_range;
    ReliefMesh m_mesh;
    QSize m_grid; ///< size of the relief that the mesh was built for
    PointerStroke m_stroke;
    QPoint m_strokeFrom;        ///< of a press outside the relief: the last position of the pointer
    bool m_strokeWaits = false; ///< the press was outside the relief
    double m_pressure = 1.0;    ///< of the pen that the pointer event at hand comes from
    bool m_eraser = false;
    QString m_reason;
    int m_unit = 0;
    SelectionModifier m_modifier = SelectionModifier::Normal;
    std::unique_ptr<FootprintPainter> m_footprint;
    QRect m_refreshed; ///< vertices, by the last change; empty for all
    bool m_verticesStale = true;
    bool m_indicesStale = true;
};

} // namespace marlowen
