#include "relief/selection/selectionedits.h"

#include "relief/grid/relief.h"
#include "relief/selection/selections.h"

namespace marlowen {

namespace {

qsizetype wordsPerRow(const CellBits &cells)
{
    return (cells.width() + 63) / 64;
}

/// The bits of a row's last word that are columns.
uint64_t lastWordMask(int width)
{
    return ~uint64_t{0} >> ((64 - width % 64) % 64);
}

CellBits complement(const CellBits &cells)
{
    CellBits other(cells.width(), cells.height());
    const qsizetype words = wordsPerRow(cells);
    for (int row = 0; row < cells.height(); ++row) {
        for (qsizetype word = 0; word < words; ++word)
            other.row(row)[word] = ~cells.row(row)[word];
        other.row(row)[words - 1] &= lastWordMask(cells.width());
    }
    return other;
}

/// The word's cells and their left and right neighbours.
uint64_t widened(const uint64_t *row, qsizetype word, qsizetype words)
{
    const uint64_t before = word > 0 ? row[word - 1] >> 63 : 0;
    const uint64_t after = word + 1 < words ? row[word + 1] << 63 : 0;
    return row[word] | row[word] << 1 | row[word] >> 1 | before | after;
}

/// Adds the cells that touch a set one by a side or, with `corners`, by a corner.
CellBits grownByOne(const CellBits &cells, bool corners)
{
    CellBits grown(cells.width(), cells.height());
    const qsizetype words = wordsPerRow(cells);
    for (int row = 0; row < cells.height(); ++row) {
        uint64_t *out = grown.row(row);
        for (qsizetype word = 0; word < words; ++word) {
            uint64_t bits = widened(cells.row(row), word, words);
            for (const int beside : {row - 1, row + 1}) {
                if (beside >= 0 && beside < cells.height())
                    bits |=
                        corners ? widened(cells.row(beside), word, words) : cells.row(beside)[word];
            }
            out[word] = bits;
        }
        out[words - 1] &= lastWordMask(cells.width());
    }
    return grown;
}

CellBits grown(CellBits cells, int by)
{
    for (int step = 0; step < by; ++step)
        cells = grownByOne(cells, step % 2 == 1);
    return cells;
}

bool isEmpty(const CellBits &cells)
{
    for (int row = 0; row < cells.height(); ++row) {
        if (!cells.rowEmpty(row))
            return false;
    }
    return true;
}

bool replaceSelection(Relief &relief, const CellBits &cells)
{
    if (!relief.selectionActive || isEmpty(cells))
        return false;
    selectCells(relief, cells);
    return true;
}

} // namespace

CellBits selectedCells(const Relief &relief)
{
    CellBits cells(relief.width(), relief.height());
    if (!relief.selectionActive || !relief.selectionLayer().written())
        return cells;
    for (int row = 0; row < relief.height(); ++row) {
        const float *selection = relief.selectionLayer().constData() + relief.index(0, row);
        uint64_t *bits = cells.row(row);
        for (int column = 0; column < relief.width(); ++column)
            bits[column / 64] |= uint64_t{selection[column] != 0.0F} << (column % 64);
    }
    return cells;
}

void selectCells(Relief &relief, const CellBits &cells)
{
    selectShape(relief, cells, SelectionModifier::Normal);
}

void selectAll(Relief &relief)
{
    selectCells(relief, complement(CellBits(relief.width(), relief.height())));
}

bool invertSelection(Relief &relief)
{
    return replaceSelection(relief, complement(selectedCells(relief)));
}

bool growSelection(Relief &relief, int cells)
{
    return replaceSelection(relief, grown(selectedCells(relief), cells));
}

bool shrinkSelection(Relief &relief, int cells)
{
    return replaceSelection(relief, complement(grown(complement(selectedCells(relief)), cells)));
}

} // namespace marlowen
