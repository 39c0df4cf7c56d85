#include "files/reduce/outline.h"

#include "files/reduce/trianglerows.h"

#include <algorithm>
#include <cstring>

namespace marlowen {

namespace {

int64_t squaredDistance(CellPoint a, CellPoint b)
{
    return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

struct ByteRow
{
    const uint8_t *from;
    uint8_t *to;
    size_t count;
};

/// The largest of each byte and its two neighbours.
CELL_LOOP void spreadAlong(const ByteRow &row)
{
    const uint8_t *from = row.from;
    uint8_t *to = row.to;
    const size_t count = row.count;
    to[0] = std::max(from[0], from[1]);
    for (size_t i = 1; i + 1 < count; ++i)
        to[i] = std::max(from[i], std::max(from[i - 1], from[i + 1]));
    to[count - 1] = std::max(from[count - 1], from[count - 2]);
}

CELL_LOOP void markHeights(const float *heights, const ByteRow &row)
{
    uint8_t *to = row.to;
    const size_t count = row.count;
    for (size_t i = 0; i < count; ++i)
        to[i] = heights[i] != 0.0F ? 1 : 0;
}

CELL_LOOP void unite(const ByteRow &row)
{
    const uint8_t *from = row.from;
    uint8_t *to = row.to;
    const size_t count = row.count;
    for (size_t i = 0; i < count; ++i)
        to[i] |= from[i];
}

/// Whether the grid has cells of both sorts.
bool isMixed(const GridView &grid)
{
    const float *end = grid.values + grid.cells();
    const bool firstEmpty = grid.values[0] == 0.0F;
    return std::any_of(grid.values, end,
                       [firstEmpty](float height) { return (height == 0.0F) != firstEmpty; });
}

} // namespace

Outline::Outline(const GridView &grid)
    : m_width(grid.width)
    , m_height(grid.height)
{
    if (!isMixed(grid))
        return;
    const auto width = static_cast<size_t>(grid.width);
    const auto height = static_cast<size_t>(grid.height);
    m_kinds.resize(width * height);
    std::vector<uint8_t> heights(width);
    std::vector<uint8_t> spread(width);
    // Each row marks itself and its two neighbours: 1 near material. A second pass makes
    // material 2.
    for (size_t y = 0; y < height; ++y) {
        markHeights(grid.row(static_cast<int>(y)), {nullptr, heights.data(), width});
        spreadAlong({heights.data(), spread.data(), width});
        for (size_t to = y == 0 ? 0 : y - 1; to < std::min(height, y + 2); ++to)
            unite({spread.data(), m_kinds.data() + to * width, width});
    }
    for (size_t y = 0; y < height; ++y) {
        markHeights(grid.row(static_cast<int>(y)), {nullptr, heights.data(), width});
        for (size_t x = 0; x < width; ++x)
            m_kinds[y * width + x] += heights[x];
    }
}

CellPoint Outline::point(uint32_t cell) const
{
    const auto width = static_cast<uint32_t>(m_width);
    return {cell % width, cell / width};
}

template <typename Visit>
void Outline::visit(const Corners &corner, Kind kind, Visit found) const
{
    for (TriangleRows rows(corner[0], corner[1], corner[2], 1); rows.more(); rows.next()) {
        const uint8_t *row = m_kinds.data() + rows.row() * m_width;
        const uint8_t *end = row + rows.last() + 1;
        for (const uint8_t *from = row + rows.first(); from < end; ++from) {
            const auto left = static_cast<size_t>(end - from);
            from = static_cast<const uint8_t *>(std::memchr(from, kind, left));
            if (!from)
                break;
            if (!found(CellPoint{from - row, rows.row()}))
                return;
        }
    }
}

bool Outline::holds(const Corners &corner, Kind kind) const
{
    bool any = false;
    visit(corner, kind, [&any](CellPoint) {
        any = true;
        return false;
    });
    return any;
}

/// The cell of a kind that lies farthest from the corners, without them.
std::optional<uint32_t> Outline::farthest(const Corners &corner, Kind kind) const
{
    int64_t best = 0;
    CellPoint point{};
    visit(corner, kind, [&](CellPoint p) {
        const int64_t distance =
            std::min({squaredDistance(p, corner[0]), squaredDistance(p, corner[1]),
                      squaredDistance(p, corner[2])});
        if (distance > best) {
            best = distance;
            point = p;
        }
        return true;
    });
    if (best == 0)
        return {};
    return static_cast<uint32_t>(point.y * m_width + point.x);
}

std::optional<uint32_t> Outline::separator(const CellTriangle &triangle) const
{
    const Corners corner{point(triangle[0]), point(triangle[1]), point(triangle[2])};
    if (!holds(corner, Empty))
        return {};
    for (const Kind kind : {Rim, Material, Empty}) {
        if (const std::optional<uint32_t> found = farthest(corner, kind))
            return found;
    }
    return reflected(corner);
}

/// A triangle without further grid points has an obtuse corner when a side is longer than a cell's
/// diagonal: the opposite corner of the parallelogram over its longest side lies within its circle.
std::optional<uint32_t> Outline::reflected(const Corners &corner) const
{
    int64_t longest = 0;
    CellPoint mirrored{};
    for (size_t i = 0; i < 3; ++i) {
        const CellPoint from = corner[i];
        const CellPoint to = corner[(i + 1) % 3];
        const CellPoint opposite = corner[(i + 2) % 3];
        if (squaredDistance(from, to) <= longest)
            continue;
        longest = squaredDistance(from, to);
        mirrored = {from.x + to.x - opposite.x, from.y + to.y - opposite.y};
    }
    const bool outside =
        mirrored.x < 0 || mirrored.y < 0 || mirrored.x >= m_width || mirrored.y >= m_height;
    if (outside || longest <= 2)
        return {};
    return static_cast<uint32_t>(mirrored.y * m_width + mirrored.x);
}

} // namespace marlowen
