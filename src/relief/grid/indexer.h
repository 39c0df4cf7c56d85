#pragma once

#include <QPointF>

#include <cstdint>

namespace marlowen {

/// Neighbour arithmetic on the row-major cell indices of a width x height grid.
class Indexer
{
public:
    enum Neighbors : int {
        Left,
        Right,
        Above,
        Below,
        AboveLeft,
        AboveRight,
        BelowLeft,
        BelowRight
    };

    Indexer(uint32_t width, uint32_t height)
        : m_width(width)
        , m_height(height)
    {
    }

    /// Index of the neighbour, or -1 when it is off the grid or `index` itself is past its end. A
    /// direction above 7 is a programming error and stops the program.
    int neighborOf(int index, Neighbors direction) const;
    Neighbors oppositeNeighborOf(Neighbors direction) const;

    int left(int index) const { return neighborOf(index, Left); }
    int right(int index) const { return neighborOf(index, Right); }
    int up(int index) const { return neighborOf(index, Above); }
    int down(int index) const { return neighborOf(index, Below); }

    bool isNeighbor(int a, int b) const;
    bool isHorizontalNeighbor(int a, int b) const
    {
        return b >= 0 && (b == left(a) || b == right(a));
    }
    bool isVerticalNeighbor(int a, int b) const { return b >= 0 && (b == up(a) || b == down(a)); }

    /// Columns and rows from a to its neighbour b; (0, 0) when b is not a neighbour of a.
    QPointF offset(int a, int b) const;

private:
    uint32_t m_width;
    uint32_t m_height;
};

} // namespace marlowen
