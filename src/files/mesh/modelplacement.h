#pragma once

#include "files/mesh/trianglemesh.h"

#include <span>

namespace marlowen {

/// One step of turning a model, about the axes as seen: x right, y up, z toward the viewer.
enum class ModelTurn { Left, Right, Up, Down, CounterClockwise, Clockwise, Flip };

struct ModelTurnRow
{
    ModelTurn turn;
    const char *name; ///< in scripts and on the command line
};
/// Every turn, in the order of the enumeration.
std::span<const ModelTurnRow> modelTurns();

/// Where the axes of a model point after a number of turns, each by a multiple of a right angle.
class ModelOrientation
{
public:
    void turn(ModelTurn turn);
    /// The axis of the model (0 x, 1 y, 2 z) that lies along an axis as seen.
    size_t axis(size_t seen) const { return m_axis[seen]; }
    /// 1, or -1 where that axis points the other way.
    double sign(size_t seen) const { return m_sign[seen]; }
    bool operator==(const ModelOrientation &) const = default;

private:
    std::array<size_t, 3> m_axis{0, 1, 2};
    std::array<double, 3> m_sign{1.0, 1.0, 1.0};
};

/// The smallest box about a model, in model units.
struct ModelBox
{
    MeshPoint low{};
    MeshPoint high{};
    double extent(size_t axis) const { return high[axis] - low[axis]; }
    bool operator==(const ModelBox &) const = default;
};

/// How a point of the file becomes a point as seen: turned and scaled about the origin of the file.
struct ModelPlacement
{
    std::array<size_t, 3> axis{0, 1, 2};
    std::array<double, 3> factor{1.0, 1.0,
                                 1.0}; ///< of that axis, negative where it is turned round

    MeshPoint at(const MeshPoint &point) const
    {
        return {point[axis[0]] * factor[0], point[axis[1]] * factor[1], point[axis[2]] * factor[2]};
    }
    ModelBox at(const ModelBox &box) const;
};

/// The box about the corners of the triangles; of a mesh without any, zeros.
ModelBox boxOf(const TriangleMesh &mesh);

} // namespace marlowen
