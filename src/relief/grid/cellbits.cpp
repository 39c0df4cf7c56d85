#include "relief/grid/cellbits.h"

#include <algorithm>
#include <bit>

namespace marlowen {

namespace {

constexpr uint64_t allOnes = ~uint64_t{0};

qsizetype wordOf(int column)
{
    return column / 64;
}

int columnOf(qsizetype word, int bit)
{
    return static_cast<int>(word * 64) + bit;
}

/// Calls change(word, bits) for every word of a row that the columns first..last reach into.
template <typename Change>
void forSpan(uint64_t *words, int first, int last, Change change)
{
    if (last < first)
        return;
    const uint64_t head = allOnes << (first % 64);
    const uint64_t tail = allOnes >> (63 - last % 64);
    const qsizetype firstWord = wordOf(first);
    const qsizetype lastWord = wordOf(last);
    if (firstWord == lastWord) {
        change(words[firstWord], head & tail);
        return;
    }
    change(words[firstWord], head);
    for (qsizetype word = firstWord + 1; word < lastWord; ++word)
        change(words[word], allOnes);
    change(words[lastWord], tail);
}

/// Works off runs of open cells: each is taken once, whole, and leads to the runs it touches in the
/// rows above and below.
class RunFill
{
public:
    explicit RunFill(CellBits &open)
        : m_open(open)
        , m_taken(open.width(), open.height())
    {
    }

    CellBits fill(int column, int row)
    {
        if (m_open.test(column, row))
            _take(row, column);
        while (!m_pending.empty()) {
            const Run run = m_pending.back();
            m_pending.pop_back();
            if (run.row > 0)
                _takeTouching(run.row - 1, run);
            if (run.row + 1 < m_open.height())
                _takeTouching(run.row + 1, run);
        }
        return std::move(m_taken);
    }

private:
    struct Run
    {
        int row;
        int first;
        int last;
    };

    int _take(int row, int column)
    {
        const Run run{row, m_open.runFirst(row, column), m_open.runLast(row, column)};
        m_open.clearSpan(row, run.first, run.last);
        m_taken.setSpan(row, run.first, run.last);
        m_pending.push_back(run);
        return run.last;
    }

    void _takeTouching(int row, const Run &run)
    {
        int column = m_open.nextSet(row, run.first);
        while (column <= run.last)
            column = m_open.nextSet(row, _take(row, column));
    }

    CellBits &m_open;
    CellBits m_taken;
    std::vector<Run> m_pending;
};

} // namespace

CellBits::CellBits(int width, int height)
    : m_width(width)
    , m_height(height)
    // One word to spare, so that a run always ends inside its row.
    , m_wordsPerRow(width / 64 + 1)
    , m_words(static_cast<size_t>(m_wordsPerRow * height))
{
}

bool CellBits::test(int column, int line) const
{
    return (row(line)[wordOf(column)] >> (column % 64)) & 1;
}

void CellBits::set(int column, int line)
{
    row(line)[wordOf(column)] |= uint64_t{1} << (column % 64);
}

void CellBits::setSpan(int line, int first, int last)
{
    forSpan(row(line), first, last, [](uint64_t &word, uint64_t bits) { word |= bits; });
}

void CellBits::clearSpan(int line, int first, int last)
{
    forSpan(row(line), first, last, [](uint64_t &word, uint64_t bits) { word &= ~bits; });
}

bool CellBits::rowEmpty(int line) const
{
    const uint64_t *words = row(line);
    return std::all_of(words, words + m_wordsPerRow, [](uint64_t word) { return word == 0; });
}

int CellBits::nextSet(int line, int column) const
{
    const uint64_t *words = row(line);
    qsizetype word = wordOf(column);
    uint64_t bits = words[word] & (allOnes << (column % 64));
    while (bits == 0) {
        if (++word == m_wordsPerRow)
            return m_width;
        bits = words[word];
    }
    return columnOf(word, std::countr_zero(bits));
}

int CellBits::runFirst(int line, int column) const
{
    const uint64_t *words = row(line);
    qsizetype word = wordOf(column);
    uint64_t gaps = ~words[word] & (allOnes >> (63 - column % 64));
    while (gaps == 0) {
        if (word == 0)
            return 0;
        gaps = ~words[--word];
    }
    return columnOf(word, 64 - std::countl_zero(gaps));
}

int CellBits::runLast(int line, int column) const
{
    const uint64_t *words = row(line);
    qsizetype word = wordOf(column);
    uint64_t gaps = ~words[word] & (allOnes << (column % 64));
    while (gaps == 0)
        gaps = ~words[++word];
    return columnOf(word, std::countr_zero(gaps)) - 1;
}

CellBits takeConnected(CellBits &open, int column, int row)
{
    return RunFill(open).fill(column, row);
}

} // namespace marlowen
