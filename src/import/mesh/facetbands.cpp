#include "import/mesh/facetbands.h"

#include "base/workmeter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

namespace marlowen {

namespace {

/// Triangles that are sorted and drawn together, so that sorting takes little memory.
constexpr size_t mostTriangles = size_t{1} << 22;
/// The first of them; how many follow depends on what these cost.
constexpr size_t firstTriangles = size_t{1} << 19;
/// What drawing these may cost in the bands that a core takes at a time, see findRows(): so little
/// that "Cancel" works promptly, and that the lists stay short.
constexpr double mostCost = 1e8;
/// Triangles that one core sorts at a time: so few that they often lie near each other.
constexpr size_t pieceTriangles = 1024;
/// A band is high beside most triangles, and its part of a large grid lies in the cache of a core.
constexpr int leastBandShift = 6;
/// Triangles of few rows are drawn as a whole and may reach from one band into the next, which is
/// not drawn at the same time, but not beyond it.
static_assert((1 << leastBandShift) >= mostRowsAtOnce);
constexpr int mostBands = 128;
/// Bands that a core takes at a time, so that the large pages of a fresh grid are drawn into soon
/// after the system has cleared them; fewer where there are few bands.
constexpr int mostBandsTogether = 4;
/// Cells to which sorting a triangle compares.
constexpr qsizetype sortingCells = 16;

/// Shows the share of the triangles that are drawn: cells are no measure before all are known.
class TriangleProgress : public Progress
{
public:
    explicit TriangleProgress(Progress &whole)
        : m_whole(whole)
    {
    }
    void advance(double) override { m_whole.advance(share); }
    bool cancelled() const override { return m_whole.cancelled(); }

    double share = 0.0;

private:
    Progress &m_whole;
};

/// How a grid is cut into bands of rows.
struct Bands
{
    explicit Bands(const FacetGrid &whole)
        : grid(whole)
    {
        const auto enough = [this](int most) { return of(grid.rows - 1) < most; };
        while (!enough(grid.columns < fewestColumnsOfBands ? 1 : mostBands))
            ++shift;
        count = of(grid.rows - 1) + 1;
        together = count < 8 * mostBandsTogether ? 2 : mostBandsTogether;
    }

    int of(int row) const { return row >> shift; }
    RowReach of(const RowReach &reach) const { return {of(reach.first), of(reach.last)}; }

    FacetGrid band(int index) const
    {
        FacetGrid result = grid;
        result.firstRow = index << shift;
        result.endRow = std::min(grid.rows, (index + 1) << shift);
        return result;
    }

