#include "files/mesh/stltext.h"

#include "files/mesh/textblocks.h"
#include "files/mesh/textnumbers.h"

#include <QIODevice>

#include <algorithm>
#include <utility>

namespace marlowen {

namespace {

constexpr std::string_view whiteSpace("\n \t\r\v\f");

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether the token is the keyword (given in lower case), in any case of its letters.
bool is(std::string_view token, std::string_view keyword)
{
    return token.size() == keyword.size() &&
           std::equal(token.begin(), token.end(), keyword.begin(), [](char a, char b) {
               return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b);
           });
}

/// Takes the tokens of the file one by one.
class StlTokens
{
public:
    StlTokens(FacetCollector &facets, MeshProblems &problems)
        : m_facets(facets)
        , m_problems(problems)
    {
    }

    void take(std::string_view token)
    {
        if (m_inName && _takeName(token))
            return;
        if (m_numbersLeft == 0 || !_takeNumber(token))
            _takeKeyword(token);
    }

    /// The name of a solid ends with its line.
    void lineEnd() { m_inName = false; }

    void finish()
    {
        if (m_inSolid || m_inFacet)
            m_problems.add("STL: the file ends inside a solid");
    }

private:
    /// A name runs to the end of its line, or to the next facet where a file has no lines.
    bool _takeName(std::string_view token)
    {
        const bool facetBefore = std::exchange(m_lastWasFacet, is(token, "facet"));
        if (facetBefore && is(token, "normal"))
            _beginFacet();
        else if (!is(token, "endsolid"))
            return true;
        m_inName = false;
        return false;
    }

    bool _takeNumber(std::string_view token)
    {
        double number = 0.0;
        const bool plain = parsePlainNumber(token.data(), number) == token.data() + token.size();
        if (!plain && !parseNumber(token, number)) {
            m_bad = m_bad || m_inCorner;
            m_numbersLeft = 0;
            return false;
        }
        --m_numbersLeft;
        if (m_inCorner && m_corner < 3)
            m_facet[m_corner][2 - m_numbersLeft] = static_cast<float>(number);
        if (m_inCorner && m_numbersLeft == 0)
            ++m_corner;
        return true;
    }

    void _takeKeyword(std::string_view token)
    {
        const bool known = _takeFacetKeyword(token) || _takeSolidKeyword(token);
        // A run of unknown words is one problem; inside a facet it invalidates the facet.
        if (!known && !m_lost && !m_inFacet)
            m_problems.add("STL: unknown word (", token, ")");
        m_bad = m_bad || !known;
        m_lost = !known;
    }

    bool _takeFacetKeyword(std::string_view token)
    {
        if (m_inFacet && is(token, "vertex")) {
            m_inCorner = true;
            m_numbersLeft = 3;
        } else if (is(token, "facet")) {
            _beginFacet();
        } else if (is(token, "normal")) {
            m_inCorner = false;
            m_numbersLeft = 3;
        } else if (is(token, "endfacet")) {
            _endFacet();
        } else {
            return is(token, "outer") || is(token, "loop") || is(token, "endloop");
        }
        return true;
    }

    bool _takeSolidKeyword(std::string_view token)
    {
        const bool begins = is(token, "solid");
        if (!begins && !is(token, "endsolid"))
            return false;
        _endFacet();
        m_inSolid = begins;
        m_inName = true;
        return true;
    }

    void _beginFacet()
    {
        _endFacet();
        m_inFacet = true;
        m_bad = false;
    }

    void _endFacet()
    {
        if (!m_inFacet)
            return;
        if (m_bad || m_corner != 3)
            m_problems.add("STL: facet without three corners of three numbers");
        else
            m_facets.add(m_facet);
        m_inFacet = m_inCorner = false;
        m_corner = m_numbersLeft = 0;
    }

    FacetCollector &m_facets;
    MeshProblems &m_problems;
    FacetPiece::Facet m_facet{};
    size_t m_corner = 0;      ///< the one that is being read
    size_t m_numbersLeft = 0; ///< of the normal or the corner
    bool m_inSolid = false;
    bool m_inName = false;
    bool m_lastWasFacet = false; ///< the last word of the name
    bool m_inFacet = false;
    bool m_inCorner = false; ///< the numbers are a corner's, not the normal's
    bool m_bad = false;      ///< the facet
    bool m_lost = false;
};

void takeBlock(std::string_view block, StlTokens &tokens)
{
    const char *at = block.data();
    const char *const end = at + block.size();
    while (at < end) {
        if (isSpace(*at)) {
            if (isLineEnd(*at))
                tokens.lineEnd();
            ++at;
            continue;
        }
        const char *stop = at;
        while (!isSpace(*stop))
            ++stop;
        tokens.take({at, static_cast<size_t>(stop - at)});
        at = stop;
    }
}

} // namespace

void readTextStl(QIODevice &device, Progress &progress, FacetCollector &facets,
                 MeshProblems &problems)
{
    TextBlocks text(device, progress, whiteSpace);
    StlTokens tokens(facets, problems);
    std::vector<char> buffer;
    for (std::string_view block = text.next(buffer); !block.empty(); block = text.next(buffer))
        takeBlock(block, tokens);
    for (qint64 i = 0; i < text.overlongPieces(); ++i)
        problems.add("STL: a word is too long");
    if (text.failed())
        problems.add("STL: the file could not be read to its end");
    if (text.cutShort())
        problems.add("STL: the file became shorter while it was read");
    tokens.finish();
    facets.flush();
}

} // namespace marlowen
