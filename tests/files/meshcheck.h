#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

/// Checks a mesh file against the grid it was made from. It uses the file and the grid alone, and
/// nothing of how facets were chosen.
namespace meshcheck {

using Point = std::array<float, 3>;
using Facet = std::array<Point, 3>;

struct Grid
{
    int width;
    int height;
    std::vector<float> heights;
    double zFactor = 1.0;

    double inches(int column, int row) const
    {
        const size_t at =
            static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column);
        return static_cast<double>(heights[at]) / 128.0 * zFactor;
    }
    bool isEmpty(int column, int row) const
    {
        return column < 0 || row < 0 || column >= width || row >= height ||
               inches(column, row) == 0.0;
    }
    /// Neither the cell nor one of its eight neighbours has a height.
    bool isFarOutside(int column, int row) const
    {
        for (int r = row - 1; r <= row + 1; ++r) {
            for (int c = column - 1; c <= column + 1; ++c) {
                if (!isEmpty(c, r))
                    return false;
            }
        }
        return true;
    }
};

struct Stl
{
    std::vector<Facet> facets;
    std::vector<Point> normals;
    QString fault;
};

inline Stl readStl(const QByteArray &bytes, bool wideCount)
{
    Stl stl;
    const qsizetype start = wideCount ? 88 : 84;
    const quint64 count = wideCount ? qFromLittleEndian<quint64>(bytes.constData() + 80)
                                    : qFromLittleEndian<quint32>(bytes.constData() + 80);
    if (bytes.size() != start + 50 * static_cast<qsizetype>(count))
        stl.fault = QStringLiteral("%1 facets do not fit %2 bytes").arg(count).arg(bytes.size());
    for (qsizetype at = start; at + 50 <= bytes.size(); at += 50) {
        std::array<float, 12> values;
        qFromLittleEndian<float>(bytes.constData() + at, 12, values.data());
        stl.normals.push_back({values[0], values[1], values[2]});
        stl.facets.push_back({Point{values[3], values[4], values[5]},
                              {values[6], values[7], values[8]},
                              {values[9], values[10], values[11]}});
    }
    return stl;
}

/// The facets of an OBJ whose faces are three "point//normal" pairs.
inline Stl readObj(const QByteArray &text)
{
    Stl mesh;
    std::vector<Point> points;
    std::vector<Point> normals;
    for (const QByteArray &line : text.split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words[0] == "v" || words[0] == "vn")
            (words[0] == "v" ? points : normals)
                .push_back({words[1].toFloat(), words[2].toFloat(), words[3].toFloat()});
        if (words[0] != "f")
            continue;
        Facet facet{};
        for (qsizetype i = 0; i < 3; ++i) {
            const QList<QByteArray> pair = words[i + 1].split('/');
            const size_t point = pair[0].toUInt() - 1;
            const size_t normal = pair[2].toUInt() - 1;
            if (words.size() != 4 || point >= points.size() || normal >= normals.size()) {
                mesh.fault = QStringLiteral("a face names a point or normal that is not there");
                return mesh;
            }
            facet[static_cast<size_t>(i)] = points[point];
            mesh.normals.push_back(normals[normal]);
        }
        mesh.facets.push_back(facet);
    }
    std::sort(points.begin(), points.end());
    if (std::adjacent_find(points.begin(), points.end()) != points.end())
        mesh.fault = QStringLiteral("a point is there twice");
    return mesh;
}

/// Twice the area seen from above, in cells; positive when counter-clockwise.
inline double areaAbove(const Facet &f)
{
    const auto d = [&](int to, int axis) {
        const auto a = static_cast<size_t>(axis);
        return (static_cast<double>(f[static_cast<size_t>(to)][a]) - static_cast<double>(f[0][a])) *
               128.0;
    };
    return d(1, 0) * d(2, 1) - d(2, 0) * d(1, 1);
}

/// Directed edges in order, one as often as it occurs.
using Edge = std::pair<Point, Point>;
using Edges = std::vector<Edge>;

