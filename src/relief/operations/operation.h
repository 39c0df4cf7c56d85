#pragma once

#include "base/progress.h"
#include "base/result.h"

#include <QString>

#include <functional>
#include <utility>

namespace marlowen {

class Relief;
class SculptUndo;

/// How an operation is run.
struct EditRun
{
    EditRun(SculptUndo *history, Progress *shown = nullptr, bool close = true)
        : undo(history)
        , progress(shown)
        , closeGroup(close)
    {
    }

    bool cancelled() const { return progress && progress->cancelled(); }

    SculptUndo *undo;   ///< null: no event is recorded
    Progress *progress; ///< null: no display and no Cancel
    bool closeGroup;    ///< false: later events join the same step
    /// The events may leave out what redo() needs until SculptUndoEvent::complete().
    bool isPreview = false;
};

/// One edit of the relief, ready to run: the name of its undo step (English, for "Undo %1") and its
/// function, which marks the changes in the relief, records them in run.undo as one step, and
/// leaves the relief unchanged when it fails or is cancelled. Cancelling is not reported as a
/// failure. The operations that commands and scripts offer are rows of operationTable().
struct Operation
{
    QString name;
    std::function<Outcome(Relief &relief, const EditRun &run)> run;
    bool isWork = true; ///< false: changes the selection alone, which is not a step and not saved
};

/// A change of the selection, ready to be made.
using SelectionEdit = std::function<void(Relief &relief)>;

/// The same as an operation.
inline Operation selectionOperation(SelectionEdit edit)
{
    return {{},
            [edit = std::move(edit)](Relief &relief, const EditRun &) {
                edit(relief);
                return Outcome();
            },
            false};
}

} // namespace marlowen
