#include "render/camera/camera.h"

#include <GL/glu.h>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

// Beyond these nothing can be seen, and pan and matrices would run out of range.
constexpr double smallestZoom = 1e-6;
constexpr double largestZoom = 1e6;
constexpr double largestPan = 1e8;
/// Of the tighter direction of a widget that shows the whole model.
constexpr double filledShare = 0.92;

int rounded(double value)
{
    return static_cast<int>(std::round(std::clamp(value, -largestPan, largestPan)));
}

QPoint scaledPan(QPoint pan, double factor)
{
    return {rounded(pan.x() * factor), rounded(pan.y() * factor)};
}

// Bounding box of the box's corners on the screen, y up, with z spread evenly about the origin.
QRectF screenBounds(const SceneBox &box, const ViewMatrices &view)
{
    const Vector half{box.width / 2, box.height / 2, (box.zMax - box.zMin) / 2};
    const Vector origin = project({}, view);
    double left = origin.x;
    double right = origin.x;
    double bottom = origin.y;
    double top = origin.y;
    for (int corner = 0; corner < 8; ++corner) {
        const Vector point = project({corner & 1 ? half.x : -half.x, corner & 2 ? half.y : -half.y,
                                      corner & 4 ? half.z : -half.z},
                                     view);
        left = std::min(left, point.x);
        right = std::max(right, point.x);
        bottom = std::min(bottom, point.y);
        top = std::max(top, point.y);
    }
    return {left, bottom, right - left, top - bottom};
}

} // namespace

Matrix identityMatrix()
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
}

Matrix multiplied(const Matrix &a, const Matrix &b)
{
    Matrix product{};
    for (size_t column = 0; column < 4; ++column)
        for (size_t row = 0; row < 4; ++row)
            for (size_t k = 0; k < 4; ++k)
                product[column * 4 + row] += a[k * 4 + row] * b[column * 4 + k];
    return product;
}

double SceneBox::diagonal() const
{
    const double depth = zMax - zMin;
    return std::sqrt(width * width + height * height + depth * depth);
}

double SceneBox::reach() const
{
    const double depth = std::max(std::abs(zMin), std::abs(zMax));
    return std::sqrt((width * width + height * height) / 4.0 + depth * depth);
}

ClipPlanes clipPlanes(const SceneBox &box, double zoom)
{
    const double reach = std::max(box.diagonal(), box.reach()) * zoom;
    if (!(reach > 0.0) || !std::isfinite(reach))
        return {};
    return {-reach, reach};
}

Matrix orthographic(QSizeF size, ClipPlanes planes)
{
    const double depth = planes.far - planes.near;
    return {2 / size.width(),
            0,
            0,
            0,
            0,
            2 / size.height(),
            0,
            0,
            0,
            0,
            -2 / depth,
            0,
            0,
            0,
            -(planes.far + planes.near) / depth,
            1};
}

Matrix modelviewOf(const Camera &camera)
{
    const double scale = camera.zoom == 0.0 ? 1.0 : camera.zoom;
    Matrix matrix = camera.rotation;
    for (size_t column = 0; column < 3; ++column)
        for (size_t row = 0; row < 3; ++row)
            matrix[column * 4 + row] *= scale;
    matrix[12] = camera.pan.x();
    matrix[13] = -camera.pan.y();
    matrix[14] = 0.0;
    return matrix;
}

ViewMatrices viewMatrices(const Camera &camera, const SceneBox &box, QSize widget)
{
    const QSize size = widget.expandedTo({1, 1});
    return {modelviewOf(camera),
            orthographic(size, clipPlanes(box, camera.zoom)),
            {0, 0, size.width(), size.height()}};
}

Vector project(const Vector &model, const ViewMatrices &view)
{
    Vector window;
    gluProject(model.x, model.y, model.z, view.modelview.data(), view.projection.data(),
               view.viewport.data(), &window.x, &window.y, &window.z);
    return window;
}

Vector unproject(const Vector &window, const ViewMatrices &view)
{
    Vector model;
    if (!gluUnProject(window.x, window.y, window.z, view.modelview.data(), view.projection.data(),
                      view.viewport.data(), &model.x, &model.y, &model.z))
        return {};
    return model;
}

Camera zoomedToAll(const Camera &camera, const SceneBox &box, QSize widget)
{
    if (widget.isEmpty())
        return camera;
    Camera result = camera;
    result.zoom = 1.0;
    result.pan = {};
    QRectF bounds;
    // A box without extent would be doubled for ever.
    constexpr int mostSteps = 32;
    for (int step = 0; step < mostSteps; ++step) {
        bounds = screenBounds(box, viewMatrices(result, box, widget));
        const bool small =
            bounds.width() < widget.width() / 2.0 && bounds.height() < widget.height() / 2.0;
        if (small && bounds.width() <= 0.0 && bounds.height() <= 0.0)
            break;
        if (!small && bounds.width() <= widget.width() && bounds.height() <= widget.height())
            break;
        result.zoom = std::clamp(result.zoom * (small ? 2.0 : 0.5), smallestZoom, largestZoom);
    }
    if (bounds.width() > 0.0 || bounds.height() > 0.0) {
        const double room = std::min(widget.width() / std::max(bounds.width(), 1e-9),
                                     widget.height() / std::max(bounds.height(), 1e-9));
        result.zoom = std::clamp(result.zoom * filledShare * room, smallestZoom, largestZoom);
        bounds = screenBounds(box, viewMatrices(result, box, widget));
    }
    const QPointF centre = bounds.center();
    result.pan = {rounded(widget.width() / 2 - centre.x()),
                  rounded(centre.y() - widget.height() / 2)};
    return result;
}

Camera wheelZoomed(const Camera &camera, int delta, QPoint pointer, QSize widget)
{
    const double factor = 1.0 - 0.001 * delta;
    const QPoint fromCentre = pointer - QPoint(widget.width() / 2, widget.height() / 2);
    Camera result = camera;
    result.pan += fromCentre - scaledPan(fromCentre, factor);
    const double zoom = camera.zoom * factor;
    if (factor > 0.0 && zoom >= smallestZoom && zoom <= largestZoom) {
        result.zoom = zoom;
        result.pan = scaledPan(result.pan, factor);
    }
    return result;
}

Camera dragZoomed(const Camera &camera, int dy, double divisor)
{
    const double factor = (dy / divisor + camera.zoom) / camera.zoom;
    const double zoom = camera.zoom * factor;
    Camera result = camera;
    if (factor > 0.0 && zoom >= smallestZoom && zoom <= largestZoom) {
        result.zoom = zoom;
        result.pan = scaledPan(camera.pan, factor);
    }
    return result;
}

} // namespace marlowen
