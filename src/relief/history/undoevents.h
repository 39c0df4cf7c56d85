#pragma once

#include "relief/grid/gridlayer.h"
#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"

#include <QRegion>

namespace marlowen {

/// The saved content of one rectangle of one float layer: the region it covers, that region's
/// bounding rectangle in cells (right and bottom exclusive) and its floats, row-major.
struct Patch
{
    QRegion region;
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    GridLayer values; ///< (right - left) * (bottom - top) floats

    qsizetype count() const { return static_cast<qsizetype>(right - left) * (bottom - top); }
    /// Writes the floats back to where they came from.
    void pasteInto(GridLayer &layer, int layerWidth) const;
};

/// Copies the bounding rectangle of the region, which lies on the grid, out of a layer with rows of
/// `layerWidth` cells. Throws std::bad_alloc.
Patch copyPatch(const GridLayer &layer, int layerWidth, const QRegion &region);

/// A changed rectangle of one layer, before and after. The relief outlives the event; both patches
/// fit its grid whenever the event is undone or redone.
class SculptPatchEvent : public SculptUndoEvent
{
public:
    SculptPatchEvent(Relief &relief, Patch before, Patch after);
    /// Leaves the patch after the change to complete().
    SculptPatchEvent(Relief &relief, Patch before);
    void complete() override;
    void undo() override { _apply(*m_before); }
    void redo() override { _apply(*m_after); }
    /// 144 and 4 for every float of both patches.
    uint32_t size() const override;
    QRect cells() const override;
    /// The patches never change, so that another thread may read them; they outlive the event for
    /// as long as somebody holds them.
    const std::shared_ptr<const Patch> &before() const { return m_before; }
    const std::shared_ptr<const Patch> &after() const { return m_after; }

protected:
    Relief &m_relief;

private:
    virtual void _apply(const Patch &patch) = 0;
    virtual const GridLayer &_layer() const = 0;

    std::shared_ptr<const Patch> m_before;
    std::shared_ptr<const Patch> m_after;
};

/// Heights. Applying a patch unites its region into the frame region and sets heights-changed.
class SculptModifyEvent : public SculptPatchEvent
{
public:
    using SculptPatchEvent::SculptPatchEvent;

private:
    void _apply(const Patch &patch) override;
    const GridLayer &_layer() const override { return m_relief.heights(); }
};

/// The mask. Applying a patch sets appearance-changed.
class SculptMaskEvent : public SculptPatchEvent
{
public:
    using SculptPatchEvent::SculptPatchEvent;

private:
    void _apply(const Patch &patch) override;
    const GridLayer &_layer() const override { return m_relief.maskLayer(); }
};

/// A new grid size. Keeps what the resize replaced while it is in force; undo gives that back and
/// redo resizes again from there. Either way a stroke in progress is dropped: its grid is gone.
class SculptResizeEvent : public SculptUndoEvent
{
public:
    /// The values that a resize replaces in addition to the dimensions.
    struct State
    {
        Relief::Grid grid;
        double rangeMinimum = 0.0;
        double rangeMaximum = 0.0;
        bool selectionActive = false;
    };
    /// `before` was replaced; the relief has its new size already.
    SculptResizeEvent(Relief &relief, State before);
    void undo() override;
    void redo() override;
    /// 104 and 16 for every cell of the old grid.
    uint32_t size() const override;
    QRect cells() const override { return m_relief.rect(); }
    int newWidth() const { return m_newWidth; }
    int newHeight() const { return m_newHeight; }

private:
    Relief &m_relief;
    State m_before;
    qsizetype m_oldCells;
    int m_newWidth;
    int m_newHeight;
};

/// A new Z scale. Applying it sets appearance-changed when the value differs from the relief's.
class SculptZScaleEvent : public SculptUndoEvent
{
public:
    SculptZScaleEvent(Relief &relief, double before, double after);
    void undo() override { _apply(m_before); }
    void redo() override { _apply(m_after); }
    uint32_t size() const override { return 48; }
    double before() const { return m_before; }
    double after() const { return m_after; }

private:
    void _apply(double value);

    Relief &m_relief;
    double m_before;
    double m_after;
};

} // namespace marlowen
