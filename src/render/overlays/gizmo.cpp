#include "render/overlays/gizmo.h"

#include <algorithm>
#include <optional>

namespace marlowen {

namespace {

constexpr double half = gizmoHalf;
/// Logical pixels a unit of the gizmo, and from its centre to the edges of the widget.
constexpr double scale = 0.8;
constexpr double fromEdge = 56.0;
constexpr Vector corner[] = {{-half, -half, half}, {half, -half, half},   {half, half, half},
                             {-half, half, half},  {-half, -half, -half}, {half, -half, -half},
                             {half, half, -half},  {-half, half, -half}};

Vector operator-(const Vector &a, const Vector &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double dot(const Vector &a, const Vector &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

GizmoFace face(int a, int b, int c, int d, Vector normal)
{
    return {{corner[a], corner[b], corner[c], corner[d]}, normal};
}

// Where along the ray from near (0) to far (1) it crosses the face's square.
std::optional<double> crossing(const GizmoFace &square, const Vector &near, const Vector &far)
{
    const Vector way = far - near;
    const double slope = dot(way, square.normal);
    if (slope == 0.0)
        return std::nullopt;
    const double t = dot(square.corners[0] - near, square.normal) / slope;
    const Vector point{near.x + t * way.x, near.y + t * way.y, near.z + t * way.z};
    const Vector u = square.corners[1] - square.corners[0];
    const Vector v = square.corners[3] - square.corners[0];
    const Vector p = point - square.corners[0];
    const auto within = [&](const Vector &edge) {
        const double along = dot(p, edge);
        return along >= 0.0 && along <= dot(edge, edge);
    };
    if (!within(u) || !within(v))
        return std::nullopt;
    return t;
}

} // namespace

QRect gizmoViewport(QSize widget)
{
    const int wanted = widget.height() >= 604 ? widget.height() / 4 : 150;
    const int side = std::max(0, std::min({wanted, widget.width(), widget.height()}));
    return {0, 0, side, side};
}

ViewMatrices gizmoMatrices(const Matrix &rotation, const QRect &viewport, int widgetHeight)
{
    ViewMatrices view;
    const int side = std::max(1, viewport.width());
    view.projection = orthographic({double(side), double(side)}, {-5000.0, 5000.0});
    view.modelview = rotation;
    for (size_t i = 0; i < 12; ++i)
        view.modelview[i] *= scale;
    const double toCorner = std::max(0.0, side / 2.0 - fromEdge);
    view.modelview[12] -= toCorner;
    view.modelview[13] += toCorner;
    view.modelview[14] += 4000.0;
    view.viewport = {viewport.x(), widgetHeight - viewport.y() - viewport.height(), side, side};
    return view;
}

const std::array<GizmoFace, 6> &gizmoFaces()
{
    static const std::array<GizmoFace, 6> faces = {
        face(0, 1, 2, 3, {0, 0, 1}),  face(5, 4, 7, 6, {0, 0, -1}), face(3, 2, 6, 7, {0, 1, 0}),
        face(4, 5, 1, 0, {0, -1, 0}), face(1, 5, 6, 2, {1, 0, 0}),  face(4, 0, 3, 7, {-1, 0, 0})};
    return faces;
}

int gizmoFaceAt(QPointF window, const ViewMatrices &view)
{
    const Vector near = unproject({window.x(), window.y(), 0.0}, view);
    const Vector far = unproject({window.x(), window.y(), 1.0}, view);
    int nearest = -1;
    double nearestAt = 0.0;
    for (size_t i = 0; i < gizmoFaces().size(); ++i) {
        const std::optional<double> at = crossing(gizmoFaces()[i], near, far);
        if (at && (nearest < 0 || *at < nearestAt)) {
            nearest = static_cast<int>(i) + 1;
            nearestAt = *at;
        }
    }
    return nearest;
}

Quaternion presetOrientation(int face)
{
    constexpr Vector xAxis{1, 0, 0};
    constexpr Vector yAxis{0, 1, 0};
    constexpr Vector zAxis{0, 0, 1};
    if (face == 2)
        return rotationAbout(yAxis, 180);
    // How far the model turns on its base before it is tipped up to show a side.
    constexpr double turns[] = {180, 0, -90, 90}; // faces 3 to 6
    if (face < 3 || face > 6)
        return {};
    return multiplied(rotationAbout(xAxis, -90), rotationAbout(zAxis, turns[face - 3]));
}

} // namespace marlowen