    FacetGrid grid;
    int shift = leastBandShift; ///< a band has 2^shift rows
    int count = 0;
    int together; ///< bands that a core takes at a time
};

/// Numbers of triangles, band by band.
class BandLists
{
public:
    /// Of triangles from number `first` on: wanted(reach) tells in which bands one is listed, all
    /// among `bands`.
    template <typename Wanted>
    void sort(std::span<const RowReach> reaches, quint32 first, const RowReach &bands,
              Wanted wanted);
    void clear() { m_count = 0; }
    std::span<const quint32> of(int band) const
    {
        const auto index = static_cast<size_t>(band - m_first);
        if (band < m_first || index >= m_count)
            return {};
        return {m_numbers.data() + m_starts[index], m_numbers.data() + m_starts[index + 1]};
    }

private:
    int m_first = 0;
    size_t m_count = 0; ///< bands
    std::vector<quint32> m_starts;
    std::vector<quint32> m_numbers;
};

template <typename Wanted>
void BandLists::sort(std::span<const RowReach> reaches, quint32 first, const RowReach &bands,
                     Wanted wanted)
{
    m_first = bands.first;
    m_count = static_cast<size_t>(bands.last) + 1 - static_cast<size_t>(bands.first);
    m_starts.assign(m_count + 2, 0);
    const auto each = [&](auto visit) {
        for (size_t i = 0; i < reaches.size(); ++i) {
            const RowReach found = wanted(reaches[i]);
            for (int band = found.first; band <= found.last; ++band)
                visit(static_cast<size_t>(band - bands.first), first + static_cast<quint32>(i));
        }
    };
    each([this](size_t band, quint32) { ++m_starts[band + 2]; });
    std::partial_sum(m_starts.begin(), m_starts.end(), m_starts.begin());
    m_numbers.resize(m_starts.back());
    // Each start moves on to the next band's while the numbers are put down.
    each([this](size_t band, quint32 number) { m_numbers[m_starts[band + 1]++] = number; });
}

/// Some triangles in a row, sorted by the bands that they reach.
class Piece
{
public:
    void sort(const TriangleMesh &mesh, std::span<const quint32, 2> range,
              const CellPlacement &placement, const Bands &bands);
    double cost() const { return m_cost; }
    /// The band with which all triangles are drawn, as none reaches beyond the next one; -1 when
    /// they were sorted one by one.
    int onlyBand() const { return m_onlyBand; }
    /// Draws the triangles that begin in a band and of those that are higher the part in it.
    void draw(const TriangleMesh &mesh, const CellPlacement &placement, const Bands &bands,
              int band) const;

private:
    BandLists m_low;
    BandLists m_tall;
    std::array<quint32, 2> m_range{};
    double m_cost = 0.0;
    int m_onlyBand = -1;
};

RowReach reachOfAll(std::span<const RowReach> reaches)
{
    RowReach all = reaches.front();
    for (const RowReach &reach : reaches)
        all = {std::min(all.first, reach.first), std::max(all.last, reach.last)};
    return all;
}

void Piece::sort(const TriangleMesh &mesh, std::span<const quint32, 2> range,
                 const CellPlacement &placement, const Bands &bands)
{
    std::array<RowReach, pieceTriangles> all;
    const std::span<RowReach> reaches(all.data(), range[1] - range[0]);
    m_cost = findRows(mesh, range[0], placement, bands.grid, reaches);
    const RowReach rows = reachOfAll(reaches);
    // Drawing may read cells of the row behind the last.
    const RowReach reached = bands.of({rows.first, std::min(rows.last + 1, bands.grid.rows - 1)});
    m_onlyBand = reached.last <= reached.first + 1 ? reached.first : -1;
    m_range = {range[0], range[1]};
    m_low.clear();
    m_tall.clear();
    if (m_onlyBand >= 0)
        return;
    if (m_cost > mostCost && reaches.size() > 1)
        return; // too much for one time; there is no telling how long the lists would be
    const auto isLow = [](const RowReach &reach) {
        return reach.last - reach.first < mostRowsAtOnce;
    };
    m_low.sort(reaches, range[0], reached, [&](const RowReach &reach) {
        const int band = bands.of(reach.first);
        return isLow(reach) ? RowReach{band, band} : RowReach{0, -1};
    });
    m_tall.sort(reaches, range[0], reached, [&](const RowReach &reach) {
        return isLow(reach) ? RowReach{0, -1} : bands.of(reach);
    });
}

void Piece::draw(const TriangleMesh &mesh, const CellPlacement &placement, const Bands &bands,
                 int band) const
{
    const DrawFacets drawFacets = drawFacetsHere().back();
    if (m_onlyBand == band) {
        std::array<quint32, pieceTriangles> all;
        const std::span<quint32> numbers(all.data(), m_range[1] - m_range[0]);
        std::iota(numbers.begin(), numbers.end(), m_range[0]);
        drawFacets(mesh, numbers, placement, bands.grid);
        return;
    }
    drawFacets(mesh, m_low.of(band), placement, bands.grid);
    drawFacets(mesh, m_tall.of(band), placement, bands.band(band));
}

class MeshDrawing
{
public:
    MeshDrawing(const TriangleMesh &mesh, const CellPlacement &placement, const FacetGrid &grid,
                Progress &progress)
        : m_mesh(mesh)
        , m_placement(placement)
        , m_bands(grid)
        , m_progress(progress)
        , m_meter(m_progress, 1.0)
    {
    }

