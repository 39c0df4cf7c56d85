#include "render/overlays/selectionoutline.h"

#include "relief/grid/gridlayer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace marlowen {

#ifndef __clang__
#pragma GCC optimize("O3")
#endif

namespace {

enum CellBits : uint8_t { Selected = 1, TopTraced = 2 };

enum Heading { East, South, West, North };

/// The blocks of the area, one byte each, with a border of empty ones all round. Rows are a
/// multiple of eight bytes long so that they can be scanned eight blocks at a time.
struct Blocks
{
    int columns;
    int rows;
    qsizetype stride;
    std::vector<uint8_t> bytes;

    Blocks(int columnCount, int rowCount)
        : columns(columnCount)
        , rows(rowCount)
        , stride((columnCount + 2 + 7) / 8 * 8)
        , bytes(static_cast<size_t>(stride * (rowCount + 2)))
    {
    }
    uint8_t *row(int r) { return bytes.data() + (r + 1) * stride + 1; }
};

void markRow(const float *values, int count, int step, uint8_t *blocks)
{
    if (step == 1) {
        for (int i = 0; i < count; ++i)
            blocks[i] |= static_cast<uint8_t>(values[i] != 0.0F ? Selected : 0);
        return;
    }
    for (int first = 0; first < count; first += step, ++blocks) {
        const int end = std::min(first + step, count);
        bool any = false;
        for (int i = first; i < end; ++i)
            any |= values[i] != 0.0F;
        *blocks |= static_cast<uint8_t>(any ? Selected : 0);
    }
}

Blocks markBlocks(const GridLayer &selection, int gridWidth, const QRect &area, int step)
{
    Blocks blocks((area.width() + step - 1) / step, (area.height() + step - 1) / step);
    for (int row = 0; row < area.height(); ++row) {
        const qsizetype first = static_cast<qsizetype>(area.top() + row) * gridWidth + area.left();
        markRow(selection.constData() + first, area.width(), step, blocks.row(row / step));
    }
    return blocks;
}

/// Walks along block borders with the selected blocks on the right hand.
class Tracer
{
public:
    Tracer(Blocks &blocks, const QRect &area, int step, SelectionOutline &outline)
        : m_area(area)
        , m_step(step)
        , m_outline(outline)
    {
        const qsizetype stride = blocks.stride;
        m_forward[East] = 1;
        m_forward[South] = stride;
        m_forward[West] = -1;
        m_forward[North] = -stride;
        m_aheadRight[East] = 0;
        m_aheadRight[South] = -1;
        m_aheadRight[West] = -stride - 1;
        m_aheadRight[North] = -stride;
    }

    /// The loop that begins with the top edge of this block; marks every top edge it passes.
    void traceFrom(uint8_t *start, QPoint corner)
    {
        const auto first = m_outline.corners.size();
        uint8_t *at = start;
        int heading = East;
        do {
            const QPoint from = corner;
            _walkStraight(at, corner, heading);
            m_outline.corners.push_back(_gridCorner(from));
            heading = _turned(at, heading);
        } while (at != start || heading != East);
        m_outline.firsts.push_back(static_cast<int>(first));
        m_outline.counts.push_back(static_cast<int>(m_outline.corners.size() - first));
    }

private:
    bool _selectedRight(const uint8_t *at, int heading) const
    {
        return at[m_aheadRight[heading]] & Selected;
    }
    bool _selectedLeft(const uint8_t *at, int heading) const
    {
        // The cell ahead on the left is the cell ahead on the right for the heading to the left.
        return at[m_aheadRight[(heading + 3) % 4]] & Selected;
    }
    /// To the next corner where the border turns; at least one edge.
    void _walkStraight(uint8_t *&at, QPoint &corner, int heading) const
    {
        int edges = 0;
        do {
            if (heading == East)
                *at |= TopTraced;
            at += m_forward[heading];
            ++edges;
        } while (_selectedRight(at, heading) && !_selectedLeft(at, heading));
        constexpr int dx[] = {1, 0, -1, 0};
        constexpr int dy[] = {0, 1, 0, -1};
        corner += QPoint(dx[heading], dy[heading]) * edges;
    }
    int _turned(const uint8_t *at, int heading) const
    {
        return _selectedRight(at, heading) ? (heading + 3) % 4 : (heading + 1) % 4;
    }
    QPoint _gridCorner(QPoint blockCorner) const
    {
        return {std::min(m_area.left() + blockCorner.x() * m_step, m_area.right() + 1),
                std::min(m_area.top() + blockCorner.y() * m_step, m_area.bottom() + 1)};
    }

    QRect m_area;
    int m_step;
    SelectionOutline &m_outline;
    qsizetype m_forward[4];
    qsizetype m_aheadRight[4];
};

/// Bits of the blocks of eight whose top edge is a border not traced yet.
uint64_t untracedTops(const uint8_t *row, qsizetype stride)
{
    constexpr uint64_t selected = 0x0101010101010101U * Selected;
    uint64_t blocks;
    uint64_t above;
    std::memcpy(&blocks, row, sizeof blocks);
    std::memcpy(&above, row - stride, sizeof above);
    return blocks & ~above & ~(blocks >> 1) & selected;
}

void traceRow(Blocks &blocks, int row, Tracer &tracer)
{
    uint8_t *const bytes = blocks.row(row);
    for (int column = 0; column < blocks.columns; column += 8) {
        if (untracedTops(bytes + column, blocks.stride) == 0)
            continue;
        for (int c = column; c < std::min(column + 8, blocks.columns); ++c) {
            const bool top = (bytes[c] & Selected) && !(bytes[c - blocks.stride] & Selected);
            if (top && !(bytes[c] & TopTraced))
                tracer.traceFrom(bytes + c, {c, row});
        }
    }
}

} // namespace

SelectionOutline outlineSelection(const GridLayer &selection, QSize grid, const QRect &area,
                                  int step)
{
    SelectionOutline outline;
    const QRect clipped = area & QRect(QPoint(0, 0), grid);
    if (!selection.written() || clipped.isEmpty())
        return outline;
    Blocks blocks = markBlocks(selection, grid.width(), clipped, std::max(step, 1));
    Tracer tracer(blocks, clipped, std::max(step, 1), outline);
    for (int row = 0; row < blocks.rows; ++row)
        traceRow(blocks, row, tracer);
    return outline;
}

} // namespace marlowen
