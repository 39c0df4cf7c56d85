#include "relief/selection/selections.h"

#include "relief/grid/cellbits.h"
#include "relief/grid/cellcode.h"
#include "relief/grid/relief.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace marlowen {

namespace {

/// Merges a row of the new shape into a row of the selection.
CELL_LOOP void mergeRow(float *selection, const float *shape, int count, SelectionModifier modifier)
{
    switch (modifier) {
    case SelectionModifier::Normal:
        for (int i = 0; i < count; ++i)
            selection[i] = shape[i] != 0.0F ? 1.0F : 0.0F;
        break;
    case SelectionModifier::Additive:
        for (int i = 0; i < count; ++i)
            selection[i] = shape[i] != 0.0F ? 1.0F : selection[i];
        break;
    case SelectionModifier::Subtractive:
        for (int i = 0; i < count; ++i)
            selection[i] = shape[i] != 0.0F ? 0.0F : selection[i];
        break;
    }
}

constexpr std::array<std::array<float, 8>, 256> bytesAsFloats()
{
    std::array<std::array<float, 8>, 256> table{};
    for (size_t byte = 0; byte < table.size(); ++byte) {
        for (size_t bit = 0; bit < 8; ++bit)
            table[byte][bit] = ((byte >> bit) & 1) != 0 ? 1.0F : 0.0F;
    }
    return table;
}

/// Writes one float, 0 or 1, for each of `count` bits.
void expandBits(const uint64_t *words, float *values, int count)
{
    static constexpr auto table = bytesAsFloats();
    int column = 0;
    for (; column + 8 <= count; column += 8) {
        const auto &eight = table[(words[column / 64] >> (column % 64)) & 0xFF];
        std::memcpy(values + column, eight.data(), sizeof eight);
    }
    for (; column < count; ++column)
        values[column] = ((words[column / 64] >> (column % 64)) & 1) != 0 ? 1.0F : 0.0F;
}

/// Heights from low to high, both included.
struct Band
{
    float low;
    float high;
};

/// The floats within `band` of h0, its ends rounded inward to floats: no float changes sides.
Band bandAround(double h0, double band)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Band result{static_cast<float>(h0 - band), static_cast<float>(h0 + band)};
    if (static_cast<double>(result.low) < h0 - band)
        result.low = std::nextafter(result.low, infinity);
    if (static_cast<double>(result.high) > h0 + band)
        result.high = std::nextafter(result.high, -infinity);
    return result;
}

constexpr std::array<uint32_t, 32> oneBitEach()
{
    std::array<uint32_t, 32> bits{};
    for (size_t i = 0; i < bits.size(); ++i)
        bits[i] = uint32_t{1} << i;
    return bits;
}

/// One bit for each of 32 heights, set within the band. Each lane has its own bit ready, so that a
/// comparison and an "or" are all it takes.
CELL_INLINE inline uint32_t bitsWithin(const float *heights, Band band)
{
    static constexpr auto bits = oneBitEach();
    uint32_t word = 0;
    for (size_t i = 0; i < 32; ++i)
        word |= ((heights[i] >= band.low) & (heights[i] <= band.high)) != 0 ? bits[i] : 0U;
    return word;
}

/// Sets one bit for every height of a row within the band.
CELL_LOOP void markRow(const float *heights, int count, Band band, uint64_t *words)
{
    for (; count >= 64; count -= 64, heights += 64)
        *words++ = bitsWithin(heights, band) | uint64_t{bitsWithin(heights + 32, band)} << 32;
    for (int i = 0; i < count; ++i) {
        if (heights[i] >= band.low && heights[i] <= band.high)
            *words |= uint64_t{1} << i;
    }
}

CellBits cellsWithin(const Relief &relief, Band band)
{
    CellBits cells(relief.width(), relief.height());
    for (int row = 0; row < relief.height(); ++row) {
        const float *heights = relief.heights().constData() + relief.index(0, row);
        markRow(heights, relief.width(), band, cells.row(row));
    }
    return cells;
}

} // namespace

void magicSelect(Relief &relief, const MagicSelection &magic, SelectionModifier modifier)
{
    const QPoint cell = relief.cellOf(magic.point);
    const bool onRelief = relief.contains(cell.x(), cell.y());
    const float h0 = onRelief ? relief.heightAt(cell.x(), cell.y()) : 0.0F;
    const double width = (relief.rangeMaximum - relief.rangeMinimum) * magic.tolerance;
    CellBits cells =
        cellsWithin(relief, bandAround(static_cast<double>(h0), width > 0.0 ? width : 0.0));
    if (!magic.continuous)
        selectShape(relief, cells, modifier);
    else if (onRelief)
        selectShape(relief, takeConnected(cells, cell.x(), cell.y()), modifier);
    else
        selectShape(relief, CellBits(relief.width(), relief.height()), modifier);
}

void selectShape(Relief &relief, const CellBits &shape, SelectionModifier modifier)
{
    GridLayer &work = relief.workLayer();
    GridLayer &selection = relief.selectionLayer();
    const bool workHolds = work.written();
    // Cutting out of nothing and rows of nothing over nothing leave a layer untouched.
    const bool cutsNothing = modifier == SelectionModifier::Subtractive && !selection.written();
    const bool selectionHolds = modifier == SelectionModifier::Normal && selection.written();
    const int width = relief.width();
    for (int row = 0; row < relief.height(); ++row) {
        const qsizetype start = relief.index(0, row);
        const bool empty = shape.rowEmpty(row);
        if (!empty)
            expandBits(shape.row(row), work.data() + start, width);
        else if (workHolds)
            std::fill_n(work.data() + start, width, 0.0F);
        if (!empty && !cutsNothing)
            mergeRow(selection.data() + start, work.constData() + start, width, modifier);
        else if (empty && selectionHolds)
            std::fill_n(selection.data() + start, width, 0.0F);
    }
    relief.selectionActive = true;
    relief.appearanceChanged = true;
}

void selectNone(Relief &relief)
{
    relief.selectionLayer().clear();
    relief.selectionActive = false;
    relief.appearanceChanged = true;
}

} // namespace marlowen
