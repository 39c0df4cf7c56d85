#include "files/export/objwriter.h"

#include "base/progress.h"
#include "base/version.h"
#include "files/export/pulse.h"

#include <QByteArray>
#include <QIODevice>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

namespace marlowen {

namespace {

constexpr std::size_t flushBytes = 1024 * 1024;
/// No line is longer: six numbers of at most ten digits, or three floats.
constexpr std::size_t longestLine = 128;

/// Lines of text on their way to a device in large blocks.
class LineBuffer
{
public:
    explicit LineBuffer(QIODevice &device)
        : m_device(device)
        , m_bytes(flushBytes + longestLine)
    {
    }

    void text(const char *from, std::size_t length)
    {
        std::memcpy(m_bytes.data() + m_used, from, length);
        m_used += length;
    }
    void text(const std::string &from) { text(from.data(), from.size()); }
    void character(char c) { m_bytes[m_used++] = c; }
    template <typename Number>
    void number(Number value)
    {
        char *from = m_bytes.data() + m_used;
        m_used += static_cast<std::size_t>(std::to_chars(from, from + 32, value).ptr - from);
    }
    /// -1..1 with four decimals.
    void fraction(double value)
    {
        auto ten = static_cast<unsigned>(std::lround(std::abs(value) * 10000.0));
        if (value < 0.0 && ten > 0)
            character('-');
        std::array<char, 6> digits{'0', '.', '0', '0', '0', '0'};
        digits[0] = static_cast<char>('0' + ten / 10000);
        for (std::size_t place = digits.size() - 1; place > 1; --place, ten /= 10)
            digits[place] = static_cast<char>('0' + ten % 10);
        text(digits.data(), digits.size());
    }
    /// Ends a line; false once the device has failed.
    bool endLine()
    {
        character('\n');
        return m_used < flushBytes || flush();
    }
    bool flush()
    {
        const auto length = static_cast<qint64>(m_used);
        m_used = 0;
        return m_device.write(m_bytes.data(), length) == length;
    }

private:
    QIODevice &m_device;
    std::vector<char> m_bytes;
    std::size_t m_used = 0;
};

/// Numbers of the cells that a surface uses, counted from 1 in the order of the cells; 0 elsewhere.
struct CellNumbers
{
    CellNumbers() = default;
    CellNumbers(const CellSurface &surface, Progress &progress)
        : ofCell(static_cast<std::size_t>(surface.heights().cells()))
    {
        Pulse pulse(progress);
        surface.forEachFacet([&](const CellTriangle &facet) {
            for (const uint32_t cell : facet)
                ofCell[cell] = 1;
            return pulse.beat();
        });
        for (uint32_t &number : ofCell)
            number = number == 0 ? 0 : ++count;
    }

    std::vector<uint32_t> ofCell;
    uint32_t count = 0;
};

std::string shortest(double value)
{
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), static_cast<float>(value)).ptr;
    return {text.data(), end};
}

/// The upward normal of the grid at a cell, from its neighbours.
SurfacePoint normalAt(const CellSurface &surface, int column, int row)
{
    const GridView &grid = surface.heights();
    const int left = std::max(0, column - 1);
    const int right = std::min(grid.width - 1, column + 1);
    const int before = std::max(0, row - 1);
    const int after = std::min(grid.height - 1, row + 1);
    const auto slope = [&](float from, float to, int cells) {
        return (static_cast<double>(to) - static_cast<double>(from)) * surface.zFactor() / cells;
    };
    const float *heights = grid.row(row);
    const double dx = slope(heights[left], heights[right], right - left);
    const double dy = slope(grid.row(before)[column], grid.row(after)[column], after - before);
    const double length = std::sqrt(1.0 + dx * dx + dy * dy);
    return {-dx / length, -dy / length, 1.0 / length};
}

class ObjWriter
{
public:
    ObjWriter(QIODevice &device, const ExportMesh &mesh, Progress &progress)
        : m_out(device)
        , m_mesh(mesh)
        , m_surface(mesh.surface())
        , m_progress(progress)
        , m_top(mesh.surface(), progress)
        , m_base(mesh.isSolid() ? CellNumbers(mesh.base(), progress) : CellNumbers())
    {
    }

