#include "relief/operations/operationtable.h"

#include "relief/grid/relief.h"
#include "relief/operations/operations.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace marlowen {

namespace {

using Input = OperationInput;

/// For functions that cannot fail.
template <void (*function)(Relief &relief, const EditRun &run)>
Outcome always(Relief &relief, const Input &, const EditRun &run)
{
    function(relief, run);
    return {};
}

/// The present size is not an error.
Outcome runResize(Relief &relief, const Input &input, const EditRun &run)
{
    const double width = input.numbers[0];
    const double height = input.numbers[1];
    if (width * height > std::numeric_limits<int>::max())
        return Failure{QStringLiteral("Edit Failed"),
                       QStringLiteral("the relief would have too many cells")};
    resize(relief, static_cast<int>(width), static_cast<int>(height), run);
    return {};
}

Outcome runZScale(Relief &relief, const Input &input, const EditRun &run)
{
    setZScale(relief, input.numbers[0], run);
    return {};
}

Outcome runCrop(Relief &relief, const Input &input, const EditRun &run)
{
    cropApply(relief, input.points, run);
    return {};
}

constexpr OperationNumber resizeNumbers[] = {{"width", {.minimum = 2.0}, true},
                                             {"height", {.minimum = 2.0}, true}};
constexpr OperationNumber zScaleNumbers[] = {{"value", zScaleRange, false}};

constexpr OperationRow rows[] = {
    {.id = "maskClear",
     .step = QT_TRANSLATE_NOOP("Commands", "Clear Mask"),
     .action = "mask",
     .word = "clear",
     .label = QT_TRANSLATE_NOOP("Commands", "Clear"),
     .icon = "mask_clear",
     .hint = QT_TRANSLATE_NOOP("Commands", "Removes the mask from the whole relief."),
     .group = OperationGroup::Masking,
     .run = always<clearMask>},
    {.id = "maskInvert",
     .step = QT_TRANSLATE_NOOP("Commands", "Invert Mask"),
     .action = "mask",
     .word = "invert",
     .label = QT_TRANSLATE_NOOP("Commands", "Invert"),
     .icon = "mask_invert",
     .hint = QT_TRANSLATE_NOOP("Commands", "Inverts the mask: masked cells become free."),
     .group = OperationGroup::Masking,
     .run = always<invertMask>},
    {.id = "resize",
     .step = QT_TRANSLATE_NOOP("Commands", "Resize"),
     .action = "resize",
     .numbers = resizeNumbers,
     .run = runResize},
    {.id = "zScale",
     .step = QT_TRANSLATE_NOOP("Commands", "Z Scale"),
     .action = "zscale",
     .numbers = zScaleNumbers,
     .run = runZScale},
    {.id = "crop",
     .step = QT_TRANSLATE_NOOP("Commands", "Crop"),
     .action = "crop",
     .takesPoints = true,
     .run = runCrop},
};

} // namespace

std::span<const OperationRow> operationTable()
{
    return rows;
}

const OperationRow &operationRow(const char *id)
{
    const auto *row = std::ranges::find_if(
        rows, [id](const OperationRow &known) { return std::strcmp(known.id, id) == 0; });
    Q_ASSERT_X(row != std::end(rows), "operationRow", id);
    return *row;
}

Operation operation(const OperationRow &row, OperationInput input)
{
    return {QString::fromLatin1(row.step),
            [&row, given = std::move(input)](Relief &relief, const EditRun &run) {
                return row.run(relief, given, run);
            }};
}

Operation operation(const char *id, OperationInput input)
{
    return operation(operationRow(id), std::move(input));
}

} // namespace marlowen
