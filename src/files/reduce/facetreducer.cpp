#include "files/reduce/facetreducer.h"

#include "relief/grid/physicalsize.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace marlowen {

namespace {

/// Large triangles are looked at through about this many of their points as long as those do not
/// meet the tolerance: they will be split many times before it matters.
constexpr int64_t sampledPoints = 4096;

/// Cells along a grid, at least, before it is cut into lengths.
constexpr int shortestPiece = 4096;

/// Keeps triangulation, states and heap within 250 MB.
constexpr size_t mostTriangles = 4'800'000;

/// The keys of the heap hold the error, or its substitute, from this bit on; keys without are
/// those of triangles that spread material.
constexpr int errorShift = 31;
constexpr int64_t spreadLimit = (int64_t{1} << errorShift) - 1;
constexpr uint64_t mostTiles = (uint64_t{1} << 23) - 1;

/// A grid has fewer than 2^31 cells.
constexpr uint32_t cellBits = 0x7FFFFFFF;

int strideFor(int64_t twiceTheArea)
{
    int stride = 1;
    while (twiceTheArea / 2 / stride / stride > sampledPoints)
        stride *= 2;
    return stride;
}

} // namespace

FacetReducer::FacetReducer(const GridView &heights, const ReductionGoal &goal)
    : m_grid(heights)
    , m_goal(goal)
    , m_inchesPerCell(std::abs(goal.zFactor) / cellsPerInch)
    , m_toleranceCells(goal.toleranceInches / m_inchesPerCell)
    , m_triangulation(std::max(2, heights.width), std::max(2, heights.height))
{
    if (m_inchesPerCell == 0.0)
        m_toleranceCells = std::numeric_limits<double>::max();
    if (heights.width < 2 || heights.height < 2)
        finish(ReductionEnd::ToleranceMet);
}

void FacetReducer::start()
{
    const auto grown = static_cast<size_t>(m_grid.cells()) * 2;
    const size_t most = std::min(mostTriangles, grown) + 2;
    m_triangulation.reserve(most);
    m_states.reserve(most);
    m_heap.reserve(most);
    m_outline = Outline(m_grid);
    cutIntoLengths();
    m_states.resize(m_triangulation.count());
    for (uint32_t triangle = 0; triangle < m_states.size(); ++triangle)
        examine(triangle);
    std::vector<uint32_t> all(m_states.size());
    std::iota(all.begin(), all.end(), 0);
    const Size size = sizeOf(all);
    m_facets = size.facets;
    m_border = size.border;
    updateProgress();
}

/// A grid that is much longer than wide begins with shorter pieces: facets from one end to the
/// other would have to be scanned repeatedly.
void FacetReducer::cutIntoLengths()
{
    const bool isWide = m_grid.width > m_grid.height;
    const int shortSide = isWide ? m_grid.height : m_grid.width;
    const int longSide = isWide ? m_grid.width : m_grid.height;
    const int piece = std::max(shortestPiece, std::min(shortSide, longSide / 64) * 64);
    for (int at = piece; at + piece / 2 < longSide; at += piece) {
        for (const int across : {0, shortSide - 1}) {
            const int column = isWide ? at : across;
            const int row = isWide ? across : at;
            insertBorderCell(static_cast<uint32_t>(row) * static_cast<uint32_t>(m_grid.width) +
                             static_cast<uint32_t>(column));
        }
    }
}

void FacetReducer::insertBorderCell(uint32_t cell)
{
    const CellPoint p = m_triangulation.point(cell);
    for (auto triangle = static_cast<uint32_t>(m_triangulation.count()); triangle-- > 0;) {
        const CellTriangle &corners = m_triangulation.corners(triangle);
        const CellPoint a = m_triangulation.point(corners[0]);
        const CellPoint b = m_triangulation.point(corners[1]);
        const CellPoint c = m_triangulation.point(corners[2]);
        if (twiceArea(a, b, p) < 0 || twiceArea(b, c, p) < 0 || twiceArea(c, a, p) < 0)
            continue;
        m_triangulation.findCavity(cell, triangle);
        m_triangulation.fillCavity();
        return;
    }
}

int64_t FacetReducer::area(uint32_t triangle) const
{
    const CellTriangle &corners = m_triangulation.corners(triangle);
    return twiceArea(m_triangulation.point(corners[0]), m_triangulation.point(corners[1]),
                     m_triangulation.point(corners[2]));
}

FacetScan FacetReducer::scan(uint32_t triangle, int stride) const
{
    return scanFacet(m_grid, m_triangulation.corners(triangle), {m_toleranceCells, stride});
}

bool FacetReducer::exceeds(float error) const
{
    return static_cast<double>(error) > m_toleranceCells;
}

/// Scans a triangle's points again and sets its place in the heap: by its error while that is too
/// large, after all those while it spreads material, else it is not in the heap.
void FacetReducer::examine(uint32_t triangle)
{
    const int64_t twice = area(triangle);
    const int stride = strideFor(twice);
    FacetScan seen = scan(triangle, stride);
    if (stride > 1 && !exceeds(seen.error))
        seen = scan(triangle, 1);
    State &state = m_states[triangle];
    state = {seen.error, seen.candidate & cellBits, seen.anyHeight};
    if (exceeds(seen.error)) {
        m_heap.set(triangle, urgency(state));
        return;
    }
    if (!m_outline.isPlain() && seen.anyHeight && seen.anyEmpty) {
        if (const auto cell = m_outline.separator(m_triangulation.corners(triangle))) {
            state.candidate = *cell & cellBits;
            m_heap.set(triangle, static_cast<uint64_t>(std::min(twice, spreadLimit)));
            return;
        }
    }
    m_heap.remove(triangle);
}

