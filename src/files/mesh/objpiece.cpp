#include "files/mesh/objpiece.h"

#include "files/mesh/textnumbers.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace marlowen {

namespace {

using Kind = ObjPiece::Kind;

/// As many as the session log lists.
constexpr size_t problemsToldApart = 1000;
constexpr quint64 mostPlainId = std::numeric_limits<quint32>::max();

/// Reads a positive decimal number that is followed by a slash or ends its token; null otherwise.
const char *parsePlainId(const char *at, quint64 &id)
{
    const char *const first = at;
    uint64_t value = 0;
    at = appendDigits(at, value);
    if (at == first || at - first > 10)
        return nullptr;
    id = value;
    if (*at == '/')
        at = tokenEnd(at);
    return endsToken(*at) ? at : nullptr;
}

/// Reads the rest of a line that is three numbers from 1 to 99999999 with one space before each and
/// nothing else, and returns its end; null for every other line.
const char *parsePlainFace(const char *at, MeshTriangle &corners)
{
    const char *const a = at + 1;
    uint32_t others = otherThanDigits(a);
    const auto nextEnd = [&others] {
        const int end = std::countr_zero(others);
        others &= others - 1;
        return static_cast<unsigned>(end);
    };
    const unsigned endA = nextEnd(), endB = nextEnd(), endC = nextEnd();
    const unsigned digitsA = endA, digitsB = endB - endA - 1, digitsC = endC - endB - 1;
    if (((digitsA - 1) | (digitsB - 1) | (digitsC - 1)) >= 8)
        return nullptr;
    const char *const b = a + endA + 1;
    const char *const c = a + endB + 1;
    const char *const end = a + endC;
    if (*at != ' ' || b[-1] != ' ' || c[-1] != ' ' || !isLineEnd(*end))
        return nullptr;
    corners = {static_cast<quint32>(EightCharacters(a).value(digitsA)) - 1,
               static_cast<quint32>(EightCharacters(b).value(digitsB)) - 1,
               static_cast<quint32>(EightCharacters(c).value(digitsC)) - 1};
    return std::max({corners[0], corners[1], corners[2]}) < mostPlainId ? end : nullptr;
}

/// Reads the rest of a line that is three plain numbers and returns its end; null for every other
/// line.
const char *parsePlainVertex(const char *at, MeshPoint &point)
{
    for (double &coordinate : point) {
        at = parsePlainNumber(skipBlanks(at), coordinate);
        if (!at)
            return nullptr;
    }
    at = skipBlanks(at);
    return isLineEnd(*at) ? at : nullptr;
}

class Lines
{
public:
    explicit Lines(ObjPiece &piece)
        : m_piece(piece)
    {
    }

    void read(std::string_view lines)
    {
        const char *at = lines.data();
        m_end = at + lines.size();
        while (at < m_end) {
            at = skipBlanks(at);
            if (at[0] == 'v' && endsToken(at[1]))
                at = _readVertex(at + 1);
            else if (at[0] == 'f' && endsToken(at[1]))
                at = _readFace(at + 1);
            else
                at = lineEnd(at);
            ++at;
        }
        _endRun();
    }

private:
    void _endRun()
    {
        if (m_run.count > 0)
            m_piece.runs.push_back(m_run);
        m_run.count = 0;
    }

    void _count(Kind kind, quint32 count = 1)
    {
        if (m_run.kind != kind)
            _endRun();
        m_run.kind = kind;
        m_run.count += count;
    }

    /// Adds what lines that begin with a letter say, as long as parse(at, item) takes them; `at` is
    /// behind the letter of the first. Returns the end of the last; null when the first is not
    /// taken.
    template <typename Parse, typename Item>
    const char *_readLinesOf(Kind kind, const char *at, Parse parse, std::vector<Item> &items)
    {
        const char letter = at[-1];
        const char *last = nullptr;
        const size_t before = items.size();
        Item item;
        while (const char *const end = parse(at, item)) {
            items.push_back(item);
            last = end;
            if (end + 1 >= m_end || end[1] != letter || !endsToken(end[2]))
                break;
            at = end + 2;
        }
        if (last)
            _count(kind, static_cast<quint32>(items.size() - before));
        return last;
    }

