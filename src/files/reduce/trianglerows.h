#pragma once

#include "files/reduce/gridtriangulation.h"
#include "relief/grid/cellcode.h"

#include <algorithm>

namespace marlowen {

/// The column at which an edge crosses the rows of a grid, stepped from row to row in whole
/// numbers: floor + rest / rows.
class EdgeColumns
{
public:
    EdgeColumns() = default;
    /// From the end with the lower row to the other; the first row asked for is `row`, the next
    /// ones follow at `stride`.
    CELL_INLINE EdgeColumns(CellPoint from, CellPoint to, int64_t row, int64_t stride)
        : m_rows(std::max<int64_t>(1, to.y - from.y))
    {
        const int64_t run = to.x - from.x;
        m_floor = from.x;
        if (row > from.y) {
            divide((row - from.y) * run, m_floor, m_rest);
            m_floor += from.x;
        }
        divide(stride * run, m_step, m_stepRest);
    }

    int64_t floor() const { return m_floor; }
    int64_t ceil() const { return m_floor + (m_rest > 0 ? 1 : 0); }
    CELL_INLINE void advance()
    {
        m_floor += m_step;
        m_rest += m_stepRest;
        if (m_rest >= m_rows) {
            m_rest -= m_rows;
            ++m_floor;
        }
    }

private:
    CELL_INLINE void divide(int64_t value, int64_t &quotient, int64_t &rest) const
    {
        quotient = value / m_rows;
        rest = value - quotient * m_rows;
        if (rest < 0) {
            rest += m_rows;
            --quotient;
        }
    }

    int64_t m_rows = 1;
    int64_t m_floor = 0;
    int64_t m_rest = 0;
    int64_t m_step = 0;
    int64_t m_stepRest = 0;
};

/// The grid points on a closed triangle, row by row: `for (TriangleRows rows(...); rows.more();
/// rows.next())` gives row(), first() and last(), the columns on it; a row without a point has
/// last() < first(). Rows are multiples of the stride.
class TriangleRows
{
public:
    CELL_INLINE TriangleRows(CellPoint a, CellPoint b, CellPoint c, int64_t stride)
        : m_stride(stride)
    {
        if (b.y < a.y)
            std::swap(a, b);
        if (c.y < b.y)
            std::swap(b, c);
        if (b.y < a.y)
            std::swap(a, b);
        m_middle = b;
        m_end = c;
        m_middleRight = twiceArea(a, c, b) < 0;
        m_row = (a.y + stride - 1) / stride * stride;
        m_long = EdgeColumns(a, c, m_row, stride);
        m_short = EdgeColumns(a, b, m_row, stride);
        turn(m_row >= b.y);
    }

    bool more() const { return m_row <= m_end.y; }
    CELL_INLINE void next()
    {
        const bool turned = m_row >= m_middle.y;
        m_row += m_stride;
        m_long.advance();
        m_short.advance();
        turn(!turned && m_row >= m_middle.y);
    }
    int64_t row() const { return m_row; }
    int64_t first() const { return m_middleRight ? m_long.ceil() : m_short.ceil(); }
    int64_t last() const { return m_middleRight ? m_short.floor() : m_long.floor(); }

private:
    /// From the middle corner on the second of the short edges counts.
    CELL_INLINE void turn(bool now)
    {
        if (now)
            m_short = EdgeColumns(m_middle, m_end, m_row, m_stride);
    }

    CellPoint m_middle{};
    CellPoint m_end{};
    bool m_middleRight = false;
    int64_t m_stride;
    int64_t m_row = 0;
    EdgeColumns m_long;
    EdgeColumns m_short;
};

} // namespace marlowen
