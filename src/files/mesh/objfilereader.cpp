#include "files/mesh/objfilereader.h"

#include "files/mesh/piecework.h"
#include "files/mesh/textblocks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace marlowen {

namespace {

constexpr std::string_view lineEnds("\n\r");
constexpr std::string_view byteOrderMark("\xEF\xBB\xBF");

/// Places of vertices stay well below the numbers that stand for new points of the tessellator.
constexpr size_t mostVertices = size_t{3} << 30;

/// Never falls back, whatever the steps of the reading report.
class SteadyProgress : public Progress
{
public:
    explicit SteadyProgress(Progress &whole)
        : m_whole(whole)
    {
    }
    void advance(double fraction) override
    {
        m_last = std::max(m_last, fraction);
        m_whole.advance(m_last);
    }
    bool cancelled() const override { return m_whole.cancelled(); }

private:
    Progress &m_whole;
    double m_last = 0.0;
};

bool isFinite(const MeshPoint &point)
{
    return std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2]);
}

/// Whether the corners do not lie on one line.
bool hasArea(const TriangleMesh &mesh, const MeshTriangle &corners)
{
    const MeshPoint &a = mesh.corner(corners, 0);
    const MeshPoint &b = mesh.corner(corners, 1);
    const MeshPoint &c = mesh.corner(corners, 2);
    const auto crossed = [&](size_t i, size_t j) {
        return (b[i] - a[i]) * (c[j] - a[j]) == (b[j] - a[j]) * (c[i] - a[i]);
    };
    return !(crossed(0, 1) && crossed(1, 2) && crossed(2, 0));
}

} // namespace

ObjFileReader::ObjFileReader(RelativeIndices indices)
    : m_indices(indices)
    , m_tessellator(m_mesh, m_problems)
{
}

bool ObjFileReader::read(QIODevice &device, Progress &progress)
{
    SteadyProgress steady(progress);
    m_progress = &steady;
    TextBlocks text(device, steady, lineEnds);
    std::vector<Slot> pieces(pieceSlots());
    PieceSteps steps;
    steps.fill = [&](size_t slot) { return _fill(text, pieces[slot]); };
    steps.work = [&](size_t slot) { readObjLines(pieces[slot].lines, pieces[slot].piece); };
    steps.take = [&](size_t slot) { _take(pieces[slot]); };
    workThroughPieces(steps);
    for (qint64 i = 0; i < text.overlongPieces(); ++i)
        m_problems.add("ObjFileReader: a line is too long");
    if (text.failed())
        m_problems.add("ObjFileReader: QTextStream error detected ", "2");
    if (text.cutShort())
        m_problems.add("ObjFileReader: the file became shorter while it was read");
    for (const LateFaces &late : m_late) {
        steady.advance(1.0);
        _addLateFaces(late);
    }
    m_progress = nullptr;
    if (progress.cancelled())
        return false;
    m_tessellator.finish();
    return m_problems.count() == 0;
}

bool ObjFileReader::_fill(TextBlocks &text, Slot &slot)
{
    slot.lines = text.next(slot.text);
    slot.bytesLeft = text.bytesTotal() - text.bytesRead();
    if (std::exchange(m_atStart, false) && slot.lines.starts_with(byteOrderMark))
        slot.lines.remove_prefix(byteOrderMark.size());
    return !slot.lines.empty();
}

void ObjFileReader::_take(const Slot &slot)
{
    if (m_progress->cancelled())
        return;
    const ObjPiece &piece = slot.piece;
    m_allFinite = m_allFinite && piece.allFinite;
    if (m_late.empty() || !m_late.back().faces.empty())
        m_late.emplace_back();
    const size_t positionsBefore = m_mesh.positions.size();
    const size_t trianglesBefore = m_mesh.triangles.size();
    std::span<const MeshPoint> positions(piece.positions);
    std::span<const MeshTriangle> triangles(piece.triangles);
    std::span<const qint64> ids(piece.ids);
    std::span<const ObjPiece::Problem> problems(piece.problems);
    const auto next = [](auto &span, size_t count) {
        const auto first = span.first(std::min(count, span.size()));
        span = span.subspan(first.size());
        return first;
    };
    for (const auto [kind, count] : piece.runs) {
        if (kind == ObjPiece::Kind::Vertices)
            _takePositions(next(positions, count));
        else if (kind == ObjPiece::Kind::Triangles)
            _takeTriangles(next(triangles, count));
        else if (kind == ObjPiece::Kind::Face)
            _takeFace(next(ids, count));
        else
            _takeProblems(next(problems, count), count);
    }
    _makeRoom(slot, positionsBefore, trianglesBefore);
}

