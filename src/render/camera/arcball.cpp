#include "render/camera/arcball.h"

#include <cmath>
#include <numbers>

namespace marlowen {

Quaternion multiplied(const Quaternion &a, const Quaternion &b)
{
    return {a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z,
            a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}

Quaternion normalized(const Quaternion &q)
{
    const double length = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
    if (!(length > 0.0))
        return {};
    return {q.w / length, q.x / length, q.y / length, q.z / length};
}

Quaternion rotationAbout(const Vector &unitAxis, double degrees)
{
    const double half = degrees * std::numbers::pi / 360.0;
    const double s = std::sin(half);
    return {std::cos(half), unitAxis.x * s, unitAxis.y * s, unitAxis.z * s};
}

Matrix rotationMatrix(const Quaternion &q)
{
    const auto [w, x, y, z] = q;
    return {1 - 2 * (y * y + z * z),
            2 * (x * y + w * z),
            2 * (x * z - w * y),
            0,
            2 * (x * y - w * z),
            1 - 2 * (x * x + z * z),
            2 * (y * z + w * x),
            0,
            2 * (x * z + w * y),
            2 * (y * z - w * x),
            1 - 2 * (x * x + y * y),
            0,
            0,
            0,
            0,
            1};
}

Vector Arcball::pointOnBall(QPointF fromCentre, QSizeF viewport) const
{
    const double x = 2.0 * fromCentre.x() / std::max(1.0, viewport.width()) / m_radius;
    const double y = 2.0 * fromCentre.y() / std::max(1.0, viewport.height()) / m_radius;
    const double squared = x * x + y * y;
    if (squared > 1.0) {
        const double length = std::sqrt(squared);
        return {x / length, y / length, 0.0};
    }
    return {x, y, std::sqrt(1.0 - squared)};
}

void Arcball::beginDrag(QPointF fromCentre, QSizeF viewport)
{
    endDrag();
    m_from = m_to = pointOnBall(fromCentre, viewport);
    m_dragging = true;
    m_dirty = true;
}

void Arcball::dragTo(QPointF fromCentre, QSizeF viewport)
{
    if (!m_dragging)
        return;
    m_to = pointOnBall(fromCentre, viewport);
    m_dirty = true;
}

void Arcball::endDrag()
{
    m_rest = rotation();
    m_dragging = false;
    m_dirty = true;
}

Quaternion Arcball::rotation() const
{
    if (!m_dragging)
        return m_rest;
    const Vector &a = m_from;
    const Vector &b = m_to;
    const Quaternion drag = {a.x * b.x + a.y * b.y + a.z * b.z, a.y * b.z - a.z * b.y,
                             a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    return normalized(multiplied(drag, m_rest));
}

void Arcball::setRotation(const Quaternion &rotation)
{
    m_rest = rotation;
    m_dragging = false;
    m_dirty = true;
}

const Matrix &Arcball::matrix() const
{
    if (m_dirty) {
        m_matrix = rotationMatrix(rotation());
        m_dirty = false;
    }
    return m_matrix;
}

} // namespace marlowen
