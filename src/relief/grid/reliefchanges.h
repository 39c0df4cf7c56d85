#pragma once

#include "relief/grid/heightscan.h"

#include <QObject>
#include <QRegion>

#include <vector>

namespace marlowen {

class Relief;

/// What of a relief a view still has to take over: everything, or some cells.
struct PendingCells
{
    bool full = true;
    QRegion cells;
};

/// Distributes one relief's changes to several views. A relief has one frame region and one pair of
/// flags (heights changed, appearance changed); this object reads and clears them and keeps the
/// changes for each view until that view has drawn them.
///
/// The workbench has one, which the views of its relief share (ReliefView::setChanges), and calls
/// notify() after every change other than a stroke of a view. It does not own the relief.
class ReliefChanges : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// A new reader; it starts with everything pending.
    int addView();
    void removeView(int view);

    /// The relief to follow, or null. Everything becomes pending for every view, also when the
    /// relief is the same one as before. To be called before the old relief is deleted.
    void setRelief(Relief *relief);
    Relief *relief() const { return m_relief; }

    /// Takes the relief's changes over. A heights-changed flag without a region means the whole
    /// relief; an appearance change (height scale, mask, selection) too.
    void collect();
    /// The same directly after a call of the stroke engine, when the region is complete: without
    /// one a heights-changed flag means that the call changed nothing, with one an appearance
    /// change lies inside it (the mask brush). Call collect() before that engine call.
    void collectStroke();
    /// The pending cells of this view, which are cleared.
    PendingCells take(int view);
    bool pending(int view) const;

    /// Of the followed relief; the cells are scanned only when heights changed since the last call.
    HeightRange heightRange();
    /// A range that holds all heights: exact after heightRange(), grown by what changed since.
    HeightRange extent();

public slots:
    /// Calls collect() and emits changed().
    void notify();

signals:
    void changed();

private:
    struct Reader
    {
        bool used = true;
        PendingCells pending;
    };
    void _spread(bool full, const QRegion &cells);
    void _growExtent(const QRegion &cells);

    Relief *m_relief = nullptr;
    std::vector<Reader> m_readers;
    HeightRange m_range;
    HeightRange m_extent;
    bool m_extentStale = true;
    bool m_rangeStale = true;
};

} // namespace marlowen
