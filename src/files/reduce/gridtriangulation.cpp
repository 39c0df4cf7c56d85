#include "files/reduce/gridtriangulation.h"

namespace marlowen {

namespace {

/// Products of four differences pass 64 bits on long grids.
__extension__ using Wide = __int128;

constexpr uint32_t nextEdge(uint32_t edge)
{
    return edge % 3 == 2 ? edge - 2 : edge + 1;
}

constexpr int64_t squaredLength(CellPoint d)
{
    return d.x * d.x + d.y * d.y;
}

constexpr int64_t cross(CellPoint a, CellPoint b)
{
    return a.x * b.y - b.x * a.y;
}

constexpr Wide product(int64_t a, int64_t b)
{
    return static_cast<Wide>(a) * b;
}

} // namespace

GridTriangulation::GridTriangulation(int width, int height)
    : m_width(static_cast<uint32_t>(width))
{
    const uint32_t right = m_width - 1;
    const uint32_t bottom = static_cast<uint32_t>(height - 1) * m_width;
    m_corners = {{0, right, bottom}, {bottom, right, bottom + right}};
    m_twins = {{none, 3, none}, {1, none, none}};
}

void GridTriangulation::reserve(std::size_t triangles)
{
    m_corners.reserve(triangles);
    m_twins.reserve(triangles);
}

bool GridTriangulation::circleHolds(uint32_t triangle, CellPoint p) const
{
    const auto from = [this, p](uint32_t cell) {
        const CellPoint at = point(cell);
        return CellPoint{at.x - p.x, at.y - p.y};
    };
    const CellTriangle &corner = m_corners[triangle];
    const CellPoint a = from(corner[0]);
    const CellPoint b = from(corner[1]);
    const CellPoint c = from(corner[2]);
    return product(squaredLength(a), cross(b, c)) + product(squaredLength(b), cross(c, a)) +
               product(squaredLength(c), cross(a, b)) >
           0;
}

void GridTriangulation::addRim(uint32_t edge, CellPoint p)
{
    const uint32_t from = m_corners[edge / 3][edge % 3];
    const uint32_t next = nextEdge(edge);
    const uint32_t to = m_corners[next / 3][next % 3];
    const uint32_t outer = m_twins[edge / 3][edge % 3];
    const bool flat = outer == none && twiceArea(point(from), point(to), p) == 0;
    m_rim.push_back({from, to, outer, flat});
    m_flat += flat ? 1 : 0;
}

const std::vector<uint32_t> &GridTriangulation::findCavity(uint32_t cell, uint32_t seed)
{
    m_cell = cell;
    m_flat = 0;
    m_rim.clear();
    m_cavity.assign(1, seed);
    const CellPoint p = point(cell);
    // The cavity has no corner inside, so that its triangles form a tree: walking it in depth from
    // edge to edge visits each once and gives the rim in its order.
    m_stack.assign({3 * seed + 2, 3 * seed + 1, 3 * seed});
    while (!m_stack.empty()) {
        const uint32_t edge = m_stack.back();
        m_stack.pop_back();
        const uint32_t twin = m_twins[edge / 3][edge % 3];
        if (twin == none || !circleHolds(twin / 3, p)) {
            addRim(edge, p);
            continue;
        }
        m_cavity.push_back(twin / 3);
        m_stack.push_back(nextEdge(nextEdge(twin)));
        m_stack.push_back(nextEdge(twin));
    }
    return m_cavity;
}

void GridTriangulation::join(uint32_t edge, uint32_t twin)
{
    m_twins[edge / 3][edge % 3] = twin;
    if (twin != none)
        m_twins[twin / 3][twin % 3] = edge;
}

const std::vector<uint32_t> &GridTriangulation::fillCavity()
{
    while (m_cavity.size() < fanSize()) {
        m_cavity.push_back(static_cast<uint32_t>(m_corners.size()));
        m_corners.emplace_back();
        m_twins.emplace_back();
    }
    uint32_t before = none; // the spoke of the triangle before, seen from there
    uint32_t first = none;
    std::size_t used = 0;
    for (const RimEdge &rim : m_rim) {
        if (rim.flat) {
            before = none;
            continue;
        }
        const uint32_t edge = 3 * m_cavity[used];
        m_corners[m_cavity[used]] = {rim.from, rim.to, m_cell};
        join(edge, rim.outer);
        join(edge + 2, before);
        m_twins[m_cavity[used]][1] = none;
        before = edge + 1;
        first = used == 0 ? edge + 2 : first;
        ++used;
    }
    // The rim closes: the last triangle meets the first unless a flat edge lies between them.
    if (!m_rim.front().flat && !m_rim.back().flat)
        join(first, before);
    return m_cavity;
}

} // namespace marlowen