    bool write()
    {
        m_out.text(std::string("# ") + productName + " " + versionText + ", inches");
        const bool good =
            m_out.endLine() && writePoints(m_top, false) &&
            (!m_mesh.isSolid() || (writePoints(m_base, true) && writeWallNormals())) &&
            writeFaces() && m_out.flush() && !m_progress.cancelled();
        if (good)
            m_progress.advance(1.0);
        return good;
    }

private:
    bool writePoints(const CellNumbers &numbers, bool isBase)
    {
        std::vector<std::string> xs;
        xs.reserve(static_cast<std::size_t>(m_surface.heights().width));
        for (int column = 0; column < m_surface.heights().width; ++column)
            xs.push_back("v " + shortest(column / cellsPerInch) + ' ');
        const std::string baseZ = shortest(m_mesh.baseHeight());
        uint32_t cell = 0;
        for (int row = 0; row < m_surface.heights().height; ++row) {
            const std::string y = shortest(row / cellsPerInch) + ' ';
            for (const std::string &x : xs) {
                const uint32_t here = cell++;
                if (numbers.ofCell[here] == 0)
                    continue;
                ++m_written;
                m_out.text(x);
                m_out.text(y);
                if (isBase)
                    m_out.text(baseZ);
                else
                    m_out.number(static_cast<float>(m_surface.point(here)[2]));
                if (!m_out.endLine() ||
                    (!isBase &&
                     !writeNormal(normalAt(m_surface, static_cast<int>(&x - xs.data()), row))))
                    return false;
            }
            if (!report())
                return false;
        }
        return true;
    }

    /// Points and facets count alike. False when the work was cancelled.
    bool report()
    {
        const uint64_t all =
            std::max<uint64_t>(1, m_top.count + uint64_t{m_base.count} + m_mesh.count());
        m_progress.advance(static_cast<double>(m_written) / static_cast<double>(all));
        return !m_progress.cancelled();
    }

    bool writeNormal(const SurfacePoint &normal)
    {
        m_out.text("vn ", 3);
        for (std::size_t i = 0; i < normal.size(); ++i) {
            m_out.fraction(normal[i]);
            if (i + 1 < normal.size())
                m_out.character(' ');
        }
        return m_out.endLine();
    }

    bool writeWallNormals()
    {
        bool good = writeNormal({0.0, 0.0, -1.0});
        for (const CellEdge &edge : m_mesh.walls())
            good = good && writeNormal(m_mesh.wallNormal(edge));
        return good;
    }

    /// Numbers of a corner's point and normal.
    struct Corner
    {
        uint32_t point;
        uint32_t normal;
    };

    bool writeFace(const std::array<Corner, 3> &corners)
    {
        m_out.character('f');
        for (const Corner &corner : corners) {
            m_out.character(' ');
            m_out.number(corner.point);
            m_out.text("//", 2);
            m_out.number(corner.normal);
        }
        ++m_written;
        return m_out.endLine() && (m_written % 65536 != 0 || report());
    }

    bool writeFaces()
    {
        const auto top = [this](uint32_t cell) {
            return Corner{m_top.ofCell[cell], m_top.ofCell[cell]};
        };
        const bool good = m_surface.forEachFacet([&](const CellTriangle &facet) {
            return writeFace({top(facet[0]), top(facet[1]), top(facet[2])});
        });
        return good && (!m_mesh.isSolid() || (writeBaseFaces() && writeWallFaces()));
    }

    bool writeBaseFaces()
    {
        return m_mesh.base().forEachFacet([this](const CellTriangle &facet) {
            const uint32_t normal = m_top.count + 1;
            return writeFace(
                {below(facet[0], normal), below(facet[2], normal), below(facet[1], normal)});
        });
    }

    bool writeWallFaces()
    {
        uint32_t normal = m_top.count + 1;
        for (const auto &[from, to] : m_mesh.walls()) {
            ++normal;
            const Corner upperFrom{m_top.ofCell[from], normal};
            const Corner upperTo{m_top.ofCell[to], normal};
            if (!writeFace({upperTo, upperFrom, below(from, normal)}) ||
                !writeFace({upperTo, below(from, normal), below(to, normal)}))
                return false;
        }
        return true;
    }

    Corner below(uint32_t cell, uint32_t normal) const
    {
        return {m_top.count + m_base.ofCell[cell], normal};
    }

    LineBuffer m_out;
    const ExportMesh &m_mesh;
    const CellSurface &m_surface;
    Progress &m_progress;
    CellNumbers m_top;
    CellNumbers m_base;
    uint64_t m_written = 0; ///< points and facets
};

} // namespace

bool writeObj(QIODevice &device, const ExportMesh &mesh, Progress &progress)
{
    return ObjWriter(device, mesh, progress).write();
}

} // namespace marlowen
