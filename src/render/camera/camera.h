#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QSizeF>

#include <array>

namespace marlowen {

/// A 4 x 4 matrix in OpenGL's column-major order.
using Matrix = std::array<double, 16>;
struct Vector
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

Matrix identityMatrix();
/// a * b: b is applied first.
Matrix multiplied(const Matrix &a, const Matrix &b);

/// The box a surface occupies in model space: centred on the origin in x and y, z from zMin to
/// zMax. For a relief one unit is a cell and z are heights times the height scale.
struct SceneBox
{
    double width = 0.0;
    double height = 0.0;
    double zMin = 0.0;
    double zMax = 0.0;

    /// Length from corner to opposite corner.
    double diagonal() const;
    /// Distance of the farthest point from the origin.
    double reach() const;
    /// There is nothing to see.
    bool isEmpty() const { return width <= 0.0 || height <= 0.0; }
    bool operator==(const SceneBox &) const = default;
};

/// Where the viewer stands: the model is rotated, scaled by `zoom` and moved by `pan` logical
/// pixels (y down the screen).
struct Camera
{
    Matrix rotation = identityMatrix();
    double zoom = 1.0;
    QPoint pan;

    bool operator==(const Camera &) const = default;
};

/// What a picture was drawn with, and what picks into it need: matrices and logical viewport.
struct ViewMatrices
{
    Matrix modelview = identityMatrix();
    Matrix projection = identityMatrix();
    std::array<int, 4> viewport = {0, 0, 0, 0};

    bool operator==(const ViewMatrices &) const = default;
};

struct ClipPlanes
{
    double near = -5000.0;
    double far = 5000.0;
};

/// -d * zoom and d * zoom for the box's diagonal or its reach d, whichever is longer; -5000 and
/// 5000 when that is zero.
ClipPlanes clipPlanes(const SceneBox &box, double zoom);

/// Orthographic projection of the range -width/2..width/2, -height/2..height/2, near..far, as
/// glOrtho makes it.
Matrix orthographic(QSizeF size, ClipPlanes planes);

/// Translation by (pan.x, -pan.y, 0), then the zoom (left out when it is 0), then the rotation.
Matrix modelviewOf(const Camera &camera);

/// Both matrices of a widget of the given logical size (taken as at least 1 x 1).
ViewMatrices viewMatrices(const Camera &camera, const SceneBox &box, QSize widget);

/// Model point to window coordinates (y up, depth 0..1).
Vector project(const Vector &model, const ViewMatrices &view);
/// Window coordinates (y up, depth 0..1) to the model point; the origin when the matrices cannot be
/// inverted.
Vector unproject(const Vector &window, const ViewMatrices &view);

/// Camera of the same rotation that shows the whole box, centred; the box fills 92 % of the tighter
/// direction. The camera itself for an empty widget.
Camera zoomedToAll(const Camera &camera, const SceneBox &box, QSize widget);

/// One wheel movement (angle delta; positive away from the user zooms out) about the pointer. A
/// factor that is not positive moves the view but does not zoom.
Camera wheelZoomed(const Camera &camera, int delta, QPoint pointer, QSize widget);

/// Vertical drag in zoom mode: `divisor` pixels add one whole unit of zoom.
Camera dragZoomed(const Camera &camera, int dy, double divisor);

} // namespace marlowen
