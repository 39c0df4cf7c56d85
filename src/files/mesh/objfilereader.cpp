#include "files/mesh/objfilereader.h"

#include "files/mesh/textblocks.h"
#include "files/mesh/textnumbers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace marlowen {

namespace {

constexpr std::string_view lineEnds("\n\r");
constexpr std::string_view byteOrderMark("\xEF\xBB\xBF");

/// Places of vertices stay well below the numbers that stand for new points of the tessellator.
constexpr size_t mostVertices = size_t{3} << 30;

/// Reads a positive decimal number that is followed by a slash or ends its token; null otherwise.
const char *parsePlainId(const char *at, quint64 &id)
{
    const char *const first = at;
    unsigned digit = 0;
    quint64 value = 0;
    while ((digit = static_cast<unsigned>(*at) - '0') < 10) {
        value = 10 * value + digit;
        ++at;
    }
    if (at == first || at - first > 10)
        return nullptr;
    id = value;
    if (*at == '/')
        at = tokenEnd(at);
    return endsToken(*at) ? at : nullptr;
}

const char *lineEnd(const char *at)
{
    while (!isLineEnd(*at))
        ++at;
    return at;
}

bool isFinite(const MeshPoint &point)
{
    return std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2]);
}

bool liesOnLine(const MeshPoint &a, const MeshPoint &b, const MeshPoint &c)
{
    const auto crossed = [&](size_t i, size_t j) {
        return (b[i] - a[i]) * (c[j] - a[j]) == (b[j] - a[j]) * (c[i] - a[i]);
    };
    return crossed(0, 1) && crossed(1, 2) && crossed(2, 0);
}

} // namespace

ObjFileReader::ObjFileReader(RelativeIndices indices)
    : m_indices(indices)
    , m_tessellator(m_mesh, m_problems)
{
}

bool ObjFileReader::read(QIODevice &device, Progress &progress)
{
    TextBlocks text(device, progress, lineEnds);
    bool atStart = true;
    for (std::string_view block = text.next(); !block.empty(); block = text.next()) {
        if (std::exchange(atStart, false) && block.starts_with(byteOrderMark))
            block.remove_prefix(byteOrderMark.size());
        _readLines(block);
        _makeRoom(text, block.size());
    }
    for (qint64 i = 0; i < text.overlongPieces(); ++i)
        m_problems.add("ObjFileReader: a line is too long");
    if (text.failed())
        m_problems.add("ObjFileReader: QTextStream error detected ", "2");
    if (text.cancelled())
        return false;
    _addLateFaces();
    m_tessellator.finish();
    return m_problems.count() == 0;
}

void ObjFileReader::_makeRoom(const TextBlocks &text, size_t blockBytes)
{
    // The rest of the file is likely to hold what the last block held: grown once to that, the
    // arrays are not copied again and again. Room that is never used is never touched.
    const qint64 left = text.bytesTotal() - text.bytesRead();
    const auto grow = [&](auto &array, size_t &before) {
        const size_t added = array.size() - before;
        before = array.size();
        if (left <= 0 || array.capacity() - array.size() > 2 * added)
            return;
        const double expected = static_cast<double>(added) * static_cast<double>(left) /
                                static_cast<double>(blockBytes);
        array.reserve(array.size() + added + static_cast<size_t>(expected * 1.05));
    };
    grow(m_mesh.positions, m_positionsBefore);
    grow(m_mesh.triangles, m_trianglesBefore);
}

void ObjFileReader::_readLines(std::string_view block)
{
    const char *at = block.data();
    const char *const end = at + block.size();
    while (at < end) {
        at = skipBlanks(at);
        if (at[0] == 'v' && endsToken(at[1]))
            at = _readVertex(at + 1);
        else if (at[0] == 'f' && endsToken(at[1]))
            at = _readFace(at + 1);
        else
            at = lineEnd(at);
        ++at;
    }
}

const char *ObjFileReader::_readVertex(const char *at)
{
    MeshPoint point;
    const char *stop = at;
    for (double &coordinate : point) {
        stop = parsePlainNumber(skipBlanks(stop), coordinate);
        if (!stop)
            return _readSlowVertex(at);
    }
    stop = skipBlanks(stop);
    if (!isLineEnd(*stop) || m_mesh.positions.size() >= mostVertices)
        return _readSlowVertex(at);
    m_mesh.positions.push_back(point);
    return stop;
}