void ObjFileReader::_makeRoom(const Slot &slot, size_t positionsBefore, size_t trianglesBefore)
{
    // The rest of the file is likely to hold what this piece held: grown once to that, the arrays
    // are not copied again and again. Room that is never used is never touched. The first piece
    // with faces may have begun with vertices and tells little.
    const auto grow = [&slot](auto &array, size_t before, size_t &lastAdded) {
        const size_t added = array.size() - before;
        const bool first = std::exchange(lastAdded, added) == 0;
        if (first || slot.bytesLeft <= 0 || array.capacity() - array.size() > 2 * added)
            return;
        const double expected = static_cast<double>(added) * static_cast<double>(slot.bytesLeft) /
                                static_cast<double>(slot.lines.size());
        array.reserve(array.size() + added + static_cast<size_t>(expected * 1.05));
    };
    grow(m_mesh.positions, positionsBefore, m_positionsAdded);
    grow(m_mesh.triangles, trianglesBefore, m_trianglesAdded);
}

void ObjFileReader::_takePositions(std::span<const MeshPoint> positions)
{
    const size_t room = mostVertices - m_mesh.positions.size();
    const auto taken = positions.first(std::min(room, positions.size()));
    m_mesh.positions.insert(m_mesh.positions.end(), taken.begin(), taken.end());
}

void ObjFileReader::_takeTriangles(std::span<const MeshTriangle> triangles)
{
    const size_t known = m_mesh.positions.size();
    for (const MeshTriangle &corners : triangles) {
        if (std::max({corners[0], corners[1], corners[2]}) >= known) {
            _takeFace(std::array<qint64, 3>{corners[0] + qint64{1}, corners[1] + qint64{1},
                                            corners[2] + qint64{1}});
        } else if (m_allFinite) {
            if (hasArea(m_mesh, corners))
                m_mesh.triangles.push_back(corners);
        } else {
            m_corners.assign(corners.begin(), corners.end());
            _addResolved();
        }
    }
}

void ObjFileReader::_takeProblems(std::span<const ObjPiece::Problem> problems, size_t count)
{
    for (const auto &[before, token, after] : problems)
        m_problems.add(before, token, after);
    for (size_t i = problems.size(); i < count; ++i)
        m_problems.add("ObjFileReader: a further problem");
}

qint64 ObjFileReader::_placeOf(qint64 id, qint64 verticesRead) const
{
    if (id >= 1)
        return id - 1;
    if (m_indices == RelativeIndices::AsOtherPrograms)
        return id == 0 ? -1 : verticesRead + id;
    return id < std::numeric_limits<qint64>::min() / 2 ? -1 : verticesRead - id;
}

bool ObjFileReader::_resolve(std::span<const qint64> ids, qint64 verticesRead)
{
    const auto known = static_cast<qint64>(m_mesh.positions.size());
    m_corners.clear();
    for (const qint64 id : ids) {
        const qint64 place = _placeOf(id, verticesRead);
        if (place < 0 || place >= known)
            return false;
        m_corners.push_back(static_cast<quint32>(place));
    }
    return true;
}

void ObjFileReader::_takeFace(std::span<const qint64> ids)
{
    const auto verticesRead = static_cast<qint64>(m_mesh.positions.size());
    if (_resolve(ids, verticesRead)) {
        _addResolved();
        return;
    }
    LateFaces &late = m_late.back();
    late.faces.push_back({late.ids.size(), ids.size(), verticesRead});
    late.ids.insert(late.ids.end(), ids.begin(), ids.end());
}

void ObjFileReader::_addLateFaces(const LateFaces &late)
{
    for (const LateFace &face : late.faces) {
        const std::span<const qint64> ids(late.ids.data() + face.firstId, face.count);
        if (m_progress->cancelled())
            return;
        if (_resolve(ids, face.verticesRead)) {
            _addResolved();
            continue;
        }
        const std::string bad = std::to_string(ids[m_corners.size()]);
        m_problems.add("ObjFileReader: bad vertex id (", bad, ")");
    }
}

void ObjFileReader::_addResolved()
{
    const auto finite = [this](quint32 corner) { return isFinite(m_mesh.positions[corner]); };
    if (!m_allFinite && !std::all_of(m_corners.begin(), m_corners.end(), finite)) {
        m_problems.add("ObjFileReader: face with a coordinate that is not finite");
    } else if (m_corners.size() > 3) {
        m_tessellator.cut(m_corners, *m_progress);
    } else {
        const MeshTriangle corners{m_corners[0], m_corners[1], m_corners[2]};
        if (hasArea(m_mesh, corners))
            m_mesh.triangles.push_back(corners);
    }
}

} // namespace marlowen
