#pragma once

#include "files/mesh/trianglemesh.h"

#include <atomic>
#include <span>
#include <vector>

class GLUtesselator;

namespace marlowen {

/// The GLU tessellator and what it makes of one polygon after the other. It knows no mesh, so that
/// it can work in a thread of its own.
class PolygonCut
{
public:
    PolygonCut() = default;
    ~PolygonCut();
    PolygonCut(const PolygonCut &) = delete;
    PolygonCut &operator=(const PolygonCut &) = delete;

    /// The corners as indices into the positions, all finite; three or more. To be called before
    /// run(), which needs the positions no more.
    void setCorners(const LargeVector<MeshPoint> &positions, std::span<const quint32> corners);
    /// Cuts the polygon. Throws nothing; see outOfMemory().
    void run() noexcept;
    /// Tells a run() in another thread that nobody waits for its result. It lasts as long as GLU
    /// needs; where edges cross, its thread stops for good.
    void abandon() { m_abandoned = true; }

    /// The index of the first new point; the next ones have the numbers below.
    static constexpr quint32 firstNew = ~quint32{0};
    /// What run() made: three indices of corners or new points are a triangle.
    const std::vector<quint32> &indices() const { return m_indices; }
    const std::vector<MeshPoint> &newPoints() const { return m_newPoints; }
    /// Numbers of GLU's errors; 0 where there was no tessellator.
    const std::vector<unsigned> &errors() const { return m_errors; }
    bool outOfMemory() const { return m_outOfMemory; }

private:
    struct Callbacks;

    bool _makeTessellator();

    GLUtesselator *m_tessellator = nullptr;
    std::vector<MeshPoint> m_points; ///< of the corners
    std::vector<quint32> m_corners;
    std::vector<quint32> m_indices;
    std::vector<MeshPoint> m_newPoints;
    std::vector<unsigned> m_errors;
    bool m_outOfMemory = false;
    std::atomic<bool> m_abandoned = false;
};

} // namespace marlowen