    bool draw()
    {
        const size_t all = m_mesh.triangles.size();
        size_t wanted = firstTriangles;
        for (size_t next = 0; next < all;) {
            size_t count = std::min(wanted, all - next);
            if (!_sort(next, count))
                return false;
            if (m_bandCost > mostCost && count > 1) {
                wanted = _fewer(count);
                continue;
            }
            if (!_drawBands(0, m_bands.together - 1) || !_drawBands(m_bands.together - 1, 1))
                return false;
            m_fresh = false;
            next += count;
            wanted = _next(count);
            m_progress.share = static_cast<double>(next) / static_cast<double>(all);
        }
        m_progress.advance(1.0);
        return true;
    }

private:
    bool _sort(size_t first, size_t count);
    void _addCosts();
    /// Some of the bands that a core takes at a time, and not those next to them, so that what
    /// reaches into the next band is met by no other core.
    bool _drawBands(int first, int count);
    /// To every page of the bands that a core takes at a time. Drawing reads a cell before it
    /// writes it; of a fresh page that is read first the system shows its shared page of zeros, and
    /// the write then costs a second fault and a message to all cores.
    void _writeZeros(int firstBand) const;
    /// Equal shares that cost little enough, if all triangles are alike.
    size_t _fewer(size_t count) const
    {
        const double share = static_cast<double>(count) / std::ceil(m_bandCost / mostCost);
        return std::clamp<size_t>(static_cast<size_t>(std::ceil(share)), 1, count - 1);
    }

    /// As many as cost a little less than they may, if the next ones are like these.
    size_t _next(size_t count) const
    {
        const double most = 0.8 * static_cast<double>(count) * mostCost / m_bandCost;
        return static_cast<size_t>(std::clamp(most, 1.0, static_cast<double>(mostTriangles)));
    }

    const TriangleMesh &m_mesh;
    const CellPlacement &m_placement;
    Bands m_bands;
    TriangleProgress m_progress;
    WorkMeter m_meter;
    std::vector<Piece> m_pieces;
    bool m_fresh = true; ///< nothing is drawn yet
    double m_cost = 0.0;
    double m_bandCost = 0.0; ///< most that lies in the bands of a core
};

bool MeshDrawing::_sort(size_t first, size_t count)
{
    m_pieces.resize((count + pieceTriangles - 1) / pieceTriangles);
    const bool whole = m_meter.rows(
        static_cast<int>(m_pieces.size()), sortingCells * pieceTriangles, [&](int piece, int end) {
            for (; piece < end; ++piece) {
                const size_t start = static_cast<size_t>(piece) * pieceTriangles;
                const std::array<quint32, 2> range{
                    static_cast<quint32>(first + start),
                    static_cast<quint32>(first + std::min(count, start + pieceTriangles))};
                m_pieces[static_cast<size_t>(piece)].sort(m_mesh, range, m_placement, m_bands);
            }
        });
    _addCosts();
    return whole;
}

void MeshDrawing::_addCosts()
{
    // What was sorted one by one may lie in any band.
    double anywhere = 0.0;
    m_cost = 0.0;
    std::vector<double> costs(static_cast<size_t>(m_bands.count), 0.0);
    for (const Piece &piece : m_pieces) {
        const int band = piece.onlyBand();
        (band < 0 ? anywhere : costs[static_cast<size_t>(band / m_bands.together)]) += piece.cost();
        m_cost += piece.cost();
    }
    m_bandCost = anywhere + *std::max_element(costs.begin(), costs.end());
}

bool MeshDrawing::_drawBands(int first, int count)
{
    const int together = m_bands.together;
    const int groups = (m_bands.count + together - 1) / together;
    const auto cells = static_cast<qsizetype>(m_cost * count / m_bands.count);
    return m_meter.rows(groups, cells, [=, this](int group, int end) {
        for (; group < end; ++group) {
            const int firstBand = group * together + first;
            const int endBand = std::min(firstBand + count, m_bands.count);
            if (m_fresh && first == 0)
                _writeZeros(firstBand);
            for (int band = firstBand; band < endBand; ++band) {
                for (const Piece &piece : m_pieces)
                    piece.draw(m_mesh, m_placement, m_bands, band);
            }
        }
    });
}

void MeshDrawing::_writeZeros(int firstBand) const
{
    constexpr size_t pageFloats = 4096 / sizeof(float);
    const FacetGrid &grid = m_bands.grid;
    const int lastBand = std::min(firstBand + m_bands.together, m_bands.count) - 1;
    const auto columns = static_cast<size_t>(grid.columns);
    const size_t end = static_cast<size_t>(m_bands.band(lastBand).endRow) * columns;
    size_t cell = static_cast<size_t>(m_bands.band(firstBand).firstRow) * columns;
    for (; cell < end; cell += pageFloats)
        grid.values[cell] = 0.0F;
}

} // namespace

bool drawMesh(const TriangleMesh &mesh, const CellPlacement &placement, const FacetGrid &grid,
              Progress &progress)
{
    return MeshDrawing(mesh, placement, grid, progress).draw();
}

} // namespace marlowen
