#pragma once

#include "render/camera/camera.h"

namespace marlowen {

/// A rotation as w + xi + yj + zk.
struct Quaternion
{
    double w = 1.0;
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    bool operator==(const Quaternion &) const = default;
};

/// a * b: b turns first.
Quaternion multiplied(const Quaternion &a, const Quaternion &b);
Quaternion normalized(const Quaternion &q);
Quaternion rotationAbout(const Vector &unitAxis, double degrees);

/// The matrix of a quaternion, which is not normalised: 1 - 2(y² + z²) and so on, without dividing
/// by its length. Column-major, so m[8] = 2(xz + wy) and m[9] = 2(yz - wx).
Matrix rotationMatrix(const Quaternion &q);

/// A virtual trackball (K. Shoemake, "ARCBALL: a user interface for specifying three-dimensional
/// orientation using a mouse", 1992): a drag from one point of the ball to another turns the model
/// by twice the arc between them, so that closing a loop with the pointer closes it for the model.
class Arcball
{
public:
    explicit Arcball(double radius = 1.0)
        : m_radius(radius)
    {
    }

    /// The point of the unit ball under a position measured from the centre of a viewport, y up, in
    /// pixels: outside the ball on its rim.
    Vector pointOnBall(QPointF fromCentre, QSizeF viewport) const;

    void beginDrag(QPointF fromCentre, QSizeF viewport);
    void dragTo(QPointF fromCentre, QSizeF viewport);
    /// Adds the drag to the stored rotation.
    void endDrag();
    bool dragging() const { return m_dragging; }

    /// The rotation in force, a drag included.
    Quaternion rotation() const;
    /// Replaces the rotation; ends a drag.
    void setRotation(const Quaternion &rotation);
    /// Of rotation(); computed anew only when that changed.
    const Matrix &matrix() const;

private:
    double m_radius;
    Quaternion m_rest;
    Vector m_from;
    Vector m_to;
    bool m_dragging = false;
    mutable bool m_dirty = true;
    mutable Matrix m_matrix = identityMatrix();
};

} // namespace marlowen
