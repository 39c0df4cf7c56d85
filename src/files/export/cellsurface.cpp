#include "files/export/cellsurface.h"

#include "files/export/pulse.h"

#include <algorithm>

namespace marlowen {

namespace {

/// Puts edges in an order in which each begins where the one before ends, until that line closes.
/// Every cell must have as many edges that begin there as edges that end there.
std::vector<CellEdge> inLines(std::vector<CellEdge> edges, Pulse &pulse)
{
    if (!sortEdges(edges, pulse))
        return {};
    std::vector<bool> used(edges.size());
    std::vector<CellEdge> lines;
    lines.reserve(edges.size());
    const auto followerOf = [&](uint32_t cell) {
        const auto first = std::lower_bound(edges.begin(), edges.end(), CellEdge{cell, 0});
        auto at = static_cast<std::size_t>(first - edges.begin());
        while (at < edges.size() && edges[at][0] == cell && used[at])
            ++at;
        return at < edges.size() && edges[at][0] == cell ? at : edges.size();
    };
    for (std::size_t start = 0; start < edges.size() && pulse.beat(); ++start) {
        for (std::size_t at = start; at < edges.size() && !used[at] && pulse.beat();
             at = followerOf(edges[at][1])) {
            used[at] = true;
            lines.push_back(edges[at]);
        }
    }
    return lines;
}

} // namespace

CellSurface::CellSurface(const GridView &heights, double zFactor)
    : m_heights(heights)
    , m_zFactor(zFactor)
{
    forEachFacet([this](const CellTriangle &) {
        ++m_count;
        return true;
    });
}

CellSurface::CellSurface(const GridView &heights, double zFactor, std::vector<CellTriangle> facets)
    : m_heights(heights)
    , m_zFactor(zFactor)
    , m_facets(std::move(facets))
    , m_count(m_facets->size())
{
}

std::vector<CellEdge> CellSurface::border(Pulse &pulse) const
{
    return inLines(m_facets ? listBorder(pulse) : gridBorder(pulse), pulse);
}

uint64_t CellSurface::borderLength(Pulse &pulse) const
{
    return (m_facets ? listBorder(pulse) : gridBorder(pulse)).size();
}

std::vector<CellEdge> CellSurface::listBorder(Pulse &pulse) const
{
    std::vector<CellEdge> edges;
    edges.reserve(3 * m_facets->size());
    for (const CellTriangle &facet : *m_facets) {
        for (std::size_t i = 0; i < 3; ++i)
            edges.push_back({facet[i], facet[(i + 1) % 3]});
        if (!pulse.beat())
            return {};
    }
    std::vector<CellEdge> border;
    if (!sortEdges(edges, pulse))
        return border;
    for (const CellEdge &edge : edges) {
        if (!std::binary_search(edges.begin(), edges.end(), CellEdge{edge[1], edge[0]}))
            border.push_back(edge);
        if (!pulse.beat())
            break;
    }
    return border;
}

std::vector<CellEdge> CellSurface::gridBorder(Pulse &pulse) const
{
    std::vector<CellEdge> border;
    const uint32_t width = columns();
    const auto rows = static_cast<uint32_t>(m_heights.height);
    const auto addUnless = [&border](bool covered, uint32_t from, uint32_t to) {
        if (!covered)
            border.push_back({from, to});
    };
    for (uint32_t row = 0; row + 1 < rows; ++row) {
        for (uint32_t column = 0; column + 1 < width && pulse.beat(); ++column) {
            const uint32_t cell = row * width + column;
            const bool hasFirst = isFilled(first(cell));
            const bool hasSecond = isFilled(second(cell));
            if (hasFirst) {
                addUnless(row > 0 && isFilled(second(cell - width)), cell, cell + 1);
                addUnless(hasSecond, cell + 1, cell + width);
                addUnless(column > 0 && isFilled(second(cell - 1)), cell + width, cell);
            }
            if (hasSecond) {
                addUnless(hasFirst, cell + width, cell + 1);
                addUnless(column + 2 < width && isFilled(first(cell + 1)), cell + 1,
                          cell + width + 1);
                addUnless(row + 2 < rows && isFilled(first(cell + width)), cell + width + 1,
                          cell + width);
            }
        }
    }
    return border;
}

} // namespace marlowen
