#include "render/meshes/facetscene.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlowen {

namespace {

/// Cubes along the longest side: smaller ones cannot be distinguished on a screen.
constexpr double mostCubes = 200.0;
constexpr double fewestCubes = 8.0;
constexpr uint32_t vacant = std::numeric_limits<uint32_t>::max();

/// The corners of one cube, merged into their mean.
struct Cluster
{
    std::array<double, 3> sum{};
    double count = 0.0;
};

/// Cubes over the frame, -1 to 1 along each axis; which cluster lies in each.
class Cubes
{
public:
    explicit Cubes(double along)
        : m_along(static_cast<size_t>(along) + 1)
        , m_scale(along / 2.0)
        , m_cluster(m_along * m_along * m_along, vacant)
    {
    }

    uint32_t add(const std::array<float, 3> &point)
    {
        size_t cube = 0;
        for (const float along : point)
            cube = cube * m_along +
                   std::min(m_along - 1, static_cast<size_t>((double{along} + 1.0) * m_scale));
        uint32_t &cluster = m_cluster[cube];
        if (cluster == vacant) {
            cluster = static_cast<uint32_t>(m_clusters.size());
            m_clusters.emplace_back();
        }
        Cluster &met = m_clusters[cluster];
        for (size_t i = 0; i < 3; ++i)
            met.sum[i] += double{point[i]};
        met.count += 1.0;
        return cluster;
    }

    std::vector<float> means() const
    {
        std::vector<float> means;
        means.reserve(3 * m_clusters.size());
        for (const Cluster &cluster : m_clusters) {
            for (const double sum : cluster.sum)
                means.push_back(static_cast<float>(sum / cluster.count));
        }
        return means;
    }

private:
    size_t m_along;
    double m_scale;
    std::vector<uint32_t> m_cluster;
    std::vector<Cluster> m_clusters;
};

CoarseFacets merged(const TriangleMesh &mesh, const FacetFrame &frame, double along)
{
    Cubes cubes(along);
    CoarseFacets coarse;
    for (const MeshTriangle &triangle : mesh.triangles) {
        std::array<uint32_t, 3> clusters{};
        for (size_t i = 0; i < 3; ++i)
            clusters[i] = cubes.add(frame.at(mesh.corner(triangle, i)));
        const auto [a, b, c] = clusters;
        if (a != b && b != c && c != a)
            coarse.corners.insert(coarse.corners.end(), {a, b, c});
    }
    coarse.positions = cubes.means();
    return coarse;
}

} // namespace

FacetFrame frameOf(const ModelBox &box)
{
    FacetFrame frame;
    double longest = 0.0;
    for (size_t i = 0; i < 3; ++i) {
        // Halved first: the sum and the difference may be beyond all numbers.
        frame.middle[i] = box.low[i] / 2.0 + box.high[i] / 2.0;
        longest = std::max(longest, box.high[i] / 2.0 - box.low[i] / 2.0);
    }
    frame.half = longest > 0.0 ? longest : 1.0;
    return frame;
}

std::vector<float> facetVertices(const TriangleMesh &mesh, const FacetFrame &frame)
{
    std::vector<float> vertices(3 * mesh.positions.size());
    float *out = vertices.data();
    for (const MeshPoint &point : mesh.positions) {
        const std::array<float, 3> vertex = frame.at(point);
        out = std::copy(vertex.begin(), vertex.end(), out);
    }
    return vertices;
}

FacetScene sceneOf(const ModelBox &fileBox, const ModelPlacement &placement)
{
    const FacetFrame frame = frameOf(fileBox);
    std::array<double, 3> half{};
    for (size_t seen = 0; seen < 3; ++seen) {
        const size_t axis = placement.axis[seen];
        half[seen] = (fileBox.high[axis] / 2.0 - fileBox.low[axis] / 2.0) / frame.half *
                     std::abs(placement.factor[seen]);
    }
    const double longest = std::max({half[0], half[1], half[2]});
    const double scale = longest > 0.0 ? facetSceneSide / 2.0 / longest : 1.0;
    FacetScene scene;
    scene.placement.fill(0.0);
    scene.placement[15] = 1.0;
    for (size_t seen = 0; seen < 3; ++seen)
        scene.placement[placement.axis[seen] * 4 + seen] = placement.factor[seen] * scale;
    constexpr double least = 1.0; // a view sees nothing in a box without width or height
    scene.box = {std::max(least, 2.0 * half[0] * scale), std::max(least, 2.0 * half[1] * scale),
                 -half[2] * scale, half[2] * scale};
    scene.perUnit = scale / frame.half;
    return scene;
}

CoarseFacets coarsened(const TriangleMesh &mesh, const FacetFrame &frame, size_t most)
{
    double along = mostCubes;
    for (;;) {
        CoarseFacets coarse = merged(mesh, frame, along);
        const size_t facets = coarse.corners.size() / 3;
        if (facets <= most || along <= fewestCubes)
            return coarse;
        const double share = static_cast<double>(most) / static_cast<double>(facets);
        along = std::max(fewestCubes, std::floor(along * 0.95 * std::sqrt(share)));
    }
}

} // namespace marlowen
