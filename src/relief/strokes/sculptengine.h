#pragma once

#include "relief/selection/selections.h"
#include "relief/tools/strokepoint.h"
#include "relief/tools/toolparams.h"

#include <QPointF>
#include <QRegion>

namespace marlowen {

class Relief;
class Tool;
class SculptUndo;

/// Runs strokes on one relief: press, drag, release. Owns neither the relief nor the undo stack;
/// both outlive their attachment. Points are stroke points (cells from the relief's
/// centre, with the pen's pressure); points that are NaN, infinite or farther than 1e9 cells away
/// are ignored. A stroke whose grid was replaced in the middle of it ends without an undo event.
class SculptEngine
{
public:
    SculptEngine() = default;

    /// The relief and history that the next strokes work on; either may be null. A stroke still in
    /// progress on the old relief is ended first.
    void attach(Relief *relief, SculptUndo *undo);
    Relief *relief() const { return m_relief; }
    /// Touches the memory that the first stroke with these parameters will need, so that it starts
    /// as quickly as any later one. Nothing when a stroke was made or prepared before.
    void prepare(const ToolParams &params);

    /// How a magic selection combines with the present selection.
    void setSelectionModifier(SelectionModifier modifier) { m_modifier = modifier; }

    /// Ends a stroke still in progress, then begins one; the first dab is applied at once. Sample,
    /// Magic and Fill do all their work here; shape selections and Crop do nothing. The parameters
    /// and the alpha image are those of this moment until the stroke ends. `finalPoint` makes no
    /// difference to a stroke's first point.
    void beginStroke(const ToolParams &params, StrokePoint point, bool finalPoint = false);
    /// Resamples the way to the point into the Tool's pending points.
    void addStrokePoint(StrokePoint point, bool finalPoint = false);
    /// Applies pending points and sets the heights-changed flag. Smoothed paths wait for whole
    /// groups of points.
    void flush();
    /// One dab and its mirror images.
    void applyAt(StrokePoint point);
    /// Adds the last point (unless `hit` is false: then the stroke ends where it was), applies what
    /// is pending, pushes the undo event, releases the Tool.
    void endStroke(StrokePoint point, bool hit = true);
    /// Gives the cells that the stroke in progress changed their values back and releases the Tool.
    void cancelStroke();
    /// True from the beginning of a stroke (of a tool that has one) to its end.
    bool stroking() const;

private:
    Tool *_currentTool();
    void _applyPending(bool all);
    void _dabAt(StrokePoint point, QPointF shift, int image);
    void _fill();
    void _pushEvent();

    Relief *m_relief = nullptr;
    SculptUndo *m_undo = nullptr;
    SelectionModifier m_modifier = SelectionModifier::Normal;
    const float *m_snapshot = nullptr; ///< the snapshot's memory when the stroke began
};

} // namespace marlowen
