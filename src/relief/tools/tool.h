#pragma once

#include "relief/tools/strokepoint.h"
#include "relief/tools/toolparams.h"
#include "relief/tools/tooltypes.h"

#include <QPointF>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace marlowen {

struct StrokeBuffers;

/// What the footprint weighs at every cell a dab can reach: (2 reach + 1) squared floats,
/// row-major, the dab's centre in the middle. A negative weight is a cell outside the footprint.
/// Each row's cells of the footprint lie in first..last (last < first: none).
struct FootprintWeights
{
    struct Extent
    {
        int first = 0;
        int last = -1;
    };
    int reach = 0;
    const float *values = nullptr;
    const Extent *rows = nullptr;

    int side() const { return 2 * reach + 1; }
};

/// What a brush keeps from one dab of a stroke to the next. Later strokes of the
/// brush reuse the object and its memory.
class BrushState
{
public:
    virtual ~BrushState() = default;
    /// Another stroke begins.
    virtual void beginStroke() = 0;
};

/// How far the dabs of a stroke have come along its path.
struct ToolPath
{
    std::vector<StrokePoint> pending; ///< resampled points not applied yet
    double travelled = 0.0;           ///< length applied so far, in cells
    QPointF lastApplied;              ///< where the last dab went
    bool dabbed = false;              ///< the first dab is over
};

/// The tool of one stroke: footprint, distance map, weights, spacing. Owned by the relief while the
/// stroke lasts. Everything that cannot change during a stroke is computed when it is built, with
/// the parameters and the alpha image of that moment, in buffers that are reused by the
/// next stroke.
class Tool : public ToolTypes
{
public:
    /// `scale` is the relief's diagonal in cells. Parameters outside their ranges are corrected
    /// first (usableParams).
    explicit Tool(const ToolParams &params = {}, StrokePoint firstPoint = {}, double scale = 1.0);
    Tool(const Tool &) = delete;
    Tool &operator=(const Tool &) = delete;
    virtual ~Tool();

    /// The parameters in force for the stroke, all of them usable.
    const ToolParams &params() const { return m_params; }
    QPointF firstPoint() const { return m_firstPoint; }
    double radius() const { return m_radius; }

    /// Side D of the footprint and the distance map; its middle is cell (D / 2, D / 2).
    int dimension() const { return m_dimension; }
    /// D x D bytes: 0 outside, 1 inside, 2 outline.
    const unsigned char *footprint() const;
    /// D x D distances from the outline in cells: 0 outside, 1 on the outline; the largest double
    /// where no outline can be reached.
    const double *distanceMap() const;
    const FootprintWeights &weights() const { return m_weights; }
    /// Smaller dabs of the same stroke have one of these sizes: level / sizeLevels of the radius.
    static constexpr int sizeLevels = 16;
    /// The weights at such a size, taken from those of the whole footprint when first asked for.
    const FootprintWeights &weightsAt(int level);
    /// An alpha image in Stamp mode was loaded when the stroke began.
    bool stamping() const { return m_stamping; }
    StrokeBuffers &buffers() { return *m_buffers; }

    /// Resamples the path from the last point to `point` into path.pending. The last point of
    /// one batch is the first of the next. Points that are NaN, infinite or farther than 1e9 cells
    /// from the centre are ignored. Of a batch of more than 100000 points those that lie farther
    /// than `reach` columns and rows from the relief's centre are left out.
    void addPoint(StrokePoint point, bool finalPoint, QPointF reach);
    StrokePoint lastPoint() const { return m_lastPoint; }

    ToolPath path;

    /// The state of this stroke's brush, made when it is first asked for. One brush asks for one
    /// type.
    template <typename State>
    State &brushState()
    {
        auto *state = dynamic_cast<State *>(_brushState());
        return state ? *state : static_cast<State &>(_setBrushState(std::make_unique<State>()));
    }

    /// Radius in cells, kept within 1 .. 2048, so that the footprint takes no more than 300 MB.
    static double radiusCells(const ToolParams &params, double scale);
    /// Distance of every cell of a dimension x dimension footprint from its outline: side steps
    /// count 1, diagonal steps sqrt(2), none leads through the outside.
    static void genDistMap(double *map, unsigned char *footprint, int dimension);

private:
    BrushState *_brushState() const;
    BrushState &_setBrushState(std::unique_ptr<BrushState> state);

    ToolParams m_params;
    QPointF m_firstPoint;
    StrokePoint m_lastPoint;
    double m_radius;
    int m_dimension;
    bool m_stamping;
    /// A footprint made smaller.
    struct Shrunk
    {
        FootprintWeights weights;
        std::vector<float> values;
        std::vector<FootprintWeights::Extent> rows;
    };
    void _shrink(Shrunk &shrunk, double share) const;

    FootprintWeights m_weights;
    std::array<std::unique_ptr<Shrunk>, sizeLevels> m_shrunk;
    std::unique_ptr<StrokeBuffers> m_buffers;
};

/// The parameters with every NaN and infinity replaced by its default, and every value
/// outside what the engine can work with moved to the nearest one it can.
ToolParams usableParams(ToolParams params);

/// False for points that are NaN, infinite or farther than 1e9 cells from the centre.
bool usablePoint(QPointF point);

} // namespace marlowen
