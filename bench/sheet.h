#pragma once

#include "files/mesh/trianglemesh.h"

#include <functional>

using HeightAt = std::function<double(double x, double y)>;

struct SheetSize
{
    quint32 squares; ///< along each edge, two facets each
    double side;
    double jitter; ///< moves the inner corners by that share of a square, as those of a scan lie
};

/// A square surface, its first corner in the origin.
inline marlowen::TriangleMesh sheet(const SheetSize &size, const HeightAt &heightAt)
{
    marlowen::TriangleMesh mesh;
    const double step = size.side / size.squares;
    quint32 seed = 1;
    const auto shifted = [&](quint32 i) {
        seed = seed * 1664525U + 1013904223U;
        const bool inner = i > 0 && i < size.squares;
        return (i + (inner ? size.jitter * (seed / 4294967296.0 - 0.5) : 0.0)) * step;
    };
    for (quint32 r = 0; r <= size.squares; ++r) {
        for (quint32 c = 0; c <= size.squares; ++c) {
            const double x = shifted(c);
            const double y = shifted(r);
            mesh.positions.push_back({x, y, heightAt(x, y)});
        }
    }
    for (quint32 r = 0; r < size.squares; ++r) {
        for (quint32 c = 0; c < size.squares; ++c) {
            const quint32 a = r * (size.squares + 1) + c;
            const quint32 b = a + size.squares + 1;
            mesh.triangles.push_back({a, a + 1, b});
            mesh.triangles.push_back({b, a + 1, b + 1});
        }
    }
    return mesh;
}
