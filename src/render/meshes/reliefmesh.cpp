#include "render/meshes/reliefmesh.h"
#include "relief/grid/cellcode.h"

#include "relief/grid/relief.h"

#include <algorithm>

namespace marlowen {

#ifndef __clang__
#pragma GCC optimize("O3")
#endif

namespace {

constexpr uint32_t stripEnd = 0xFFFFFFFF;
/// Columns and rows a vertex of the meshes that can be drawn.
constexpr int levelSteps[] = {1, 2, 3, 4, 5, 6, 8, 12};

// Indices of the grid lines origin + k * step, 0 <= k < count, that lie in low..high.
struct LineSpan
{
    int first;
    int last;
};

LineSpan linesIn(int low, int high, int origin, int step)
{
    return {stepsOver(low - origin, step), (high - origin) / step};
}

// One run of vertices: the three cell rows around it and where it writes.
struct VertexRun
{
    const float *above;
    const float *row;
    const float *below;
    int column; ///< of the first vertex
    int step;
    int count;
    float halfWidth;
    float y;
    float scale;
    float *position;
    float *normal;
};

struct Neighbours
{
    float left;
    float right;
    float above;
    float below;
    float aboveLeft;
    float belowRight;
};

inline void writeNormal(const Neighbours &n, float sixth, float *normal)
{
    const float diagonal = n.aboveLeft - n.belowRight;
    normal[0] = sixth * (2.0F * (n.left - n.right) + diagonal + n.below - n.above);
    normal[1] = sixth * (2.0F * (n.above - n.below) + diagonal + n.right - n.left);
    normal[2] = 1.0F;
}

inline void writePosition(const VertexRun &run, int i, int column)
{
    run.position[3 * i] = static_cast<float>(column) - run.halfWidth;
    run.position[3 * i + 1] = run.y;
    run.position[3 * i + 2] = run.row[column] * run.scale;
}

// All cells of the run have a left and a right neighbour.
CELL_LOOP void writeEveryCell(const VertexRun &run)
{
    const float sixth = run.scale / 6.0F;
    for (int i = 0; i < run.count; ++i) {
        const int c = run.column + i;
        writePosition(run, i, c);
        writeNormal({run.row[c - 1], run.row[c + 1], run.above[c], run.below[c], run.above[c - 1],
                     run.below[c + 1]},
                    sixth, run.normal + 3 * i);
    }
}

// First and last of the `step` cells around one, not beyond 0..size - 1.
struct Block
{
    Block(int cell, int step, int size)
        : first(std::max(cell - step / 2, 0))
        , last(std::min(cell - step / 2 + step - 1, size - 1))
    {
    }

    int first;
    int last;
};

// The mean slopes of a block follow from the cells along its border: those between cancel out.
class BlockSlopes
{
public:
    BlockSlopes(const Relief &relief, const VertexRun &run)
        : m_heights(heightView(relief))
        , m_step(run.step)
        , m_scale(run.scale)
    {
    }

    void write(int column, int row, float *normal) const
    {
        const Block c(column, m_step, m_heights.width);
        const Block r(row, m_step, m_heights.height);
        const float cells = static_cast<float>((c.last - c.first + 1) * (r.last - r.first + 1));
        float alongX = 0.0F;
        for (int y = r.first; y <= r.last; ++y)
            alongX +=
                fall(cell(c.first - 1, y), cell(c.first, y), cell(c.last, y), cell(c.last + 1, y));
        float alongY = 0.0F;
        for (int x = c.first; x <= c.last; ++x)
            alongY +=
                fall(cell(x, r.first - 1), cell(x, r.first), cell(x, r.last), cell(x, r.last + 1));
        normal[0] = alongX * m_scale / (2.0F * cells);
        normal[1] = alongY * m_scale / (2.0F * cells);
        normal[2] = 1.0F;
    }

private:
    static float fall(float before, float first, float last, float after)
    {
        return before + first - last - after;
    }
    float cell(int column, int row) const
    {
        const int x = std::clamp(column, 0, m_heights.width - 1);
        const int y = std::clamp(row, 0, m_heights.height - 1);
        return m_heights.values[static_cast<qsizetype>(y) * m_heights.width + x];
    }

