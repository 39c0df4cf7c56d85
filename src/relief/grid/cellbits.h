#pragma once

#include <QtGlobal>

#include <cstdint>
#include <vector>

namespace marlowen {

/// One bit a cell of a width x height grid, all 0 at first: a shape in the making. A 32nd of the
/// size of a layer, so that a shape of any relief can be built within the processor's cache.
class CellBits
{
public:
    CellBits(int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Column c is bit c % 64 of word c / 64; bits beyond the width stay 0.
    uint64_t *row(int row) { return m_words.data() + row * m_wordsPerRow; }
    const uint64_t *row(int row) const { return m_words.data() + row * m_wordsPerRow; }

    bool test(int column, int row) const;
    void set(int column, int row);
    /// Sets the columns first..last, both included; the caller clips them to the grid.
    void setSpan(int row, int first, int last);
    void clearSpan(int row, int first, int last);
    bool rowEmpty(int row) const;

    /// First set column at or after `column`; width when there is none.
    int nextSet(int row, int column) const;
    /// The ends of the run of set cells that holds `column`.
    int runFirst(int row, int column) const;
    int runLast(int row, int column) const;

private:
    int m_width;
    int m_height;
    qsizetype m_wordsPerRow;
    std::vector<uint64_t> m_words;
};

/// The cells of `open` that can be reached from a set cell through set cells joined by their sides.
/// The cells reached are removed from `open`.
CellBits takeConnected(CellBits &open, int column, int row);

} // namespace marlowen