/// The error alone while a limit decides which facets there are. Otherwise errors within a third of
/// each other are taken tile by tile, to and fro, so that the heights and triangles at work stay in
/// the cache; that costs hardly a facet.
uint64_t FacetReducer::urgency(const State &state) const
{
    constexpr int tileShift = 8;   // 256 x 256 cells
    constexpr int levelShift = 22; // two levels a power of two
    const auto error = std::bit_cast<uint32_t>(state.error);
    if (m_goal.facetLimit > 0)
        return static_cast<uint64_t>(error) << errorShift;
    const CellPoint p = m_triangulation.point(state.candidate);
    const auto across = static_cast<uint64_t>(p.x) >> tileShift;
    const auto down = static_cast<uint64_t>(p.y) >> tileShift;
    const uint64_t columns = (static_cast<uint64_t>(m_grid.width) >> tileShift) + 1;
    const uint64_t tile = down * columns + (down % 2 == 0 ? across : columns - 1 - across);
    const uint64_t level = (error >> levelShift) + 1;
    return level << 54 | (mostTiles - tile) << errorShift | error;
}

bool FacetReducer::refineOnce()
{
    if (m_heap.empty()) {
        finish(ReductionEnd::ToleranceMet);
        return false;
    }
    const uint32_t worst = m_heap.top();
    const Size removed = sizeOf(m_triangulation.findCavity(m_states[worst].candidate, worst));
    const Size kept{m_facets - removed.facets, m_border - removed.border};
    const uint64_t fanSize = m_triangulation.fanSize();
    // Every new triangle may become a facet with a wall on each of its two new sides.
    const uint64_t most = counted({kept.facets + fanSize, kept.border + 2 * fanSize});
    if (m_goal.facetLimit > 0 && most > m_goal.facetLimit) {
        finish(ReductionEnd::FacetLimit);
        return false;
    }
    if (m_triangulation.count() >= mostTriangles) {
        finish(ReductionEnd::MemoryLimit);
        return false;
    }
    const std::vector<uint32_t> &fan = m_triangulation.fillCavity();
    m_states.resize(m_triangulation.count());
    for (const uint32_t triangle : fan)
        examine(triangle);
    const Size added = sizeOf(fan);
    m_facets = kept.facets + added.facets;
    m_border = kept.border + added.border;
    return true;
}

/// The part of some triangles in the surface: their facets and the border edges at them.
FacetReducer::Size FacetReducer::sizeOf(const std::vector<uint32_t> &triangles) const
{
    Size size{0, 0};
    uint64_t halves = 0; // edges between two of the triangles are met twice
    for (const uint32_t triangle : triangles) {
        size.facets += m_states[triangle].counts;
        for (int edge = 0; edge < 3 && m_goal.solid; ++edge) {
            const uint32_t other = m_triangulation.neighbour(triangle, edge);
            const bool both = other != GridTriangulation::none && m_states[other].counts != 0;
            if (both == (m_states[triangle].counts != 0))
                continue;
            const bool within =
                std::find(triangles.begin(), triangles.end(), other) != triangles.end();
            halves += within ? 1 : 2;
        }
    }
    size.border = halves / 2;
    return size;
}

bool FacetReducer::step(std::chrono::milliseconds time)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + time;
    if (m_end == ReductionEnd::Running && m_states.empty())
        start();
    while (m_end == ReductionEnd::Running) {
        if (refineOnce() && Clock::now() >= deadline)
            break;
    }
    updateProgress();
    return m_end != ReductionEnd::Running;
}

void FacetReducer::finish(ReductionEnd end)
{
    m_end = end;
    for (uint32_t triangle = 0; triangle < m_states.size(); ++triangle) {
        float error = m_states[triangle].error;
        // Errors beyond the tolerance may have been seen through a sample of the points only.
        if (exceeds(error) && strideFor(area(triangle)) > 1)
            error = scan(triangle, 1).error;
        m_finalError = std::max(m_finalError, error);
    }
}

bool FacetReducer::isMeeting() const
{
    return m_heap.empty() || m_heap.topKey() >> errorShift == 0;
}

double FacetReducer::largestErrorInches() const
{
    if (m_end != ReductionEnd::Running)
        return static_cast<double>(m_finalError) * m_inchesPerCell;
    if (isMeeting())
        return m_goal.toleranceInches;
    return static_cast<double>(m_states[m_heap.top()].error) * m_inchesPerCell;
}

/// The number of facets grows by the same factor with every halving of the error, so that the
/// logarithm of the error measures the progress.
void FacetReducer::updateProgress()
{
    double done = 1.0;
    if (m_end == ReductionEnd::Running && !isMeeting()) {
        const double error = largestErrorInches();
        const double tolerance = m_goal.toleranceInches;
        m_firstError = std::max(m_firstError, error);
        done = 0.0;
        if (tolerance > 0.0 && m_firstError > tolerance)
            done = std::pow(std::log(m_firstError / error) / std::log(m_firstError / tolerance), 2);
        if (m_goal.facetLimit > 0)
            done = std::max(done,
                            static_cast<double>(m_facets) / static_cast<double>(m_goal.facetLimit));
    }
    m_progress = std::clamp(done, m_progress, 1.0);
}

std::vector<CellTriangle> FacetReducer::mesh() const
{
    std::vector<CellTriangle> facets;
    facets.reserve(m_facets);
    for (uint32_t triangle = 0; triangle < m_states.size(); ++triangle) {
        if (m_states[triangle].counts != 0)
            facets.push_back(m_triangulation.corners(triangle));
    }
    return facets;
}

} // namespace marlowen
