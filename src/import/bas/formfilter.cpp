#include "import/bas/formfilter.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace marlowen {
namespace {

/// Weights with which the planes of neighbouring windows are blended. They reach less far than the
/// windows, so that a window is never used for cells outside it.
constexpr int blendReach = 3;
constexpr std::array<float, 2 * blendReach + 1> blendWeights{1, 2, 3, 4, 3, 2, 1};

/// Adds one neighbour to a blend; `along` is the slope in the direction of the neighbour, which
/// lies `offset` nodes away.
CELL_LOOP void addNeighbour(const float *const *from, float *const *to, int offset, int count)
{
    const float k = blendWeights[static_cast<size_t>(offset + blendReach)];
    const float d = k * static_cast<float>(offset);
    for (int part : {Weight, Gain, SlopeX, SlopeY}) {
        const float *in = from[part];
        float *out = to[part];
#pragma omp simd
        for (int i = 0; i < count; ++i)
            out[i] += k * in[i];
    }
    const float *level = from[Level];
    const float *along = from[modelParts];
    float *out = to[Level];
#pragma omp simd
    for (int i = 0; i < count; ++i)
        out[i] += k * level[i] - d * along[i];
}

using RowPointers = std::array<float *, modelParts>;

RowPointers modelRow(NodeGrids &model, int y, int first)
{
    RowPointers rows;
    for (int part = 0; part < modelParts; ++part)
        rows[static_cast<size_t>(part)] = model.row(part, y) + first;
    return rows;
}

void blendAlongRows(NodeGrids &from, NodeGrids &to, int y)
{
    const RowPointers in = modelRow(from, y, 0);
    for (int part = 0; part < modelParts; ++part)
        std::fill_n(to.row(part, y), to.columns(), 0.0F);
    for (int offset = -blendReach; offset <= blendReach; ++offset) {
        const int first = std::max(0, -offset);
        const int count = to.columns() - std::abs(offset);
        if (count <= 0)
            continue;
        std::array<const float *, modelParts + 1> shifted;
        for (size_t part = 0; part < modelParts; ++part)
            shifted[part] = in[part] + first + offset;
        shifted[modelParts] = shifted[SlopeX];
        addNeighbour(shifted.data(), modelRow(to, y, first).data(), offset, count);
    }
}

void blendAlongColumns(NodeGrids &from, NodeGrids &to, int y)
{
    for (int part = 0; part < modelParts; ++part)
        std::fill_n(to.row(part, y), to.columns(), 0.0F);
    for (int offset = -blendReach; offset <= blendReach; ++offset) {
        if (y + offset < 0 || y + offset >= from.rows())
            continue;
        const RowPointers in = modelRow(from, y + offset, 0);
        std::array<const float *, modelParts + 1> rows;
        std::copy(in.begin(), in.end(), rows.begin());
        rows[modelParts] = rows[SlopeY];
        addNeighbour(rows.data(), modelRow(to, y, 0).data(), offset, to.columns());
    }
}

/// Two rows of nodes around a row of cells, with their shares and distances.
struct RowPair
{
    std::array<const float *, modelParts> a;
    std::array<const float *, modelParts> b;
    float shareA;
    float shareB;
    float distanceA;
    float distanceB;
};

CELL_LOOP void mixRows(const RowPair &pair, float *const *out, int count)
{
    const RowPair p = pair;
    for (int part : {Weight, Gain, SlopeX}) {
        const float *a = p.a[static_cast<size_t>(part)];
        const float *b = p.b[static_cast<size_t>(part)];
        float *to = out[part];
#pragma omp simd
        for (int i = 0; i < count; ++i)
            to[i] = p.shareA * a[i] + p.shareB * b[i];
    }
    float *level = out[Level];
#pragma omp simd
    for (int i = 0; i < count; ++i)
        level[i] = p.shareA * (p.a[Level][i] + p.distanceA * p.a[SlopeY][i]) +
                   p.shareB * (p.b[Level][i] + p.distanceB * p.b[SlopeY][i]);
}

/// Gain and level of the cells that lie `share` of the way from each node to the next one.
CELL_LOOP void mixColumns(const float *const *mixed, float share, float *const *out, int count)
{
    const float *weight = mixed[Weight];
    const float *gain = mixed[Gain];
    const float *level = mixed[Level];
    const float *slope = mixed[SlopeX];
    const float here = 1.0F - share;
    const float there = share;
    float *gains = out[0];
    float *levels = out[1];
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const float w = here * weight[i] + there * weight[i + 1];
        const float per = 1.0F / (w > 0.0F ? w : 1.0F);
        gains[i] = (here * gain[i] + there * gain[i + 1]) * per;
        levels[i] =
            (here * (level[i] + share * slope[i]) + there * (level[i + 1] - here * slope[i + 1])) *
            per;
    }
}

struct FormRow
{
    const float *heights;
    const uint8_t *filled;
    const float *gains;
    const float *levels;
};

CELL_LOOP void applyModel(const FormRow &row, float *form, int count)
{
    const FormRow r = row;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float value = r.gains[x] * r.heights[x] + r.levels[x];
        form[x] = r.filled[x] ? value : 0.0F;
    }
}

