#pragma once

#include "relief/operations/rowpass.h"

namespace marlowen {

/// Makes new rows of a layer out of the rows of a row pass. Keeps its memory from one use to the
/// next; a thread has one of its own.
class ColumnPass
{
public:
    /// Begins with the new rows `rows` of a layer; `down` is the plan of its columns and outlives
    /// their making.
    void begin(const RowPass::Job &job, const LinePlan &down, CellRange rows);
    /// Makes some of the rows, which follow each other in `out`; from one call to the next they
    /// rise. Only cells that are not 0 are set: `out` holds zeros.
    void makeRows(CellRange rows, float *out);

private:
    void _mix(CellRange rows, float *out);
    void _average(const Taps &taps, float *out);
    void _widen(CellRange columns);
    void _add(const WideRows &block, CellRange rows, const double *weights);

    RowPass m_rows;
    const LinePlan *m_down = nullptr;
    bool m_covers = false;
    WarmBuffer<float> m_zeros; ///< a row of them
    WarmBuffer<float> m_ones;
    int m_length = 0;       ///< of a new row
    CellRange m_columns;    ///< where the sums are set; they are 0 beyond
    bool m_allFull = true;  ///< so far all rows were: then their cover is the same everywhere
    double m_fullSum = 0.0; ///< that cover
    WarmBuffer<double> m_sums;
    WarmBuffer<double> m_coverSums; ///< unless all rows were full
};

} // namespace marlowen