    GridView m_heights;
    int m_step;
    float m_scale;
};

void writeStepped(const VertexRun &run, const Relief &relief, int row)
{
    const BlockSlopes slopes(relief, run);
    for (int i = 0; i < run.count; ++i) {
        const int column = run.column + i * run.step;
        writePosition(run, i, column);
        slopes.write(column, row, run.normal + 3 * i);
    }
}

// A cell in the first or last column; cells beyond count as the cell itself.
void writeEdge(const VertexRun &run, int width)
{
    const int c = run.column;
    const int left = std::max(c - 1, 0);
    const int right = std::min(c + 1, width - 1);
    writePosition(run, 0, c);
    writeNormal({run.row[left], run.row[right], run.above[c], run.below[c], run.above[left],
                 run.below[right]},
                run.scale / 6.0F, run.normal);
}

VertexRun part(const VertexRun &run, int first, int count)
{
    VertexRun result = run;
    result.column += first * run.step;
    result.count = count;
    result.position += 3 * first;
    result.normal += 3 * first;
    return result;
}

void writeRun(const VertexRun &run, int width)
{
    int first = 0;
    int end = run.count;
    if (run.column == 0) {
        writeEdge(run, width);
        first = 1;
    }
    const int lastColumn = run.column + (run.count - 1) * run.step;
    if (end > first && lastColumn == width - 1) {
        --end;
        writeEdge(part(run, end, 1), width);
    }
    writeEveryCell(part(run, first, end - first));
}

const float *rowOf(const GridLayer &layer, qsizetype offset)
{
    return layer.written() ? layer.constData() + offset : nullptr;
}

} // namespace

void fillSelection(const Relief &relief, const SelectionRun &run, float *out)
{
    const qsizetype row = relief.index(0, run.row);
    const float *selection = rowOf(relief.selectionLayer(), row);
    const float *mask = rowOf(relief.maskLayer(), row);
    if (!selection && !mask) {
        std::fill_n(out, run.count, 0.0F);
        return;
    }
    for (int i = 0; i < run.count; ++i) {
        const int c = run.column + i * run.step;
        const float selected = selection ? selection[c] : 0.0F;
        out[i] = selected > 0.0F || !mask ? selected : -mask[c];
    }
}

bool ReliefMesh::layOut(const QRect &region, int step, bool withNormals)
{
    const int columns = stepsOver(region.width(), step);
    const int rows = stepsOver(region.height(), step);
    const bool sameGrid = columns == m_columns && rows == m_rows;
    m_region = region;
    m_step = step;
    if (sameGrid && withNormals == m_withNormals)
        return false;
    m_columns = columns;
    m_rows = rows;
    m_withNormals = withNormals;
    const size_t count = vertexCount();
    m_positions = std::make_unique_for_overwrite<float[]>(3 * count);
    m_normals = withNormals ? std::make_unique_for_overwrite<float[]>(3 * count) : nullptr;
    m_selection = std::make_unique_for_overwrite<float[]>(count);
    if (!sameGrid) {
        m_indices.clear();
        m_levels.clear();
        for (const int every : levelSteps) {
            const auto first = static_cast<uint32_t>(m_indices.size());
            appendStrips(m_indices, columns, rows, every);
            m_levels.push_back({{first, static_cast<uint32_t>(m_indices.size()) - first}, every});
        }
    }
    return !sameGrid;
}

ShaderMesh ReliefMesh::arrays() const
{
    const size_t count = vertexCount();
    return {{m_positions.get(), 3 * count},
            {m_normals.get(), m_normals ? 3 * count : 0},
            {m_selection.get(), count},
            m_indices};
}

void ReliefMesh::clear()
{
    *this = {};
}

QRegion ReliefMesh::verticesTouchedBy(const QRegion &cells) const
{
    QRegion result;
    for (const QRect &rect : cells) {
        const int reach = m_step / 2 + 1;
        const QRect touched = rect.adjusted(-reach, -reach, reach, reach) & m_region;
        if (touched.isEmpty())
            continue;
        const LineSpan columns = linesIn(touched.left(), touched.right(), m_region.left(), m_step);
        const LineSpan rows = linesIn(touched.top(), touched.bottom(), m_region.top(), m_step);
        result += QRect(QPoint(columns.first, rows.first), QPoint(columns.last, rows.last));
    }
    return result;
}

// A strip has about as many facets as indices.
size_t ReliefMesh::facets() const
{
    return m_levels.empty() ? 0 : m_levels.front().strips.count;
}

const ReliefMesh::Level *ReliefMesh::_level(size_t mostFacets) const
{
    const auto fits = [=](const Level &level) { return level.strips.count <= mostFacets; };
    const auto level = std::find_if(m_levels.begin(), m_levels.end(), fits);
    if (level != m_levels.end())
        return &*level;
    return m_levels.empty() ? nullptr : &m_levels.back();
}

Shader::IndexRange ReliefMesh::strips(size_t mostFacets) const
{
    return strips(mostFacets, 0, m_rows);
}

Shader::IndexRange ReliefMesh::strips(size_t mostFacets, int firstRow, int lastRow) const
{
    const Level *level = _level(mostFacets);
    const int count = stepsOver(m_rows - 1, level ? level->step : 1);
    if (!level || count < 1)
        return {0, 0};
    const uint32_t length = level->strips.count / static_cast<uint32_t>(count);
    const auto first = static_cast<uint32_t>(std::clamp(firstRow / level->step, 0, count - 1));
    const auto last = static_cast<uint32_t>(std::clamp(lastRow / level->step, 0, count - 1));
    return {level->strips.first + first * length, (last - first + 1) * length};
}

int ReliefMesh::stepOf(size_t mostFacets) const
{
    const Level *level = _level(mostFacets);
    return m_step * (level ? level->step : 1);
}

void appendStrips(std::vector<uint32_t> &indices, int columns, int rows, int step)
{
    if (columns < 1 || rows < 2)
        return;
    const auto wide = static_cast<uint32_t>(columns);
    const auto across = static_cast<size_t>(stepsOver(columns - 1, step)) + 1;
    const auto strips = static_cast<size_t>(stepsOver(rows - 1, step));
    const size_t before = indices.size();
    indices.resize(before + (2 * across + 1) * strips);
    uint32_t *out = indices.data() + before;
    const auto stride = static_cast<uint32_t>(step);
    const auto last = static_cast<uint32_t>(rows - 1);
    for (uint32_t row = 0; row < last; row += stride) {
        const uint32_t upper = row * wide;
        const uint32_t lower = std::min(row + stride, last) * wide;
        for (uint32_t column = 0; column < wide - 1; column += stride) {
            *out++ = lower + column;
            *out++ = upper + column;
        }
        *out++ = lower + wide - 1;
        *out++ = upper + wide - 1;
        *out++ = stripEnd;
    }
}

void fillSculptVertices(ReliefMesh &mesh, const Relief &relief, const QRect &vertices)
{
    const int width = relief.width();
    const float *heights = relief.heights().constData();
    const auto offsetOf = [&](int row) { return relief.index(0, row); };
    VertexRun run{};
    run.column = mesh.region().left() + vertices.left() * mesh.step();
    run.step = mesh.step();
    run.count = vertices.width();
    run.halfWidth = static_cast<float>(width) * 0.5F;
    run.scale = static_cast<float>(relief.zScale);
    for (int j = vertices.top(); j <= vertices.bottom(); ++j) {
        const int row = mesh.region().top() + j * mesh.step();
        const size_t vertex = static_cast<size_t>(j) * static_cast<size_t>(mesh.columns()) +
                              static_cast<size_t>(vertices.left());
        run.above = heights + offsetOf(std::max(row - 1, 0));
        run.row = heights + offsetOf(row);
        run.below = heights + offsetOf(std::min(row + 1, relief.height() - 1));
        run.y = static_cast<float>(row) - static_cast<float>(relief.height()) * 0.5F;
        run.position = mesh.positions() + 3 * vertex;
        run.normal = mesh.normals() + 3 * vertex;
        if (run.step == 1)
            writeRun(run, width);
        else
            writeStepped(run, relief, row);
        fillSelection(relief, {run.column, row, run.step, run.count}, mesh.selection() + vertex);
    }
}

} // namespace marlowen
