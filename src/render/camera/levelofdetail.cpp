#include "render/camera/levelofdetail.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace marlowen {

namespace {

/// a * x + b * y + c >= 0
struct HalfPlane
{
    double a;
    double b;
    double c;

    double of(QPointF p) const { return a * p.x() + b * p.y() + c; }
};

// The half planes of (x, y) in which some z of the box lies within that part of the viewport.
std::array<HalfPlane, 4> screenEdges(const SceneBox &box, const ViewMatrices &view,
                                     const QRectF &part)
{
    const double first[] = {part.left(), part.top()};
    const double last[] = {part.right(), part.bottom()};
    const Matrix m = multiplied(view.projection, view.modelview);
    std::array<HalfPlane, 4> edges{};
    for (size_t axis = 0; axis < 2; ++axis) {
        const double low = std::min(m[8 + axis] * box.zMin, m[8 + axis] * box.zMax);
        const double high = std::max(m[8 + axis] * box.zMin, m[8 + axis] * box.zMax);
        edges[2 * axis] = {m[axis], m[4 + axis], m[12 + axis] + high - first[axis]};
        edges[2 * axis + 1] = {-m[axis], -m[4 + axis], last[axis] - m[12 + axis] - low};
    }
    return edges;
}

// I. Sutherland, G. Hodgman, "Reentrant polygon clipping", 1974.
std::vector<QPointF> clipped(const std::vector<QPointF> &polygon, const HalfPlane &edge)
{
    std::vector<QPointF> result;
    for (size_t i = 0; i < polygon.size(); ++i) {
        const QPointF from = polygon[i];
        const QPointF to = polygon[(i + 1) % polygon.size()];
        const double a = edge.of(from);
        const double b = edge.of(to);
        if (a >= 0)
            result.push_back(from);
        if ((a < 0) != (b < 0))
            result.push_back(from + (to - from) * (a / (a - b)));
    }
    return result;
}

} // namespace

QRect visibleCells(const SceneBox &box, const ViewMatrices &view, const QRectF &part)
{
    const double w = box.width / 2;
    const double h = box.height / 2;
    std::vector<QPointF> polygon = {{-w, -h}, {w, -h}, {w, h}, {-w, h}};
    for (const HalfPlane &edge : screenEdges(box, view, part))
        polygon = clipped(polygon, edge);
    if (polygon.empty())
        return {};
    const auto [left, right] = std::minmax_element(
        polygon.begin(), polygon.end(), [](QPointF a, QPointF b) { return a.x() < b.x(); });
    const auto [top, bottom] = std::minmax_element(
        polygon.begin(), polygon.end(), [](QPointF a, QPointF b) { return a.y() < b.y(); });
    const QPoint first(static_cast<int>(std::floor(left->x() + w)),
                       static_cast<int>(std::floor(top->y() + h)));
    const QPoint last(static_cast<int>(std::ceil(right->x() + w)),
                      static_cast<int>(std::ceil(bottom->y() + h)));
    return QRect(first, last) &
           QRect(0, 0, static_cast<int>(box.width), static_cast<int>(box.height));
}

QRectF coveredPart(const QRect &cells, const SceneBox &box, const ViewMatrices &view)
{
    const Matrix m = multiplied(view.projection, view.modelview);
    const double x[] = {cells.left() - box.width / 2, cells.right() - box.width / 2};
    const double y[] = {cells.top() - box.height / 2, cells.bottom() - box.height / 2};
    const double z[] = {box.zMin, box.zMax};
    const auto lowest = [&](size_t axis, double sign) {
        const auto least = [=](double factor, const double *ends) {
            return std::min(sign * factor * ends[0], sign * factor * ends[1]);
        };
        return sign * m[12 + axis] + least(m[axis], x) + least(m[4 + axis], y) +
               least(m[8 + axis], z);
    };
    return {QPointF(lowest(0, 1.0), lowest(1, 1.0)), QPointF(-lowest(0, -1.0), -lowest(1, -1.0))};
}

QRect pixelsOf(const QRectF &part, QSize size)
{
    const auto pixel = [](double at, int length) { return (at + 1.0) / 2.0 * length; };
    const QPointF first(pixel(part.left(), size.width()), pixel(part.top(), size.height()));
    const QPointF last(pixel(part.right(), size.width()), pixel(part.bottom(), size.height()));
    return QRectF(first, last).toAlignedRect() & QRect({0, 0}, size);
}

QRect widenedRegion(const QRect &visible, QSize grid)
{
    const auto share = [](int length) { return static_cast<int>(std::ceil(0.2 * length)); };
    const int dx = share(visible.width());
    const int dy = share(visible.height());
    return visible.adjusted(-dx, -dy, dx, dy) & QRect({0, 0}, grid);
}

int lodStepFor(const QRect &region, QSize widget)
{
    return std::max({1, region.width() / std::max(1, widget.width()),
                     region.height() / std::max(1, widget.height())});
}

MeshLayout layoutFor(const QRect &visible, QSize grid, QSize widget)
{
    const QRect region = widenedRegion(visible, grid);
    return {region, lodStepFor(region, widget)};
}

bool needsRebuild(const MeshLayout &mesh, const QRect &visible, QSize grid, QSize widget)
{
    if (visible.isEmpty())
        return false;
    if (mesh.region.isEmpty() || !mesh.region.contains(visible))
        return true;
    const int due = layoutFor(visible, grid, widget).step;
    return due < mesh.step || due > 2 * mesh.step;
}

} // namespace marlowen
