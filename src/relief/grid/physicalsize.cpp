#include "relief/grid/physicalsize.h"

#include <QCoreApplication>

namespace marlowen {

QString unitLabel(const LengthUnit &unit)
{
    return QCoreApplication::translate("PhysicalSize", unit.label);
}

Failure sizeLimitFailure(double areaSquareInches)
{
    const QString sentence = QCoreApplication::translate(
        "PhysicalSize", "That would make the pattern %1 square inches. The largest "
                        "Marlowen can work with is %2 square inches.");
    return {QCoreApplication::translate("PhysicalSize", "Size"),
            sentence.arg(areaSquareInches, 0, 'f', 1).arg(areaLimitSquareInches, 0, 'f', 0)};
}

} // namespace marlowen
