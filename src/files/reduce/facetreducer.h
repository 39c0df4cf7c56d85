#pragma once

#include "files/reduce/candidateheap.h"
#include "files/reduce/facetscan.h"
#include "files/reduce/gridtriangulation.h"
#include "files/reduce/outline.h"
#include "relief/grid/floatgrid.h"

#include <chrono>

namespace marlowen {

/// What a reduced surface has to keep to.
struct ReductionGoal
{
    double toleranceInches = 0.0; ///< along z, at every grid point; 0 or more
    uint64_t facetLimit = 0;      ///< the most facets, 0 for no limit; the first two are always
                                  ///< made (more on a grid over 64 times as long as wide)
    bool solid = false;           ///< facets of a base like the surface and of walls count too
    double zFactor = 1.0;         ///< on all heights
};

/// Why a reduction ended.
enum class ReductionEnd {
    Running,
    ToleranceMet,
    FacetLimit,  ///< one facet more would be too many
    MemoryLimit, ///< the surface needs more facets than fit into 250 MB: it is hardly reducible
};

/// Finds few triangles between grid points that pass every grid point within a tolerance. It starts
/// with the relief's rectangle as two triangles and inserts the grid point that lies farthest from
/// the surface, until none is too far; the triangles stay a Delaunay triangulation. Triangles whose
/// grid points are all empty are left out of the result, and no triangle spreads material farther
/// over empty cells than the full mesh does.
///
/// After M. Garland and P. S. Heckbert, "Fast polygonal approximation of terrains and height
/// fields", CMU-CS-95-181.
///
/// The work is done in slices of any length, with the state to be shown between them:
/// `while (!reducer.step(20ms)) show(reducer.facets(), reducer.largestErrorInches());`
class FacetReducer
{
public:
    /// Takes no time. The heights must stay as they are and outlive the reducer. A grid with a side
    /// of one cell has no facets.
    FacetReducer(const GridView &heights, const ReductionGoal &goal);

    /// Works for about this time, at least one insertion. Returns whether the reduction has ended;
    /// then it does nothing any more.
    bool step(std::chrono::milliseconds time);

    ReductionEnd end() const { return m_end; }
    /// Facets as they stand; of a solid with those of its walls and of a base like the surface,
    /// which is more than an export writes.
    uint64_t facets() const { return counted({m_facets, m_border}); }
    /// The largest distance of a grid point from the surface as it stands, along z. Exact once the
    /// reduction has ended; before, the largest that is known.
    double largestErrorInches() const;
    /// Estimated share of the work done, 0..1, never falling.
    double progress() const { return m_progress; }
    /// The facets of the surface as they stand.
    std::vector<CellTriangle> mesh() const;

private:
    struct State
    {
        float error = 0.0F;
        uint32_t candidate : 31 = 0;
        uint32_t counts : 1 = 0; ///< it is one of the facets
    };

    /// Facets of a surface and edges around it.
    struct Size
    {
        uint64_t facets;
        uint64_t border;
    };

    uint64_t counted(const Size &size) const
    {
        return m_goal.solid ? 2 * (size.facets + size.border) : size.facets;
    }
    Size sizeOf(const std::vector<uint32_t> &triangles) const;
    int64_t area(uint32_t triangle) const; ///< twice the area, in cells
    FacetScan scan(uint32_t triangle, int stride) const;
    bool exceeds(float error) const;
    void start();
    void cutIntoLengths();
    void insertBorderCell(uint32_t cell);
    void examine(uint32_t triangle);
    uint64_t urgency(const State &state) const;
    bool refineOnce();
    void finish(ReductionEnd end);
    bool isMeeting() const; ///< the tolerance; only the outline may be left
    void updateProgress();

    GridView m_grid;
    ReductionGoal m_goal;
    double m_inchesPerCell;
    double m_toleranceCells;
    Outline m_outline;
    GridTriangulation m_triangulation;
    std::vector<State> m_states;
    CandidateHeap m_heap;
    ReductionEnd m_end = ReductionEnd::Running;
    uint64_t m_facets = 0;
    uint64_t m_border = 0; ///< edges around the facets; only known for a solid
    float m_finalError = 0.0F;
    double m_firstError = 0.0;
    double m_progress = 0.0;
};

} // namespace marlowen
