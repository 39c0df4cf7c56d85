#include "relief/operations/placement.h"

#include "base/rowsharing.h"
#include "relief/grid/cellcode.h"
#include "relief/history/undoevents.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace marlowen {

namespace {

using P = Placement;

// clang-format off
constexpr Field<P> rows[] = {
    {&P::angle,
     {.key = "angle", .label = QT_TRANSLATE_NOOP("Fields", "Angle"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Turns the pattern, counter-clockwise."),
      .range = {-3600, 3600},
      .control = {.minimum = -180, .maximum = 180, .step = 1, .pageStep = 15, .decimals = 1, .unit = "°"}}},
    {&P::scale,
     {.key = "scale", .label = QT_TRANSLATE_NOOP("Fields", "Scale"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Makes the pattern larger or smaller in all directions, its height too."),
      .range = {0.001, 1000},
      .control = {.minimum = 5, .maximum = 400, .step = 1, .pageStep = 10, .decimals = 1, .unit = " %", .scale = percentScale}}},
    {&P::join,
     {.key = "join", .label = QT_TRANSLATE_NOOP("Fields", "Join"),
      .hint = QT_TRANSLATE_NOOP("Fields", "How the pattern combines with the heights under it."),
      .range = {0, 4}, .choices = "Add|Subtract|Highest|Lowest|Replace", .anyCase = true}},
    {&P::strength,
     {.key = "strength", .label = QT_TRANSLATE_NOOP("Fields", "Strength"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Share of the change that is made."),
      .range = {0, 1}, .control = {.maximum = 100, .unit = " %", .scale = percentScale}}},
    {&P::softEdge,
     {.key = "softEdge", .label = QT_TRANSLATE_NOOP("Fields", "Soft Edge"),
      .hint = QT_TRANSLATE_NOOP("Fields", "Fades the pattern toward its outline, over this share of the distance to its middle."),
      .range = {0, 1}, .control = {.maximum = 100, .unit = " %", .scale = percentScale}}},
};
// clang-format on

constexpr qsizetype fewestShared = 100000; ///< cells that are worth waking other threads for
constexpr float fullyInside = 1e-3F;       ///< share of the soft edge that counts as none

/// The way from a relief cell into one level of a pattern: column and row of the level, its rim
/// included, where the centres of cells have whole numbers.
struct Mapping
{
    double column;      ///< of the relief's cell (0, 0)
    double row;         ///<
    double alongColumn; ///< change of the level's column at a step to the next relief column
    double alongRow;    ///< and to its row
};

/// The input of the loop over the cells of a row.
struct Sampler
{
    const float *heights;
    const float *distance;
    int width; ///< of the level with its rim
    float zFactor;
    float strength;
    float perSoftCell; ///< 1 / cells of the soft edge; large for none
};

/// A piece of a row of the relief under the pattern.
struct Piece
{
    int count;
    float column; ///< in the level, of the first cell
    float row;
    float alongColumn;
    float alongRow;
};

/// The level to sample: the cells of the level are not much smaller than those of the relief.
size_t levelFor(const PlacedPattern &pattern, double scale)
{
    const auto finer = static_cast<size_t>(std::max(0.0, std::floor(std::log2(1.0 / scale))));
    return std::min(finer, pattern.levels().size() - 1);
}

Mapping mappingOf(const PlacedPattern &pattern, const Placement &placement, size_t level)
{
    const double cell = std::ldexp(1.0, static_cast<int>(level));
    const double angle = placement.angle * std::numbers::pi / 180.0;
    const double across = std::cos(angle) / (placement.scale * cell);
    const double up = std::sin(angle) / (placement.scale * cell);
    const double dx = 0.5 - placement.centre.x();
    const double dy = 0.5 - placement.centre.y();
    // Of the first cell inside the rim, whose centre is half a cell in.
    constexpr double rim = 2.0;
    return {across * dx + up * dy + pattern.width() / cell / 2.0 - 0.5 + rim,
            across * dy - up * dx + pattern.height() / cell / 2.0 - 0.5 + rim, across, -up};
}

/// Steps of a straight line, from `first` up to but not including `last`, at which it lies within
/// [0, length).
struct Steps
{
    int first;
    int last;
};

Steps stepsWithin(double from, double step, double length, Steps all)
{
    if (std::abs(step) < 1e-12)
        return from >= 0.0 && from < length ? all : Steps{0, 0};
    const double one = -from / step;
    const double other = (length - from) / step;
    const double low = std::clamp(std::ceil(std::min(one, other)), -1e9, 1e9);
    const double high = std::clamp(std::floor(std::max(one, other)), -1e9, 1e9);
    return {std::max(all.first, static_cast<int>(low)),
            std::min(all.last, static_cast<int>(high) + 1)};
}

/// Interpolated heights of the pattern, and the share of the change at each cell, 0 outside.
CELL_LOOP void sample(const Sampler &pattern, const Piece &piece, float *heights, float *weights)
{
    const Sampler from = pattern;
    const Piece along = piece;
#pragma omp simd
    for (int i = 0; i < along.count; ++i) {
        const float column = along.column + static_cast<float>(i) * along.alongColumn;
        const float row = along.row + static_cast<float>(i) * along.alongRow;
        const int left = static_cast<int>(column);
        const int below = static_cast<int>(row);
        const float x = column - static_cast<float>(left);
        const float y = row - static_cast<float>(below);
        const int cell = below * from.width + left;
        const auto between = [&](const float *values) __attribute__((always_inline))
        {
            const float low = values[cell] + x * (values[cell + 1] - values[cell]);
            const int over = cell + from.width;
            const float high = values[over] + x * (values[over + 1] - values[over]);
            return low + y * (high - low);
        };
        heights[i] = between(from.heights) * from.zFactor;
        const float inside = between(from.distance);
        const float share = std::min(inside * from.perSoftCell, 1.0F);
        const float fading = share * share * (3.0F - 2.0F * share);
        weights[i] = inside > 0.0F ? fading * from.strength : 0.0F;
    }
}

CELL_LOOP void dropUnselected(float *weights, const float *selection, int count)
{
    for (int i = 0; i < count; ++i)
        weights[i] = selection[i] != 0.0F ? weights[i] : 0.0F;
}

CELL_LOOP void dropMasked(float *weights, const float *mask, int count)
{
    for (int i = 0; i < count; ++i)
        weights[i] *= 1.0F - mask[i];
}

/// One run of cells to be changed.
struct Run
{
    float *heights;
    const float *pattern;
    const float *weights;
    int count;
};

/// The whole change where the weight is 1, exactly; heights stay finite and not negative.
template <typename Join>
CELL_INLINE inline void joinCells(const Run &run, const Join &join)
{
    constexpr float highest = std::numeric_limits<float>::max();
    const Run cells = run;
#pragma omp simd
    for (int i = 0; i < cells.count; ++i) {
        const float before = cells.heights[i];
        const float whole = join(before, cells.pattern[i]);
        const float weight = cells.weights[i];
        const float part = before + weight * (whole - before);
        const float after = weight >= 1.0F ? whole : part;
        const float stored = std::min(std::max(after, 0.0F), highest);
        cells.heights[i] = weight > 0.0F ? stored : before;
    }
}

CELL_LOOP void addCells(const Run &run)
{
    joinCells(run, [](float before, float pattern) { return before + pattern; });
}
CELL_LOOP void subtractCells(const Run &run)
{
    joinCells(run, [](float before, float pattern) { return before - pattern; });
}
CELL_LOOP void highestCells(const Run &run)
{
    joinCells(run, [](float before, float pattern) { return std::max(before, pattern); });
}
CELL_LOOP void lowestCells(const Run &run)
{
    joinCells(run, [](float before, float pattern) { return std::min(before, pattern); });
}
CELL_LOOP void replaceCells(const Run &run)
{
    joinCells(run, [](float, float pattern) { return pattern; });
}

/// In the order of PlaceJoin.
constexpr void (*joins[])(const Run &) = {addCells, subtractCells, highestCells, lowestCells,
                                          replaceCells};

/// The pattern along a run of cells; of one thread.
struct Samples
{
    std::vector<float> heights;
    std::vector<float> weights;
};

/// One pattern on one relief. Rows can be changed by several threads at a time.
class Placing
{
public:
    Placing(Relief &relief, const PlacedPattern &pattern, const Placement &placement)
        : m_relief(relief)
        , m_level(pattern.levels()[levelFor(pattern, placement.scale)])
        , m_map(mappingOf(pattern, placement, levelFor(pattern, placement.scale)))
        , m_join(joins[placement.join])
        , m_cells(relief.heights().data())
        , m_sampler{m_level.heights.values.data(),
                    m_level.distance.values.data(),
                    m_level.heights.width,
                    0.0F,
                    static_cast<float>(placement.strength),
                    0.0F}
    {
        const double zRatio = relief.zScale != 0.0 ? std::abs(pattern.zScale() / relief.zScale) : 0;
        const double factor = placement.scale * zRatio;
        m_sampler.zFactor = std::isfinite(factor) ? static_cast<float>(std::min(factor, 1e30)) : 0;
        const double cell = std::ldexp(1.0, static_cast<int>(levelFor(pattern, placement.scale)));
        const double half = std::min(pattern.width(), pattern.height()) / cell / 2.0;
        const auto soft = static_cast<float>(placement.softEdge * half);
        m_sampler.perSoftCell =
            soft > fullyInside ? 1.0F / soft : std::numeric_limits<float>::max();
    }

    void changeRow(int row, Steps columns, Samples &samples) const
    {
        const double column0 = m_map.column - row * m_map.alongRow;
        const double row0 = m_map.row + row * m_map.alongColumn;
        columns = stepsWithin(column0, m_map.alongColumn, m_level.heights.width - 1, columns);
        columns = stepsWithin(row0, m_map.alongRow, m_level.heights.height - 1, columns);
        // Rounding must not lead beyond the rim, whose outer cells count for nothing.
        while (columns.first < columns.last && !_isWithin(column0, row0, columns.first))
            ++columns.first;
        while (columns.first < columns.last && !_isWithin(column0, row0, columns.last - 1))
            --columns.last;
        if (columns.first < columns.last)
            _change(row, columns, {column0, row0, 0.0, 0.0}, samples);
    }

private:
    bool _isWithin(double column0, double row0, int step) const
    {
        constexpr double margin = 0.25;
        const double column = column0 + step * m_map.alongColumn;
        const double row = row0 + step * m_map.alongRow;
        return column >= margin && row >= margin && column < m_level.heights.width - 1 - margin &&
               row < m_level.heights.height - 1 - margin;
    }

    void _change(int row, Steps columns, const Mapping &start, Samples &samples) const
    {
        const int count = columns.last - columns.first;
        const auto size = static_cast<size_t>(count);
        samples.heights.resize(std::max(samples.heights.size(), size));
        samples.weights.resize(std::max(samples.weights.size(), size));
        float *heights = samples.heights.data();
        float *weights = samples.weights.data();
        const Piece piece{
            count, static_cast<float>(start.column + columns.first * m_map.alongColumn),
            static_cast<float>(start.row + columns.first * m_map.alongRow),
            static_cast<float>(m_map.alongColumn), static_cast<float>(m_map.alongRow)};
        sample(m_sampler, piece, heights, weights);
        const qsizetype cell = m_relief.index(columns.first, row);
        if (m_relief.selectionActive)
            dropUnselected(weights, m_relief.selectionLayer().constData() + cell, count);
        if (m_relief.maskLayer().written())
            dropMasked(weights, m_relief.maskLayer().constData() + cell, count);
        m_join({m_cells + cell, heights, weights, count});
    }

    const Relief &m_relief;
    const PlacedPattern::Level &m_level;
    Mapping m_map;
    void (*m_join)(const Run &);
    float *m_cells;
    Sampler m_sampler;
};

} // namespace

FieldTable<Placement> placementFields()
{
    return rows;
}

QRect placementBox(const PlacedPattern &pattern, const Placement &placement, QSize relief)
{
    const double angle = placement.angle * std::numbers::pi / 180.0;
    const double across = std::abs(std::cos(angle)) * placement.scale / 2.0;
    const double up = std::abs(std::sin(angle)) * placement.scale / 2.0;
    const double halfWidth = across * pattern.width() + up * pattern.height() + 1.0;
    const double halfHeight = up * pattern.width() + across * pattern.height() + 1.0;
    const auto cell = [](double at, int length) {
        return static_cast<int>(std::floor(std::clamp(at, 0.0, static_cast<double>(length))));
    };
    const QPointF centre = placement.centre;
    const QPoint low(cell(centre.x() - halfWidth, relief.width()),
                     cell(centre.y() - halfHeight, relief.height()));
    const QPoint beyond(cell(centre.x() + halfWidth + 1.0, relief.width()),
                        cell(centre.y() + halfHeight + 1.0, relief.height()));
    return {low, beyond - QPoint(1, 1)};
}

void placePattern(Relief &relief, const PlacedPattern &pattern, const Placement &placement,
                  const EditRun &run)
{
    const QRect box = placementBox(pattern, placement, {relief.width(), relief.height()});
    if (relief.tool() || box.isEmpty() || placement.strength <= 0.0)
        return;
    Patch before = run.undo ? copyPatch(relief.heights(), relief.width(), box) : Patch();
    const Placing placing(relief, pattern, placement);
    Borrowed<Samples> borrowed;
    constexpr int bandRows = 16;
    const bool small = box.width() * qsizetype(box.height()) < fewestShared;
    shareRows({box.height(), bandRows, small}, [&](int first, int end) {
        std::unique_ptr<Samples> samples = borrowed.take();
        for (int row = first; row < end; ++row)
            placing.changeRow(box.top() + row, {box.left(), box.right() + 1}, *samples);
        borrowed.giveBack(std::move(samples));
    });
    relief.frameRegion += box;
    relief.heightsChanged = true;
    if (!run.undo)
        return;
    auto event = std::make_unique<SculptModifyEvent>(relief, std::move(before));
    if (!run.isPreview)
        event->complete();
    run.undo->push(std::move(event));
    if (run.closeGroup)
        run.undo->markGroupEnd();
}

Operation placeOperation(std::shared_ptr<const PlacedPattern> pattern, const Placement &placement)
{
    return {QStringLiteral("Place Pattern"), [=](Relief &relief, const EditRun &run) {
                placePattern(relief, *pattern, placement, run);
                return Outcome();
            }};
}

} // namespace marlowen