inline Edges edgesOf(const std::vector<Facet> &facets)
{
    Edges edges;
    edges.reserve(3 * facets.size());
    for (const Facet &facet : facets) {
        for (size_t i = 0; i < 3; ++i)
            edges.emplace_back(facet[i], facet[(i + 1) % 3]);
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

inline Edges turnedRound(Edges edges)
{
    for (Edge &edge : edges)
        std::swap(edge.first, edge.second);
    std::sort(edges.begin(), edges.end());
    return edges;
}

/// The fault of one facet of a surface; the largest error of its grid points is united into
/// `worst`, and they are counted as covered.
inline QString judgeFacet(const Grid &grid, const Facet &facet, double &worst,
                          std::vector<char> &covered)
{
    const double area = areaAbove(facet);
    if (!(area > 0.0))
        return QStringLiteral("a facet has no area or faces down");
    std::array<double, 3> x{}, y{}, z{};
    for (size_t i = 0; i < 3; ++i) {
        x[i] = static_cast<double>(facet[i][0]) * 128.0;
        y[i] = static_cast<double>(facet[i][1]) * 128.0;
        if (x[i] != std::floor(x[i]) || y[i] != std::floor(y[i]))
            return QStringLiteral("a corner is no grid point");
        z[i] = grid.inches(static_cast<int>(x[i]), static_cast<int>(y[i]));
        if (facet[i][2] != static_cast<float>(z[i]))
            return QStringLiteral("a corner is not at its height");
    }
    bool any = false;
    const auto [left, right] = std::minmax_element(x.begin(), x.end());
    const auto [top, bottom] = std::minmax_element(y.begin(), y.end());
    for (int r = static_cast<int>(*top); r <= static_cast<int>(*bottom); ++r) {
        for (int c = static_cast<int>(*left); c <= static_cast<int>(*right); ++c) {
            const auto weight = [&](size_t i, size_t j) {
                return (x[i] - c) * (y[j] - r) - (x[j] - c) * (y[i] - r);
            };
            const std::array<double, 3> w{weight(1, 2), weight(2, 0), weight(0, 1)};
            if (*std::min_element(w.begin(), w.end()) < 0.0)
                continue;
            if (grid.isFarOutside(c, r))
                return QStringLiteral("a facet spreads over empty cells");
            covered[static_cast<size_t>(r * grid.width + c)] = 1;
            any = any || !grid.isEmpty(c, r);
            // The stored corners are rounded to floats.
            const double plane = (w[0] * z[0] + w[1] * z[1] + w[2] * z[2]) / area;
            worst = std::max(worst, std::abs(plane - grid.inches(c, r)));
        }
    }
    return any ? QString() : QStringLiteral("a facet is all empty");
}

/// The first thing that is wrong with an open surface; `worst` becomes its largest error in inches.
inline QString judgeSurface(const Grid &grid, const std::vector<Facet> &facets, double &worst)
{
    worst = 0.0;
    std::vector<char> covered(grid.heights.size());
    double area = 0.0;
    for (const Facet &facet : facets) {
        if (const QString fault = judgeFacet(grid, facet, worst, covered); !fault.isEmpty())
            return fault;
        area += areaAbove(facet);
    }
    // Facets that face up, meet edge to edge and fill exactly the rectangle neither overlap nor
    // leave a crack. Over empty cells there are none, so that only the upper bound holds.
    const double rectangle = 2.0 * (grid.width - 1.0) * (grid.height - 1.0);
    const bool mayBeOpen =
        std::find(grid.heights.begin(), grid.heights.end(), 0.0F) != grid.heights.end();
    if (area > rectangle || (!mayBeOpen && area != rectangle))
        return QStringLiteral("the facets cover %1 of %2").arg(area).arg(rectangle);
    const Edges edges = edgesOf(facets);
    if (std::adjacent_find(edges.begin(), edges.end()) != edges.end())
        return QStringLiteral("two facets lie on the same side of an edge");
    for (const Edge &edge : edges) {
        const bool onBorder = [&] {
            for (const auto &[axis, end] : {std::pair(0, grid.width), std::pair(1, grid.height)}) {
                const auto a = static_cast<size_t>(axis);
                const float last = static_cast<float>(end - 1) / 128.0F;
                if (edge.first[a] == edge.second[a] &&
                    (edge.first[a] == 0.0F || edge.first[a] == last))
                    return true;
            }
            return false;
        }();
        const Edge back{edge.second, edge.first};
        if (onBorder || std::binary_search(edges.begin(), edges.end(), back))
            continue;
        if (edge.first[2] != 0.0F || edge.second[2] != 0.0F)
            return QStringLiteral("the surface is open where there is material");
    }
    const bool isLine = grid.width == 1 || grid.height == 1; // which has no facets
    for (size_t i = 0; i < covered.size() && !isLine; ++i) {
        if (grid.heights[i] != 0.0F && covered[i] == 0)
            return QStringLiteral("a cell with a height is not covered");
    }
    return {};
}

/// Whether every edge is used as often in one direction as in the other.
inline bool isClosed(const std::vector<Facet> &facets)
{
    const Edges edges = edgesOf(facets);
    return edges == turnedRound(edges);
}

/// The first thing that is wrong with a solid: it must be closed, every normal must follow the
/// right hand, and the volume must be positive.
inline QString judgeSolid(const Stl &stl)
{
    if (!isClosed(stl.facets))
        return QStringLiteral("an edge is not closed");
    double volume = 0.0;
    for (size_t f = 0; f < stl.facets.size(); ++f) {
        std::array<std::array<double, 3>, 3> p{};
        for (size_t i = 0; i < 3; ++i)
            std::copy(stl.facets[f][i].begin(), stl.facets[f][i].end(), p[i].begin());
        const auto cross = [](const std::array<double, 3> &a, const std::array<double, 3> &b) {
            return std::array<double, 3>{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                                         a[0] * b[1] - a[1] * b[0]};
        };
        const auto less = [](const std::array<double, 3> &a, const std::array<double, 3> &b) {
            return std::array<double, 3>{a[0] - b[0], a[1] - b[1], a[2] - b[2]};
        };
        const auto dot = [](const std::array<double, 3> &a, const auto &b) {
            return a[0] * static_cast<double>(b[0]) + a[1] * static_cast<double>(b[1]) +
                   a[2] * static_cast<double>(b[2]);
        };
        const std::array<double, 3> normal = cross(less(p[1], p[0]), less(p[2], p[0]));
        const double length = std::sqrt(dot(normal, normal));
        if (!(length > 0.0) || dot(normal, stl.normals[f]) < 0.999 * length)
            return QStringLiteral("a normal is wrong");
        volume += dot(cross(p[0], p[1]), p[2]);
    }
    return volume > 0.0 ? QString() : QStringLiteral("the volume is not positive");
}

} // namespace meshcheck