/// Interpolates a row of cells between nodes.
class CellRow
{
public:
    CellRow(const NodeGrids &model, int spacing)
        : m_model(model)
        , m_spacing(spacing)
        , m_nodes(model.columns() + 2)
        , m_mixed(static_cast<size_t>(m_nodes * modelParts))
        , m_phase(static_cast<size_t>(m_nodes * 2))
        , m_gains(static_cast<size_t>(model.columns() * spacing))
        , m_levels(m_gains.size())
    {
    }

    const float *gains() const { return m_gains.data(); }
    const float *levels() const { return m_levels.data(); }

    void compute(int y)
    {
        _mixAt((static_cast<float>(y) + 0.5F) / static_cast<float>(m_spacing) - 0.5F);
        for (int phase = 0; phase < m_spacing; ++phase)
            _computePhase(phase);
    }

private:
    float *_mixed(int part) { return m_mixed.data() + part * m_nodes; }

    void _mixAt(float place)
    {
        const int above = static_cast<int>(std::floor(place));
        const int last = m_model.rows() - 1;
        const int a = std::clamp(above, 0, last);
        const int b = std::clamp(above + 1, 0, last);
        const float share = place - static_cast<float>(above);
        RowPair pair{{},
                     {},
                     1.0F - share,
                     share,
                     place - static_cast<float>(a),
                     place - static_cast<float>(b)};
        std::array<float *, modelParts> out;
        for (int part = 0; part < modelParts; ++part) {
            pair.a[static_cast<size_t>(part)] = m_model.row(part, a);
            pair.b[static_cast<size_t>(part)] = m_model.row(part, b);
            out[static_cast<size_t>(part)] = _mixed(part) + 1;
        }
        mixRows(pair, out.data(), m_model.columns());
        _extendEnds();
    }

    /// A node beyond each end, on the plane of the last one.
    void _extendEnds()
    {
        const int end = m_nodes - 1;
        for (int part : {Weight, Gain, SlopeX}) {
            _mixed(part)[0] = _mixed(part)[1];
            _mixed(part)[end] = _mixed(part)[end - 1];
        }
        _mixed(Level)[0] = _mixed(Level)[1] - _mixed(SlopeX)[1];
        _mixed(Level)[end] = _mixed(Level)[end - 1] + _mixed(SlopeX)[end - 1];
    }

    void _computePhase(int phase)
    {
        const float place =
            (static_cast<float>(phase) + 0.5F) / static_cast<float>(m_spacing) - 0.5F;
        const int first = place < 0.0F ? 0 : 1;
        const std::array<const float *, modelParts> from{
            _mixed(Weight) + first, _mixed(Gain) + first, _mixed(Level) + first,
            _mixed(SlopeX) + first};
        const std::array<float *, 2> out{m_phase.data(), m_phase.data() + m_nodes};
        const int count = m_model.columns();
        mixColumns(from.data(), place < 0.0F ? place + 1.0F : place, out.data(), count);
        for (int i = 0; i < count; ++i) {
            const size_t cell = static_cast<size_t>(i * m_spacing + phase);
            m_gains[cell] = out[0][i];
            m_levels[cell] = out[1][i];
        }
    }

    const NodeGrids &m_model;
    int m_spacing;
    int m_nodes;
    std::vector<float> m_mixed;
    std::vector<float> m_phase;
    std::vector<float> m_gains;
    std::vector<float> m_levels;
};

bool blend(NodeGrids &model, NodeGrids &scratch, WorkMeter &meter)
{
    const auto along = [&](int first, int end) {
        for (int y = first; y < end; ++y)
            blendAlongRows(model, scratch, y);
    };
    const auto across = [&](int first, int end) {
        for (int y = first; y < end; ++y)
            blendAlongColumns(scratch, model, y);
    };
    return meter.rows(model.rows(), model.columns(), along) &&
           meter.rows(model.rows(), model.columns(), across);
}

/// The blended models over the nodes, or nothing when the user cancelled.
std::optional<NodeGrids> blendedModel(const FilledHeights &input, float threshold, WorkMeter &meter)
{
    const int columns = (input.heights.width + input.spacing - 1) / input.spacing;
    const int rows = (input.heights.height + input.spacing - 1) / input.spacing;
    NodeGrids sums(columns, rows, planeSums);
    NodeGrids model(columns, rows, modelParts);
    if (!sumRows(input, sums, meter) || !fitPlanes(sums, threshold, model, meter) ||
        !blend(model, sums, meter))
        return std::nullopt;
    return model;
}

} // namespace

bool formOf(const FilledHeights &input, float threshold, FloatGrid &form, WorkMeter &meter)
{
    const std::optional<NodeGrids> model = blendedModel(input, threshold, meter);
    if (!model)
        return false;
    const int width = input.heights.width;
    return meter.rows(input.heights.height, width, [&](int first, int end) {
        CellRow cells(*model, input.spacing);
        for (int y = first; y < end; ++y) {
            cells.compute(y);
            applyModel({input.heights.row(y),
                        input.filled.data() + static_cast<size_t>(y) * input.heights.columns(),
                        cells.gains(), cells.levels()},
                       form.row(y), width);
        }
    });
}

} // namespace marlowen
