#include "relief/grid/physicalsize.h"

#include <QCoreApplication>

namespace marlowen {

QString sizeLimitSentence(double areaSquareInches)
{
    return QCoreApplication::translate("PhysicalSize",
                                       "That would make the pattern %1 square inches. The largest "
                                       "Marlowen can work with is %2 square inches.")
        .arg(areaSquareInches, 0, 'f', 1)
        .arg(areaLimitSquareInches, 0, 'f', 0);
}

} // namespace marlowen
