#pragma once

#include "relief/history/sculptundo.h"

#include <QRect>

#include <memory>
#include <span>

namespace marlowen {

/// One finished step of the work, for observers such as a recovery journal.
struct Step
{
    enum Kind {
        Opened, ///< another relief
        Stroke,
        Edit, ///< an operation on the whole relief, or a preview that was kept
        Undo,
        Redo,
        Import, ///< the heights follow other import settings
        Accept, ///< the import ended, the heights stay
        Saved
    };
    using Events = std::span<const std::unique_ptr<SculptUndoEvent>>;

    Kind kind;
    /// Cells of the relief, in its present size, whose heights or mask changed; empty when none
    /// did.
    QRect cells;
    /// The events recorded, undone or redone, oldest first; valid until the next step. Empty when
    /// the step is not recorded or was trimmed at once.
    Events events;
};

} // namespace marlowen
