#pragma once

#include "base/result.h"
#include "relief/history/sculptundo.h"
#include "relief/operations/operation.h"

namespace marlowen {

class Workbench;

/// An operation that is shown on the relief while its values are still being chosen, such as a
/// pattern being moved into place, and becomes one undo step when it is kept. Until then the
/// relief's history and its modified flag stay as they are; every other step of the workbench drops
/// the preview first.
class LivePreview
{
public:
    /// Part of a workbench, which outlives it.
    explicit LivePreview(Workbench &bench)
        : m_bench(bench)
    {
    }

    /// Whether something is shown.
    bool active() const { return m_events.canUndo(); }
    /// Takes the preview before it back and runs the operation, which must fit into the history's
    /// byte limit. Does nothing without a relief. Fails with the operation; then no preview is
    /// shown.
    Outcome run(const Operation &operation, Progress *progress = nullptr);
    /// Makes the preview a step of the history. Fails without enough memory; then it is undone.
    Outcome keep();
    /// Undoes the preview.
    void drop();

private:
    bool _takeBack();

    Workbench &m_bench;
    SculptUndo m_events; ///< of the preview
};

} // namespace marlowen
