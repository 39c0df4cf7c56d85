#pragma once

#include "import/bas/planefit.h"

#include <functional>

namespace marlowen {

/// A grid of coarse cells with a border of one cell of zeros: cell (x, y) lies at row(y)[x + 1],
/// rows -1 and `height` exist.
struct BorderedGrid
{
    BorderedGrid(int columns, int rows)
        : width(columns)
        , height(rows)
        , grid(columns + 2, rows + 2)
    {
    }
    float *row(int y) { return grid.row(y + 1); }
    const float *row(int y) const { return grid.row(y + 1); }
    int width;
    int height;
    FloatGrid grid;
};

/// What a finer level hands to a coarser one: sums over blocks of 2 x 2 cells. Two coarse cells are
/// joined with the mean conductance of the cells that touch across their border.
struct CoarseProblem
{
    CoarseProblem(int columns, int rows)
        : correction(columns, rows)
        , rhs(columns, rows)
        , east(columns, rows)
        , south(columns, rows)
        , mass(columns, rows)
    {
    }
    BorderedGrid correction;
    BorderedGrid rhs;
    BorderedGrid east;  ///< conductance between a cell and its right neighbour
    BorderedGrid south; ///< and the neighbour in the next row
    BorderedGrid mass;  ///< number of filled cells of the relief below a cell
};

/// One level of the multigrid. Every pass returns false when the user cancelled.
class PoissonLevel
{
public:
    virtual ~PoissonLevel() = default;
    /// One pass of Gauss-Seidel over the cells coloured as on a chess board.
    virtual bool relax(WorkMeter &meter) = 0;
    /// Restricts the residual, by sums, to the right-hand side of the coarser level.
    virtual bool restrictTo(CoarseProblem &coarse, WorkMeter &meter) = 0;
    /// Adds the correction of the coarser level, interpolated between filled coarse cells.
    virtual bool correctFrom(const CoarseProblem &coarse, WorkMeter &meter) = 0;
    /// The matrix of the coarser level. False when the user cancelled.
    virtual bool coarsen(CoarseProblem &coarse, WorkMeter &meter) const = 0;
    virtual int width() const = 0;
    virtual int height() const = 0;
};

/// Relaxes the cells of one colour of row y; has room for a row with a border of one cell, which
/// is 0 at both ends.
using RowRelaxer = std::function<void(int y, int colour, std::vector<float> &bordered)>;
/// Calls relaxRow for the cells of colour 0 of all rows, then for those of colour 1; a call may
/// change cells of its colour only and read the neighbouring rows. Within a band the second colour
/// follows closely, while the rows are in the cache. False when the user cancelled.
bool relaxByColours(int rows, int width, const RowRelaxer &relaxRow, WorkMeter &meter);

/// The cells of the relief themselves.
class FineLevel : public PoissonLevel
{
public:
    FineLevel(FloatGrid &surface, const FloatGrid &rhs, const CellMask &filled, float screening);

    bool relax(WorkMeter &meter) override;
    bool restrictTo(CoarseProblem &coarse, WorkMeter &meter) override;
    bool correctFrom(const CoarseProblem &coarse, WorkMeter &meter) override;
    bool coarsen(CoarseProblem &coarse, WorkMeter &meter) const override;
    int width() const override { return m_surface.width; }
    int height() const override { return m_surface.height; }

private:
    const float *_rowOrZeros(int y) const;
    const uint8_t *_filled(int y) const; ///< of a row beyond the relief: empty cells
    void _countLinks(int y, CellMask &links) const;

    FloatGrid &m_surface;
    const FloatGrid &m_rhs;
    float m_screening;
    const CellMask &m_filled;
    std::vector<float> m_zeros;
    CellMask m_noCells;
};

class CoarseLevel : public PoissonLevel
{
public:
    CoarseLevel(CoarseProblem &problem, float screening)
        : m_problem(problem)
        , m_screening(screening)
    {
    }

    bool relax(WorkMeter &meter) override;
    bool restrictTo(CoarseProblem &coarse, WorkMeter &meter) override;
    bool correctFrom(const CoarseProblem &coarse, WorkMeter &meter) override;
    bool coarsen(CoarseProblem &coarse, WorkMeter &meter) const override;
    int width() const override { return m_problem.correction.width; }
    int height() const override { return m_problem.correction.height; }

private:
    CoarseProblem &m_problem;
    float m_screening;
};

} // namespace marlowen
