#include "files/export/flatbase.h"

#include <algorithm>

namespace marlowen {

namespace {

constexpr uint32_t none = GridTriangulation::none;

/// A cell with more triangles around it stays: filling its hole would take long.
constexpr std::size_t mostSpokes = 48;

/// The cell beyond an edge of the hole and the neighbour across the edge that begins there.
struct RingCell
{
    uint32_t cell;
    uint32_t outer;
};

/// Edges are numbered 3 * triangle + k, from corner k to the next.
class Thinning
{
public:
    Thinning(std::vector<CellTriangle> triangles, int width, Pulse &pulse)
        : m_width(static_cast<uint32_t>(width))
        , m_pulse(pulse)
        , m_triangles(std::move(triangles))
        , m_twins(m_triangles.size(), {none, none, none})
    {
        joinEdges();
    }

    /// Visits all corners until no further cell can be removed.
    std::vector<CellTriangle> run()
    {
        for (bool changed = true; changed && m_pulse.look();) {
            changed = false;
            for (uint32_t edge = 0; edge < 3 * m_triangles.size() && m_pulse.beat(); ++edge)
                changed = (isThere(edge / 3) && takeOut(edge)) || changed;
        }
        std::erase_if(m_triangles, [](const CellTriangle &t) { return t[0] == none; });
        return std::move(m_triangles);
    }

private:
    static uint32_t next(uint32_t edge) { return edge % 3 == 2 ? edge - 2 : edge + 1; }
    uint32_t from(uint32_t edge) const { return m_triangles[edge / 3][edge % 3]; }
    bool isThere(uint32_t triangle) const { return m_triangles[triangle][0] != none; }
    CellPoint point(uint32_t cell) const { return {cell % m_width, cell / m_width}; }
    int64_t area(uint32_t a, uint32_t b, uint32_t c) const
    {
        return twiceArea(point(a), point(b), point(c));
    }
    void join(uint32_t edge, uint32_t twin)
    {
        m_twins[edge / 3][edge % 3] = twin;
        if (twin != none)
            m_twins[twin / 3][twin % 3] = edge;
    }

    void joinEdges();
    bool takeOut(uint32_t edge);
    bool findRing(uint32_t edge);
    bool isEar(std::size_t at) const;
    bool findEars();
    void fillHole();

    uint32_t m_width;
    Pulse &m_pulse;
    std::vector<CellTriangle> m_triangles;
    std::vector<std::array<uint32_t, 3>> m_twins;
    std::vector<RingCell> m_ring;       ///< around the cell, counter-clockwise
    std::vector<RingCell> m_left;       ///< of the ring while ears are cut off
    std::vector<uint32_t> m_around;     ///< the triangles of the cell
    std::vector<std::size_t> m_earsCut; ///< places in the ring that was left, in order
};

void Thinning::joinEdges()
{
    // Its lower cell, the other one, its number.
    std::vector<std::array<uint32_t, 3>> edges;
    edges.reserve(3 * m_triangles.size());
    for (uint32_t edge = 0; edge < 3 * m_triangles.size(); ++edge) {
        const auto [low, high] = std::minmax({from(edge), from(next(edge))});
        edges.push_back({low, high, edge});
        if (!m_pulse.beat())
            return;
    }
    if (!sortEdges(edges, m_pulse))
        return;
    for (std::size_t i = 0; i + 1 < edges.size() && m_pulse.beat(); ++i) {
        if (edges[i][0] == edges[i + 1][0] && edges[i][1] == edges[i + 1][1])
            join(edges[i][2], edges[i + 1][2]);
    }
}

/// Collects the neighbourhood of the cell at which an edge begins; false on the border, and where
/// it is too large.
bool Thinning::findRing(uint32_t edge)
{
    m_ring.clear();
    m_around.clear();
    uint32_t spoke = edge;
    do {
        const uint32_t rim = next(spoke);
        m_ring.push_back({from(rim), m_twins[rim / 3][rim % 3]});
        m_around.push_back(spoke / 3);
        const uint32_t back = next(rim);
        spoke = m_twins[back / 3][back % 3];
    } while (spoke != none && spoke != edge && m_ring.size() <= mostSpokes);
    return spoke == edge;
}

/// The triangle of a place and its neighbours lies in the rest of the hole and has an area.
bool Thinning::isEar(std::size_t at) const
{
    const std::size_t count = m_left.size();
    const uint32_t a = m_left[(at + count - 1) % count].cell;
    const uint32_t b = m_left[at].cell;
    const uint32_t c = m_left[(at + 1) % count].cell;
    if (area(a, b, c) <= 0)
        return false;
    return std::ranges::none_of(m_left, [&](const RingCell &other) {
        const uint32_t p = other.cell;
        return p != a && p != b && p != c && area(a, b, p) >= 0 && area(b, c, p) >= 0 &&
               area(c, a, p) >= 0;
    });
}

/// Cuts the ring into ears, on paper; false when that cannot be done.
bool Thinning::findEars()
{
    m_left = m_ring;
    m_earsCut.clear();
    while (m_left.size() > 3) {
        std::size_t ear = 0;
        while (ear < m_left.size() && !isEar(ear))
            ++ear;
        if (ear == m_left.size())
            return false;
        m_earsCut.push_back(ear);
        m_left.erase(m_left.begin() + static_cast<std::ptrdiff_t>(ear));
    }
    return isEar(1);
}

void Thinning::fillHole()
{
    m_earsCut.push_back(1); // the last triangle
    std::size_t used = 0;
    for (const std::size_t ear : m_earsCut) {
        RingCell &before = m_ring[(ear + m_ring.size() - 1) % m_ring.size()];
        const RingCell &tip = m_ring[ear];
        const RingCell &after = m_ring[(ear + 1) % m_ring.size()];
        const uint32_t triangle = m_around[used++];
        m_triangles[triangle] = {before.cell, tip.cell, after.cell};
        join(3 * triangle, before.outer);
        join(3 * triangle + 1, tip.outer);
        if (m_ring.size() == 3)
            join(3 * triangle + 2, after.outer);
        before.outer = 3 * triangle + 2;
        m_ring.erase(m_ring.begin() + static_cast<std::ptrdiff_t>(ear));
    }
    for (; used < m_around.size(); ++used)
        m_triangles[m_around[used]] = {none, none, none};
}

bool Thinning::takeOut(uint32_t edge)
{
    if (!findRing(edge) || !findEars())
        return false;
    fillHole();
    return true;
}

} // namespace

std::vector<CellTriangle> withoutInnerCells(std::vector<CellTriangle> triangles, int width,
                                            Pulse &pulse)
{
    return Thinning(std::move(triangles), width, pulse).run();
}

} // namespace marlowen