    void _addProblem(const char *before, std::string_view token, const char *after)
    {
        _count(Kind::Problems);
        if (m_piece.problems.size() < problemsToldApart)
            m_piece.problems.push_back({before, token, after});
    }

    void _addPosition(const MeshPoint &point)
    {
        _count(Kind::Vertices);
        m_piece.positions.push_back(point);
    }

    const char *_readVertex(const char *at)
    {
        const char *const end =
            _readLinesOf(Kind::Vertices, at, parsePlainVertex, m_piece.positions);
        return end ? end : _readSlowVertex(at);
    }

    const char *_readSlowVertex(const char *at)
    {
        std::array<double, 4> numbers{0.0, 0.0, 0.0, 1.0};
        const auto read = [&](std::string_view token, double &number) {
            if (!parseNumber(token, number))
                _addProblem("ObjFileReader: bad double (", token, ")");
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
        const MeshPoint point{numbers[0] / w, numbers[1] / w, numbers[2] / w};
        for (const double coordinate : point)
            m_piece.allFinite = m_piece.allFinite && std::isfinite(coordinate);
        _addPosition(point);
        return at;
    }

    const char *_readFace(const char *at)
    {
        if (const char *const end =
                _readLinesOf(Kind::Triangles, at, parsePlainFace, m_piece.triangles))
            return end;
        MeshTriangle corners;
        const char *stop = at;
        for (quint32 &corner : corners) {
            quint64 id = 0;
            stop = parsePlainId(skipBlanks(stop), id);
            if (!stop || id - 1 >= mostPlainId)
                return _readSlowFace(at);
            corner = static_cast<quint32>(id - 1);
        }
        stop = skipBlanks(stop);
        if (!isLineEnd(*stop))
            return _readSlowFace(at);
        _count(Kind::Triangles);
        m_piece.triangles.push_back(corners);
        return stop;
    }

    const char *_readSlowFace(const char *at)
    {
        const size_t before = m_piece.ids.size();
        for (at = skipBlanks(at); !isLineEnd(*at); at = skipBlanks(at)) {
            quint64 plain = 0;
            qint64 id = 0;
            const char *stop = parsePlainId(at, plain);
            if (stop) {
                id = static_cast<qint64>(plain);
            } else {
                stop = tokenEnd(at);
                const std::string_view token(at, static_cast<size_t>(stop - at));
                if (!_readId(token.substr(0, token.find('/')), id)) {
                    at = lineEnd(at);
                    break;
                }
            }
            m_piece.ids.push_back(id);
            at = stop;
        }
        const size_t count = m_piece.ids.size() - before;
        if (count >= 3) {
            _endRun();
            m_piece.runs.push_back({Kind::Face, static_cast<quint32>(count)});
        } else {
            m_piece.ids.resize(before);
            _addProblem("ObjFileReader: face with less than 3 vertices", {}, "");
        }
        return at;
    }

    bool _readId(std::string_view token, qint64 &id)
    {
        const char *const end = token.data() + token.size();
        const bool plus = token.size() > 1 && token[0] == '+' && token[1] != '-';
        const auto [stop, error] = std::from_chars(token.data() + plus, end, id);
        if (error == std::errc() && stop == end)
            return true;
        _addProblem("ObjFileReader: bad vertex id (", token, ")");
        return false;
    }

    ObjPiece &m_piece;
    ObjPiece::Run m_run{Kind::Vertices, 0};
    const char *m_end = nullptr; ///< of the lines
};

} // namespace

void ObjPiece::clear()
{
    runs.clear();
    positions.clear();
    triangles.clear();
    ids.clear();
    problems.clear();
    allFinite = true;
}

void readObjLines(std::string_view lines, ObjPiece &piece)
{
    piece.clear();
    Lines(piece).read(lines);
}

} // namespace marlowen
