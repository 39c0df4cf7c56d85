#include "render/meshes/flatvertices.h"

#include "relief/grid/relief.h"
#include "render/meshes/reliefmesh.h"

#include <algorithm>

namespace marlowen {

namespace {

class Leveller
{
public:
    explicit Leveller(const HeightLevels &levels)
        : m_minimum(levels.minimum)
        , m_range(levels.maximum - levels.minimum)
        , m_count(levels.count)
    {
    }

    double operator()(double height) const
    {
        if (height == 0.0 || !(m_range > 0.0))
            return m_minimum;
        return _levelOf(height) / m_count * m_range + m_minimum;
    }

private:
    double _levelOf(double height) const
    {
        // Heights far off an old range must still fit the conversion.
        constexpr double farthest = 1e15;
        const double level =
            std::clamp((height - m_minimum) / m_range * m_count, -farthest, farthest);
        // Rounded up without ceil(), which is a function call on older processors.
        const auto whole = static_cast<double>(static_cast<int64_t>(level));
        return level > whole ? whole + 1.0 : whole;
    }

    double m_minimum;
    double m_range;
    double m_count;
};

} // namespace

double levelledHeight(double height, const HeightLevels &levels)
{
    return Leveller(levels)(height);
}

void fillFlatVertices(ReliefMesh &mesh, const Relief &relief, const QRect &vertices,
                      const HeightLevels &levels)
{
    const Leveller levelled(levels);
    const double halfWidth = relief.width() * 0.5;
    for (int j = vertices.top(); j <= vertices.bottom(); ++j) {
        const int row = mesh.region().top() + j * mesh.step();
        const int firstColumn = mesh.region().left() + vertices.left() * mesh.step();
        const qsizetype cell = relief.index(firstColumn, row);
        const float *height = relief.heights().constData() + cell;
        const auto vertex = static_cast<size_t>(j) * static_cast<size_t>(mesh.columns()) +
                            static_cast<size_t>(vertices.left());
        float *position = mesh.positions() + 3 * vertex;
        const auto y = static_cast<float>(row - relief.height() * 0.5);
        for (int i = 0; i < vertices.width(); ++i) {
            const qsizetype offset = static_cast<qsizetype>(i) * mesh.step();
            position[3 * i] =
                static_cast<float>(static_cast<double>(firstColumn + offset) - halfWidth);
            position[3 * i + 1] = y;
            position[3 * i + 2] =
                static_cast<float>(levelled(static_cast<double>(height[offset])) * relief.zScale);
        }
        fillSelection(relief, {firstColumn, row, mesh.step(), vertices.width()},
                      mesh.selection() + vertex);
    }
}

} // namespace marlowen
