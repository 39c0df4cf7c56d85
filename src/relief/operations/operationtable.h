#pragma once

#include "base/fieldtable.h"
#include "relief/operations/operation.h"

#include <QList>
#include <QPointF>

#include <span>
#include <vector>

namespace marlowen {

/// The input of an operation in addition to the relief.
struct OperationInput
{
    std::vector<double> numbers = {}; ///< one for each number of the row, within its range
    QList<QPointF> points = {};       ///< stroke points: cells from the relief's centre
};

/// One number that an operation takes.
struct OperationNumber
{
    const char *key; ///< name in scripts
    FieldRange range;
    bool whole;
};

/// The buttons among which the window shows an operation that takes no input: beside the mask tool,
/// or filters beside the tools that restore. None: a page has its controls.
enum class OperationGroup { Masking, Filters, None };

/// One operation on the whole relief. The window's commands with their shortcuts and tool tips, the
/// script actions and the names of the undo steps come from these rows. Texts for a person are
/// marked with QT_TRANSLATE_NOOP("Commands", "...").
struct OperationRow
{
    const char *id;         ///< name of its command; unique
    const char *step;       ///< what the undo step is called
    const char *action;     ///< its "do" in scripts
    const char *word = "";  ///< the action's "op", where several rows share an action
    const char *label = ""; ///< text on its button
    const char *icon = "";  ///< icon resource
    const char *hint = "";  ///< one sentence: what it does
    const char *keys = "";  ///< shortcuts, parted by "; "
    OperationGroup group = OperationGroup::None;
    std::span<const OperationNumber> numbers = {};
    bool takesPoints = false;
    Outcome (*run)(Relief &relief, const OperationInput &input, const EditRun &run);
};

std::span<const OperationRow> operationTable();
/// The row of an id that is in the table; anything else is a programming error.
const OperationRow &operationRow(const char *id);

/// The operation of a row, ready to run.
Operation operation(const OperationRow &row, OperationInput input = {});
Operation operation(const char *id, OperationInput input = {});

} // namespace marlowen
