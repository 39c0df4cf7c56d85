#include "relief/history/undoevents.h"

#include "base/rowsharing.h"
#include "relief/operations/resample.h"
#include "relief/tools/tool.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace marlowen {

namespace {

/// Sizes are accounted in 32 bits: larger ones count as the largest number, which is beyond
/// the limit of the history either way.
uint32_t accounted(qsizetype base, qsizetype unit, qsizetype count)
{
    constexpr qsizetype most = std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(std::min(most, base + unit * count));
}

/// A rectangle of floats inside rows of `stride` floats.
struct Block
{
    qsizetype stride;
    int columns;
    int rows;
};

/// Large blocks on all cores: the memory they go to is often fresh and has yet to be cleared by the
/// system.
void copyBlock(float *to, qsizetype toStride, const float *from, const Block &block)
{
    constexpr qsizetype fewestShared = 250000; // floats
    constexpr int bandRows = 64;
    const bool small = qsizetype(block.columns) * block.rows < fewestShared;
    const size_t rowBytes = static_cast<size_t>(block.columns) * sizeof(float);
    const bool joined = block.stride == block.columns && toStride == block.columns;
    shareRows({block.rows, bandRows, small}, [&](int first, int end) {
        if (joined) {
            std::memcpy(to + first * toStride, from + first * block.stride,
                        rowBytes * static_cast<size_t>(end - first));
            return;
        }
        for (int row = first; row < end; ++row)
            std::memcpy(to + row * toStride, from + row * block.stride, rowBytes);
    });
}

void dropStroke(Relief &relief)
{
    relief.takeTool();
    relief.strokeRegion = QRegion();
}

} // namespace

Patch copyPatch(const GridLayer &layer, int layerWidth, const QRegion &region)
{
    const QRect box = region.boundingRect();
    Patch patch{region, box.left(), box.top(), box.left() + box.width(), box.top() + box.height(),
                {}};
    patch.values = GridLayer(patch.count());
    Q_ASSERT(box.isEmpty() || (box.left() >= 0 && box.top() >= 0 && patch.right <= layerWidth &&
                               static_cast<qsizetype>(patch.bottom) * layerWidth <= layer.size()));
    // An unwritten layer is all 0, like the fresh copy.
    if (layer.written() && patch.count() > 0) {
        const float *from =
            layer.constData() + static_cast<qsizetype>(patch.top) * layerWidth + patch.left;
        copyBlock(patch.values.data(), box.width(), from, {layerWidth, box.width(), box.height()});
    }
    return patch;
}

void Patch::pasteInto(GridLayer &layer, int layerWidth) const
{
    if (!values.written() && count() == layer.size()) {
        layer.clear();
        return;
    }
    if (count() == 0)
        return;
    const int columns = right - left;
    float *to = layer.data() + static_cast<qsizetype>(top) * layerWidth + left;
    copyBlock(to, layerWidth, values.constData(), {columns, columns, bottom - top});
}

SculptPatchEvent::SculptPatchEvent(Relief &relief, Patch before, Patch after)
    : m_relief(relief)
    , m_before(std::make_shared<const Patch>(std::move(before)))
    , m_after(std::make_shared<const Patch>(std::move(after)))
{
}

SculptPatchEvent::SculptPatchEvent(Relief &relief, Patch before)
    : m_relief(relief)
    , m_before(std::make_shared<const Patch>(std::move(before)))
{
}

void SculptPatchEvent::complete()
{
    if (!m_after)
        m_after =
            std::make_shared<const Patch>(copyPatch(_layer(), m_relief.width(), m_before->region));
}

uint32_t SculptPatchEvent::size() const
{
    const Patch &after = m_after ? *m_after : *m_before;
    return accounted(144, sizeof(float), m_before->count() + after.count());
}

QRect SculptPatchEvent::cells() const
{
    return (m_after ? *m_after : *m_before).region.boundingRect();
}

void SculptModifyEvent::_apply(const Patch &patch)
{
    patch.pasteInto(m_relief.heights(), m_relief.width());
    m_relief.frameRegion += patch.region;
    m_relief.heightsChanged = true;
}

void SculptMaskEvent::_apply(const Patch &patch)
{
    patch.pasteInto(m_relief.maskLayer(), m_relief.width());
    m_relief.appearanceChanged = true;
}

SculptResizeEvent::SculptResizeEvent(Relief &relief, State before)
    : m_relief(relief)
    , m_before(std::move(before))
    , m_oldCells(static_cast<qsizetype>(m_before.grid.width) * m_before.grid.height)
    , m_newWidth(relief.width())
    , m_newHeight(relief.height())
{
}

void SculptResizeEvent::undo()
{
    dropStroke(m_relief);
    m_relief.replaceGrid(std::move(m_before.grid));
    m_relief.rangeMinimum = m_before.rangeMinimum;
    m_relief.rangeMaximum = m_before.rangeMaximum;
    m_relief.selectionActive = m_before.selectionActive;
}

void SculptResizeEvent::redo()
{
    dropStroke(m_relief);
    m_before.rangeMinimum = m_relief.rangeMinimum;
    m_before.rangeMaximum = m_relief.rangeMaximum;
    m_before.selectionActive = m_relief.selectionActive;
    m_before.grid =
        m_relief.replaceGrid(*resampledGrid(m_relief, {m_newWidth, m_newHeight}, nullptr));
}

uint32_t SculptResizeEvent::size() const
{
    return accounted(104, 4 * sizeof(float), m_oldCells);
}

SculptZScaleEvent::SculptZScaleEvent(Relief &relief, double before, double after)
    : m_relief(relief)
    , m_before(before)
    , m_after(after)
{
}

void SculptZScaleEvent::_apply(double value)
{
    if (m_relief.zScale == value)
        return;
    m_relief.zScale = value;
    m_relief.appearanceChanged = true;
}

} // namespace marlowen
