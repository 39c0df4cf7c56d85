#include "render/views/statustext.h"

#include "base/numbertext.h"
#include "relief/grid/physicalsize.h"

#include <QCoreApplication>

#include <algorithm>

namespace marlowen {

QString statusText(const Vector &point, const SceneBox &box, int unit)
{
    const LengthUnit &shown = lengthUnits[static_cast<size_t>(unit)];
    const auto length = [&shown](double cells, int decimals) {
        return numberText(cells / cellsPerInch / shown.inches, decimals);
    };
    const auto place = [&](double cells) {
        return length(cells + 0.5, std::min(shown.decimals, 2));
    };
    const QString parted = QLocale().decimalPoint() == QLatin1String(",") ? QStringLiteral("; ")
                                                                          : QStringLiteral(", ");
    return QCoreApplication::translate("StatusText", "Position: (%1%2%3) z = %4 %5")
        .arg(place(point.x + box.width / 2), parted, place(point.y + box.height / 2),
             length(std::max(point.z, 0.0), shown.decimals),
             QCoreApplication::translate("Units", shown.label));
}

} // namespace marlowen