const char *ObjFileReader::_readSlowVertex(const char *at)
{
    std::array<double, 4> numbers{0.0, 0.0, 0.0, 1.0};
    const auto read = [&](std::string_view token, double &number) {
        if (!parseNumber(token, number))
            m_problems.add("ObjFileReader: bad double (", token, ")");
    };
    std::string_view fourth;
    size_t count = 0;
    for (at = skipBlanks(at); !isLineEnd(*at); at = skipBlanks(at), ++count) {
        const char *const stop = tokenEnd(at);
        const std::string_view token(at, static_cast<size_t>(stop - at));
        if (count < 3)
            read(token, numbers[count]);
        else if (count == 3)
            fourth = token;
        at = stop;
    }
    for (size_t missing = count; missing < 3; ++missing)
        read({}, numbers[missing]);
    // Lines of six or seven numbers carry a colour.
    if (count == 4)
        read(fourth, numbers[3]);
    const double w = numbers[3];
    if (m_mesh.positions.size() >= mostVertices)
        return at;
    m_mesh.positions.push_back({numbers[0] / w, numbers[1] / w, numbers[2] / w});
    m_allFinite = m_allFinite && isFinite(m_mesh.positions.back());
    return at;
}

const char *ObjFileReader::_readFace(const char *at)
{
    // Nearly every face is three positive indices of vertices that were read before.
    MeshTriangle corners;
    const quint64 known = m_mesh.positions.size();
    const char *stop = at;
    for (quint32 &corner : corners) {
        quint64 id = 0;
        stop = parsePlainId(skipBlanks(stop), id);
        if (!stop || id - 1 >= known)
            return _readSlowFace(at);
        corner = static_cast<quint32>(id - 1);
    }
    stop = skipBlanks(stop);
    if (!isLineEnd(*stop))
        return _readSlowFace(at);
    _addTriangle(corners);
    return stop;
}

const char *ObjFileReader::_readSlowFace(const char *at)
{
    m_ids.clear();
    for (at = skipBlanks(at); !isLineEnd(*at); at = skipBlanks(at)) {
        const char *const stop = tokenEnd(at);
        const std::string_view token(at, static_cast<size_t>(stop - at));
        qint64 id = 0;
        if (!_readId(token.substr(0, token.find('/')), id)) {
            at = lineEnd(at);
            break;
        }
        m_ids.push_back(id);
        at = stop;
    }
    if (m_ids.size() < 3)
        m_problems.add("ObjFileReader: face with less than 3 vertices");
    else
        _takeFace();
    return at;
}

bool ObjFileReader::_readId(std::string_view token, qint64 &id)
{
    const char *const end = token.data() + token.size();
    const bool plus = token.size() > 1 && token[0] == '+' && token[1] != '-';
    const auto [stop, error] = std::from_chars(token.data() + plus, end, id);
    if (error == std::errc() && stop == end)
        return true;
    m_problems.add("ObjFileReader: bad vertex id (", token, ")");
    return false;
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

void ObjFileReader::_takeFace()
{
    const auto verticesRead = static_cast<qint64>(m_mesh.positions.size());
    if (_resolve(m_ids, verticesRead)) {
        _addResolved();
        return;
    }
    m_lateFaces.push_back({m_lateIds.size(), m_ids.size(), verticesRead});
    m_lateIds.insert(m_lateIds.end(), m_ids.begin(), m_ids.end());
}

void ObjFileReader::_addLateFaces()
{
    for (const LateFace &face : m_lateFaces) {
        const std::span<const qint64> ids(m_lateIds.data() + face.firstId, face.count);
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
    if (m_corners.size() == 3) {
        _addTriangle({m_corners[0], m_corners[1], m_corners[2]});
        return;
    }
    const auto finite = [this](quint32 corner) { return isFinite(m_mesh.positions[corner]); };
    if (m_allFinite || std::all_of(m_corners.begin(), m_corners.end(), finite))
        m_tessellator.cut(m_corners);
    else
        m_problems.add("ObjFileReader: face with a coordinate that is not finite");
}

void ObjFileReader::_addTriangle(const MeshTriangle &corners)
{
    const MeshPoint &a = m_mesh.corner(corners, 0);
    const MeshPoint &b = m_mesh.corner(corners, 1);
    const MeshPoint &c = m_mesh.corner(corners, 2);
    if (!m_allFinite && !(isFinite(a) && isFinite(b) && isFinite(c)))
        m_problems.add("ObjFileReader: face with a coordinate that is not finite");
    else if (!liesOnLine(a, b, c))
        m_mesh.triangles.push_back(corners);
}

} // namespace marlowen
